// Importing a foreign file of many cases with vexdata, as a whole process, compared with other
// programs that read the same file, where they are installed: packages of R (to a binary matrix)
// and readstat (to csv). The floor reads the file's bytes and writes as many as the result has.
//
//   bench_import FILE... [--vexdata PROGRAM] [--folder FOLDER] [--runs N]
#include <cstdio>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "Processes.h"

namespace {

using bench::Floor;
using bench::MedianOf;
using bench::Print;
using bench::Time;

struct Options {
  std::vector<std::string> files;
  std::string vexdata;
  std::string folder = ".";
  int runs = 3;
};

// Packages of R, with what each makes a data frame by.
struct Peer {
  const char* extension;
  const char* name;
  const char* reading;
};
constexpr Peer kPeers[] = {
    {".sav", "R foreign", "foreign::read.spss(commandArgs(TRUE)[1], use.value.labels = FALSE)"},
    {".sav", "R haven", "haven::zap_labels(haven::read_sav(commandArgs(TRUE)[1]))"},
    {".dta", "R haven", "haven::zap_labels(haven::read_dta(commandArgs(TRUE)[1]))"},
    {".sas7bdat", "R haven", "haven::read_sas(commandArgs(TRUE)[1])"},
    {".dbf", "R foreign", "foreign::read.dbf(commandArgs(TRUE)[1], as.is = TRUE)"},
    {".xls", "R readxl", "readxl::read_xls(commandArgs(TRUE)[1], guess_max = 100)"},
    {".xlsx", "R readxl", "readxl::read_xlsx(commandArgs(TRUE)[1], guess_max = 100)"},
};
constexpr const char* kToMatrix =
    "con <- file(commandArgs(TRUE)[2], 'wb'); n <- nrow(d);"
    "for (s in seq.int(1L, n, by = 100000L)) { e <- min(n, s + 99999L);"
    "m <- vapply(d, function(x) as.double(x[s:e]), numeric(e - s + 1L)); "
    "writeBin(as.vector(t(m)), con) };"
    "close(con)";

int Run(const Options& options) {
  const std::string target = options.folder + "/bench_import.VSF";
  const std::string other = options.folder + "/bench_import.out";
  const auto start = Time({options.vexdata, "--version"});
  if (!start) throw std::runtime_error("cannot run " + options.vexdata);
  std::printf("vexdata's own start: %.3f s, peak %.1f MiB\n", start->seconds, start->memory);
  for (const std::string& file : options.files) {
    const auto ours = MedianOf(
        options.runs, {options.vexdata, "import", file, target, "--overwrite", "--quiet"}, target);
    if (!ours) throw std::runtime_error("vexdata does not import " + file);
    const double floor = Floor(file, other, std::filesystem::file_size(target));
    std::printf("%s (%.0f MB to %.0f MB), floor %.2f s\n", file.c_str(),
                static_cast<double>(std::filesystem::file_size(file)) / 1e6,
                static_cast<double>(std::filesystem::file_size(target)) / 1e6, floor);
    Print("vexdata import", ours, floor);
    for (const Peer& peer : kPeers) {
      if (!file.ends_with(peer.extension)) continue;
      const std::string script =
          std::string("d <- as.data.frame(") + peer.reading + ");" + kToMatrix;
      Print(peer.name, MedianOf(options.runs, {"Rscript", "-e", script, file, other}, other),
            floor);
    }
    const std::string csv = other + ".csv";
    Print("readstat to csv", MedianOf(1, {"readstat", file, csv}, csv), floor);
    unlink(csv.c_str());
  }
  unlink(target.c_str());
  unlink(other.c_str());
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  options.vexdata = (std::filesystem::path(argv[0]).parent_path() / "vexdata").string();
  CLI::App app{"Importing against other programs"};
  app.add_option("FILE", options.files)->required();
  app.add_option("--vexdata", options.vexdata);
  app.add_option("--folder", options.folder);
  app.add_option("--runs", options.runs);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] { return Run(options); });
}
