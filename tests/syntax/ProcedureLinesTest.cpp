// What the choices of each procedure come to.
#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "syntax/OutputDialog.h"
#include "syntax/procedures/Procedures.h"

namespace {

using Lines = std::list<CString>;

// Six variables: o1 to o3 ordinal, c1 and c2 continuous, top censored above.
TORVIKSTRUCT SixVariables() {
  TORVIKSTRUCT data;
  data.variables = 6;
  data.ResizeArrays(16);
  const struct {
    const char* name;
    std::int32_t type;
  } variables[] = {{"o1", kOrdinal},    {"o2", kOrdinal},    {"o3", kOrdinal},
                   {"c1", kContinuous}, {"c2", kContinuous}, {"top", kCensoredAbove}};
  for (std::size_t i = 0; i < std::size(variables); ++i) {
    data.variable[i].name = variables[i].name;
    data.variable[i].type = variables[i].type;
  }
  return data;
}

TORVIKSTRUCT Numbered(std::int32_t variables) {
  TORVIKSTRUCT data;
  data.variables = variables;
  data.ResizeArrays(static_cast<std::size_t>(variables));
  for (std::int32_t i = 0; i < variables; ++i) {
    data.variable[static_cast<std::size_t>(i)].name = "v" + std::to_string(i + 1);
  }
  return data;
}

CString LineEnds(const CString& text) {
  CString joined;
  for (const char c : text) joined += c == '\n' ? CString("|") : CString(1, c);
  return joined;
}

const NameList kO12 = {"o1", "o2"};
const NameList kO3C1 = {"o3", "c1"};

}  // namespace

TEST(ProcedureLines, AreTheChoices) {
  const CString ou = "OU XT XM ";
  const struct {
    ProcedureChoices choices;
    Lines lines;
  } cases[] = {
      {FactorAnalysisChoices{{"o1", "o2", "c2"}, true, "2", true},
       {"\nSE 1 2 5 \nFA NF=2 MR FS", ou}},
      {FactorAnalysisChoices{}, {"FA", ou}},
      {FactorAnalysisChoices{{}, false, " two", false}, {"FA NF= two", ou}},
      {FactorAnalysisChoices{{"top", "O1"}, false, "", true}, {"\nSE 6 7 \nFA FS", ou}},
      {OrdinalFactorChoices{{}, false, ""}, {"OFA NOR", ou}},
      {OrdinalFactorChoices{kO12, true, " 1"}, {"\nSE 1 2 \nOFA POM NF=1", ou}},
      {PrincipalComponentChoices{}, {"PC", ou}},
      {PrincipalComponentChoices{kO3C1, true, true, "2 "}, {"\nSE 3 4 \nPC NC=2 KM PS", ou}},
      {EqualThresholdChoices{kO12, false, "ignored"}, {"ET 1 2", ou}},
      {EqualThresholdChoices{kO12, true, "my.th"}, {"ET 1 2", ou + " TH=my.th "}},
      {FixThresholdChoices{{"o3", "o1"}, "my.th"}, {"FT 3", "FT 1", ou + " TH=my.th "}},
      {HomogeneityChoices{{"o1", "o2", "o3", "o1"}}, {"HT 1 2", "HT 3 1", ou}},
      {NormalScoreChoices{{"c1", "o2"}}, {"NS 4 2 ", ou}},
      {ImputationChoices{{"o1"}, {"c1", "c2"}, "", ImputationListing::All},
       {"IMPUTE (1 ) (4 5 ) ", ou}},
      {ImputationChoices{kO12, {"c1"}, "0.25", ImputationListing::None},
       {"IMPUTE (1 2 ) (4 )  VR=0.250000 XL ", ou}},
      {ImputationChoices{{"o1"}, {"c1"}, "", ImputationListing::Successful},
       {"IMPUTE (1 ) (4 ) XN ", ou}},
      {MultipleImputationChoices{kO12}, {"EM 1 2 IT=200 CC=0.00001 TC=0", ou}},
      {MultipleImputationChoices{kO12, true, "50", "0.001", "5", AllMissingCases::Leave},
       {"MC 1 2 IT=50 CC=0.001 TC=2 RP=5", ou}},
      {BootstrappingChoices{"50", "80"}, {ou + " BS=50 SF=80 "}},
      {BootstrappingChoices{"9", "100", true, "mafile", true, "mefile", true, "sdfile"},
       {ou + " BS=9 SF=100 BM=mafile ME=mefile SD=sdfile "}},
      {RegressionChoices{kO12, kO3C1}, {"RG 1 2 ON 3 4", ou}},
      {TwoStageChoices{{"c1"}, {"c2"}, kO12}, {"TS 4 ON 5 WITH 1 2", ou}},
      {ProbitChoices{kO12, {"c1"}, true}, {"PR 1 2 ON 4 AP", ou}},
      {ProbitChoices{kO12, {"c1"}, false, true, {"o2"}, "t", {}},
       {"FI 4 ", "FT 2", "PR 1 2 ON 4", ou + " TH=t "}},
      {ProbitChoices{kO12, {"c1"}, false, false, {}, "", kO12}, {"MT 1 2 ", "PR 1 2 ON 4", ou}},
      {LogisticChoices{kO12, {"c1"}, true}, {"LO 1 2 ON 4 AP", "OU"}},
      {CensoredChoices{{"top"}, kO3C1}, {"CR 6 ON 3 4", "OU"}},
      {ComputeChoices{{{" sum ", " o1 + o2 "}, {"c1", "LOG(c1)"}}, "new.VSF"},
       {"NE sum = o1 + o2", "NE c1 = LOG(c1)", "OU RA=new.VSF XT XM "}},
      {RecodeChoices{kO12, {{"1, 2", " 0"}, {"3 - HI", "1"}}, "new.VSF"},
       {"RC 1 2 OLD=1,2 NEW=0 OLD=3-HI NEW=1", "OU RA=new.VSF XT XM "}},
  };
  const TORVIKSTRUCT data = SixVariables();
  for (const auto& c : cases) {
    EXPECT_EQ(JobOf(data, TRVOUSTRUCT(), c.choices).lines, c.lines) << EntryOf(c.choices).title;
  }
}

