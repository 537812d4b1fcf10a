#include <cmath>
#include <csignal>
#include <cstring>
#include <limits>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "datadoc/VsfReader.h"
#include "engine/EngineData.h"
#include "engine/run/Interrupt.h"
#include "engine/run/Run.h"
#include "support/FileSizeLimit.h"
#include "vexutils/BlockIo.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class RunTest : public EngineTest {
 protected:
  // 300 cases: three correlated continuous variables, two ordinal ones with four categories, one
  // constant.
  void SetUp() override {
    TORVIKSTRUCT data = Describe({"x1", "x2", "x3", "o1", "o2", "same"});
    data.variable[3].type = data.variable[4].type = kOrdinal;
    std::mt19937 random(11);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 300; ++i) {
      const double common = normal(random);
      const auto category = [&] {
        return 1 + std::floor(std::clamp(common + normal(random), -1.9, 1.9) + 2);
      };
      rows.push_back({common + normal(random), common + normal(random), normal(random), category(),
                      category(), 5});
    }
    rows[7][0] = -999999;
    rows[8][4] = -999999;
    Data(data, rows);
    description = data;
  }

  std::vector<std::vector<double>> rows;
  TORVIKSTRUCT description;
};

TEST_F(RunTest, ScreensAndPrintsWithinThePage) {
  ASSERT_EQ(Run("SE 1-5\nOU MA=KM BT"), ERUNRESULT::Done) << Output();
  const std::string output = Output();
  for (const char* part :
       {"Cases in the data file         300", "Complete cases                 298",
        "Patterns of missing values", "frequencies and thresholds", "Tests of univariate normality",
        "Tests of multivariate normality", "Bivariate frequency tables", "o1 by o2",
        "Polychoric correlations", "Correlation matrix", "Smallest eigenvalue",
        "Means and standard deviations", "End of the run."}) {
    EXPECT_THAT(output, HasSubstr(part));
  }
  EXPECT_THAT(output, Not(HasSubstr("nan")));
  for (std::size_t begin = 0; begin < output.size();) {
    const std::size_t end = output.find('\n', begin);
    const std::string line = output.substr(begin, end - begin);
    // A file name is never broken, however long it is.
    if (!line.starts_with("  Data file:")) {
      EXPECT_LE(line.size(), 80U) << line;
    }
    begin = end + 1;
  }
}

