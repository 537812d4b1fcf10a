// The Output Options dialog and what the procedures' dialogs share: controls against the rules of
// OutputDialog.h, which have tests of their own.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "datadoc/DocumentFixture.h"
#include "syntax/OutputDialog.h"
#include "syntax/dialogs/DataOutDlg.h"
#include "syntax/dialogs/ProcedureButtons.h"
#include "syntax/dialogs/ProcedureDlg.h"
#include "vexapp/Driver.h"

namespace {

class OutputDlg : public testing::Test {
 protected:
  void Open(int mode = kOutputFromMenu, int tests = kTestsAll) {
    dialog = std::make_unique<CDataOutDlg>(nullptr, &options, mode, tests);
    dialog->show();
    Settle();
  }
  template <typename Widget>
  Widget& Find(const char* name) {
    auto* const widget = dialog->findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error(name);
    return *widget;
  }
  QCheckBox& Check(const char* name) { return Find<QCheckBox>(name); }
  QLineEdit& Edit(const char* name) { return Find<QLineEdit>(name); }
  bool IsEnabled(const char* name) { return Find<QWidget>(name).isEnabled(); }

  CRecorder host;
  TRVOUSTRUCT options;
  std::unique_ptr<CDataOutDlg> dialog;
};

// Every control and the field that it edits; a crossed pair shows at once.
TEST_F(OutputDlg, EachControlEditsItsOwnField) {
  const std::pair<const char*, std::int32_t TRVOUSTRUCT::*> checks[] = {
      {"saveMatrixCheck", &TRVOUSTRUCT::bSaveMatrix},
      {"saveMeansCheck", &TRVOUSTRUCT::bSaveMeans},
      {"saveDeviationsCheck", &TRVOUSTRUCT::bSaveSD},
      {"saveCovariancesCheck", &TRVOUSTRUCT::bSaveAC},
      {"saveVariancesCheck", &TRVOUSTRUCT::bSaveAV},
      {"printCovariancesCheck", &TRVOUSTRUCT::bPrintAC},
      {"printVariancesCheck", &TRVOUSTRUCT::bPrintAV},
      {"saveDataCheck", &TRVOUSTRUCT::bSaveData},
      {"rewindCheck", &TRVOUSTRUCT::bRewind},
      {"wideCheck", &TRVOUSTRUCT::bWidePrint},
      {"tablesCheck", &TRVOUSTRUCT::bBivariateTables},
      {"multivariateCheck", &TRVOUSTRUCT::bMultivariateTests},
      {"bivariateCheck", &TRVOUSTRUCT::bBivariateTests}};
  const std::pair<const char*, CString TRVOUSTRUCT::*> names[] = {
      {"matrixFileEdit", &TRVOUSTRUCT::strMatrixFile},
      {"meansFileEdit", &TRVOUSTRUCT::strMeansFile},
      {"deviationsFileEdit", &TRVOUSTRUCT::strSDFile},
      {"covariancesFileEdit", &TRVOUSTRUCT::strACFile},
      {"variancesFileEdit", &TRVOUSTRUCT::strAVFile},
      {"dataFileEdit", &TRVOUSTRUCT::strDataFile}};
  const std::pair<const char*, std::int32_t TRVOUSTRUCT::*> numbers[] = {
      {"seedEdit", &TRVOUSTRUCT::nSeed},
      {"repetitionsEdit", &TRVOUSTRUCT::nRepetitions},
      {"widthEdit", &TRVOUSTRUCT::nWidth},
      {"decimalsEdit", &TRVOUSTRUCT::nDecimals}};

  for (const auto& [one, field] : checks) {
    options = TRVOUSTRUCT();
    for (const auto& [name, value] : names) options.*value = name;
    Open();
    for (const auto& [name, value] : checks) Check(name).setChecked(QString(name) == one);
    dialog->accept();
    for (const auto& [name, value] : checks) {
      EXPECT_EQ(options.*value, value == field ? 1 : 0) << one << ' ' << name;
    }
    Open();
    for (const auto& [name, value] : checks) {
      // Opening turns this test on.
      const bool on = QString(name) == "bivariateCheck" || value == field;
      EXPECT_EQ(Check(name).isChecked(), on) << one << ' ' << name;
    }
    for (const auto& [name, value] : names) EXPECT_EQ(Edit(name).text(), name);
  }
  Open();
  int digit = 1;
  for (const auto& [name, value] : numbers) Edit(name).setText(QString::number(++digit));
  for (const auto& [name, value] : names) Edit(name).setText(QString("é ") + name);
  Find<QRadioButton>("setSeedRadio").setChecked(true);
  dialog->accept();
  digit = 1;
  for (const auto& [name, value] : numbers) EXPECT_EQ(options.*value, ++digit) << name;
  for (const auto& [name, value] : names) EXPECT_EQ(options.*value, std::string("é ") + name);
  EXPECT_EQ(options.nSeedMode, 1);
  Open();
  for (const auto& [name, value] : names) EXPECT_EQ(Edit(name).text(), QString("é ") + name);
  EXPECT_TRUE(Find<QRadioButton>("setSeedRadio").isChecked());
}

TEST_F(OutputDlg, ModesAndTestsDisableTheirControls) {
  const struct {
    const char* control;
    std::vector<std::pair<int, int>> disabledIn;  // mode, tests
  } cases[] = {{"dataTitle", {{2, 2}}},
               {"saveDataCheck", {{2, 2}}},
               {"dataFileEdit", {{2, 2}}},
               {"widthEdit", {{2, 2}}},
               {"decimalsEdit", {{2, 2}}},
               {"repetitionsEdit", {}},
               {"rewindCheck", {}},
               {"seedEdit", {}},
               {"wideCheck", {}},
               {"matrixBox", {}},
               {"saveMatrixCheck", {}},
               {"saveMeansCheck", {}},
               {"saveDeviationsCheck", {}},
               {"tablesCheck", {{8, 1}}},
               {"bivariateCheck", {{8, 1}}},
               {"multivariateCheck", {{0, 0}}}};
  for (const auto& c : cases) {
    for (const auto& at : std::vector<std::pair<int, int>>{{0, 0}, {8, 1}, {1, 2}, {2, 2}}) {
      Open(at.first, at.second);
      const bool disabled = std::count(c.disabledIn.begin(), c.disabledIn.end(), at) > 0;
      EXPECT_EQ(IsEnabled(c.control), !disabled) << c.control << ' ' << at.first << at.second;
    }
  }
}

TEST_F(OutputDlg, ShowsTheMatrixTypesAndFollowsThem) {
  options.nMatrixType = kCorrelations;
  Open(kOutputProbit);
  auto& box = Find<QComboBox>("matrixBox");
  QStringList texts;
  for (int i = 0; i < box.count(); ++i) texts << box.itemText(i);
  EXPECT_EQ(texts, (QStringList{"Covariances       ", "Correlations      ", "Augmented Moments ",
                                "Moments about Zero", "None Selected     "}));
  EXPECT_EQ(box.currentIndex(), kCorrelations);
  for (const int type : {0, 4, 0, 2}) {
    box.setCurrentIndex(type);
    for (const char* const name :
         {"covariancesTitle", "saveCovariancesCheck", "variancesTitle", "saveVariancesCheck"}) {
      EXPECT_EQ(IsEnabled(name), type == kCovariances) << name << type;
    }
  }
  options.nMatrixType = kNoMatrixSelected;
  Open(kOutputProbit);
  EXPECT_EQ(Find<QComboBox>("matrixBox").currentIndex(), -1);
  EXPECT_TRUE(IsEnabled("saveCovariancesCheck"));
}

TEST_F(OutputDlg, ACheckedBoxEnablesItsEditAndTakesTheFocusThere) {
  Open();
  for (const QString name : {"matrix", "means", "deviations", "covariances", "variances"}) {
    const std::string edit = (name + "FileEdit").toStdString();
    const std::string save =
        QString("save%1%2Check").arg(name[0].toUpper()).arg(name.mid(1)).toStdString();
    EXPECT_FALSE(IsEnabled(edit.c_str())) << edit;
    Check(save.c_str()).click();
    EXPECT_TRUE(Edit(edit.c_str()).isEnabled() && Edit(edit.c_str()).hasFocus()) << edit;
    Check(save.c_str()).click();
    EXPECT_FALSE(IsEnabled(edit.c_str())) << edit;
  }
  EXPECT_FALSE(IsEnabled("printCovariancesCheck") || IsEnabled("printVariancesCheck"));
  Check("saveVariancesCheck").click();
  EXPECT_TRUE(IsEnabled("printVariancesCheck"));
  EXPECT_FALSE(IsEnabled("printCovariancesCheck"));
}

TEST_F(OutputDlg, StaysOpenWithoutAFileNameAndKeepsTheMatrixType) {
  Open();
  Find<QComboBox>("matrixBox").setCurrentIndex(kMomentsAboutZero);
  Check("saveVariancesCheck").click();
  Check("saveMeansCheck").click();
  Check("saveDataCheck").click();  // its name may be empty
  dialog->accept();
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(host.LastMessage(), "Please enter the file name for the saved data.");
  EXPECT_EQ(host.messages.back().title, "Missing File Name");
  EXPECT_TRUE(Edit("meansFileEdit").hasFocus());
  Edit("meansFileEdit").setText("m");
  dialog->accept();
  EXPECT_TRUE(Edit("variancesFileEdit").hasFocus());
  dialog->reject();
  EXPECT_EQ(options.nMatrixType, kMomentsAboutZero);
  EXPECT_EQ(options.bSaveMeans, 0);
  EXPECT_EQ(options.strMeansFile, "");

  Open();
  Edit("widthEdit").setText("33");
  dialog->accept();
  EXPECT_TRUE(dialog->isVisible() && Edit("widthEdit").hasFocus());
  EXPECT_EQ(options.nWidth, 15);
}

// A dialog as the procedures have them.
class CSampleDlg final : public CProcedureDlg {
 public:
  explicit CSampleDlg(CDataDoc& document)
      : CProcedureDlg(document, kOutputWithoutData, nullptr), buttons(new CProcedureButtons(this)) {
    ConnectButtons(*buttons);
  }
  ProcedureJob Job() const override { return JobOfLines(Document(), {"FA MR"}, "BS=2 "); }
  CString Problem() const override { return problem; }
  QPushButton& Button(const char* name) { return *buttons->findChild<QPushButton*>(name); }

