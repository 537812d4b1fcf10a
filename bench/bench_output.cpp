// The output window on a long output: opening, drawing and finding, beside reading the file and
// beside the toolkit's own editor of plain text.
//
//   bench_output [--lines N] [--folder FOLDER]
#include <QApplication>
#include <QFile>
#include <QPlainTextEdit>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include "vexapp/OutputView.h"

namespace {

void MakeFile(const std::string& name, long lines) {
  std::ofstream file(name);
  char line[100];
  for (long i = 1; i <= lines; ++i) {
    std::snprintf(line, sizeof line, "  A%-8ld  education  2236  %11.3f  0.024  %8.3f  19  0.362\n",
                  i, static_cast<double>(i) / 1000, static_cast<double>(i % 977));
    file << line;
  }
  if (!file) throw std::runtime_error("cannot write " + name);
}

double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return taken.count();
}

double ResidentMebibytes() {
  long size = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

void Measure(const std::string& name, long lines) {
  QByteArray bytes;
  const double floor = Milliseconds([&] {
    QFile file(QString::fromStdString(name));
    if (file.open(QIODevice::ReadOnly)) bytes = file.readAll();
  });
  std::printf("%ld lines, %.0f MB; reading them takes %.0f ms\n", lines,
              static_cast<double>(bytes.size()) / 1e6, floor);
  double before = ResidentMebibytes();
  {
    COutputView view;
    view.resize(1000, 700);
    view.show();
    const double opened = Milliseconds([&] {
      COutputText text;
      CString reason;
      if (!text.Read(name, reason)) throw std::runtime_error(reason);
      view.ShowText(std::move(text), false);
      view.grab();
    });
    const double end = Milliseconds([&] {
      view.ScrollTo(lines);
      view.grab();
    });
    const QString last = QString("A%1 ").arg(lines);
    const double found = Milliseconds([&] { view.Find(last, false, true); });
    std::printf(
        "output window: open and draw %.0f ms (%.1f times reading), draw the end %.1f ms, "
        "find there from the top %.0f ms, %.0f MiB\n",
        opened, opened / floor, end, found, ResidentMebibytes() - before);
  }
  before = ResidentMebibytes();
  QPlainTextEdit edit;
  edit.resize(1000, 700);
  edit.show();
  const double plain = Milliseconds([&] {
    edit.setPlainText(QString::fromUtf8(bytes));
    edit.grab();
  });
  std::printf("plain editor: open and draw %.0f ms (%.1f times reading), %.0f MiB\n", plain,
              plain / floor, ResidentMebibytes() - before);
}

}  // namespace

int main(int argc, char** argv) try {
  std::string folder = ".";
  long lines = 1'000'000;
  CLI::App parser("Times the output window on a long output");
  parser.add_option("--lines", lines)->check(CLI::PositiveNumber);
  parser.add_option("--folder", folder, "where the file is made")->check(CLI::ExistingDirectory);
  CLI11_PARSE(parser, argc, argv);

  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const std::string name = folder + "/bench_output.OUT";
  MakeFile(name, lines);
  Measure(name, lines);
  std::filesystem::remove(name);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
