#include <cmath>
#include <fstream>
#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datadoc/VsfReader.h"
#include "engine/EngineData.h"
#include "vexutils/BlockIo.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class ProceduresTest : public EngineTest {
 protected:
  // 400 cases: x1 to x4 of one factor, y of x1 and x2, two ordinal variables with four categories,
  // one with two, y censored below, a constant, x1 + x2.
  void SetUp() override {
    TORVIKSTRUCT data =
        Describe({"x1", "x2", "x3", "x4", "y", "o1", "o2", "two", "floor", "same", "sum", "sign"});
    for (const std::size_t ordinal : {5, 6, 7, 11}) data.variable[ordinal].type = kOrdinal;
    data.variable[8].type = kCensoredBelow;
    std::mt19937 random(17);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 400; ++i) {
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
      row.push_back(7);
      row.push_back(row[0] + row[1]);
      row.push_back(row[2] > 0 ? 1 : 0);
      rows.push_back(std::move(row));
    }
    rows[5][0] = -999999;
    Data(data, rows);
    description = data;
  }

  // The variables of a saved data file, case after case.
  std::vector<double> Saved(const std::string& name, VsfContents& contents) const {
    CDescriptor file;
    EXPECT_TRUE(file.OpenForReading(name.c_str()));
    EXPECT_EQ(ReadVsf(file.Get(), contents), VsfStatus::Ok);
    std::vector<double> cells(static_cast<std::size_t>(contents.data.variables) *
                              static_cast<std::size_t>(contents.data.records));
    EXPECT_EQ(ReadAt(file.Get(), contents.cellsOffset, cells.data(), cells.size() * 8),
              static_cast<std::int64_t>(cells.size() * 8));
    return cells;
  }

  std::vector<std::vector<double>> rows;
  TORVIKSTRUCT description;
};

const char* const kAll =
    "SE 1-4 6 7\nFA NF=1\nPC KM\nRG y ON x1 x2 x3\nTS y ON x1 x2 WITH x2 x3 x4\n"
    "PR o1 two ON x1 x2\nLO o1 two ON x1 x2 AP\nCR floor ON x1 x2\nHT o1 o2\nET o1 o2\n"
    "MT o1 two\nPR o1 two ON x1 x2\nNS x1 o1\nMT o2\nOU IX=3";

TEST_F(ProceduresTest, AllRunTogetherWithinThePageForAnyNumberOfThreads) {
  ASSERT_EQ(Run(kAll), ERUNRESULT::Done) << Output();
  const std::string output = Output();
  for (const char* part :
       {"Exploratory factor analysis", "Principal components of the correlation matrix",
        "Regression of y on x1, x2 and x3", "Two-stage least squares: y on x1 and x2",
        "Probit regression of two on x1 and x2", "Logistic regression of o1 on x1 and x2",
        "Censored regression of floor on x1 and x2", "Homogeneity test for o1 and o2",
        "Equal thresholds of o1 and o2", "Normal scores", "Marginal thresholds",
        "End of the run."}) {
    EXPECT_THAT(output, HasSubstr(part));
  }
  EXPECT_THAT(output, Not(HasSubstr("nan")));
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("  Data file:")) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
  ASSERT_EQ(Run(kAll, 2), ERUNRESULT::Done);
  EXPECT_EQ(Output(), output);
}

