#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/run/Interrupt.h"
#include "support/FileSizeLimit.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class BootstrapTest : public EngineTest {
 protected:
  static constexpr int kCases = 300;

  // x1 to x4 of one factor, y of x1 and x2, two ordinal variables with four categories and one with
  // two, y censored below, one that differs in a single case, a weight.
  void SetUp() override {
    description = Describe({"x1", "x2", "x3", "x4", "y", "o1", "o2", "two", "floor", "rare", "w"});
    for (const std::size_t ordinal : {5, 6, 7}) description.variable[ordinal].type = kOrdinal;
    description.variable[8].type = kCensoredBelow;
    std::mt19937 random(29);
    std::normal_distribution<double> normal;
    for (int i = 0; i < kCases; ++i) {
      const double common = normal(random);
      std::vector<double> row;
      for (int j = 0; j < 4; ++j) row.push_back(common + normal(random));
      const auto category = [&] {
        return 1 + std::floor(std::clamp(common + normal(random), -1.9, 1.9) + 2);
      };
      row.push_back(2 + row[0] - .5 * row[1] + normal(random));
      row.push_back(category());
      row.push_back(category());
      row.push_back(common + normal(random) > 0 ? 1 : 0);
      row.push_back(std::max(row[4], 1.5));
      row.push_back(i == 7 ? 1 : 0);
      row.push_back(i % 3);
      rows.push_back(std::move(row));
    }
    rows[5][0] = -999999;
    Data(description, rows);
  }

  std::vector<double> Numbers(const std::string& name) const {
    std::istringstream text(ReadBytes(folder / name));
    std::vector<double> numbers;
    for (double x = 0; text >> x;) numbers.push_back(x);
    return numbers;
  }

  // The numbers of a table's row that begins so, the last such row of the output.
  std::vector<double> Row(const std::string& name) const {
    std::istringstream lines(Output());
    std::vector<double> numbers;
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("  " + name + "  ")) continue;
      std::istringstream words(line.substr(name.size() + 2));
      numbers.clear();
      for (double x = 0; words >> x;) numbers.push_back(x);
    }
    return numbers;
  }

  std::string Name(const char* name) const { return folder / name; }

  TORVIKSTRUCT description;
  std::vector<std::vector<double>> rows;
};

TEST_F(BootstrapTest, SavesABlockForEverySample) {
  ASSERT_EQ(Run("SE x1 o1 y two\nOU MA=AM BS=40 IX=3 BM=" + Name("bm") + " ME=" + Name("me") +
                " SD=" + Name("sd")),
            ERUNRESULT::Done)
      << Output();
  const auto matrices = Numbers("bm"), means = Numbers("me"), deviations = Numbers("sd");
  ASSERT_EQ(matrices.size(), 40U * 15);
  ASSERT_EQ(means.size(), 40U * 4);
  ASSERT_EQ(deviations.size(), 40U * 4);
  const double n = kCases - 1;  // one is incomplete
  for (std::size_t s = 0; s < 40; ++s) {
    const double* const m = &matrices[s * 15];
    // The last row holds the means; a moment about zero is the variance and the squared mean.
    for (std::size_t j = 0; j < 4; ++j) EXPECT_EQ(m[10 + j], means[s * 4 + j]);
    EXPECT_EQ(m[14], 1);
    const double mean = means[s * 4], deviation = deviations[s * 4];
    EXPECT_NEAR(m[0], deviation * deviation * (n - 1) / n + mean * mean, 1e-9);
    EXPECT_EQ(m[2], 1);
    EXPECT_EQ(means[s * 4 + 1], 0);
  }
  EXPECT_NE(means[0], means[4]);
}

