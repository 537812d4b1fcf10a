// Opening (file to scratch file) and saving (scratch file to file) of a large system data file,
// compared with copies of the same file that are made in between: opening with `cp`, saving with
// `cp` and a sync of the copy.
//
//   bench_files [--records N] [--variables N] [--folder FOLDER] [--runs N]
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"

namespace {

struct Options {
  std::string folder = ".";
  std::int32_t records = 2'000'000;
  std::int32_t variables = 100;
  int runs = 3;
};

void MakeFile(const std::string& name, const Options& options) {
  TORVIKSTRUCT data;
  data.records = options.records;
  data.variables = options.variables;
  data.ResizeArrays(static_cast<std::size_t>(options.variables));
  std::ofstream file(name, std::ios::binary);
  const CString description = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  std::mt19937_64 random(7);
  std::vector<double> record(static_cast<std::size_t>(options.variables));
  for (std::int32_t i = 0; i < options.records; ++i) {
    for (double& value : record) value = static_cast<double>(random() % 1000);
    file.write(reinterpret_cast<const char*>(record.data()),
               static_cast<std::streamsize>(record.size() * sizeof(double)));
  }
  if (!file) throw std::runtime_error("cannot write " + name);
}

void SyncFile(const std::string& name) {
  bench::RunCommand({"sync", name});
}

// Seconds of the copy with the sync that makes it last.
double CopyAndSync(const std::string& from, const std::string& to) {
  unlink(to.c_str());
  bench::Settle(2 * static_cast<std::int64_t>(std::filesystem::file_size(from)));
  const bench::CTimer timer;
  bench::RunCommand({"cp", "--reflink=never", from, to});
  SyncFile(to);
  return timer.Seconds();
}

void Report(const char* what, const std::vector<double>& ours, const std::vector<double>& copies,
            double memory) {
  const double seconds = bench::Median(ours);
  const double copy = bench::Median(copies);
  std::printf("%-8s %6.2f s   copy %6.2f s   ratio %5.2f   own memory %5.1f MiB\n", what, seconds,
              copy, seconds / copy, memory);
}

int Run(const Options& options) {
  const std::string file = options.folder + "/bench_files.VSF";
  const std::string copy = options.folder + "/bench_files.copy";
  const std::string saved = options.folder + "/bench_files.saved.VSF";
  setenv("TMPDIR", options.folder.c_str(), 1);  // the scratch file lies on the same disk
  MakeFile(file, options);
  std::printf("%d cases x %d variables, %.2f GB, %d runs\n", options.records, options.variables,
              static_cast<double>(std::filesystem::file_size(file)) / 1e9, options.runs);

  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file));
  std::vector<double> opens, openCopies, saves, saveCopies;
  double openMemory = 0;
  double saveMemory = 0;
  bench::CopyByCp(file, copy);  // warms the page cache
  for (int run = 0; run < options.runs; ++run) {
    openCopies.push_back(bench::CopyByCp(file, copy).elapsed);
    unlink(copy.c_str());
    CDataDoc document;
    CDataView view(document);
    bench::Settle(2 * bytes);
    {
      bench::COwnMemory memory;
      const bench::CTimer timer;
      if (!document.OnOpenDbmsDocument(file)) return EXIT_FAILURE;
      opens.push_back(timer.Seconds());
      openMemory = std::max(openMemory, memory.Stop());
    }
    saveCopies.push_back(CopyAndSync(view.GetScratchFileName(), copy));
    unlink(copy.c_str());
    unlink(saved.c_str());
    bench::Settle(2 * bytes);
    {
      bench::COwnMemory memory;
      const bench::CTimer timer;
      if (!document.SaveVSFFile(saved, kNewFormat)) return EXIT_FAILURE;
      saves.push_back(timer.Seconds());
      saveMemory = std::max(saveMemory, memory.Stop());
    }
  }
  Report("open", opens, openCopies, openMemory);
  Report("save", saves, saveCopies, saveMemory);
  for (const auto& name : {file, copy, saved}) unlink(name.c_str());
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"Opening and saving against cp"};
  app.add_option("--folder", options.folder);
  app.add_option("--records", options.records);
  app.add_option("--variables", options.variables);
  app.add_option("--runs", options.runs);
  CLI11_PARSE(app, argc, argv);
  return bench::Main([&] { return Run(options); });
}
