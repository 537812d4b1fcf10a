// Text and DSF files in windows: what is asked before they open, and what may be saved.
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QRadioButton>
#include <QSpinBox>

#include "datadoc/dialogs/Asc2VSFDlg.h"
#include "datadoc/dialogs/MatrixTextDlg.h"
#include "dataview/table/DataGrid.h"
#include "resources/Commands.h"
#include "support/VsfBytes.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"

namespace {

class OtherKindsTest : public AppFrameTest {
 protected:
  QString Write(const char* name, const std::string& bytes) {
    WriteBytes(folder / name, bytes);
    return QString::fromStdString(folder / name);
  }
  // Chooses `path` and the row that begins with `row` in the open dialog.
  void ThenOpen(const QString& path, const QString& row) {
    driver.Then([path, row](QDialog& dialog) {
      auto& files = dynamic_cast<QFileDialog&>(dialog);
      for (const QString& filter : files.nameFilters()) {
        if (filter.startsWith(row)) files.selectNameFilter(filter);
      }
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
      dialog.accept();
    });
  }
  CDataDoc& Document() { return frame.CurrentWindow()->Document(); }
};

TEST_F(OtherKindsTest, AsksForTheVariablesOfAFreeFormatFile) {
  const QString path = Write("free.dat", "age size\n1 2\n3 4\n");
  ThenOpen(path, "Text Data");
  driver.Then([](QDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Enter Number of Variables");
    auto* const spin = dialog.findChild<QSpinBox*>("variableSpin");
    EXPECT_EQ(spin->value(), 2);
    EXPECT_EQ(spin->maximum(), 32767);
    EXPECT_TRUE(dialog.findChild<QCheckBox*>("namesCheck")->isChecked());
    dialog.accept();
  });
  Trigger(commands::kFileOpen);
  ASSERT_TRUE(driver.AllAnswered());
  ASSERT_EQ(frame.DataWindows().size(), 1U);
  EXPECT_EQ(Document().GetRecnum(), 2);
  EXPECT_EQ(Document().GetTorvik()->variable[1].name, "size");

  // From the list of recent files it is asked for again; cancelling opens nothing.
  Trigger(commands::kWindowCloseAll);
  driver.ThenReject();
  EXPECT_FALSE(frame.OpenPath(path));
  EXPECT_TRUE(driver.AllAnswered());
  EXPECT_TRUE(frame.DataWindows().empty());
}

TEST_F(OtherKindsTest, AFormatStatementAnswersTheQuestion) {
  ThenOpen(Write("fixed.dat", "(2F3.1)\n1.5 25\n"), "Text Data");
  Trigger(commands::kFileOpen);
  ASSERT_TRUE(driver.AllAnswered());
  EXPECT_EQ(Document().GetVarnum(), 2);
}

TEST_F(OtherKindsTest, OpensMatrixTextByItsParts) {
  ThenOpen(Write("matrix.dat", "5 6\n1\n2 3\n"), "Moment Matrix");
  driver.Then([](QDialog& dialog) {
    dialog.findChild<QSpinBox*>("variableSpin")->setValue(2);
    auto* const order = dialog.findChild<QComboBox*>("orderBox");
    EXPECT_EQ(order->currentText(), "Matrix");
    order->setCurrentText("Means, matrix");
    EXPECT_TRUE(dialog.findChild<QRadioButton*>("lowerButton")->isChecked());
    dialog.accept();
  });
  Trigger(commands::kFileOpen);
  ASSERT_TRUE(driver.AllAnswered());
  CDataViewTbl& table = frame.CurrentWindow()->Table();
  EXPECT_EQ(table.RowCount(), 3);
  EXPECT_EQ(table.ValueText({1, 1}), "3");
  EXPECT_EQ(table.Grid().Model().RowHeading(1), "VAR002");
  EXPECT_EQ(table.Grid().Model().RowHeading(2), "Mean");
}

TEST_F(OtherKindsTest, AsksForTheGroupOfADsfFile) {
  Bytes bytes;
  bytes.Text("VEXMOR SYSTEM DATA FILE", 64, ' ').Int(0).Int(1);
  bytes.Text("x", 16).Reals({1, 2}).Zeros(3 * 8 + 140 - 32);
  bytes.Text("y", 16).Reals({3, 4});
  const QString path = Write("groups.DSF", bytes.Get());
  driver.Then([](QDialog& dialog) {
    dynamic_cast<QInputDialog&>(dialog).setIntValue(2);
    dialog.accept();
  });
  ASSERT_TRUE(frame.OpenPath(path));
  EXPECT_EQ(Document().GetTorvik()->variable[0].name, "y");
  EXPECT_EQ(Document().GetExtern().group, 1);
}

}  // namespace