TEST_F(BootstrapTest, DependsOnTheSeedAndNotOnTheThreads) {
  const std::string lines =
      "SE x1-x4 o1 o2\nFA NF=1\nPR o1 ON x1\nRG y ON x1 x2\nOU MA=KM BS=25 BM=" + Name("bm");
  ASSERT_EQ(Run(lines + " IX=3"), ERUNRESULT::Done) << Output();
  const std::string output = Output(), matrices = ReadBytes(folder / "bm");
  for (const int threads : {2, 3}) {
    ASSERT_EQ(Run(lines + " IX=3", threads), ERUNRESULT::Done);
    EXPECT_EQ(Output(), output);
    EXPECT_EQ(ReadBytes(folder / "bm"), matrices);
  }
  ASSERT_EQ(Run(lines + " IX=4"), ERUNRESULT::Done);
  EXPECT_NE(ReadBytes(folder / "bm"), matrices);
  // Each repetition has samples of its own.
  ASSERT_EQ(Run(lines + " IX=3 RP=2"), ERUNRESULT::Done);
  const std::string both = ReadBytes(folder / "bm");
  EXPECT_EQ(both.substr(0, matrices.size()), matrices);
  EXPECT_NE(both.substr(matrices.size()), matrices);
}

TEST_F(BootstrapTest, StandardErrorsAgreeWithTheory) {
  constexpr double kMonteCarlo = 6 / 28.0;  // six standard errors of one from 400 samples
  ASSERT_EQ(Run("RG y ON x1 x2\nOU BS=400 IX=11 WP ME=" + Name("me")), ERUNRESULT::Done)
      << Output();
  std::istringstream lines(Output());
  std::vector<double> classical;  // "x1  estimate  s.e. ..." of the regression's own table
  for (std::string line; classical.empty() && std::getline(lines, line);) {
    if (!line.starts_with("  x1  ")) continue;
    std::istringstream words(line.substr(4));
    for (double x = 0; words >> x;) classical.push_back(x);
  }
  ASSERT_GE(classical.size(), 2U);
  double sum = 0, squares = 0;
  for (const auto& row : rows) {
    sum += row[4];
    squares += row[4] * row[4];
  }
  const double mean = sum / kCases;
  const double error = std::sqrt((squares / kCases - mean * mean) / kCases);
  const std::string output = Output();
  EXPECT_THAT(output, HasSubstr("Bootstrap of Regression (RG)"));
  const auto at = output.find("Bootstrap of Regression");
  std::istringstream behind(output.substr(at));
  std::vector<double> sampled;
  for (std::string line; sampled.empty() && std::getline(behind, line);) {
    if (!line.starts_with("  x1  ")) continue;
    std::istringstream words(line.substr(4));
    for (double x = 0; words >> x;) sampled.push_back(x);
  }
  ASSERT_EQ(sampled.size(), 7U);
  EXPECT_NEAR(sampled[0], classical[0], 1e-3);
  EXPECT_NEAR(sampled[2], classical[1], kMonteCarlo * classical[1]);
  EXPECT_LT(sampled[3], sampled[0]);
  EXPECT_GT(sampled[4], sampled[0]);
  // Means of y: every fifth number of each block of eleven variables.
  const auto means = Numbers("me");
  double spread = 0;
  const std::size_t width = means.size() / 400;
  for (std::size_t s = 0; s < 400; ++s) {
    spread += (means[s * width + 4] - mean) * (means[s * width + 4] - mean);
  }
  EXPECT_NEAR(std::sqrt(spread / 400), error, kMonteCarlo * error + .002);
}

TEST_F(BootstrapTest, WeightsAndFractionsSetTheSizeOfASample) {
  description.weightVariable = 11;
  Data(description, rows);
  ASSERT_EQ(Run("SE x2 y\nOU BS=30 IX=1 SF=50"), ERUNRESULT::Done) << Output();
  // Weights 0, 1 and 2, a hundred times each.
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("Cases to draw from 300"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("drawn with replacement 150"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("multiplied by the root of 150 / 300"));
}

TEST_F(BootstrapTest, SamplesEveryProcedureWithEstimates) {
  struct {
    const char* lines;
    const char* title;
    const char* row;  // of an estimate
  } const cases[] = {
      {"SE x1-x4\nFA", "Exploratory factor analysis (FA)", "x1 on Factor 1"},
      {"SE x1-x4\nPC KM", "Principal component analysis (PC)", "x2 on PC1"},
      {"RG y ON x1 x2", "Regression (RG)", "(Intercept)"},
      {"TS y ON x1 WITH x3 x4", "Two-stage least squares (TS)", "x1"},
      {"PR o1 ON x1 x2", "Probit regression (PR)", "Threshold 1 | 2"},
      {"LO two ON x1 AP", "Logistic regression (LO)", "(Intercept)"},
      {"CR floor ON x1 x2", "Censored regression (CR)", "(Intercept)"},
      {"EM x1 x2 x3", "Multiple imputation by EM (EM)", "x2,x1"},
      {"MT o1", "Marginal thresholds (MT)", "2 | 3"},
      {"ET o1 o2", "Equal thresholds test (ET)", "2 | 3"},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(Run(std::string(c.lines) + "\nOU BS=60 IX=2"), ERUNRESULT::Done) << Output();
    EXPECT_THAT(Output(), HasSubstr(CString("Bootstrap of ") + c.title)) << c.lines;
    const auto row = Row(c.row);
    ASSERT_EQ(row.size(), 7U) << c.lines << Output();
    // A standard error of a loading whose sign were left to chance would be that of the loading.
    EXPECT_GT(row[2], .005) << c.lines;
    EXPECT_LT(row[2], .4) << c.lines;
    EXPECT_LT(row[3], row[4]) << c.lines;
  }
  ASSERT_EQ(Run("HT o1 o2\nOU BS=5"), ERUNRESULT::Done);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("has no estimates that BS would sample"));
}