TEST(ProcedureLines, ComputedNamesThatNoLineCanHoldAreNumbers) {
  TORVIKSTRUCT data = SixVariables();
  data.variable[1].name = "two words";
  data.variable[2].name =
      "Gr\xf6\xdf"
      "e in cm, m\xfc";  // 16 bytes in the file, more as shown
  const struct {
    const char* target;
    const char* line;
  } cases[] = {{"two words", "NE 2 = 1"},
               {"Gr\u00f6\u00dfe in cm, m\u00fc", "NE 3 = 1"},
               {" o1", "NE o1 = 1"},
               {"new", "NE new = 1"}};
  for (const auto& c : cases) {
    const ComputeChoices choices{{{c.target, "1"}}, "n.VSF"};
    EXPECT_EQ(TextOf(data, choices).lines.front(), c.line);
    EXPECT_FALSE(CheckChoices(data, choices)) << c.target;
  }
}

TEST(ProcedureLines, SelectionLinesHave78Characters) {
  const auto select = [](std::int32_t count) {
    const TORVIKSTRUCT data = Numbered(count);
    FactorAnalysisChoices choices;
    for (std::int32_t i = 0; i < count; ++i) {
      choices.subset.push_back(data.variable[static_cast<std::size_t>(i)].name);
    }
    return LineEnds(TextOf(data, choices).lines.front());
  };
  const CString first =
      "SE 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 ";
  ASSERT_EQ(first.size(), 78U);
  EXPECT_EQ(select(28), "|" + first + "|FA");
  // The line that is closed on the way has nothing before it: no line end either.
  EXPECT_EQ(select(29), first + "|SE 29 |FA");
  const CString second =
      "SE 29 30 31 32 33 34 35 36 37 38 39 40 41 42 43 44 45 46 47 48 49 50 51 52 53 ";
  ASSERT_EQ(second.size(), 78U);
  EXPECT_EQ(select(54), first + "|" + second + "|SE 54 |FA");
}

TEST(ProcedureLines, BootstrappingPassesRepetitionsAndRewind) {
  TRVOUSTRUCT options;
  options.nRepetitions = 50;
  options.bRewind = 1;
  const TORVIKSTRUCT data = SixVariables();
  for (const auto& choices :
       {ProcedureChoices(BootstrappingChoices()), ProcedureChoices(FactorAnalysisChoices())}) {
    const bool own = std::holds_alternative<BootstrappingChoices>(choices);
    const ProcedureJob job = JobOf(data, options, choices);
    EXPECT_EQ(job.repetitions, own ? 50 : 1);
    EXPECT_EQ(job.rewind, own ? 1 : 0);
    EXPECT_NE(job.lines.back().find("RP=50 "), CString::npos);
  }
}

TEST(ProcedureLines, RecodingHasTheOtherSpelling) {
  const TORVIKSTRUCT data = SixVariables();
  EXPECT_STREQ(JobOf(data, {}, RecodeChoices()).noOutput, kNoOutputOfRecode);
  EXPECT_STREQ(JobOf(data, {}, ComputeChoices()).noOutput, kNoOutput);
}

