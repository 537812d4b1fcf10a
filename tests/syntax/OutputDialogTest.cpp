#include <gtest/gtest.h>

#include "syntax/OutputDialog.h"
#include "syntax/OutputOptions.h"

TEST(OutputDialog, OpeningDisablesByModeAndTests) {
  const struct {
    int mode;
    int tests;
    int before;  // the bivariate test in the record
    bool data, tables, bivariate, multivariate;
    int after;  // the box of the bivariate test
  } cases[] = {
      {0, 0, 0, true, true, true, false, 1},  {0, 1, 1, true, false, false, true, 0},
      {1, 2, 0, true, true, true, true, 1},   {2, 0, 1, false, true, true, false, 1},
      {8, 1, 0, true, false, false, true, 0},
  };
  for (const auto& c : cases) {
    TRVOUSTRUCT options;
    options.bBivariateTests = c.before;
    const OutputDialog dialog = OpenOutputDialog(options, c.mode, c.tests);
    EXPECT_EQ(dialog.enabled.data, c.data) << c.mode;
    EXPECT_EQ(dialog.enabled.bivariateTables, c.tables) << c.tests;
    EXPECT_EQ(dialog.enabled.bivariateTests, c.bivariate) << c.tests;
    EXPECT_EQ(dialog.enabled.multivariateTests, c.multivariate) << c.tests;
    EXPECT_EQ(dialog.values.bBivariateTests, c.after) << c.mode << ' ' << c.tests;
  }
}

TEST(OutputDialog, MatrixRule) {
  const struct {
    int mode;
    int type;
    bool enabled;
  } cases[] = {
      {2, 0, false}, {2, 4, false}, {2, -1, true},  // nothing happens while no item is selected
      {3, 0, true},  {3, 1, false}, {3, 4, false}, {3, -1, true}, {7, 0, true},  {7, 2, false},
      {7, -1, true}, {0, 1, true},  {4, 1, true},  {8, 4, true},  {1, -1, true},
  };
  for (const auto& c : cases) {
    TRVOUSTRUCT options;
    options.nMatrixType = c.type;
    EXPECT_EQ(OpenOutputDialog(options, c.mode, 0).enabled.asymptotic, c.enabled)
        << c.mode << ' ' << c.type;
    options.nMatrixType = -1;
    OutputDialog dialog = OpenOutputDialog(options, c.mode, 0);
    OnMatrixSelected(dialog, c.type);
    EXPECT_EQ(dialog.enabled.asymptotic, c.enabled) << c.mode << ' ' << c.type;
  }
  TRVOUSTRUCT options;
  options.nMatrixType = 1;
  OutputDialog dialog = OpenOutputDialog(options, 7, 0);
  OnMatrixSelected(dialog, 0);
  EXPECT_TRUE(dialog.enabled.asymptotic);
  OnMatrixSelected(dialog, 3);
  EXPECT_FALSE(dialog.enabled.asymptotic);
}

TEST(OutputDialog, SaveBoxesRuleTheirEditsAndTakeTheFocus) {
  const struct {
    SaveBox box;
    std::int32_t TRVOUSTRUCT::*flag;
    OutputEdit edit;
  } cases[] = {
      {SaveBox::Matrix, &TRVOUSTRUCT::bSaveMatrix, OutputEdit::MatrixFile},
      {SaveBox::Means, &TRVOUSTRUCT::bSaveMeans, OutputEdit::MeansFile},
      {SaveBox::Deviations, &TRVOUSTRUCT::bSaveSD, OutputEdit::DeviationsFile},
      {SaveBox::AsymptoticCovariances, &TRVOUSTRUCT::bSaveAC,
       OutputEdit::AsymptoticCovariancesFile},
      {SaveBox::AsymptoticVariances, &TRVOUSTRUCT::bSaveAV, OutputEdit::AsymptoticVariancesFile},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    std::array<bool, 5> one{};
    one[i] = true;
    TRVOUSTRUCT options;
    options.*cases[i].flag = 1;
    OutputDialog dialog = OpenOutputDialog(options, 2, 0);  // whatever the mode disables
    EXPECT_EQ(dialog.enabled.file, one) << i;
    EXPECT_EQ(OnSaveBoxClicked(dialog, cases[i].box, false), OutputEdit::None);
    EXPECT_EQ(dialog.enabled.file, (std::array<bool, 5>{})) << i;
    EXPECT_EQ(OnSaveBoxClicked(dialog, cases[i].box, true), cases[i].edit);
    EXPECT_EQ(dialog.enabled.file, one) << i;
    EXPECT_EQ(dialog.values.*cases[i].flag, 1) << i;
  }
}