TEST_F(BootstrapTest, CountsSamplesWithoutEstimates) {
  // "rare" is constant in about 37 samples of 100.
  ASSERT_EQ(Run("SE x2 rare\nOU MA=KM BS=100 IX=5 BM=" + Name("bm")), ERUNRESULT::Done) << Output();
  const auto matrices = Numbers("bm");
  ASSERT_EQ(matrices.size(), 300U);
  int without = 0;
  for (std::size_t s = 0; s < 100; ++s) {
    const bool missing = matrices[s * 3] == -999999;
    without += missing ? 1 : 0;
    EXPECT_EQ(matrices[s * 3 + 1] == -999999, missing);
  }
  EXPECT_GT(without, 15);
  EXPECT_LT(without, 60);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr(std::to_string(without) +
                                           " of 100 samples have no estimates and are left out"));
  EXPECT_THAT(Output(), Not(HasSubstr("nan")));
}

TEST_F(BootstrapTest, SaysWhatIsWrongWithBadInput) {
  struct {
    const char* lines;
    const char* cause;
  } const cases[] = {
      {"OU BS=0", "from 1 to 2147483647 after BS=, found \"0\""},
      {"OU BS=-3", "after BS=, found"},
      {"OU BS=ten", "after BS=, found"},
      {"OU BS=10 SF=0", "from 1 to 100 after SF=, found"},
      {"OU BS=10 SF=101", "from 1 to 100 after SF=, found"},
      {"OU BS=10 IX=2147483648", "after IX=, found"},
      {"OU BS=10 RP=0", "after RP=, found"},
      {"OU BS=10 BM=bm", "BM saves the matrix of MA"},
      {"OU MA=KM BM=bm", "BM belongs to bootstrapping"},
      {"SE o1 o2\nOU BS=10", "BS has nothing to compute"},
      {"SE x1-x4\nOU MA=KM BS=2147483647", "MB of memory"},
      {"SC CASE < 2\nSE x2 y\nOU BS=10", "too"},
      {"SC CASE < 3\nSE y\nOU MA=KM SF=1 BS=10", "no sample has estimates"},
      {"SE x2 y\nSC x2 > 1000\nOU BS=10", "no case is selected"},
  };
  for (const auto& c : cases) {
    const std::size_t before = folder.FileCount();
    EXPECT_EQ(Run(c.lines), ERUNRESULT::Failed) << c.lines;
    const std::string output = UnwrappedOutput();
    EXPECT_THAT(output, HasSubstr(c.cause)) << c.lines;
    EXPECT_THAT(output, Not(HasSubstr("nan"))) << c.lines;
    EXPECT_LE(folder.FileCount(), before + 2) << c.lines;
  }
}

TEST_F(BootstrapTest, AFullDiskLeavesNoHalfFiles) {
  WriteBytes(folder / "me", "old");
  {
    const FileSizeLimit limit(64 << 10);
    EXPECT_EQ(Run("SE x1-x4 y\nOU MA=CM BS=2000 IX=1 BM=" + Name("bm") + " ME=" + Name("me")),
              ERUNRESULT::Failed);
  }
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("cannot be written: File too large"));
  EXPECT_FALSE(std::filesystem::exists(folder / "bm"));
  EXPECT_EQ(ReadBytes(folder / "me"), "old");
  EXPECT_EQ(folder.FileCount(), 4U);  // data, syntax, output, me
}