TEST_F(ProceduresTest, OrdinalFactorsAreTheSameForAnyNumberOfThreadsAndScoreEveryCase) {
  rows[7][5] = rows[7][6] = rows[7][7] = rows[7][11] = -999999;
  rows[8][5] = -999999;
  Data(description, rows);
  const std::string saved = folder / "scores.VSF";
  const std::string lines = "SE o1 o2 two sign\nOFA NOR NF=1\nOFA POM\nOU RA=" + saved;
  ASSERT_EQ(Run(lines), ERUNRESULT::Done) << Output();
  const std::string output = Output();
  for (const char* part : {"normal ogive", "proportional odds", "Standard errors of the slopes",
                           "Unrotated loadings", "Convergence", "Akaike", "Reliability",
                           "Cases with all values missing 1", "End of the run."}) {
    EXPECT_THAT(UnwrappedOutput(), HasSubstr(part));
  }
  EXPECT_THAT(output, Not(HasSubstr("nan")));
  std::istringstream text(output);
  for (std::string line; std::getline(text, line);) {
    if (!line.starts_with("  Data file:")) {
      EXPECT_LE(line.size(), 80U) << line;
    }
  }
  VsfContents contents;
  const std::vector<double> cells = Saved(saved, contents);
  const auto width = static_cast<std::size_t>(contents.data.variables);
  ASSERT_EQ(width, 6U);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(cells[i * width + 4] == -999999, i == 7) << i;
    EXPECT_EQ(cells[i * width + 5] == -999999, i == 7) << i;
  }
  ASSERT_EQ(Run(lines, 2), ERUNRESULT::Done);
  EXPECT_EQ(Output(), output);
  EXPECT_EQ(Saved(saved, contents), cells);
  ASSERT_EQ(Run("SC CASE EVEN\nSE o1 o2 two sign\nOFA NOR NF=1\nOU"), ERUNRESULT::Done);
  EXPECT_THAT(UnwrappedOutput(),
              HasSubstr("Left out by the selection " + std::to_string((rows.size() + 1) / 2)));
}

// `floor` is y cut off at 1.5.
TEST_F(ProceduresTest, CensoredVariablesHaveTheMomentsOfWhatIsBehindThem) {
  const auto numbers = [this](const std::string& name) {
    std::ifstream file(folder / name);
    std::vector<double> all;
    for (double x; file >> x;) all.push_back(x);
    return all;
  };
  const auto moments = [&](const std::string& last) {
    const std::string lines = "SE x2 o1 x3 " + last + "\nOU MA=CM PV SM=" + (folder / "m.txt") +
                              " ME=" + (folder / "e.txt") + " SD=" + (folder / "d.txt") +
                              " AC=" + (folder / "a.bin") + " AV=" + (folder / "v.bin");
    EXPECT_EQ(Run(lines), ERUNRESULT::Done) << Output();
    std::vector<double> all = numbers("m.txt");
    all.push_back(numbers("e.txt").back());
    all.push_back(numbers("d.txt").back());
    return all;
  };
  const std::vector<double> whole = moments("y"), cut = moments("floor");
  ASSERT_EQ(cut.size(), 12U);
  for (std::size_t k = 0; k < cut.size(); ++k)
    EXPECT_NEAR(cut[k], whole[k], k < 6 ? 1e-9 : k == 9 ? 1 : .3) << k;
  EXPECT_NEAR(cut[9], cut[11] * cut[11], 1e-12);
  EXPECT_EQ(ReadBytes(folder / "a.bin").size(), 4U + 8U * (10U * 11U) / 2);
  EXPECT_EQ(ReadBytes(folder / "v.bin").size(), 4U + 8U * 10U);
  ASSERT_EQ(Run("SE x2 x3 floor\nFA NF=1 FS\nOU RA=" + (folder / "f.VSF")), ERUNRESULT::Done)
      << Output();
}