TEST_F(RunTest, LeavesOutTestsByTheirKeywords) {
  ASSERT_EQ(Run("SE 1-5\nOU XT XM"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(Output(), Not(HasSubstr("multivariate normality")));
  EXPECT_THAT(Output(), Not(HasSubstr("Polychoric")));
  EXPECT_THAT(Output(), Not(HasSubstr("matrix")));
}

TEST_F(RunTest, GivesTheSameOutputForAnyNumberOfThreads) {
  const std::string lines = "SE 1-5\nNE x3 = x3 + NORMAL()\nOU MA=CM BT IX=5";
  ASSERT_EQ(Run(lines, 1), ERUNRESULT::Done) << Output();
  const std::string one = Output();
  ASSERT_EQ(Run(lines, 2), ERUNRESULT::Done);
  EXPECT_EQ(one, Output());
}

TEST_F(RunTest, SavesTheFilesOfTheOutputLine) {
  const auto f = [this](const char* name) { return folder / name; };
  ASSERT_EQ(Run("SE 1 2\nOU MA=CM SM=" + f("my sm") + " ME=" + f("me") + " SD=" + f("sd") +
                " AC=" + f("ac") + " AV=" + f("av")),
            ERUNRESULT::Done)
      << Output();
  // By hand: the plain two-pass formulas on the complete cases.
  double n = 0, mean[2] = {0, 0}, product[3] = {0, 0, 0};
  for (const auto& row : rows) {
    if (row[0] == -999999) continue;
    n += 1;
    mean[0] += row[0];
    mean[1] += row[1];
  }
  for (double& m : mean) m /= n;
  for (const auto& row : rows) {
    if (row[0] == -999999) continue;
    const double a = row[0] - mean[0];
    const double b = row[1] - mean[1];
    product[0] += a * a / (n - 1);
    product[1] += a * b / (n - 1);
    product[2] += b * b / (n - 1);
  }
  std::ifstream sm(f("my sm"));
  std::ifstream me(f("me"));
  std::ifstream sd(f("sd"));
  for (const double want : product) {
    double found = 0;
    ASSERT_TRUE(sm >> found);
    EXPECT_NEAR(found, want, 1e-12);
  }
  for (int i = 0; i < 2; ++i) {
    double found = 0;
    ASSERT_TRUE(me >> found);
    EXPECT_NEAR(found, mean[i], 1e-12);
    ASSERT_TRUE(sd >> found);
    EXPECT_NEAR(found, std::sqrt(product[i * 2]), 1e-12);
  }
  // A count and the lower triangle of three elements, whose variances are those of AV.
  const std::string ac = ReadBytes(f("ac"));
  const std::string av = ReadBytes(f("av"));
  ASSERT_EQ(ac.size(), 4U + 6 * 8);
  ASSERT_EQ(av.size(), 4U + 3 * 8);
  std::int32_t elements = 0;
  std::memcpy(&elements, ac.data(), 4);
  EXPECT_EQ(elements, 3);
  const std::size_t diagonal[] = {0, 2, 5};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(av.substr(4 + 8 * i, 8), ac.substr(4 + 8 * diagonal[i], 8)) << i;
  }
}

TEST_F(RunTest, SavesTransformedDataAsSystemFileAndAsText) {
  const std::string name = folder / "new.vsf";
  ASSERT_EQ(
      Run("SD 6 = 4\nSC CASE < 3\nRC o1 OLD=LO-HI NEW=2\nNE total = x1 + x2\nOU XT XM RA=" + name),
      ERUNRESULT::Failed);  // o1 is constant now
  ASSERT_EQ(
      Run("SD 6 = 4\nSC CASE < 12\nRC o1 OLD=4 NEW=3\nNE total = x1 + x2\nOU XT XM RA=" + name),
      ERUNRESULT::Done)
      << Output();
  CDescriptor file;
  ASSERT_TRUE(file.OpenForReading(name.c_str()));
  VsfContents contents;
  ASSERT_EQ(ReadVsf(file.Get(), contents), VsfStatus::Ok);
  EXPECT_FALSE(contents.damaged);
  ASSERT_EQ(contents.data.variables, 6);  // "same" is dropped, "total" is new
  EXPECT_EQ(contents.data.variable[5].name, "total");
  ASSERT_EQ(contents.data.records, 11);
  std::vector<double> cells(66);
  ASSERT_EQ(ReadAt(file.Get(), contents.cellsOffset, cells.data(), 66 * 8), 66 * 8);
  for (std::size_t i = 0; i < 11; ++i) {
    const bool missing = i == 7;
    EXPECT_EQ(cells[i * 6], rows[i][0]);
    EXPECT_EQ(cells[i * 6 + 3], std::min(rows[i][3], 3.0));
    EXPECT_EQ(cells[i * 6 + 5], missing ? -999999 : rows[i][0] + rows[i][1]);
  }
  ASSERT_EQ(Run("SE 4 5\nOU XT XM WI=12 ND=1 RA=" + (folder / "new.txt")), ERUNRESULT::Done)
      << Output();
  const std::string text = ReadBytes(folder / "new.txt");
  EXPECT_EQ(text.size(), 300U * 25);
  EXPECT_EQ(Run("SE 4 5\nOU XT XM WI=8 ND=1 RA=" + (folder / "new.txt")), ERUNRESULT::Failed);
  EXPECT_THAT(Output(), HasSubstr("does not fit into a field of width 8"));
  EXPECT_EQ(ReadBytes(folder / "new.txt"), text);
}

// Ordinal and continuous variables in one matrix: 10 elements below the diagonal, 15 with it, of
// which the variances of the underlying variables do not vary.
TEST_F(RunTest, SavesAsymptoticVariancesOfMixedVariables) {
  for (const auto& [kind, elements] : {std::pair("KM", 10), std::pair("CM", 15)}) {
    const std::string name = folder / kind;
    ASSERT_EQ(Run("SE 1-5\nOU PV MA=" + CString(kind) + " AV=" + name), ERUNRESULT::Done)
        << Output();
    const std::string bytes = ReadBytes(name);
    ASSERT_EQ(bytes.size(), 4U + 8U * static_cast<std::size_t>(elements));
    std::vector<double> variances(static_cast<std::size_t>(elements));
    std::memcpy(variances.data(), bytes.data() + 4, variances.size() * 8);
    EXPECT_EQ(std::count(variances.begin(), variances.end(), 0.0), elements == 15 ? 2 : 0);
    EXPECT_TRUE(
        std::all_of(variances.begin(), variances.end(), [](double v) { return v >= 0 && v < .2; }));
  }
}

TEST_F(RunTest, SavesThresholds) {
  ASSERT_EQ(Run("SE 4 5\nOU XT TH=" + (folder / "th")), ERUNRESULT::Done) << Output();
  std::ifstream th(folder / "th");
  for (const char* name : {"o1", "o2"}) {
    double found[3] = {};
    std::string mark, variable;
    ASSERT_TRUE(th >> found[0] >> found[1] >> found[2] >> mark >> variable);
    EXPECT_TRUE(found[0] < found[1] && found[1] < found[2]);
    EXPECT_EQ(mark + variable, CString("!") + name);
  }
}

TEST_F(RunTest, RefusesOutputsThatAreInputsBeforeWriting) {
  const std::string data = ReadBytes(folder / "DATA.VSF");
  std::filesystem::create_hard_link(folder / "DATA.VSF", folder / "other.sm");
  for (const char* keywords :
       {"SM=other.sm", "RA=DATA.VSF", "ME=DATA.TRK", "SD=DATA.OUT", "ME=new SD=new"}) {
    std::string line = keywords;
    for (std::size_t at = line.find('='); at != std::string::npos; at = line.find('=', at + 1)) {
      line.insert(at + 1, folder.Path() + "/");
      at += folder.Path().size();
    }
    EXPECT_EQ(Run("SE 1 2\nOU MA=CM " + line), ERUNRESULT::Failed) << line;
    EXPECT_THAT(UnwrappedOutput(), HasSubstr("is the same as")) << line;
    EXPECT_THAT(Output(), HasSubstr("line 3 of the syntax")) << line;
    EXPECT_EQ(ReadBytes(folder / "DATA.VSF"), data);
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
  }
  // An output file that is the data or the syntax itself is not touched at all.
  EXPECT_EQ(RunEngine(folder / "DATA.TRK", folder / "DATA.VSF", {}), ERUNRESULT::Failed);
  EXPECT_EQ(RunEngine(folder / "DATA.TRK", folder / "DATA.TRK", {}), ERUNRESULT::Usage);
  EXPECT_EQ(ReadBytes(folder / "DATA.VSF"), data);
}

TEST_F(RunTest, SaysWhatIsWrongWithBadInput) {
  struct {
    const char* lines;
    int line;  // of the syntax; 1 is the SY line
    const char* cause;
  } const cases[] = {
      {"XX\nOU", 2, "expected a command"},
      {"SE 9\nOU", 2, "there is no variable \"9\""},
      {"SE 1 2", 2, "expected the output line OU"},
      {"SE 6\nOU", 2, "variable same (number 6): the variable has one value only"},
      {"SE 1 2 6\nOU MA=KM XM", 3, "cannot be computed"},
      {"NE x2 = x1 * 2\nSE 1 2\nOU MA=CM XM", 4, "is not positive definite"},
      {"SC CASE < 3\nSE 1-3\nOU MA=CM XM", 4, "is not positive definite"},
      {"SC CASE < 3\nSE 1-3\nOU", 4, "multivariate normality cannot be computed"},
      {"SC x1 > 1000\nOU", 2, "no case is selected"},
      {"RC 1 OLD=LO-HI NEW=-999999\nSE 1 2\nOU", 3,
       "listwise deletion leaves none (without any value: x1)"},
      {"NE c = (x1 + ABS(x1)) / 2\nCO c\nCB c\nSE x1 c\nOU MA=KM XM", 6,
       "the iterations did not converge, the last value is 0.99"},
      {"SD 1-6 = 77\nOU", 2, "the SD lines drop every variable"},
      {"SD 1 = 77\nSE 1 2\nOU", 3, "is selected by SE, and dropped"},
      {"RC 4 OLD=LO-HI NEW=1\nRC 5 OLD=LO-HI NEW=1\nSE 4 5\nOU", 4, "variable o1"},
      {"OR 6\nSE 4 6\nOU", 3, "variable same"},
      {"OU SM=x", 2, "need the matrix that they belong to"},
      {"SE 1 2\nOU MA=AM AC=x", 3, "are those of covariances or correlations"},
      {"SE 1\nOU MA=KM AC=x", 3, "one variable has no correlations"},
      {"SE 4\nOU MA=KM AV=x", 3, "one variable has no correlations"},
      {"SE 1 2\nOU TH=x", 3, "no variable is ordinal"},
      {"SE 1 2\nOU MA=CM SM=/no/such/folder/x", 3, "cannot be written"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.lines), ERUNRESULT::Failed) << c.lines;
    const std::string output = UnwrappedOutput();
    EXPECT_THAT(output, HasSubstr(c.cause)) << c.lines << "\n" << output;
    EXPECT_THAT(output, HasSubstr("ERROR in line " + std::to_string(c.line) + " of the syntax"))
        << c.lines << "\n"
        << output;
    EXPECT_THAT(output, Not(HasSubstr("nan"))) << c.lines;
  }
}

