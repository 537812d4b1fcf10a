// Files of other programs become system data files; the figures are those programs' own.
#include <cmath>
#include <numeric>

#include "support/RealData.h"
#include "transfer/ImportedColumns.h"

class ImportRealFiles : public RealDataTest {
 protected:
  std::vector<std::vector<double>> Columns(const std::string& file) {
    return imported.Import(RealFile(file));
  }
  static double Mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
  }
  ImportedColumns imported;
};

TEST_F(ImportRealFiles, TheSurveyIsTheSameFromEveryFormat) {
  for (const char* file : {"spss/bfi.sav", "stata/bfi.dta"}) {
    const auto columns = Columns(file);
    ASSERT_EQ(columns.size(), 28U) << file;
    EXPECT_EQ(imported.cases, 2800);
    std::size_t present = 0;
    for (const auto& column : columns) present += column.size();
    EXPECT_EQ(2800U * 28 - present, 731U) << file;
    EXPECT_NEAR(Mean(columns[27]), 28.78214, 5e-6) << file;
    EXPECT_NEAR(Mean(columns[0]), 2.413434, 5e-7) << file;
    EXPECT_EQ(columns[26].size(), 2800U - 223) << file;
  }
}

TEST_F(ImportRealFiles, MeansAndMissingValuesAgree) {
  const struct {
    const char* file;
    std::size_t column;
    std::int32_t records;
    std::size_t missing;
    double mean;
    double tolerance;
  } cases[] = {
      {"spss/electric.sav", 2, 240, 0, 47.8, 0.05},
      {"spss/hebrews.sav", 0, 99, 0, 18.53535, 5e-6},
      {"stata/auto8.dta", 1, 74, 0, 6165.257, 5e-4},
      {"sas/airline.sas7bdat", 1, 32, 0, 10.05019, 5e-6},
      {"xport/Alfalfa.xpt", 3, 40, 0, 56.075, 5e-4},
  };
  for (const auto& c : cases) {
    const auto columns = Columns(c.file);
    EXPECT_EQ(imported.cases, c.records) << c.file;
    double nearest =
        1e300;  // the column is told by its mean: files differ in the order of their columns
    for (const auto& column : columns) {
      if (column.size() + c.missing == static_cast<std::size_t>(c.records)) {
        nearest = std::min(nearest, std::fabs(Mean(column) - c.mean));
      }
    }
    EXPECT_LE(nearest, c.tolerance) << c.file;
  }
}

TEST_F(ImportRealFiles, UserMissingValuesAreMissing) {
  const std::size_t expected[] = {0, 5, 13, 30, 30, 30, 30, 33, 33, 33};
  const auto columns = Columns("spss/mval_bug.sav");
  ASSERT_EQ(columns.size(), 10U);
  for (std::size_t c = 0; c < columns.size(); ++c)
    EXPECT_EQ(600 - columns[c].size(), expected[c]) << c;
  const auto tagged = Columns("stata/tagged-na-double.dta");
  EXPECT_EQ(tagged[0], (std::vector<double>{1, 2, 3, 4, 5}));
}
