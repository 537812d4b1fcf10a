// What the Output Options dialog (CDataOutDlg) shows, allows and takes over, without a window. The
// dialog fills its controls from an OutputDialog, hands every event to one of these functions, and
// shows what came of it. Its check box "VEXMOR system data" is a label only: nothing here knows it.
#pragma once

#include <array>
#include <span>

#include "datadoc/DataSet.h"
#include "syntax/OutputOptions.h"

// Modes of the dialog: who opens it.
inline constexpr int kOutputFromMenu = 0;
inline constexpr int kOutputMultipleImputation = 0;
inline constexpr int kOutputBootstrapping = 1;
inline constexpr int kOutputCompute = 1;
inline constexpr int kOutputWithoutData = 2;
inline constexpr int kOutputHomogeneity = 3;
inline constexpr int kOutputEqualThresholds = 4;
inline constexpr int kOutputFixThresholds = 5;
inline constexpr int kOutputMarginalThresholds = 6;
inline constexpr int kOutputProbit = 7;
inline constexpr int kOutputOther = 8;  // factor analysis, regressions, imputation, selection, ...

// The `tests` argument: which tests of normality the data allow.
inline constexpr int kTestsWithOrdinal = 0;  // the multivariate tests are off
inline constexpr int kTestsContinuous = 1;   // the bivariate ones are off
inline constexpr int kTestsAll = 2;
// By the variables chosen in a procedure's dialog, numbered from 1; none means all of them.
int TestsFor(const TORVIKSTRUCT& data, std::span<const std::int32_t> chosen);

// The texts of the combo box "Moment Matrix", indexed by matrix type.
inline constexpr std::array<const char*, 5> kMatrixTexts = {
    "Covariances       ", "Correlations      ", "Augmented Moments ", "Moments about Zero",
    "None Selected     "};

// The check boxes "Save to file:", in the order in which their file names are checked.
enum class SaveBox { Matrix, Means, Deviations, AsymptoticCovariances, AsymptoticVariances };
inline constexpr std::array kSaveBoxes = {SaveBox::Matrix, SaveBox::Means, SaveBox::Deviations,
                                          SaveBox::AsymptoticCovariances,
                                          SaveBox::AsymptoticVariances};

// The edits that the focus is put on.
enum class OutputEdit {
  None,
  MatrixFile,
  MeansFile,
  DeviationsFile,
  AsymptoticCovariancesFile,
  AsymptoticVariancesFile,
  Seed,
  Repetitions,
  Width,
  Decimals
};

// Where in the options the box and its file name stand, and the edit of that name.
struct SaveFields {
  std::int32_t TRVOUSTRUCT::*checked;
  CString TRVOUSTRUCT::*file;
  OutputEdit edit;
};
SaveFields FieldsOf(SaveBox box);

// What can be used. What is not named here always can.
struct OutputEnabled {
  bool data = true;  // the "Data" group, its check box and edit, width and decimals
  bool bivariateTables = true;
  bool bivariateTests = true;
  bool multivariateTests = true;
  bool asymptotic = true;  // labels and "Save to file:" boxes of both asymptotic groups
  std::array<bool, kSaveBoxes.size()>
      file{};  // the edit of each SaveBox, and its "Print in output"
};

// The dialog at one moment.
struct OutputDialog {
  // What the controls hold. The matrix type is the one before the dialog (`selection` is the combo
  // box), and so are the four numbers below, which are edited as texts.
  TRVOUSTRUCT values;
  int selection = kNoMatrixSelected;  // item of the combo box
  CString seed;
  CString repetitions;
  CString width;
  CString decimals;
  OutputEnabled enabled;
  int mode = kOutputFromMenu;
};

OutputDialog OpenOutputDialog(const TRVOUSTRUCT& options, int mode, int tests);

// After another item of the combo box was selected.
void OnMatrixSelected(OutputDialog& dialog, int selection);

// After a "Save to file:" box was clicked. Returns the edit that takes the focus.
OutputEdit OnSaveBoxClicked(OutputDialog& dialog, SaveBox box, bool checked);

struct OutputOkResult {
  bool close = false;
  CString message;  // shown while the dialog stays open
  CString caption;
  OutputEdit focus = OutputEdit::None;
};
// After OK. Takes everything over into `options`, or nothing but the matrix type when the dialog
// stays open: it is stored before the checks and remains even when Cancel follows. The file of
// transformed data may be empty.
OutputOkResult OnOutputOk(const OutputDialog& dialog, TRVOUSTRUCT& options);
