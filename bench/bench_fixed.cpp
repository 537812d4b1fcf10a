// Opening and saving a text file of fixed columns, compared with a plain loop over the same file
// that splits the columns and converts with std::from_chars and std::to_chars.
//
//   bench_fixed [--records N] [--variables N] [--folder FOLDER] [--runs N]
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"

namespace {

constexpr int kWidth = 8;
constexpr int kDecimals = 2;
constexpr std::size_t kBlock = std::size_t{128} << 10;

struct Options {
  std::string folder = ".";
  std::int32_t records = 1'000'000;
  std::int32_t variables = 50;
  int runs = 3;
};

struct File {
  std::FILE* stream;
  File(const std::string& name, const char* mode) : stream(std::fopen(name.c_str(), mode)) {
    if (stream == nullptr) throw std::runtime_error("cannot open " + name);
    std::setvbuf(stream, nullptr, _IOFBF, kBlock);
  }
  ~File() { std::fclose(stream); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
};

// Right-aligned numbers with two decimals, in a form that both sides read.
void AppendField(double value, std::string& line) {
  char text[64];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, kDecimals);
  const auto length = static_cast<std::size_t>(end.ptr - text);
  line.append(kWidth - length, ' ');
  line.append(text, length);
}

void MakeFile(const std::string& name, const Options& options) {
  const File file(name, "wb");
  std::mt19937_64 random(5);
  std::string line;
  for (std::int32_t i = 0; i < options.records; ++i) {
    line.clear();
    for (std::int32_t k = 0; k < options.variables; ++k) {
      AppendField(static_cast<double>(random() % 10'000'00) / 100.0, line);
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), file.stream);
  }
}

void ReadPlainly(const std::string& from, const std::string& to, const Options& options) {
  const File in(from, "rb");
  const File out(to, "wb");
  const auto variables = static_cast<std::size_t>(options.variables);
  std::vector<char> line(variables * kWidth + 2);
  std::vector<double> row(variables);
  while (std::fgets(line.data(), static_cast<int>(line.size()), in.stream) != nullptr) {
    for (std::size_t k = 0; k < variables; ++k) {
      const char* at = line.data() + k * kWidth;
      const char* const end = at + kWidth;
      while (at != end && *at == ' ') ++at;
      std::from_chars(at, end, row[k]);
    }
    std::fwrite(row.data(), sizeof(double), variables, out.stream);
  }
}

void WritePlainly(const std::string& from, const std::string& to, const Options& options) {
  {
    const File in(from, "rb");
    const File out(to, "wb");
    std::vector<double> row(static_cast<std::size_t>(options.variables));
    std::string line;
    while (std::fread(row.data(), sizeof(double), row.size(), in.stream) == row.size()) {
      line.clear();
      for (const double value : row) AppendField(value, line);
      line += '\n';
      std::fwrite(line.data(), 1, line.size(), out.stream);
    }
  }
  bench::RunCommand({"sync", to});  // as a save does
}

template <class Work>
bench::Seconds Timed(Work work) {
  const double cpu = bench::CpuSeconds(RUSAGE_SELF);
  const bench::CTimer timer;
  work();
  return {timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - cpu};
}

void Require(bool done, const char* what) {
  if (!done) throw std::runtime_error(what);
}

void Report(const char* what, const std::vector<bench::Seconds>& ours,
            const std::vector<bench::Seconds>& plain, double memory) {
  const bench::Seconds a = bench::Median(ours);
  const bench::Seconds b = bench::Median(plain);
  std::printf(
      "%-6s %6.2f s (cpu %5.2f)   plain %6.2f s (cpu %5.2f)   ratio %5.2f (cpu %5.2f)   "
      "own memory %5.1f MiB\n",
      what, a.elapsed, a.cpu, b.elapsed, b.cpu, a.elapsed / b.elapsed, a.cpu / b.cpu, memory);
}

int Run(const Options& options) {
  const std::string text = options.folder + "/bench_fixed.dat";
  const std::string cells = options.folder + "/bench_fixed.cells";
  const std::string saved = options.folder + "/bench_fixed.saved";
  setenv("TMPDIR", options.folder.c_str(), 1);  // the scratch file lies on the same disk
  MakeFile(text, options);
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(text));
  std::printf("%d cases x %d variables, %.2f GB, %d runs\n", options.records, options.variables,
              static_cast<double>(bytes) / 1e9, options.runs);
  EXTERNDATA kind;
  kind.data_type = kTextFile;
  kind.fixedFormat = 1;
  kind.formatStatement = "(" + std::to_string(options.variables) + "F8.2)";

  std::vector<bench::Seconds> opens, plainOpens, saves, plainSaves;
  double openMemory = 0;
  double saveMemory = 0;
  for (int run = 0; run < options.runs; ++run) {
    unlink(cells.c_str());
    bench::Settle(2 * bytes);
    plainOpens.push_back(Timed([&] { ReadPlainly(text, cells, options); }));
    CDataDoc document;
    CDataView view(document);
    document.SetExtern(kind, {}, 0, options.variables, false);
    bench::Settle(2 * bytes);
    {
      bench::COwnMemory memory;
      opens.push_back(Timed([&] { Require(document.OnOpenDocument(text), "cannot open"); }));
      openMemory = std::max(openMemory, memory.Stop());
    }
    Require(document.GetRecnum() == options.records, "other cases");
    unlink(saved.c_str());
    bench::Settle(2 * bytes);
    plainSaves.push_back(Timed([&] { WritePlainly(cells, saved, options); }));
    unlink(saved.c_str());
    bench::Settle(2 * bytes);
    {
      bench::COwnMemory memory;
      saves.push_back(Timed([&] { Require(document.SaveASCIIFile(saved), "cannot save"); }));
      saveMemory = std::max(saveMemory, memory.Stop());
    }
  }
  Report("open", opens, plainOpens, openMemory);
  Report("save", saves, plainSaves, saveMemory);
  for (const auto& name : {text, cells, saved}) unlink(name.c_str());
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"Fixed columns against a plain loop"};
  app.add_option("--folder", options.folder);
  app.add_option("--records", options.records);
  app.add_option("--variables", options.variables);
  app.add_option("--runs", options.runs);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] { return Run(options); });
}
