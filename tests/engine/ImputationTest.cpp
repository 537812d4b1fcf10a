#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datadoc/VsfReader.h"
#include "engine/EngineData.h"
#include "support/FileSizeLimit.h"
#include "vexutils/BlockIo.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr double kMissing = -999999;

class ImputationTest : public EngineTest {
 protected:
  // 300 cases: x1 to x3 of one factor, an ordinal variable with the values 1, 2 and 5, y of x1, a
  // copy of x1, one that is always missing, one that is never. A tenth of x2, x3 and o is missing,
  // and all of x1 to o in case 10.
  void SetUp() override {
    TORVIKSTRUCT data = Describe({"x1", "x2", "x3", "o", "y", "copy", "none", "full"});
    data.variable[3].type = kOrdinal;
    std::mt19937 random(8);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform;
    for (int i = 0; i < 300; ++i) {
      const double common = normal(random);
      std::vector<double> row;
      for (int j = 0; j < 3; ++j) row.push_back(10 + common + normal(random));
      const double under = common + normal(random);
      row.push_back(under < -.5 ? 1 : under < 1 ? 2 : 5);
      row.push_back(2 + row[0] + normal(random));
      row.push_back(row[0]);
      row.push_back(kMissing);
      row.push_back(std::round(common));
      for (const std::size_t j : {1, 2, 3}) {
        if (uniform(random) < .1) row[j] = kMissing;
      }
      if (i == 9) row[0] = row[1] = row[2] = row[3] = row[5] = kMissing;
      rows.push_back(std::move(row));
    }
    Data(data, rows);
  }

  std::vector<double> Saved(const std::string& name, std::int32_t variables) const {
    VsfContents contents;
    CDescriptor file;
    EXPECT_TRUE(file.OpenForReading(name.c_str())) << name;
    EXPECT_EQ(ReadVsf(file.Get(), contents), VsfStatus::Ok);
    EXPECT_EQ(contents.data.variables, variables);
    std::vector<double> cells(static_cast<std::size_t>(contents.data.variables) *
                              static_cast<std::size_t>(contents.data.records));
    EXPECT_EQ(ReadAt(file.Get(), contents.cellsOffset, cells.data(), cells.size() * 8),
              static_cast<std::int64_t>(cells.size() * 8));
    return cells;
  }

