// Importing comma delimited text with vexdata and exporting it again, as whole processes, compared
// with other programs that do the same, where they are installed: R's data.table, and polars for
// node (its folder of packages is given by --npm). Two files are written first, always the same: a
// survey of small whole numbers with missing ones, and measurements of six to nine digits.
//
//   bench_text [--cases N] [--numbers N] [--vexdata PROGRAM] [--folder FOLDER] [--npm FOLDER]
#include <cmath>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "Processes.h"

namespace {

using bench::Floor;
using bench::MedianOf;
using bench::Print;

struct Options {
  long cases = 2'000'000;
  long numbers = 500'000;
  std::string vexdata;
  std::string folder = "/tmp/bench-text";
  std::string npm;
  int runs = 5;
};

// Numbers that are the same everywhere.
class CSequence {
 public:
  std::uint64_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_;
  }
  double Unit() { return static_cast<double>(Next() >> 11) / 9007199254740992.0; }

 private:
  std::uint64_t state_ = 20240601;
};

void WriteNames(std::ofstream& out, int columns) {
  for (int i = 0; i < columns; ++i) out << (i > 0 ? ",v" : "v") << i + 1;
  out << '\n';
}

void WriteSurvey(const std::string& name, long cases) {
  constexpr int kItems = 25;
  std::ofstream out(name, std::ios::binary);
  WriteNames(out, kItems);
  CSequence random;
  std::string line;
  for (long i = 0; i < cases; ++i) {
    line.clear();
    for (int item = 0; item < kItems; ++item) {
      if (item > 0) line += ',';
      const std::uint64_t draw = random.Next() >> 20;
      if (draw % 50 == 0) {
        line += "NA";
      } else {
        line += static_cast<char>('1' + draw / 50 % 6);
      }
    }
    out << (line += '\n');
  }
}

void WriteNumbers(const std::string& name, long cases) {
  constexpr int kColumns = 40;
  constexpr double kScales[] = {1, 10, 100, 1000, 0.1, 0.001, 1e6, 12345.678};
  std::ofstream out(name, std::ios::binary);
  WriteNames(out, kColumns);
  CSequence random;
  char text[40];
  for (long i = 0; i < cases; ++i) {
    for (int column = 0; column < kColumns; ++column) {
      const double value =
          (random.Unit() + random.Unit() + random.Unit() - 1.5) * kScales[column % 8];
      const int digits = 6 + static_cast<int>(random.Next() >> 20 & 3);
      const int length =
          std::snprintf(text, sizeof text, "%s%.*g", column > 0 ? "," : "", digits, value);
      out.write(text, length);
    }
    out << '\n';
  }
}

// A floor that also waits until the disk has everything, as vexdata does.
double SyncedFloor(const std::string& from, const std::string& to, std::uintmax_t bytes) {
  unlink(to.c_str());
  bench::Settle(std::int64_t{512} << 20);
  const bench::CTimer timer;
  Floor(from, to, bytes);
  bench::RunCommand({"sync", to});
  return timer.Seconds();
}

double MedianFloor(int runs, const std::string& from, const std::string& to, std::uintmax_t bytes) {
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    unlink(to.c_str());
    bench::Settle(std::int64_t{512} << 20);
    seconds.push_back(Floor(from, to, bytes));
  }
  return bench::Median(seconds);
}

std::string PolarsJob(const std::string& npm, const char* job) {
  return "const pl = require('" + npm +
         "/node_modules/nodejs-polars');"
         "const [i, o] = process.argv.slice(1);" +
         job;
}