TEST_F(ProceduresTest, SaysWhatIsWrongWithBadInput) {
  struct {
    const char* lines;
    const char* cause;
  } const cases[] = {
      {"RG ON x1\nOU", "expected y variables before ON"},
      {"RG y ON\nOU", "expected x variables"},
      {"RG y ON y x1\nOU", "variable y stands on both sides of ON"},
      {"RG y ON same\nOU", "the x variable same has one value only"},
      {"RG same ON x1\nOU", "the y variable same has one value only"},
      {"RG y ON x1 x2 sum\nOU", "the x variable sum is collinear"},
      {"SC CASE < 3\nRG y ON x1 x2\nOU", "no more cases than coefficients"},
      {"LO sign ON x3\nOU", "the x variable x3 separates the categories of sign"},
      {"PR sign ON x1 x3\nOU", "the x variable x3 separates the categories of sign"},
      {"PR same ON x1\nOU", "variable same has one category only"},
      {"PR y ON x1\nOU", "more than 15 different values"},
      {"LO two ON x1 x2 sum\nOU", "is collinear"},
      {"CR y ON x1\nOU", "is continuous, not censored"},
      {"CR floor ON same\nOU", "has one value only"},
      {"TS y ON x1 x2 WITH x3\nOU",
       "is not identified: it has 2 x variables and only 1 instrument"},
      {"TS y ON x1 x2 WITH x3 same\nOU", "is not identified"},
      {"TS y ON x1 WITH y\nOU", "stands among the x variables or instruments"},
      {"HT o1 two\nOU", "the variables have different categories: o1 has 1 2 3 4, and two has 0 1"},
      {"ET o1 two\nOU", "the variables have different categories"},
      {"ET y x1\nOU", "more than 15 different values"},
      {"SE 1-4\nFA NF=2\nOU", "2 factors cannot be estimated from 4 variables"},
      {"SE 1-4\nFA NF=9\nOU", "9 factors cannot be estimated from 4 variables"},
      {"SE 1 2\nFA NF=1\nOU", "1 factor cannot be estimated from 2 variables"},
      {"SE 1-3 11\nFA NF=1\nOU", "is not positive definite"},
      {"SE 1 2 10\nFA NF=1\nOU", "variable has one value only"},
      {"SE 1 2\nPC NC=3\nOU", "3 components are asked for, and there are 2 variables"},
      {"NS same\nOU", "variable same has no normal scores"},
      {"MT same\nOU", "has one category only"},
      {"RC x1 OLD=LO-HI NEW=-999999\nEM x1 x2\nOU", "all values of variable x1 are missing"},
      {"EM x1 same\nOU", "variable same: the variable has one value only"},
      {"EM x1 x2 sum\nOU", "is not positive definite"},
      {"SC CASE < 4\nEM x1 x2 x3\nOU", "no more cases than variables"},
      {"SC x1 > 99\nRG y ON x1\nOU", "no case is selected"},
      {"SC x1 > 99\nNS y\nOU", "no case is selected"},
      {"SC x1 > 99\nMT o1\nOU", "no case is selected"},
      {"SC x1 > 99\nHT o1 o2\nOU", "no case is selected"},
      {"SD y < 0\nRG y ON x1\nOU", "variable y is dropped by an SD line"},
      {"SD o2 = 1\nHT o1 o2\nOU", "variable o2 is dropped by an SD line"},
      {"NE y = y * 1E300\nRG y ON x1\nOU", "the values of the y variable y are too large"},
      {"NE x1 = x1 / 1E300\nLO two ON x1\nOU", "the values of the x variable x1 are too large"},
      {"NE x1 = x1 * 1E300\nSE 1-4\nFA\nOU", "is not a finite number (x1)"},
      {"CE o1\nCR o1 ON x1 x2\nSC o1 < 4\nOU", "has only"},
      {"SE o1 o2\nOFA NOR NF=1\nOU", "1 factor of 2 variables is not identified"},
      {"SE o1 o2 two\nOFA POM NF=2\nOU", "2 factors of 3 variables are not identified"},
      {"SE x1 o1 o2\nOFA NOR\nOU", "variable x1 is continuous"},
      {"SE o1 o2 same\nOR same\nOFA NOR NF=1\nOU", "variable same has one category only"},
      {"RC o1 OLD=LO-HI NEW=-999999\nSE o1 o2 two\nOFA NOR NF=1\nOU",
       "all values of variable o1 are missing"},
      {"NE copy = 9 - o1\nOR copy\nSE o1 o2 two copy\nOFA POM NF=1\nOU",
       "variables o1 and copy are the same"},
      {"SC CASE < 2\nSE o1 o2 two\nOFA NOR NF=1\nOU", "there is 1 case for 3 variables"},
      {"SC CASE < 4\nSE o1 o2 two\nOFA NOR NF=1\nOU", "there are 3 cases for 3 variables"},
      {"NE half = o1\nOR half\nRC half OLD=LO-2 NEW=1\nRC half OLD=3-HI NEW=2\n"
       "SE o1 o2 two half\nOFA NOR NF=1\nOU",
       "last log-likelihood"},
      {"NE again = floor\nCB again\nSE floor again x1\nOU MA=KM",
       "the correlation of floor and again cannot be estimated"},
      {"CE two\nSE two x2\nOU MA=CM", "variable two has no correlations"},
      {"FT o1\nOU", "FT needs the file"},
      {"FT o1\nOU TH=/no/such/file", "cannot be read"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.lines), ERUNRESULT::Failed) << c.lines;
    const std::string output = UnwrappedOutput();
    EXPECT_THAT(output, HasSubstr(c.cause)) << c.lines;
    EXPECT_THAT(output, HasSubstr("Remedy:")) << c.lines;
    EXPECT_THAT(output, Not(HasSubstr("nan"))) << c.lines;
  }
}