TEST(ProcedureLines, TestsFollowTheChosenVariables) {
  const struct {
    ProcedureChoices choices;
    int tests;
  } cases[] = {
      {FactorAnalysisChoices{}, kTestsWithOrdinal},
      {FactorAnalysisChoices{{"c1", "c2"}, false, "", false}, kTestsContinuous},
      {FactorAnalysisChoices{kO3C1, false, "", false}, kTestsWithOrdinal},
      {RegressionChoices{{"c1"}, {"o1"}}, kTestsWithOrdinal},
      {RegressionChoices{{"c1"}, {"top"}}, kTestsContinuous},
      {BootstrappingChoices{}, kTestsAll},
  };
  for (const auto& c : cases) EXPECT_EQ(TestsOf(SixVariables(), c.choices), c.tests);
}

TEST(ProcedureProblems, AreToldBeforeAnythingIsWritten) {
  const TempFolder folder;
  const CString thresholds = folder / "my.th";
  WriteBytes(thresholds, "0 1\n");
  const CString missing = "The previously saved threshold file is missing!";
  const CString kind = ". Data > Define Variables sets the type of a variable.";
  const CString convergence =
      "Convergence criterion must be a real number\nbetween 0.0000001 and 0.01";
  const auto imputation = [](const char* iterations, const char* criterion, const char* sets) {
    return MultipleImputationChoices{kO12, true, iterations, criterion, sets};
  };
  const auto compute = [](const char* target, const char* expression, const char* file) {
    return ComputeChoices{{{target, expression}}, file};
  };
  const struct {
    ProcedureChoices choices;
    CString text;  // empty: in order
  } cases[] = {
      {FactorAnalysisChoices{{}, false, "many", false}, ""},
      {FactorAnalysisChoices{{"absent"}, false, "", false}, "There is no variable absent."},
      {OrdinalFactorChoices{{}, false, ""}, ""},
      {OrdinalFactorChoices{kO12, false, "3"},
       "Please enter a whole number between 1 and 2 for the number of factors."},
      {OrdinalFactorChoices{kO3C1, false, ""}, "c1 is no ordinal variable" + kind},
      {PrincipalComponentChoices{{}, false, false, "6"}, ""},
      {PrincipalComponentChoices{{}, false, false, "7"},
       "Please enter a whole number between 1 and 6 for the number of components."},
      {EqualThresholdChoices{{"o1"}}, "Please select at least two ordinal variables."},
      {EqualThresholdChoices{kO3C1}, "c1 is no ordinal variable" + kind},
      {EqualThresholdChoices{kO12, true, " "}, "Please enter the file name for the thresholds."},
      {EqualThresholdChoices{kO12, false, ""}, ""},
      {FixThresholdChoices{{}, thresholds}, "Please select at least one ordinal variable."},
      {FixThresholdChoices{kO12, ""}, missing},
      {FixThresholdChoices{kO12, folder / "absent"}, missing},
      {FixThresholdChoices{kO12, folder.Path()}, missing},
      {FixThresholdChoices{kO12, thresholds}, ""},
      {HomogeneityChoices{}, "Please select two ordinal variables."},
      {HomogeneityChoices{{"o1", "o1"}}, "Please select two ordinal variables."},
      {HomogeneityChoices{{"o1", "o2", "o3"}}, "Please select two ordinal variables."},
      {HomogeneityChoices{{"o1", "c1"}}, "c1 is no ordinal variable" + kind},
      {NormalScoreChoices{}, "Please select at least one variable."},
      {ImputationChoices{{}, kO12}, "Please select at least one variable to impute."},
      {ImputationChoices{kO12, {}}, "Please select at least one matching variable."},
      {ImputationChoices{kO12, kO3C1, "half"},
       "Please enter a number of at least 0 for the variance ratio."},
      {ImputationChoices{kO12, kO3C1, "0"}, ""},
      {MultipleImputationChoices{}, "Please select at least one variable."},
      {imputation("10000", "0.01", "1000"), ""},
      {imputation("1", "0.0000001", "1"), ""},
      {imputation("1", "0.02", "1"), convergence},
      {imputation("1", "0.00000001", "1"), convergence},
      {imputation("0", "1e-4x", "0"), convergence},
      {imputation("10001", "0.001", "0"),
       "Please enter a number between 1 and 10000\nfor the number of iterations"},
      {imputation("5", "0.001", "1001"),
       "Please enter a number between 1 and 1000\nfor the RP value"},
      {MultipleImputationChoices{kO12, false, "5", "0.001", "no number"}, ""},
      {BootstrappingChoices{"0", "100"},
       "Please enter a whole number between 1 and 2147483647 for the number of bootstrap "
       "samples."},
      {BootstrappingChoices{"9", "101"},
       "Please enter a whole number between 1 and 100 for the sample fraction, in percent of the "
       "cases."},
      {BootstrappingChoices{"9", "50", false, "", true, ""},
       "Please enter the file name for the saved data."},
      {RegressionChoices{{}, {"c1"}}, "Please select at least one Y variable."},
      {RegressionChoices{{"c1"}, {}}, "Please select at least one X variable."},
      {RegressionChoices{{"c1"}, kO3C1},
       "c1 stands in both lists. Please remove it from one of them."},
      {TwoStageChoices{{"c1"}, {"c2"}, {}}, "Please select at least one instrumental variable."},
      {TwoStageChoices{{"c1"}, {"c2"}, {"c2", "o1"}}, ""},
      {ProbitChoices{{"o1", "c1"}, {"c2"}}, kNotOrdinal},
      {ProbitChoices{{"o1"}, {"c2"}, false, false, {"o2"}, thresholds},
       "The thresholds of o2 are chosen, but it is none of the ordinal variables of the "
       "regression."},
      {ProbitChoices{kO12, {"c2"}, false, false, {"o2"}, ""}, missing},
      {ProbitChoices{kO12, {"c2"}, false, false, {"o2"}, thresholds, {"o1"}},
       "Thresholds can be fixed or marginal in one run, not both."},
      {LogisticChoices{{"c1"}, {"c2"}}, "c1 is no ordinal variable" + kind},
      {CensoredChoices{{"c1"}, {"c2"}}, "c1 is no censored variable" + kind},
      {CensoredChoices{{"top"}, {"c2"}}, ""},
      {ComputeChoices{{}, "n.VSF"}, "Please enter at least one variable and its expression."},
      {compute("a b", "1", "n.VSF"),
       "The name of a new variable has 1 to 16 characters, none of them a blank or an operator, "
       "and is no number."},
      {compute("x", " ", "n.VSF"), "Please enter the expression of x."},
      {compute("x", "1", " "), "Please enter the file name for the new data."},
      {compute("x", "1", "n.txt"),
       "The new data file is a system data file: its name ends in .VSF."},
      {compute("c1", "1", "n.vsf"), ""},
      {RecodeChoices{kO12, {}, "n.VSF"}, "Please enter at least one old and one new value."},
      {RecodeChoices{kO12, {{" ", "1"}}, "n.VSF"}, "Please enter the old values."},
      {RecodeChoices{kO12, {{"1", "x"}}, "n.VSF"}, "Please enter a number as the new value."},
  };
  for (const auto& c : cases) {
    const auto problem = CheckChoices(SixVariables(), c.choices);
    EXPECT_EQ(problem ? problem->text : CString(), c.text) << EntryOf(c.choices).title;
  }
}