TEST_F(RunTest, AFullDiskEndsTheRunWhereItIsMet) {
  {
    const FileSizeLimit limit(30'000);  // the data of two repetitions
    EXPECT_EQ(RunWhole("RP=9 SY='" + (folder / "DATA.VSF") +
                       "'\n RESE 1-5\nOU XM XT RA=" + (folder / "full.vsf")),
              ERUNRESULT::Failed);
  }
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("full.vsf) cannot be written"));
  EXPECT_THAT(Output(), HasSubstr("Repetition 3 of 9"));
  EXPECT_THAT(Output(), Not(HasSubstr("Repetition 4 of 9")));
  EXPECT_FALSE(std::filesystem::exists(folder / "full.vsf"));
}

TEST_F(RunTest, SaysWhereNumbersAreTooLarge) {
  EXPECT_EQ(Run("NE b = x1 * 10**200\nSE x1 b\nOU MA=MM XM"), ERUNRESULT::Failed);
  const std::string output = UnwrappedOutput();
  EXPECT_THAT(output, HasSubstr("b . . . . ."));
  EXPECT_THAT(output, HasSubstr("variable b (number 7): a value, a weight or a result is not"));
  EXPECT_THAT(output, HasSubstr("the moment matrix cannot be computed"));
  EXPECT_THAT(output, Not(HasSubstr(" inf")));
  EXPECT_THAT(output, Not(HasSubstr("nan")));
}