TEST_F(ProceduresTest, SavesScoresBehindTheSelectedVariables) {
  const std::string name = folder / "scores.vsf";
  ASSERT_EQ(Run("SE 1-4\nFA NF=1 FS\nPC NC=2 PS\nOU IX=1 RA=" + name), ERUNRESULT::Done)
      << Output();
  VsfContents contents;
  const std::vector<double> cells = Saved(name, contents);
  ASSERT_EQ(contents.data.variables, 7);
  EXPECT_EQ(contents.data.variable[4].name, "FACTOR1");
  EXPECT_EQ(contents.data.variable[6].name, "PC2");
  EXPECT_EQ(contents.data.variable[4].type, kContinuous);
  ASSERT_EQ(contents.data.records, 400);
  double sum[3] = {}, product = 0;
  for (std::size_t i = 0; i < 400; ++i) {
    const double* const row = cells.data() + 7 * i;
    EXPECT_EQ(row[4] == -999999, i == 5);
    if (i == 5) continue;
    for (int k = 0; k < 3; ++k) sum[k] += row[4 + k];
    product += row[5] * row[6];
  }
  for (const double s : sum) EXPECT_NEAR(s, 0, 1e-9);
  EXPECT_NEAR(product, 0, 1e-8);  // components do not correlate
}

TEST_F(ProceduresTest, NormalScoresReplaceValuesForTheRestOfTheRun) {
  const std::string name = folder / "ns.vsf";
  const std::string matrix = folder / "km";
  ASSERT_EQ(Run("SE o1 o2 y\nNS o1 y\nOU MA=KM XM XT SM=" + matrix + " RA=" + name),
            ERUNRESULT::Done)
      << Output();
  VsfContents contents;
  const std::vector<double> cells = Saved(name, contents);
  EXPECT_EQ(contents.data.variable[0].type, kContinuous);
  EXPECT_EQ(contents.data.variable[1].type, kOrdinal);
  // One score a category, ascending; the correlation of the matrix is that of the saved values.
  std::map<double, double> scores;
  double sums[5] = {};
  for (std::size_t i = 0; i < 400; ++i) {
    const double o = cells[3 * i], y = cells[3 * i + 2];
    EXPECT_EQ(scores.try_emplace(rows[i][5], o).first->second, o);
    sums[0] += o, sums[1] += y, sums[2] += o * o, sums[3] += y * y, sums[4] += o * y;
  }
  ASSERT_EQ(scores.size(), 4U);
  EXPECT_TRUE(scores[1] < scores[2] && scores[2] < scores[3] && scores[3] < scores[4]);
  const double r =
      (sums[4] - sums[0] * sums[1] / 400) /
      std::sqrt((sums[2] - sums[0] * sums[0] / 400) * (sums[3] - sums[1] * sums[1] / 400));
  std::ifstream file(matrix);
  double element = 0;
  for (int i = 0; i < 4; ++i) file >> element;
  EXPECT_NEAR(element, r, 1e-10);
}