TEST(ProcedureProblems, ThresholdFilesAreLookedForBesideTheData) {
  const TempFolder folder;
  WriteBytes(folder / "my.th", "0 1\n");
  const FixThresholdChoices choices{kO12, "my.th"};
  EXPECT_TRUE(CheckChoices(SixVariables(), choices));
  EXPECT_FALSE(CheckChoices(SixVariables(), choices, folder.Path()));
  EXPECT_FALSE(CheckChoices(SixVariables(), FixThresholdChoices{kO12, folder / "my.th"}, "/"));
}

TEST(ProcedureProblems, EqualNamesAreRefused) {
  TORVIKSTRUCT data = SixVariables();
  data.variable[4].name = "c1";
  const auto problem = CheckChoices(data, RegressionChoices{{"o1"}, {"c1"}});
  ASSERT_TRUE(problem);
  EXPECT_EQ(problem->text, "Several variables are called c1. Please rename them first.");
}

TEST(Procedures, RememberedChoicesForgetVariablesThatAreGone) {
  ProcedureChoices regression = RegressionChoices{{"gone", "c1"}, {"o1"}};
  ProcedureChoices homogeneity = HomogeneityChoices{{"o1", "gone", "o2", "o3"}};
  for (ProcedureChoices* choices : {&regression, &homogeneity})
    ForgetAbsent(SixVariables(), *choices);
  EXPECT_EQ(std::get<RegressionChoices>(regression).y, NameList{"c1"});
  EXPECT_EQ(std::get<HomogeneityChoices>(homogeneity).pairs, (NameList{"o2", "o3"}));
}