TEST_F(RunTest, SaysWhatIsWrongWithItsFiles) {
  EXPECT_EQ(RunWhole("SY='" + (folder / "none.VSF") + "'\nOU"), ERUNRESULT::Failed);
  EXPECT_THAT(Output(), HasSubstr("ERROR in line 1"));
  WriteBytes(folder / "text.VSF", "no system data file");
  EXPECT_EQ(RunWhole("SY='" + (folder / "text.VSF") + "'\nOU"), ERUNRESULT::Failed);
  EXPECT_THAT(UnwrappedOutput(), HasSubstr("is not a system data file"));
  EXPECT_EQ(RunEngine(folder / "none.TRK", folder / "none.OUT", {}), ERUNRESULT::Failed);
  EXPECT_THAT(ReadBytes(folder / "none.OUT"), HasSubstr("cannot be read"));
  EXPECT_EQ(RunEngine(folder / "DATA.TRK", folder / "none/x.OUT", {}), ERUNRESULT::Failed);
}

TEST_F(RunTest, SaysThatNoCaseHasAWeight) {
  description.weightVariable = 6;
  for (auto& row : rows) row[5] = 0;
  Data(description, rows);
  EXPECT_EQ(Run("OU"), ERUNRESULT::Failed);
  EXPECT_THAT(Output(), HasSubstr("no case has a weight above zero"));
}