TEST_F(ProceduresTest, ThresholdsAreSavedAndReadBack) {
  const std::string th = folder / "th";
  ASSERT_EQ(Run("MT o1 o2\nOU TH=" + th), ERUNRESULT::Done) << Output();
  const std::string saved = ReadBytes(th);
  ASSERT_EQ(Run("FT o2\nOU TH=" + th), ERUNRESULT::Done) << Output();
  EXPECT_THAT(Output(), HasSubstr("Standard normal: these thresholds are its own       0.000"));
  EXPECT_EQ(ReadBytes(th), saved);
  ASSERT_EQ(Run("ET o1 o2\nOU TH=" + th), ERUNRESULT::Done) << Output();
  EXPECT_NE(ReadBytes(th), saved);
  struct {
    const char* content;
    const char* cause;
  } const bad[] = {{"1 2 3 ! other\n", "holds no thresholds of variable o1"},
                   {"1 2 ! o1\n", "the file holds 2 thresholds, and o1 has 4 categories"},
                   {"1 2 3\n1 2 3\n", "several variables without names"},
                   {"1 x 3 ! o1\n", "that is no number"},
                   {"", "holds no thresholds"},
                   {"1 3 2 ! o1\n", "do not ascend"}};
  for (const auto& b : bad) {
    WriteBytes(th, b.content);
    EXPECT_EQ(Run("FT o1\nOU TH=" + th), ERUNRESULT::Failed) << b.content;
    EXPECT_THAT(UnwrappedOutput(), HasSubstr(b.cause));
  }
  WriteBytes(th, "-1 0 1\n");
  // Probit regression behind it keeps to them, whatever cases it has.
  EXPECT_EQ(Run("FT o1\nPR o1 ON x1\nLO o1 ON x1\nOU TH=" + th), ERUNRESULT::Done) << Output();
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("Threshold 1 | 2 -1.000 (fixed)"));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("logistic regression estimates its own"));
}

// Missing values become expected ones; TC decides about cases without any.
TEST_F(ProceduresTest, CompletesTheData) {
  for (int j = 0; j < 3; ++j) rows[9][static_cast<std::size_t>(j)] = -999999;
  Data(description, rows);
  const std::string name = folder / "em.vsf";
  for (const int treatment : {0, 1, 2}) {
    ASSERT_EQ(
        Run("SE 1-3\nEM 1-3 CC=0.0000001 TC=" + std::to_string(treatment) + "\nOU RA=" + name),
        ERUNRESULT::Done)
        << Output();
    VsfContents contents;
    const std::vector<double> cells = Saved(name, contents);
    EXPECT_EQ(contents.data.records, treatment == 0 ? 399 : 400);
    EXPECT_EQ(cells[4], rows[1][1]);
    EXPECT_LT(std::fabs(cells[15]), 5);  // case 6 lacked x1
    EXPECT_NE(cells[15], 0);
    EXPECT_EQ(cells[27] == -999999, treatment == 2);
  }
  ASSERT_EQ(Run("EM 1-3 IT=1 CC=0.0000001\nOU"), ERUNRESULT::Done);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("EM has not converged in 1 iteration: "));
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("Standard errors are left out: EM has not come"));
}

// x1 and x2 are never observed together, so that nothing tells their covariance; x3 always is.
TEST_F(ProceduresTest, GivesNoStandardErrorOfWhatNothingTells) {
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i][i % 2] = -999999;
  Data(description, rows);
  ASSERT_EQ(Run("EM 1-3\nOU"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("WARNING: Never observed together: x1 and x2."));
  EXPECT_THAT(
      UnwrappedOutput(),
      testing::ContainsRegex("Standard errors of the correlations x1 x2 x2 \\. x3 0\\.[0-9]+"));
}