  CProcedureButtons* buttons;
  CString problem;
};

class ProcedureDlg : public DocumentTest {
 protected:
  ProcedureDlg() {
    Fill({{1, 2}});
    WriteBytes(data, "data");
    document.SetPathName(data);
    document.SetModifiedFlag(false);
  }
  ProcedureState PressIn(CSampleDlg& dialog, const char* button) {
    driver.Then([&, button](QDialog&) { dialog.Button(button).click(); });
    return RunProcedureDialog(document, dialog).state;
  }
  const std::string data = folder / "d.VSF";
  CDialogDriver driver;
};

TEST_F(ProcedureDlg, ButtonsEndInTheirActions) {
  const std::tuple<const char*, ProcedureState, bool> cases[] = {
      {"runButton", ProcedureState::Done, true},
      {"syntaxButton", ProcedureState::SyntaxShown, true},
      {"cancelButton", ProcedureState::NotWanted, false}};
  for (const auto& [button, state, written] : cases) {
    CSampleDlg dialog(document);
    EXPECT_EQ(PressIn(dialog, button), state) << button;
    const std::string syntax = ReadBytes(folder / "d.TRK");
    EXPECT_EQ(syntax.ends_with("\nFA MR\nOU XT XM BS=2 \n"), written) << syntax;
    std::filesystem::remove(folder / "d.TRK");
  }
}

TEST_F(ProcedureDlg, AProblemKeepsItOpenAndOutputOptionsEditTheDocuments) {
  CSampleDlg dialog(document);
  dialog.problem = "no variable";
  driver.Then([&](QDialog&) {
    dialog.Button("runButton").click();
    EXPECT_EQ(host.LastMessage(), "no variable");
    dialog.Button("outputButton").click();
  });
  driver.Then([&](QDialog& output) {
    EXPECT_FALSE(output.findChild<QWidget*>("saveDataCheck")->isEnabled());
    output.findChild<QCheckBox*>("wideCheck")->click();
    output.accept();
    dialog.reject();
  });
  EXPECT_EQ(RunProcedureDialog(document, dialog).state, ProcedureState::NotWanted);
  EXPECT_EQ(document.GetOutputOptions()->bWidePrint, 1);
  EXPECT_TRUE(driver.AllAnswered());
}

}  // namespace
