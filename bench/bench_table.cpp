// The data window's grid on a large system data file: how long a row request takes, how long the
// grid takes to show another place, and what memory it needs for that.
//
//   bench_table [--records N] [--variables N] [--folder FOLDER]
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "dataview/table/DataGrid.h"
#include "dataview/table/DataViewTbl.h"

namespace {

struct Options {
  std::string folder = ".";
  std::int32_t records = 2'000'000;
  std::int32_t variables = 100;
};

void MakeFile(const std::string& name, const Options& options) {
  TORVIKSTRUCT data;
  data.records = options.records;
  data.variables = options.variables;
  data.ResizeArrays(static_cast<std::size_t>(options.variables));
  std::ofstream file(name, std::ios::binary);
  const CString head = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  file.write(head.data(), static_cast<std::streamsize>(head.size()));
  std::vector<double> record(static_cast<std::size_t>(options.variables));
  for (std::int32_t i = 0; i < options.records; ++i) {
    for (std::size_t v = 0; v < record.size(); ++v) record[v] = i + static_cast<double>(v) / 100;
    file.write(reinterpret_cast<const char*>(record.data()),
               static_cast<std::streamsize>(record.size() * sizeof(double)));
  }
  if (!file) throw std::runtime_error("cannot write " + name);
}

double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return taken.count();
}

// Median, 99th percentile and the longest.
void Report(const char* what, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  std::printf("%-34s median %8.4f ms   99 %% below %8.4f ms   longest %8.4f ms\n", what,
              times[times.size() / 2], times[times.size() * 99 / 100], times.back());
}

double ResidentMebibytes() {
  long size = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

void Measure(CDataDoc& document, CDataView& view, const std::string& name) {
  constexpr int kRequests = 100'000;
  constexpr int kScreens = 2'000;
  CDataViewTbl table;
  view.AttachTable(&table);
  table.resize(1100, 700);
  table.show();
  QApplication::processEvents();
  const double before = ResidentMebibytes();
  const double opened = Milliseconds([&] { document.OnOpenDocument(name); });
  table.grab();
  const double after = ResidentMebibytes();
  std::printf("opened in %.0f ms, %d rows of the model\n", opened,
              table.Grid().model()->rowCount());

  std::mt19937_64 random(7);
  std::uniform_int_distribution<std::int64_t> anyRow(0, document.GetRecnum() - 1);
  std::vector<double> values(static_cast<std::size_t>(document.GetVarnum()));
  std::vector<double> requests;
  for (int i = 0; i < kRequests; ++i) {
    const std::int64_t row = anyRow(random);
    requests.push_back(Milliseconds([&] { view.GetRow(row, values); }));
  }
  Report("one row, anywhere", requests);

  std::vector<double> screens;
  for (int i = 0; i < kScreens; ++i) {
    const TableCell cell{anyRow(random), 0};
    screens.push_back(Milliseconds([&] {
      table.SetCurrentCell(cell);
      table.grab();
    }));
  }
  Report("a screen of rows drawn, anywhere", screens);
  std::printf("memory: %.1f MiB before opening, %.1f after, %.1f at the end\n", before, after,
              ResidentMebibytes());
  view.AttachTable(nullptr);
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  CLI::App parser("Times the grid on a large data set");
  parser.add_option("--records", options.records)->check(CLI::PositiveNumber);
  parser.add_option("--variables", options.variables)->check(CLI::Range(1, 32767));
  parser.add_option("--folder", options.folder, "where the file is made")
      ->check(CLI::ExistingDirectory);
  CLI11_PARSE(parser, argc, argv);

  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const std::string name = options.folder + "/bench_table.VSF";
  MakeFile(name, options);
  {
    CDataDoc document;
    CDataView view(document);
    Measure(document, view, name);
  }
  std::filesystem::remove(name);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