void Compare(const Options& options, const std::string& name, int columns) {
  const std::string csv = options.folder + '/' + name + ".csv";
  const std::string vsf = options.folder + '/' + name + ".VSF";
  const std::string back = options.folder + "/back.csv";
  const std::string other = options.folder + "/other";
  const auto import =
      MedianOf(options.runs, {options.vexdata, "import", csv, vsf, "--overwrite", "--quiet"}, vsf);
  if (!import) throw std::runtime_error("vexdata does not import " + csv);
  const auto cells = std::filesystem::file_size(vsf);
  const double floor = MedianFloor(options.runs, csv, other, cells);
  std::printf("%s (%.0f MB to %.0f MB), floor %.2f s, synced %.2f s\n", name.c_str(),
              static_cast<double>(std::filesystem::file_size(csv)) / 1e6,
              static_cast<double>(cells) / 1e6, floor, SyncedFloor(csv, other, cells));
  Print("vexdata import", import, floor);
  Print("data.table fread, writeBin",
        MedianOf(options.runs,
                 {"Rscript", "-e",
                  "a <- commandArgs(TRUE); d <- data.table::fread(a[1]); con <- file(a[2], 'wb');"
                  "n <- nrow(d); for (s in seq.int(1L, n, by = 100000L)) {"
                  "e <- min(n, s + 99999L); m <- vapply(d, function(x) as.double(x[s:e]),"
                  "numeric(e - s + 1L)); writeBin(as.vector(t(m)), con) }; close(con)",
                  csv, other},
                 other),
        floor);
  if (!options.npm.empty()) {
    Print("polars, csv to its own file",
          MedianOf(options.runs,
                   {"node", "-e",
                    PolarsJob(options.npm,
                              "pl.readCSV(i, {nullValues: ['NA'], inferSchemaLength: 1000})"
                              ".writeIPC(o)"),
                    csv, other + ".ipc"},
                   other),
          floor);
  }

  const auto exported = MedianOf(
      options.runs, {options.vexdata, "export", vsf, back, "--overwrite", "--quiet"}, back);
  if (!exported) throw std::runtime_error("vexdata does not export " + vsf);
  const auto bytes = std::filesystem::file_size(back);
  const double out = MedianFloor(options.runs, vsf, other, bytes);
  std::printf("%s back to text (%.0f MB), floor %.2f s\n", name.c_str(),
              static_cast<double>(bytes) / 1e6, out);
  Print("vexdata export", exported, out);
  Print("data.table readBin, fwrite",
        MedianOf(options.runs,
                 {"Rscript", "-e",
                  "a <- commandArgs(TRUE); k <- as.integer(a[3]); con <- file(a[1], 'rb');"
                  "invisible(readBin(con, 'raw', 128 + 276 * k));"
                  "x <- readBin(con, 'double', file.size(a[1]) / 8); close(con);"
                  "m <- matrix(x, ncol = k, byrow = TRUE); m[m == -999999] <- NA;"
                  "data.table::fwrite(data.table::as.data.table(m), a[2])",
                  vsf, other, std::to_string(columns)},
                 other),
        out);
  if (!options.npm.empty()) {
    Print("polars, its own file to csv",
          MedianOf(options.runs,
                   {"node", "-e", PolarsJob(options.npm, "pl.readIPC(i).writeCSV(o)"),
                    other + ".ipc", other},
                   other),
          out);
  }
  for (const std::string& file : {vsf, back, other, other + ".ipc"}) unlink(file.c_str());
}

int Run(const Options& options) {
  std::filesystem::create_directories(options.folder);
  WriteSurvey(options.folder + "/survey-text.csv", options.cases);
  WriteNumbers(options.folder + "/numbers-text.csv", options.numbers);
  Compare(options, "survey-text", 25);
  Compare(options, "numbers-text", 40);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  options.vexdata = (std::filesystem::path(argv[0]).parent_path() / "vexdata").string();
  CLI::App app{"Text in and out against other programs"};
  app.add_option("--cases", options.cases, "Of the survey");
  app.add_option("--numbers", options.numbers, "Cases of the measurements");
  app.add_option("--vexdata", options.vexdata);
  app.add_option("--folder", options.folder);
  app.add_option("--npm", options.npm, "Folder in which nodejs-polars is installed");
  app.add_option("--runs", options.runs);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] { return Run(options); });
}