// Eight items of two factors that are correlated and equally strong, cut into three categories. The
// loadings of a factor add up to nearly 0: left to chance, the factors of a sample would have any
// order and any signs.
class FactorSamplesTest : public EngineTest {
 protected:
  static constexpr int kItems = 8;

  void SetUp() override {
    std::vector<std::string> names;
    for (int j = 1; j <= kItems; ++j) names.push_back("i" + std::to_string(j));
    std::mt19937 random(31);
    std::normal_distribution<double> normal;
    std::vector<std::vector<double>> rows(400);
    for (auto& row : rows) {
      const double first = normal(random), second = .4 * first + std::sqrt(.84) * normal(random);
      for (int j = 0; j < kItems; ++j) {
        const double y = (j % 2 == 0 ? .8 : -.8) * (j < 4 ? first : second) + .6 * normal(random);
        row.push_back(y < -.5 ? 1 : y < .6 ? 2 : 3);
      }
    }
    Data(Describe(names, kOrdinal), rows);
  }

  // The numbers of the row that begins so in the table below the first line that begins so.
  std::vector<double> Row(const std::string& heading, const std::string& name) const {
    const std::string output = Output();
    const std::size_t table = output.find("\n  " + heading);
    const std::size_t row = output.find("\n  " + name + "  ", table);
    EXPECT_NE(table, std::string::npos) << heading;
    EXPECT_NE(row, std::string::npos) << name;
    std::vector<double> numbers;
    if (row == std::string::npos || table == std::string::npos) return numbers;
    std::istringstream words(output.substr(row + name.size() + 3));
    for (double x = 0; words >> x;) numbers.push_back(x);
    return numbers;
  }
};

TEST_F(FactorSamplesTest, RotatedLoadingsAndTheirCorrelationsKeepOrderAndSigns) {
  struct {
    const char* line;
    int samples;
    bool errors;  // does the analysis print standard errors to compare with?
  } const cases[] = {
      {"FA NF=2", 60, false}, {"OFA NOR NF=2", 16, true}, {"OFA POM NF=2", 10, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    ASSERT_EQ(
        Run(std::string(c.line) + "\nOU WP ND=4 WI=12 IX=4 BS=" + std::to_string(c.samples), 2),
        ERUNRESULT::Done)
        << Output();
    double sampled = 0, asymptotic = 0;
    for (const char* const rotation : {"VARIMAX", "PROMAX"}) {
      const std::string heading = std::string(rotation) + "-rotated loadings (";
      for (int i = 1; i <= kItems; ++i) {
        const std::string item = "i" + std::to_string(i);
        const auto loadings = Row(heading, item);
        ASSERT_GE(loadings.size(), 2U);
        for (int f = 0; f < 2; ++f) {
          const auto row = Row(heading + "order", item + " on Factor " + std::to_string(f + 1));
          ASSERT_EQ(row.size(), 7U);
          EXPECT_EQ(row[0], loadings[static_cast<std::size_t>(f)]);
          // Of a loading whose sign or place were left to chance it would be about .8.
          EXPECT_GT(row[2], .01);
          EXPECT_LT(row[2], .12);
          EXPECT_LT(row[3], row[4]);
          EXPECT_LT(row[5], row[6]);
          if (!c.errors || heading[0] != 'V') continue;
          sampled += row[2];
          asymptotic += Row("Standard errors of the VARIMAX-rotated loadings", item)
                            .at(static_cast<std::size_t>(f));
        }
      }
    }
    if (c.errors) {
      EXPECT_NEAR(sampled / asymptotic, 1, .25);
    }
    const auto correlation = Row("Correlations of the PROMAX factors", "Factor 2");
    ASSERT_EQ(correlation.size(), 2U);
    const auto row = Row("Correlations of the PROMAX factors", "Factor 2,Factor 1");
    ASSERT_EQ(row.size(), 7U);
    EXPECT_EQ(row[0], correlation[0]);
    EXPECT_GT(row[2], .02);
    EXPECT_LT(row[2], .15);
  }
}

}  // namespace
