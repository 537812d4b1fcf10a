// The commands of the data window from the menus, through their dialogs, to the data set.
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolBar>

#include <QtTest/QTest>

#include "dataview/dialogs/VariablePicker.h"
#include "dataview/table/DataGrid.h"
#include "resources/Commands.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"
#include "vexapp/SelectionStatistics.h"

using namespace commands;

namespace {

class DataCommandsTest : public AppFrameTest {
 protected:
  DataCommandsTest() { frame.OpenPath(Sample("a.VSF", 20, 3)); }
  ~DataCommandsTest() override {
    for (CDataWindow* window : frame.DataWindows()) window->Document().SetModifiedFlag(false);
  }

  CDataWindow& Window() { return *frame.CurrentWindow(); }
  CDataDoc& Document() { return Window().Document(); }
  double Cell(std::int64_t row, int column) {
    return Window().View().GetCellValue({row, column}).value_or(-1);
  }
  void MoveTo(std::int64_t row, int column) { Window().Table().SetCurrentCell({row, column}); }
  bool IsEnabled(int number) { return frame.Menus().Action(number)->isEnabled(); }
  QString Pane(const char* name) { return frame.findChild<QLabel*>(name)->text(); }
  void ThenOk(const CDialogDriver::Answer& first = {}) {
    driver.Then([first](QDialog& dialog) {
      if (first) first(dialog);
      dialog.accept();
    });
  }
  template <typename Widget>
  static Widget& Find(QWidget& parent, const char* name) {
    return *parent.findChild<Widget*>(name);
  }
};

TEST_F(DataCommandsTest, EditsACellUndoesAndRedoesIt) {
  MoveTo(2, 1);
  EXPECT_FALSE(IsEnabled(kEditUndo));
  QTest::keyClick(&Window().Table().Grid(), '7');
  QTest::keyClicks(QApplication::focusWidget(), ".5");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  Settle();
  EXPECT_EQ(Cell(2, 1), 7.5);
  EXPECT_TRUE(Document().IsModified());
  ASSERT_TRUE(IsEnabled(kEditUndo));
  EXPECT_TRUE(frame.Menus().Action(kEditUndo)->text().startsWith("&Undo "));
  Trigger(kEditUndo);
  EXPECT_EQ(Cell(2, 1), 2.01);
  ASSERT_TRUE(IsEnabled(kEditRedo));
  Trigger(kEditRedo);
  EXPECT_EQ(Cell(2, 1), 7.5);
}

TEST_F(DataCommandsTest, CommitsAnEditBeforeItSaves) {
  MoveTo(1, 1);
  Window().Table().Grid().StartEditWith("42");
  Trigger(kFileSave);
  EXPECT_EQ(Cell(1, 1), 42);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(DataCommandsTest, CopiesAValueAndBlocksSeparately) {
  MoveTo(4, 2);
  Trigger(kEditCopy);
  QApplication::clipboard()->setText("1\t2\n3\t4\n");
  MoveTo(0, 0);
  Trigger(kEditPaste);
  EXPECT_EQ(Cell(0, 0), 4.02);
  MoveTo(18, 2);
  Trigger(kEditPasteCells);  // clipped to the sheet
  EXPECT_EQ(Cell(18, 2), 1);
  EXPECT_EQ(Cell(19, 2), 3);
  EXPECT_EQ(Document().GetVarnum(), 3);
  MoveTo(18, 1);
  Window().Table().Grid().MoveTo({19, 2}, true);
  Trigger(kEditCopyCells);
  EXPECT_EQ(QApplication::clipboard()->text(), "18.01\t1\n19.01\t3\n");
  Trigger(kEditClearCells);
  EXPECT_EQ(Cell(19, 1), kMissingCode);
}

TEST_F(DataCommandsTest, InsertsDeletesAndTakesItAllBack) {
  MoveTo(3, 1);
  ThenOk([](QDialog& dialog) {
    Find<QSpinBox>(dialog, "countSpin").setValue(2);
    Find<QRadioButton>(dialog, "afterRadio").click();
  });
  Trigger(kDataInsertVariable);
  ASSERT_EQ(Document().GetVarnum(), 5);
  EXPECT_EQ(Document().GetTorvik()->variable[2].name, "var4");
  EXPECT_EQ(Cell(3, 2), 0);
  EXPECT_EQ(Cell(3, 4), 3.02);
  MoveTo(3, 1);
  ThenOk();
  Trigger(kDataInsertCase);
  EXPECT_EQ(Document().GetRecnum(), 21);
  EXPECT_EQ(Cell(3, 1), 0);
  MoveTo(0, 0);
  Window().Table().Grid().MoveTo({4, 0}, true);
  ThenOk();
  Trigger(kDataDeleteCase);
  EXPECT_EQ(Document().GetRecnum(), 16);
  MoveTo(0, 0);
  ThenOk();
  Trigger(kDataDeleteVariable);
  EXPECT_EQ(Document().GetVarnum(), 4);
  EXPECT_EQ(Document().GetTorvik()->variable[0].name, "x2");
  for (int i = 0; i < 4; ++i) Trigger(kEditUndo);
  EXPECT_EQ(Document().GetVarnum(), 3);
  EXPECT_EQ(Document().GetRecnum(), 20);
  EXPECT_EQ(Cell(3, 2), 3.02);
  EXPECT_TRUE(driver.AllAnswered());
}

// A heading that was clicked selects every cell across it; only one of them is meant to go.
TEST_F(DataCommandsTest, DeletionsStartWithOneOfASelectionAcrossTheSheet) {
  CDataGrid& grid = Window().Table().Grid();
  grid.MoveTo({6, 1}, false, CTableCursor::Shape::Columns);
  ThenOk();
  Trigger(kDataDeleteCase);
  EXPECT_EQ(Document().GetRecnum(), 19);
  EXPECT_EQ(Cell(6, 1), 7.01);
  grid.MoveTo({6, 1}, false, CTableCursor::Shape::Rows);
  ThenOk();
  Trigger(kDataDeleteVariable);
  ASSERT_EQ(Document().GetVarnum(), 2);
  EXPECT_EQ(Cell(6, 1), 7.02);
}

TEST_F(DataCommandsTest, SortsByTheChosenVariable) {
  MoveTo(0, 2);
  ThenOk([](QDialog& dialog) { Find<QRadioButton>(dialog, "descendingRadio").click(); });
  Trigger(kDataSort);
  EXPECT_EQ(Cell(0, 2), 19.02);
  driver.ThenReject();
  Trigger(kDataSort);
  EXPECT_EQ(Cell(0, 2), 19.02);
}

TEST_F(DataCommandsTest, DefinesVariablesWithoutTheFileBeingTouched) {
  driver.Then([](QDialog& dialog) { Find<QPushButton>(dialog, "insertButton").click(); });
  driver.Then([](QDialog& dialog) {
    Find<QLineEdit>(dialog, "nameEdit").setText("n1 - n2");
    dialog.accept();
  });
  driver.Then([](QDialog& dialog) { dialog.accept(); });
  Trigger(kDataDefine);
  EXPECT_EQ(Document().GetVarnum(), 5);
  EXPECT_EQ(Document().GetTorvik()->variable[4].name, "n2");
  EXPECT_EQ(Window().Table().ColumnHeading(4), "n2");
}

TEST_F(DataCommandsTest, SavesAWeightAtOnce) {
  ThenOk([](QDialog& dialog) { Find<CVariablePicker>(dialog, "variableList").Select({1}); });
  Trigger(kDataWeight);
  EXPECT_FALSE(Document().IsModified());
  Trigger(kFileClose);
  frame.OpenPath(QString::fromStdString(folder / "a.VSF"));
  EXPECT_EQ(Document().GetTorvik()->weightVariable, 2);
}

TEST_F(DataCommandsTest, MakesANewDataSet) {
  ThenOk([](QDialog& dialog) {
    Find<QSpinBox>(dialog, "variablesSpin").setValue(4);
    Find<QSpinBox>(dialog, "casesSpin").setValue(7);
  });
  Trigger(kFileNew);
  EXPECT_EQ(frame.DataWindows().size(), 2U);
  EXPECT_EQ(Document().GetVarnum(), 4);
  EXPECT_EQ(Document().GetRecnum(), 7);
  EXPECT_EQ(Document().GetTorvik()->variable[3].name, "VAR004");
  EXPECT_EQ(Cell(6, 3), 0);
  EXPECT_EQ(Document().GetPathName(), "");
}

TEST_F(DataCommandsTest, RefusesASelectionOfUnsavedData) {
  Document().SetModifiedFlag();
  driver.ThenPress(QMessageBox::Ok);
  Trigger(kDataSelect);
  EXPECT_EQ(driver.Texts(), QStringList{"Please save data before performing this operation"});
}

TEST_F(DataCommandsTest, TellsWhatASelectionRemovesAndStaysOnNo) {
  driver.Then([](QDialog& dialog) {
    Find<QPushButton>(dialog, "addNumberButton").click();
    Find<QPushButton>(dialog, "runButton").click();
  });
  driver.ThenPress(QMessageBox::No);
  driver.ThenReject();  // it is open still
  Trigger(kDataSelect);
  ASSERT_EQ(driver.Texts().size(), 1);
  EXPECT_TRUE(driver.Texts().front().startsWith("10 of 20 cases are removed"));
  EXPECT_EQ(Document().GetRecnum(), 20);
}

TEST_F(DataCommandsTest, SelectsThroughARunAndTakesItBack) {
  driver.Then([](QDialog& dialog) {
    Find<QPushButton>(dialog, "addNumberButton").click();
    Find<QPushButton>(dialog, "runButton").click();
  });
  driver.ThenPress(QMessageBox::Yes);
  CDataWindow& window = Window();
  Trigger(kDataSelect);
  EXPECT_NE(frame.CurrentText(), nullptr) << "the output of the run";
  EXPECT_EQ(window.Document().GetRecnum(), 10);
  EXPECT_EQ(window.View().GetCellValue({9, 2}), 18.02);
  EXPECT_TRUE(window.Document().IsModified()) << "the file still has all cases";
  ASSERT_TRUE(window.View().Undo());
  EXPECT_EQ(window.Document().GetRecnum(), 20);
  window.Document().SetModifiedFlag(false);
}

TEST_F(DataCommandsTest, EnablesWhatTheDataAllow) {
  const int needVariables[] = {kDataDefine, kDataInsertVariable, kDataInsertCase, kDataSort,
                               kDataWeight, kDataSelect,         kEditPasteCells, kFilePrint};
  for (const int number : needVariables) EXPECT_TRUE(IsEnabled(number)) << number;
  EXTERNDATA matrix;
  matrix.data_type = kDsfFile;
  Document().SetExternData(matrix);
  emit Window().CellChanged();
  for (const int number : needVariables) {
    EXPECT_EQ(IsEnabled(number), number == kFilePrint) << number;
  }
  Document().SetExternData({});
  Trigger(kFileClose);
  for (const int number : needVariables) EXPECT_FALSE(IsEnabled(number)) << number;
}

TEST_F(DataCommandsTest, ShowsStatisticsOfTheSelection) {
  MoveTo(0, 0);
  EXPECT_EQ(Pane("statisticsPane"), "");
  Window().Table().Grid().MoveTo({9, 1}, true);
  Window().findChild<CSelectionStatistics*>()->Finish();
  // The first cell of case 7 is missing.
  EXPECT_EQ(Pane("statisticsPane").toStdString(),
            "Count 19   Missing 1   Mean 4.4263   Min 0   Max 9.01");
}

TEST_F(DataCommandsTest, FindsAValueAndGoesOnWithTheKey) {
  MoveTo(0, 0);
  Trigger(kEditFind);
  auto* const dialog = Window().findChild<QDialog*>("FindValueDlg");
  ASSERT_NE(dialog, nullptr);
  Find<QLineEdit>(*dialog, "lowEdit").setText("5");
  Find<QLineEdit>(*dialog, "highEdit").setText("6");
  Find<QPushButton>(*dialog, "nextButton").click();
  EXPECT_EQ(Window().Table().GetCurrentCell().row, 5);
  Trigger(kEditFindNext);
  Trigger(kEditFindNext);
  EXPECT_EQ(Window().Table().GetCurrentCell().row, 5);
  EXPECT_EQ(Window().Table().GetCurrentCell().column, 2);
  Trigger(kEditFindPrevious);
  EXPECT_EQ(Window().Table().GetCurrentCell().column, 1);
  Find<QLineEdit>(*dialog, "lowEdit").setText("777");
  Find<QLineEdit>(*dialog, "highEdit").clear();
  Find<QPushButton>(*dialog, "nextButton").click();
  EXPECT_EQ(Find<QLabel>(*dialog, "hintLabel").text(), "No cell fits.");
}

TEST_F(DataCommandsTest, AppliesTheFormatToEveryColumn) {
  ThenOk([](QDialog& dialog) {
    Find<QSpinBox>(dialog, "widthSpin").setValue(8);
    Find<QSpinBox>(dialog, "decimalsSpin").setValue(1);
    Find<QRadioButton>(dialog, "leftRadio").click();
  });
  Trigger(kDataFormat);
  EXPECT_EQ(Window().Table().ColumnWidth(2), 48);
  EXPECT_EQ(Window().Table().Grid().Model().ShownText(2, 2), "2");
  EXPECT_EQ(Window().Table().Grid().Model().ColumnAlignment(2), 0);
}

TEST_F(DataCommandsTest, AsksBeforeItPrintsAMillionCases) {
  ASSERT_TRUE(Document().OnNewExternFile());
  Document().SetRecnum(1'000'000);  // nothing is read before the answer
  Window().Table().SetRowCount(1'000'000);
  ThenOk();
  driver.ThenPress(QMessageBox::No);
  Trigger(kFilePrint);
  ASSERT_EQ(driver.Texts().size(), 1);
  EXPECT_TRUE(driver.Texts().front().contains("1,000,000")) << driver.Texts().front().toStdString();
  EXPECT_TRUE(driver.AllAnswered());
}

}  // namespace