  std::size_t FilesInFolder() const {
    const std::filesystem::directory_iterator files(
        std::filesystem::path(folder / "DATA.VSF").parent_path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }

  std::vector<std::vector<double>> rows;
};

// Observed values stay, missing ones are filled in, ordinal ones by their categories, differently
// in each data set; TC decides about the case without any value.
TEST_F(ImputationTest, WritesCompletedDataSets) {
  const std::string name = folder / "done.vsf";
  for (const int treatment : {0, 1, 2}) {
    ASSERT_EQ(
        Run("SE 1-4\nMC 1-4 IT=30 RP=3 TC=" + std::to_string(treatment) + "\nOU IX=7 RA=" + name),
        ERUNRESULT::Done)
        << Output();
    std::vector<std::vector<double>> sets;
    for (int i = 1; i <= 3; ++i)
      sets.push_back(Saved(folder / ("done_" + std::to_string(i) + ".vsf"), 4));
    for (const auto& cells : sets) {
      ASSERT_EQ(cells.size(), treatment == 0 ? 299U * 4 : 300U * 4);
      for (std::size_t at = 0, i = 0; i < 300; ++i) {
        if (i == 9 && treatment == 0) continue;
        for (std::size_t j = 0; j < 4; ++j, ++at) {
          if (i == 9) {
            EXPECT_EQ(cells[at] == kMissing, treatment == 2);
          } else if (rows[i][j] != kMissing) {
            EXPECT_EQ(cells[at], rows[i][j]);
          } else if (j == 3) {
            EXPECT_TRUE(cells[at] == 1 || cells[at] == 2 || cells[at] == 5) << cells[at];
          } else {
            EXPECT_LT(std::fabs(cells[at] - 10), 8);
          }
        }
      }
    }
    EXPECT_NE(sets[0], sets[1]);
    EXPECT_FALSE(std::filesystem::exists(name));
  }
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("Convergence plot"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("pooled by Rubin's rules"));
  EXPECT_THAT(Output(), Not(HasSubstr("nan")));
  // One data set has the name of RA itself.
  ASSERT_EQ(Run("SE 1-4\nMC 1-4 IT=5\nOU IX=7 RA=" + name), ERUNRESULT::Done);
  EXPECT_EQ(Saved(name, 4).size(), 299U * 4);
}

TEST_F(ImputationTest, GivesTheSameForAnyNumberOfThreads) {
  const std::string lines =
      "MC 1-4 IT=20 RP=3\nRG y ON x1 x2 o\nLO o ON x1\nIMPUTE (x2) (full)\nOU IX=3";
  ASSERT_EQ(Run(lines, 1), ERUNRESULT::Done) << Output();
  const std::string one = Output();
  ASSERT_EQ(Run(lines, 3), ERUNRESULT::Done);
  EXPECT_EQ(Output(), one);
  std::istringstream text(one);
  for (std::string line; std::getline(text, line);) {
    if (!line.starts_with("  Data file:")) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
}

// The number in the column of the row that begins with `row` in the part of the output from
// `heading` on.
double NumberIn(const std::string& output, const std::string& heading, const std::string& row,
                int column) {
  std::istringstream lines(output.substr(std::min(output.find(heading), output.size())));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string word;
    if (!(words >> word) || word != row) continue;
    for (int i = 0; i < column; ++i) words >> word;
    return std::strtod(word.c_str(), nullptr);
  }
  return std::nan("");
}

// The pooled slope is the mean of those of the saved data sets, one run each; the variance between
// them raises the standard error above the mean.
TEST_F(ImputationTest, PoolsRegressionsOfTheDataSets) {
  const std::string name = folder / "m.vsf";
  ASSERT_EQ(Run("MC x1 x2 x3 y IT=40 RP=4\nRG y ON x2 x3\nOU IX=5 WI=12 ND=8 RA=" + name),
            ERUNRESULT::Done)
      << Output();
  const std::string pooled = Output();
  double slopes = 0, squares = 0;
  for (int i = 1; i <= 4; ++i) {
    ASSERT_EQ(RunWhole("SY='" + (folder / ("m_" + std::to_string(i) + ".vsf")) +
                       "'\nRG y ON x2 x3\nOU WI=12 ND=8\n"),
              ERUNRESULT::Done);
    slopes += NumberIn(Output(), "Coefficients", "x2", 1) / 4;
    squares += std::pow(NumberIn(Output(), "Coefficients", "x2", 2), 2) / 4;
  }
  EXPECT_NEAR(NumberIn(pooled, "Pooled estimates", "x2", 1), slopes, 2e-8);
  const double between = NumberIn(pooled, "variance within", "x2", 4);
  EXPECT_NEAR(NumberIn(pooled, "variance within", "x2", 3), squares, 2e-8);
  EXPECT_GT(between, 0);
  EXPECT_NEAR(NumberIn(pooled, "Pooled estimates", "x2", 2), std::sqrt(squares + 1.25 * between),
              2e-8);
}

// Small estimates show two digits of their standard errors in pooled and in bootstrap tables too,
// and pooled ones say what the model was.
TEST_F(ImputationTest, PooledAndSampledEstimatesAreShownAsOthersAre) {
  ASSERT_EQ(Run("NE small = y / 10000\nMC x2 x3 IT=20 RP=3\nRG small ON x2\nPR o ON x2\nOU IX=5"),
            ERUNRESULT::Done)
      << Output();
  EXPECT_GT(NumberIn(Output(), "Pooled estimates", "x2", 2), 1e-6);
  EXPECT_GT(NumberIn(Output(), "variance within", "x2", 3), 1e-12);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("P(y <= category) = F(threshold - x'b)"));
  ASSERT_EQ(Run("NE small = y / 10000\nRG small ON x2\nOU IX=5 BS=20"), ERUNRESULT::Done);
  EXPECT_GT(NumberIn(Output(), "Bootstrap of Regression", "x2", 3), 1e-6);
}

TEST_F(ImputationTest, ExpectedValuesAreNoCategories) {
  ASSERT_EQ(Run("SE x1 o full\nOR full\nEM x1 o full\nOU MA=CM XM XT"), ERUNRESULT::Done)
      << Output();
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("o counts as continuous from here on"));
  const std::string after = Output().substr(Output().find("Variables and missing values"));
  EXPECT_THAT(after, testing::ContainsRegex("  o +continuous +300 "));
  EXPECT_THAT(after, testing::ContainsRegex("  full +ordinal +300 "));
}

