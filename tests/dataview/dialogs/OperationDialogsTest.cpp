// The dialogs that insert, delete, sort, select and choose: what they hand back.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include "dataview/dialogs/ChooseVariableDlg.h"
#include "dataview/dialogs/DataFormatDlg.h"
#include "dataview/dialogs/DataSelectDlg.h"
#include "dataview/dialogs/DeleteCasesDlg.h"
#include "dataview/dialogs/DeleteVariablesDlg.h"
#include "dataview/dialogs/DialogFixture.h"
#include "dataview/dialogs/FindValueDlg.h"
#include "dataview/dialogs/InsertCasesDlg.h"
#include "dataview/dialogs/InsertVariablesDlg.h"
#include "dataview/dialogs/PrintRangeDlg.h"
#include "dataview/dialogs/SortCasesDlg.h"
#include "dataview/dialogs/VariablePicker.h"
#include "dataview/table/TableCursor.h"

namespace {

using OperationDialogs = DialogTest;

TEST_F(OperationDialogs, InsertCasesWhereItSays) {
  CdlgInsertCases dialog(7, 20, nullptr);
  InsertCasesRequest request = dialog.Request();
  EXPECT_EQ(request.caseNumber, 7);
  EXPECT_FALSE(request.atEnd || request.after);
  Find<QSpinBox>(dialog, "countSpin").setValue(3);
  Click(dialog, "afterRadio");
  EXPECT_TRUE(Find<QLabel>(dialog, "hintLabel").text().contains("8 to 10"));
  Click(dialog, "endRadio");
  request = dialog.Request();
  EXPECT_TRUE(request.atEnd);
  EXPECT_EQ(request.count, 3);
  EXPECT_TRUE(Find<QLabel>(dialog, "hintLabel").text().contains("21 to 23"));
}

TEST_F(OperationDialogs, InsertCasesIntoNoneAndIntoTooMany) {
  const CdlgInsertCases empty(0, 0, nullptr);
  EXPECT_TRUE(empty.Request().atEnd);
  EXPECT_EQ(empty.Request().caseNumber, 0);
  CdlgInsertCases full(1, kMostCases, nullptr);
  EXPECT_FALSE(Ok(full).isEnabled());
  CdlgInsertCases nearly(kMostCases - 2, kMostCases - 2, nullptr);
  EXPECT_EQ(Find<QSpinBox>(nearly, "countSpin").maximum(), 2);
  EXPECT_EQ(nearly.Request().caseNumber, kMostCases - 2);
}

TEST_F(OperationDialogs, InsertVariablesNamesThemFromTheOldNumberOn) {
  CdlgInsertVariables dialog(*document.GetTorvik(), 2, nullptr);
  Find<QSpinBox>(dialog, "countSpin").setValue(2);
  Click(dialog, "afterRadio");
  const InsertVariablesRequest request = dialog.Request();
  EXPECT_EQ(request.variable, 2);
  EXPECT_EQ(request.count, 2);
  EXPECT_TRUE(request.after);
  EXPECT_TRUE(Find<QLabel>(dialog, "hintLabel").text().contains("var6 to var7"));
}

TEST_F(OperationDialogs, DeleteCasesInThreeForms) {
  CdlgDeleteCases dialog(5, 5, 20, nullptr);
  const auto range = [&] { return DeletionRange(dialog.Request(), 20); };
  EXPECT_EQ(range().begin, 4);
  EXPECT_EQ(range().end, 5);
  Click(dialog, "fromRadio");
  Find<QSpinBox>(dialog, "toSpin").setValue(9);
  EXPECT_EQ(range().end, 9);
  Find<QSpinBox>(dialog, "toSpin").setValue(2);
  EXPECT_FALSE(Ok(dialog).isEnabled()) << "an empty range";
  Click(dialog, "restRadio");
  EXPECT_EQ(range().begin, 4);
  EXPECT_EQ(range().end, 20);
  EXPECT_TRUE(Ok(dialog).isEnabled());
}

TEST_F(OperationDialogs, DeleteVariablesButNotAll) {
  CdlgDeleteVariables dialog(*document.GetTorvik(), {1, 2}, nullptr);
  EXPECT_EQ(dialog.Variables(), (std::vector<std::int32_t>{1, 2}));
  auto& list = Find<CVariablePicker>(dialog, "variableList");
  list.selectAll();
  EXPECT_FALSE(Ok(dialog).isEnabled());
  list.Select({});
  EXPECT_FALSE(Ok(dialog).isEnabled());
  list.Select({4});
  EXPECT_TRUE(Ok(dialog).isEnabled());
}

TEST_F(OperationDialogs, SortByNothingWithoutAVariable) {
  CdlgDataSortCase dialog(*document.GetTorvik(), 3, nullptr);
  Click(dialog, "descendingRadio");
  EXPECT_EQ(dialog.Request().key, 3);
  EXPECT_EQ(dialog.Request().order, kSortDescending);
  Find<CVariablePicker>(dialog, "variableList").Select({});
  EXPECT_LT(dialog.Request().key, 0);
}

TEST_F(OperationDialogs, ChooseAVariableOrNone) {
  document.SetWeight(2);
  CDataWeightDlg weight(document, nullptr);
  EXPECT_EQ(weight.Variable(), 2);
  Click(weight, "noneRadio");
  EXPECT_EQ(weight.Variable(), 0);
  Find<CVariablePicker>(weight, "variableList").Select({4});
  EXPECT_EQ(weight.Variable(), 5) << "choosing one means to use it";
  EXPECT_FALSE(Find<QPushButton>(weight, "outputButton").isHidden());

  document.SetGroupVariable(99);
  CdlgDataGroupVariable group(*document.GetTorvik(), nullptr);
  EXPECT_EQ(group.Variable(), 0) << "a number beyond the variables is none";
  Click(group, "oneRadio");
  EXPECT_FALSE(Ok(group).isEnabled());
  EXPECT_TRUE(Find<QPushButton>(group, "outputButton").isHidden());
}

TEST_F(OperationDialogs, WeightOpensTheOutputOptions) {
  CDataWeightDlg dialog(document, nullptr);
  dialog.show();
  QString title;
  Then([&title](QDialog& options) { title = options.windowTitle(); });
  Click(dialog, "outputButton");
  EXPECT_EQ(title, "Output Options");
}

TEST_F(OperationDialogs, FormatStaysInItsRanges) {
  CDataFormatDlg dialog({13, 3, 1}, nullptr);
  EXPECT_EQ(dialog.Settings().alignment, 1);
  auto& width = Find<QSpinBox>(dialog, "widthSpin");
  auto& decimals = Find<QSpinBox>(dialog, "decimalsSpin");
  const struct {
    int width, decimals, wantWidth, wantDecimals;
  } cases[] = {{3, -1, 4, 0}, {21, 9, 20, 8}, {4, 8, 4, 8}};
  for (const auto& c : cases) {
    width.setValue(c.width);
    decimals.setValue(c.decimals);
    EXPECT_EQ(dialog.Settings().width, c.wantWidth);
    EXPECT_EQ(dialog.Settings().decimals, c.wantDecimals);
  }
}

class SelectDialog : public DialogTest {
 protected:
  void AddValueRule(CDataSelectDlg& dialog, std::vector<std::int32_t> variables, const char* op,
                    const QString& value, bool remove) {
    auto& page = Find<QWidget>(dialog, "casePage");
    Find<CVariablePicker>(page, "variableList").Select(variables);
    Click(page, op);
    Find<QLineEdit>(page, "valueEdit").setText(value);
    Find<QAbstractButton>(page, "deleteCheck").setChecked(remove);
    Click(page, "addValueButton");
  }
};

TEST_F(SelectDialog, CollectsRulesInTheirOrder) {
  CDataSelectDlg dialog(document, nullptr);
  dialog.show();
  EXPECT_FALSE(Find<QPushButton>(dialog, "runButton").isEnabled());
  AddValueRule(dialog, {1, 4}, "equalRadio", "9", true);
  Click(dialog, "belowNumberRadio");
  Find<QLineEdit>(dialog, "numberEdit").setText("10");
  Click(dialog, "addNumberButton");
  Find<CVariablePicker>(Find<QWidget>(dialog, "variablePage"), "variableList").Select({0, 2});
  EXPECT_EQ(dialog.SelectionLines(), (CStringList{"SD 2 5 = 9", "SC CASE < 10"}));
  EXPECT_EQ(dialog.Job().lines, (CStringList{"SD 2 5 = 9", "SC CASE < 10", "\nSE 1 3 ", "OU XM"}));
  auto& rules = Find<QListWidget>(dialog, "ruleList");
  EXPECT_EQ(rules.item(0)->text(), "Select those cases with value equal to 9 and delete: x2 x5");
  rules.item(0)->setSelected(true);
  Click(dialog, "removeButton");
  EXPECT_EQ(dialog.SelectionLines(), (CStringList{"SC CASE < 10"}));
  AddValueRule(dialog, {0}, "belowRadio", "abc", false);
  EXPECT_EQ(host.messages.size(), 1U) << "a value that is no number is told";
  EXPECT_EQ(dialog.SelectionLines().size(), 1U);
}

TEST_F(SelectDialog, RunsOnlyWhatWasConfirmed) {
  CDataSelectDlg dialog(document, nullptr);
  dialog.show();
  Click(dialog, "addNumberButton");
  bool answer = false;
  dialog.SetConfirm([&answer](const CStringList& lines) {
    EXPECT_EQ(lines, (CStringList{"SC CASE ODD "}));
    return answer;
  });
  Click(dialog, "runButton");
  EXPECT_TRUE(dialog.isVisible());
  answer = true;
  Click(dialog, "runButton");
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.result(), kEndRun);
}