TEST(OutputDialog, OkChecksTheFileNamesInTheirOrder) {
  TRVOUSTRUCT options;
  OutputDialog dialog = OpenOutputDialog(options, 0, 0);
  for (const SaveBox box : kSaveBoxes) OnSaveBoxClicked(dialog, box, true);
  dialog.values.bSaveData = 1;  // its name may be empty
  dialog.repetitions = "none";  // checked after the names
  const std::pair<CString TRVOUSTRUCT::*, OutputEdit> order[] = {
      {&TRVOUSTRUCT::strMatrixFile, OutputEdit::MatrixFile},
      {&TRVOUSTRUCT::strMeansFile, OutputEdit::MeansFile},
      {&TRVOUSTRUCT::strSDFile, OutputEdit::DeviationsFile},
      {&TRVOUSTRUCT::strACFile, OutputEdit::AsymptoticCovariancesFile},
      {&TRVOUSTRUCT::strAVFile, OutputEdit::AsymptoticVariancesFile},
  };
  for (const auto& [name, edit] : order) {
    const OutputOkResult result = OnOutputOk(dialog, options);
    EXPECT_FALSE(result.close);
    EXPECT_EQ(result.message, "Please enter the file name for the saved data.");
    EXPECT_EQ(result.caption, "Missing File Name");
    EXPECT_EQ(result.focus, edit);
    dialog.values.*name = "f";
  }
  EXPECT_EQ(OnOutputOk(dialog, options).focus, OutputEdit::Repetitions);
  EXPECT_EQ(options.bSaveData, 0);
  dialog.repetitions = "2";
  EXPECT_TRUE(OnOutputOk(dialog, options).close);
  EXPECT_EQ(options.bSaveData, 1);
  EXPECT_EQ(options.strAVFile, "f");
}

TEST(OutputDialog, TheMatrixTypeOutlivesAFailedCheck) {
  TRVOUSTRUCT options;
  OutputDialog dialog = OpenOutputDialog(options, 0, 0);
  OnMatrixSelected(dialog, kCorrelations);
  OnSaveBoxClicked(dialog, SaveBox::Means, true);
  dialog.seed = "5";
  EXPECT_FALSE(OnOutputOk(dialog, options).close);
  EXPECT_EQ(options.nMatrixType, kCorrelations);
  EXPECT_EQ(options.bSaveMeans, 0);
  EXPECT_EQ(options.nSeed, 123456);
  EXPECT_EQ(options.bBivariateTests, 0);
}

TEST(OutputDialog, NumbersHaveTheirRanges) {
  const struct {
    CString OutputDialog::*text;
    OutputEdit edit;
    std::vector<const char*> good, bad;
  } cases[] = {
      {&OutputDialog::seed,
       OutputEdit::Seed,
       {"-2147483648", "2147483647", "0", " 7 ", "+7"},
       {"", "2147483648", "1.5", "x", "7x", "+-7", "+"}},
      {&OutputDialog::repetitions,
       OutputEdit::Repetitions,
       {"1", "2147483647"},
       {"0", "-1", "2147483648", ""}},
      {&OutputDialog::width, OutputEdit::Width, {"1", "32"}, {"0", "33", ""}},
      {&OutputDialog::decimals, OutputEdit::Decimals, {"0", "8"}, {"-1", "9", ""}},
  };
  for (const auto& c : cases) {
    for (const char* const text : c.good) {
      TRVOUSTRUCT options;
      OutputDialog dialog = OpenOutputDialog(options, 0, 0);
      dialog.*c.text = text;
      EXPECT_TRUE(OnOutputOk(dialog, options).close) << text;
      EXPECT_EQ(OpenOutputDialog(options, 0, 0).*c.text, std::to_string(std::stol(text)));
    }
    for (const char* const text : c.bad) {
      TRVOUSTRUCT options;
      OutputDialog dialog = OpenOutputDialog(options, 0, 0);
      dialog.*c.text = text;
      const OutputOkResult result = OnOutputOk(dialog, options);
      EXPECT_FALSE(result.close) << text;
      EXPECT_EQ(result.focus, c.edit) << text;
      EXPECT_FALSE(result.message.empty()) << text;
    }
  }
}

TEST(OutputDialog, TestsByTheTypesOfTheChosenVariables) {
  TORVIKSTRUCT data;
  data.variables = 3;
  data.ResizeArrays(8);  // what lies behind the third is ordinal
  data.variable[0].type = kContinuous;
  data.variable[1].type = kOrdinal;
  data.variable[2].type = kCensoredBoth;
  const struct {
    std::vector<std::int32_t> chosen;
    int tests;
  } cases[] = {{{}, 0}, {{1}, 1}, {{1, 3}, 1}, {{1, 2}, 0}, {{3, 4}, 1}, {{0, -1}, 1}};
  for (const auto& c : cases) EXPECT_EQ(TestsFor(data, c.chosen), c.tests) << c.chosen.size();
  data.variable[1].type = kContinuous;
  EXPECT_EQ(TestsFor(data, {}), 1);
}
