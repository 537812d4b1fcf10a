// Edits of a data set as the data window does them, against a plain copy of the file of cells made
// in the same run: the commit of a cell, inserting and deleting variables and cases, sorting and
// selecting, and undoing each.
//
//   bench_edit [--records N] [--variables N] [--folder FOLDER] [--runs N]
#include <cstdio>
#include <cstdlib>
#include <random>

#include <CLI/CLI.hpp>

#include "Bench.h"
#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "vexutils/BlockIo.h"

namespace {

struct Options {
  std::string folder = ".";
  std::int32_t records = 2'000'000;
  std::int32_t variables = 100;
  int runs = 3;
};

void MakeCells(CDataDoc& document, CDataView& view, const Options& options) {
  document.SetExtern(EXTERNDATA(), {}, options.records, options.variables, false);
  std::FILE* const file = view.OpenScratchFile("w+b");
  std::mt19937_64 random(4);
  std::vector<double> block(static_cast<std::size_t>(options.variables) * 64);
  for (std::int32_t done = 0; done < options.records;) {
    for (double& cell : block) cell = static_cast<double>(random() % 1000);
    const auto rows = static_cast<std::size_t>(std::min(64, options.records - done));
    const std::size_t cells = rows * static_cast<std::size_t>(options.variables);
    if (std::fwrite(block.data(), sizeof(double), cells, file) != cells) {
      throw std::runtime_error("cannot write the cells");
    }
    done += static_cast<std::int32_t>(rows);
  }
  view.ReopenFile();
}

void TimeCommits(CDataDoc& document, CDataView& view) {
  constexpr int kCommits = 100'000;
  std::mt19937_64 random(5);
  std::vector<double> milliseconds;
  for (int i = 0; i < kCommits; ++i) {
    const TableCell cell{
        static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(document.GetRecnum())),
        static_cast<int>(random() % static_cast<std::uint64_t>(document.GetVarnum()))};
    const std::string text = std::to_string(i) + ".5";
    const bench::CTimer timer;
    if (!view.CommitCell(cell, text)) throw std::runtime_error("a cell was not committed");
    milliseconds.push_back(timer.Seconds() * 1000);
  }
  std::sort(milliseconds.begin(), milliseconds.end());
  std::printf("commit of a cell, anywhere: median %.4f ms, 99 %% below %.4f ms, longest %.4f ms\n",
              milliseconds[kCommits / 2], milliseconds[kCommits * 99 / 100], milliseconds.back());
}

struct Edit {
  const char* name;
  std::function<bool()> run;
};

bench::Seconds Time(const std::function<bool()>& work, std::int64_t bytes, const char* what) {
  bench::Settle(bytes);
  const double before = bench::CpuSeconds(RUSAGE_SELF);
  const bench::CTimer timer;
  if (!work()) throw std::runtime_error(std::string(what) + " failed");
  return {timer.Seconds(), bench::CpuSeconds(RUSAGE_SELF) - before};
}

void TimeEdit(CDataView& view, const Edit& edit, const Options& options) {
  const std::int64_t bytes = std::int64_t{2} * options.records * options.variables * 8;
  const std::string copy = options.folder + "/bench_edit.copy";
  std::vector<bench::Seconds> copies;
  std::vector<bench::Seconds> edits;
  std::vector<bench::Seconds> undos;
  bench::COwnMemory own;
  for (int run = 0; run < options.runs; ++run) {
    copies.push_back(bench::CopyByCp(view.GetScratchFileName(), copy));
    unlink(copy.c_str());
    edits.push_back(Time(edit.run, bytes, edit.name));
    undos.push_back(Time([&] { return view.Undo(); }, bytes, "undo"));
  }
  const bench::Seconds cp = bench::Median(copies);
  const bench::Seconds done = bench::Median(edits);
  const bench::Seconds undone = bench::Median(undos);
  std::printf("%-28s %6.3f (%5.3f) %6.3f (%5.3f) %6.2f %6.3f (%5.3f) %6.2f %10.1f\n", edit.name,
              cp.elapsed, cp.cpu, done.elapsed, done.cpu, done.elapsed / cp.elapsed, undone.elapsed,
              undone.cpu, undone.elapsed / done.elapsed, own.Stop());
}

void Run(const Options& options) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  // The scratch file and the copies lie in the same file system.
  setenv("TMPDIR", options.folder.c_str(), 1);
  CDataDoc document;
  CDataView view(document);
  MakeCells(document, view, options);
  const std::int32_t middle = options.records / 2;
  const std::int32_t column = options.variables / 2;
  std::printf("%d x %d, %.1f MB, %d runs, medians\n", options.records, options.variables,
              8e-6 * options.records * options.variables, options.runs);
  TimeCommits(document, view);
  const Edit edits[] = {
      {"insert a variable", [&] { return view.InsertVariables(column, 1); }},
      {"insert 10 variables at 0", [&] { return view.InsertVariables(0, 10); }},
      {"delete a variable", [&] { return view.DeleteVariables({column}); }},
      {"delete every other variable",
       [&] {
         std::vector<std::int32_t> odd;
         for (std::int32_t i = 1; i < document.GetVarnum(); i += 2) odd.push_back(i);
         return view.DeleteVariables(odd);
       }},
      {"insert 1000 cases", [&] { return view.InsertCases(middle + 1, 1000); }},
      {"insert a case at 0", [&] { return view.InsertCases(0, 1); }},
      {"append 1000 cases", [&] { return view.AppendCases(1000); }},
      {"delete a case", [&] { return view.DeleteCases(middle + 1, middle + 2); }},
      {"delete half of the cases", [&] { return view.DeleteCases(1, middle); }},
      {"sort",
       [&] {
         return view.OnSortCases({column, kSortAscending});
       }},
      {"select every other case", [&] { return view.ApplySelection({"SC CASE ODD"}); }},
      {"select by value", [&] { return view.ApplySelection({"SC 1 2 < 700"}); }},
  };
  std::printf("%-28s %14s %14s %6s %14s %6s %10s\n", "", "cp, s (cpu)", "edit, s (cpu)", "/cp",
              "undo, s (cpu)", "/edit", "own, MiB");
  for (const Edit& edit : edits) TimeEdit(view, edit, options);
}

int Start(int argc, char** argv) {
  Options options;
  CLI::App app("Times edits of a data set against a plain copy of its cells");
  app.add_option("--records", options.records)->check(CLI::Range(10, 100'000'000));
  app.add_option("--variables", options.variables)->check(CLI::Range(2, 32000));
  app.add_option("--folder", options.folder, "where the files are made")
      ->check(CLI::ExistingDirectory);
  app.add_option("--runs", options.runs)->check(CLI::PositiveNumber);
  CLI11_PARSE(app, argc, argv);
  Run(options);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  return bench::Main([&] { return Start(argc, argv); });
}
