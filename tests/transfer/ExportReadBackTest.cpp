// Exported files as other programs read them, where they are installed: R's foreign, which shares
// nothing with the library that writes, and pspp-convert for what R does not read (packed
// files, and portable ones with an empty list of documents).
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>

#include "datadoc/DocumentFixture.h"

class ExportReadBack : public DocumentTest {
 protected:
  static bool Runs(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
  }
  // The cells of a file as R's foreign reads them by `reader`; empty when R is not there.
  std::vector<double> ReadByR(const std::string& reader, const std::string& file) {
    const std::string result = folder / "cells.bin";
    const std::string script = "d <- foreign::" + reader +
                               "; m <- t(as.matrix(as.data.frame(d))); m[is.na(m)] <- -999999;"
                               "writeBin(as.double(m), \"" +
                               result + "\")";
    std::ofstream(folder / "read.R") << "f <- \"" << file << "\"\n" << script << '\n';
    if (!Runs("Rscript " + (folder / "read.R"))) return {};
    const std::string bytes = ReadBytes(result);
    std::vector<double> cells(bytes.size() / sizeof(double));
    std::memcpy(cells.data(), bytes.data(), cells.size() * sizeof(double));
    return cells;
  }
};

TEST_F(ExportReadBack, OtherProgramsFindTheSameNumbers) {
  if (!Runs("Rscript -e 'library(foreign)'")) GTEST_SKIP() << "R with foreign is not installed";
  std::mt19937 random(3);
  std::vector<std::vector<double>> rows;
  for (int i = 0; i < 500; ++i) {
    const double number = static_cast<double>(random()) / 4096 - 1e5;
    rows.push_back({static_cast<double>(i), i % 7 == 0 ? kMissingCode : number, number / 3});
  }
  Fill(rows);
  const std::string spss = "read.spss(f, use.value.labels = FALSE)";
  const struct {
    const char* file;
    int type;
    std::string reader;
    double tolerance;  // relative; of forms that hold other numbers than doubles
  } cases[] = {{"out.sav", 22, spss, 0},
               {"out.por", 13, spss, 1e-9},
               {"out.xpt", 12, "read.xport(f)", 0},
               {"out.zsav", 22, spss, 0}};
  for (const auto& c : cases) {
    CString file = folder / c.file;
    int type = c.type;
    ASSERT_EQ(document.Export("/data/x.VSF", file, type), STUtils::eOK) << host.LastMessage();
    if (file.ends_with(".zsav") || file.ends_with(".por")) {
      const std::string plain = folder / "plain.sav";
      if (!Runs("pspp-convert " + file + " " + plain)) continue;
      file = plain;
    }
    const std::vector<double> cells = ReadByR(c.reader, file);
    ASSERT_EQ(cells.size(), rows.size() * 3) << c.file;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const double expected = rows[i / 3][i % 3];
      ASSERT_NEAR(cells[i], expected, std::abs(expected) * c.tolerance) << c.file << ' ' << i;
    }
  }
}