TEST_F(ImputationTest, MatchesByTheNearestCases) {
  TORVIKSTRUCT data = Describe({"y", "x", "z"});
  Data(data, {{1, 0, 1},
              {3, 0, 2},
              {kMissing, 0, 3},
              {9, 5, 4},
              {kMissing, 4.9, 5},
              {kMissing, kMissing, 6},
              {20, -7, 7}});
  const std::string name = folder / "out.vsf";
  ASSERT_EQ(Run("IMPUTE (y) (x)\nOU RA=" + name), ERUNRESULT::Done) << Output();
  // 1 and 3 have the variance 2, all donors 71.6; the last case has no matching value.
  const std::vector<double> cells = Saved(name, 3);
  EXPECT_EQ(cells[2 * 3], 2);
  EXPECT_EQ(cells[4 * 3], 9);
  EXPECT_EQ(cells[5 * 3], kMissing);
  EXPECT_NEAR(NumberIn(Output(), "Cases that lack y", "3", 3), 2 / 72.9167, 5e-4);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("a matching value is missing"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("1 missing value was not imputed"));
  ASSERT_EQ(Run("IMPUTE (y) (x) VR=0.01 XN\nOU RA=" + name), ERUNRESULT::Done);
  EXPECT_EQ(Saved(name, 3)[2 * 3], kMissing);
  EXPECT_THAT(Output(), Not(HasSubstr("Cases that lack")));
  EXPECT_THAT(Output(), HasSubstr("Cases with imputed values of y"));
  ASSERT_EQ(Run("IMPUTE (y) (x) XL\nOU RA=" + name), ERUNRESULT::Done);
  EXPECT_THAT(Output(), Not(HasSubstr("Cases with")));
}

TEST_F(ImputationTest, SaysWhatIsWrongAndLeavesNothingBehind) {
  const std::string saved = " RA=" + (folder / "bad.vsf");
  struct {
    std::string lines;
    const char* cause;
  } const cases[] = {
      {"MC x1 x2 none RP=3\nOU", "all values of variable none are missing"},
      {"MC x1 x2 copy RP=3\nOU", "x1 and copy depend on each other"},
      {"SC CASE < 2\nMC x1 x2 RP=3\nOU", "no more cases than variables"},
      {"SC CASE < 4\nMC x1 x2 x3 y RP=3\nOU", "no more cases than variables: 3 cases for 4"},
      {"EM x1 x2 none\nOU", "all values of variable none are missing"},
      {"EM x1 x2 copy\nOU", "x1 and copy depend on each other"},
      {"SC CASE < 2\nEM x1 x2\nOU", "no more cases than variables"},
      {"MC x1 x2 RP=1001\nOU", "expected"},
      {"MC x1 x2 IT=0\nOU", "expected"},
      {"MC x1 x2 TC=3\nOU", "expected"},
      {"MC x1 x2\nOU IX=2147483648", "whole number from -2147483648 to 2147483647 after IX="},
      {"MC x1 x2 RP=2\nMC x3 y RP=2\nOU", "has completed the data already"},
      {"MC x1 x2 RP=2\nRG y ON x1 copy\nOU", "is collinear"},
      {"IMPUTE (none) (x1)\nOU", "all values of variable none are missing"},
      {"IMPUTE (x2) (none)\nOU", "all values of the matching variable none are missing"},
      {"IMPUTE (x2) (x2 x1)\nOU", "stands among the variables to impute and the matching ones"},
      {"SC CASE < 2\nIMPUTE (y) (x1)\nOU", "one case has a value of the matching variable x1"},
      {"RC y OLD=LO-HI NEW=1\nIMPUTE (x2) (y)\nOU", "nothing can be matched on variable y"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.lines + (c.lines.ends_with("OU") ? saved : CString())), ERUNRESULT::Failed)
        << c.lines;
    EXPECT_THAT(UnwrappedOutput(), HasSubstr(c.cause)) << c.lines;
    EXPECT_THAT(UnwrappedOutput(), HasSubstr("Remedy:")) << c.lines;
    EXPECT_EQ(FilesInFolder(), 3U) << c.lines;  // data, syntax, output
  }
}

// The disk is full before the data sets are whole: none is left, and an old one stays as it was.
TEST_F(ImputationTest, LeavesNoHalfFilesOnAFullDisk) {
  WriteBytes(folder / "full_2.vsf", "old");
  {
    const FileSizeLimit limit(9000);
    EXPECT_EQ(Run("SE 1-4\nMC 1-4 IT=3 RP=3\nOU RA=" + (folder / "full.vsf")), ERUNRESULT::Failed);
  }
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("full_1.vsf) cannot be written"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("Make room on the disk"));
  EXPECT_EQ(ReadBytes(folder / "full_2.vsf"), "old");
  EXPECT_EQ(FilesInFolder(), 4U);
}

TEST_F(ImputationTest, TellsThatEmHasNotConverged) {
  ASSERT_EQ(Run("MC 1-4 IT=2 CC=0.0000001\nOU IX=1"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(UnwrappedOutput(),
              testing::ContainsRegex("EM has not converged in 2 iterations: the last one changed a "
                                     "mean or covariance by 0\\.[0-9]+ standard deviations"));
}

}  // namespace