// What is left out is told, and why, by every procedure that reads its own cases.
TEST_F(ProceduresTest, TellsWhichCasesAreLeftOut) {
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].push_back(i < 3 ? 0 : 2);
  TORVIKSTRUCT data = Describe(
      {"x1", "x2", "x3", "x4", "y", "o1", "o2", "two", "floor", "same", "sum", "sign", "weight"});
  data.weightVariable = 13;
  for (const std::size_t ordinal : {5, 6, 7}) {
    data.variable[ordinal].type = kOrdinal;
    data.variable[ordinal].categories = ordinal == 7 ? 2 : 4;
    for (int k = 0; k < 4; ++k) {
      data.categoryValues[ordinal * kCategorySlots + static_cast<std::size_t>(k)] =
          k + (ordinal == 7 ? 0 : 1);
    }
  }
  for (const std::size_t i : {1, 10, 11}) rows[i][5] = 9;  // none of the categories of o1
  rows[12][4] = std::numeric_limits<double>::infinity();
  Data(data, rows);
  struct {
    const char* line;
    const char* warning;
  } const cases[] = {
      {"HT o1 o2", "Variable o1 has 2 cells with values that are none of its categories."},
      {"ET o1 o2", "Variable o1 has 2 cells with values that are none of its categories."},
      {"MT o2 o1", "Variable o1 has 2 cells with values that are none of its categories."},
      {"LO o1 ON x2", "Variable o1 has 2 cells with values that are none of its categories."},
      {"NS o1 y x2", "1 cell is infinite."},
      {"RG y ON x2", "1 cell is infinite."},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(Run(CString("SC CASE > 1\n") + c.line + "\nOU"), ERUNRESULT::Done) << Output();
    const std::string output = UnwrappedOutput();
    EXPECT_THAT(output, HasSubstr("Left out by the selection 1 ")) << c.line;
    EXPECT_THAT(output, HasSubstr("Left out for want of a weight above zero 2 ")) << c.line;
    EXPECT_THAT(output, HasSubstr(c.warning)) << c.line;
  }
  for (auto& row : rows) row.back() = -1;
  Data(data, rows);
  for (const char* line : {"HT o1 o2", "MT o1", "LO o1 ON x2", "NS y", "RG y ON x2"}) {
    EXPECT_EQ(Run(CString(line) + "\nOU"), ERUNRESULT::Failed);
    EXPECT_THAT(UnwrappedOutput(), HasSubstr("no case has a weight above zero")) << line;
  }
}

// Numbers of any size can be read off the output, and are not lost on the way to the scores.
TEST_F(ProceduresTest, ShowsAndSavesNumbersOfAnySize) {
  ASSERT_EQ(Run("NE x1 = x1 * 100000\nRG y ON x1\nOU"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(UnwrappedOutput(), Not(HasSubstr("x1 0.000 0.000")));
  ASSERT_EQ(Run("RG sum ON x1 x2\nOU"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("WARNING: The x variables predict sum up to rounding"));
  const std::string name = folder / "odd.vsf";
  ASSERT_EQ(Run("SE 1 2 10\nPC PS NC=1\nNE y = y * 1E300\nNS y\nOU RA=" + name), ERUNRESULT::Done)
      << Output();
  VsfContents contents;
  const std::vector<double> cells = Saved(name, contents);
  ASSERT_EQ(contents.data.variables, 4);
  EXPECT_NE(cells[3], -999999) << "a constant among the variables of a covariance matrix";
}

// Listwise deletion takes the cases that are complete in the whole line.
TEST_F(ProceduresTest, RegressionsUseTheCasesThatTheDeletionLeaves) {
  rows[7][5] = -999999;  // o1
  for (const bool pairwise : {false, true}) {
    description.deletion = pairwise ? kPairwise : 0;
    Data(description, rows);
    ASSERT_EQ(Run("RG y o1 ON x1\nOU"), ERUNRESULT::Done) << Output();
    const std::string output = Output();
    const std::string first = output.substr(0, output.find("Regression of o1"));
    EXPECT_THAT(first, HasSubstr(pairwise ? "Cases used                   399"
                                          : "Cases used                   398"));
  }
}

}  // namespace