TEST_F(OperationDialogs, FindAsksForNumbersOnly) {
  CFindValueDlg dialog(nullptr);
  auto& low = Find<QLineEdit>(dialog, "lowEdit");
  auto& high = Find<QLineEdit>(dialog, "highEdit");
  EXPECT_FALSE(dialog.Request().has_value());
  low.setText("abc");
  EXPECT_FALSE(Find<QPushButton>(dialog, "nextButton").isEnabled());
  low.setText("5");
  ASSERT_TRUE(dialog.Request().has_value());
  EXPECT_EQ(dialog.Request()->high, 5);
  high.setText("2");
  EXPECT_EQ(dialog.Request()->low, 2) << "either order";
  dialog.SetColumn(3, "x4");
  Click(dialog, "columnCheck");
  Click(dialog, "missingRadio");
  EXPECT_TRUE(dialog.Request()->missing);
  EXPECT_EQ(dialog.Request()->column, 3);
}

TEST_F(OperationDialogs, PrintAllTheSelectionOrARange) {
  CPrintRangeDlg dialog(2'000'000, 6, {10, 20, 1, 3}, true, nullptr);
  EXPECT_EQ(dialog.Choice().cases.end, 2'000'000);
  EXPECT_EQ(dialog.Choice().columnEnd, 6);
  EXPECT_TRUE(dialog.Choice().labels);
  Click(dialog, "selectionRadio");
  EXPECT_EQ(dialog.Choice().cases.begin, 10);
  EXPECT_EQ(dialog.Choice().columnEnd, 3);
  Click(dialog, "fromRadio");
  Find<QSpinBox>(dialog, "fromSpin").setValue(100);
  Find<QSpinBox>(dialog, "toSpin").setValue(99);
  EXPECT_FALSE(Ok(dialog).isEnabled());
}

}  // namespace