TEST_F(RunTest, WeightsCountCases) {
  const std::string lines = "SE 1 2 4 5\nOU MA=CM XT";
  description.weightVariable = 6;
  std::vector<std::vector<double>> repeated;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i][5] = static_cast<double>(i % 3);
    for (std::size_t k = 0; k < i % 3; ++k) repeated.push_back(rows[i]);
  }
  Data(description, rows);
  ASSERT_EQ(Run(lines), ERUNRESULT::Done) << Output();
  const std::string weighted = Output();
  description.weightVariable = 0;
  Data(description, repeated);
  ASSERT_EQ(Run(lines), ERUNRESULT::Done) << Output();
  const auto numbers = [](const std::string& text) {
    return text.substr(text.find("Ordinal variables: f"));
  };
  EXPECT_EQ(numbers(weighted), numbers(Output()));
  EXPECT_THAT(weighted, HasSubstr("Left out for want of a weight above zero  100"));
}

TEST_F(RunTest, RepeatsOnceForEachRepetition) {
  ASSERT_EQ(RunWhole("RP=3 SY='" + (folder / "DATA.VSF") + "'\n RESE 1 2\nOU XM IX=1"),
            ERUNRESULT::Done)
      << Output();
  EXPECT_THAT(Output(), HasSubstr("Repetition 3 of 3"));
  ASSERT_EQ(RunWhole("RP=3 SY='" + (folder / "DATA.VSF") + "'\n RESE 1 2\nOU XM RP=2"),
            ERUNRESULT::Done);
  EXPECT_THAT(Output(), HasSubstr("Repetition 2 of 2"));
  EXPECT_THAT(Output(), HasSubstr("RP stands twice"));
}

TEST_F(RunTest, AnInterruptedRunLeavesOnlyAnOutputThatSaysSo) {
  WatchForInterrupts();
  std::raise(SIGINT);
  const std::size_t before = folder.FileCount();
  EXPECT_EQ(Run("SE 1 2\nOU MA=CM SM=" + (folder / "sm")), ERUNRESULT::Interrupted);
  SetInterrupted(false);
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  EXPECT_THAT(Output(), HasSubstr("The run was interrupted"));
  EXPECT_EQ(folder.FileCount(), before + 2);  // the syntax and the output
}

TEST_F(RunTest, TreatsOrdinalVariablesByTheirCategories) {
  TORVIKSTRUCT data = Describe({"many", "defined"}, kOrdinal);
  data.variable[1].categories = 2;
  data.categoryValues[15] = 1;
  data.categoryValues[16] = 2;
  data.categoryLabels[15] = "low";
  std::vector<std::vector<double>> cases;
  for (int i = 0; i < 64; ++i) cases.push_back({static_cast<double>(i % 16), 1.0 + i % 3});
  Data(data, cases);
  ASSERT_EQ(Run("OU"), ERUNRESULT::Done) << Output();
  EXPECT_THAT(Output(), HasSubstr("Variable many is ordinal and has no defined categories"));
  EXPECT_THAT(Output(), HasSubstr("Variable defined has 21 cells with values"));
  EXPECT_THAT(Output(), HasSubstr("1         low"));
  EXPECT_THAT(Output(), HasSubstr("Complete cases                 43"));
}

}  // namespace
