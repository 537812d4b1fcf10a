// The dialog that confirms a text import, from the window's import to the data that it opens.
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableView>

#include <QtTest/QTest>

#include "support/VsfBytes.h"
#include "transfer/dialogs/ImportTextDataDlg.h"
#include "transfer/dialogs/OXELMissingStrings.h"
#include "transfer/dialogs/TextVariablesModel.h"
#include "transfer/dialogs/UGTextDataImportVariables.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"

namespace {

class TextImportDlg : public AppFrameTest {
 protected:
  // Imports `text` from the window; `body` is the user at the dialog, which is accepted unless it
  // ended itself.
  bool Import(const std::string& text, const std::function<void(CdlgImportTextData&)>& body) {
    const std::string source = folder / "data.csv";
    WriteBytes(source, text);
    driver.ThenSaveUnder(QString::fromStdString(folder / "data.VSF"));
    driver.Then([&](QDialog& dialog) {
      body(dynamic_cast<CdlgImportTextData&>(dialog));
      if (dialog.isVisible()) Ok(dialog)->click();
    });
    const bool done = frame.ImportPath(QString::fromStdString(source));
    EXPECT_TRUE(driver.AllAnswered());
    return done;
  }
  static QPushButton* Ok(QDialog& dialog) {
    return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
  }
  static CUGTextDataImportVariables* Grid(QDialog& dialog) {
    return dialog.findChild<CUGTextDataImportVariables*>();
  }
  static void Choose(QDialog& dialog, const char* box, const QString& text) {
    auto* const combo = dialog.findChild<QComboBox*>(box);
    combo->setCurrentIndex(combo->findText(text, Qt::MatchStartsWith));
    emit combo->activated(combo->currentIndex());
  }
  static QString Preview(QDialog& dialog, int row, int column) {
    return dialog.findChild<QTableView*>("previewTable")
        ->model()
        ->index(row, column)
        .data()
        .toString();
  }
  QString Cell(int row, int column) {
    return frame.CurrentWindow()->Table().ValueText({row, column});
  }
};

TEST_F(TextImportDlg, ShowsWhatWasFoundAndTakesIt) {
  ASSERT_TRUE(Import("a,b,c\n1,x,3\n4,NA,6\n", [](CdlgImportTextData& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Importing data.csv");
    EXPECT_EQ(dialog.findChild<QLabel*>("namesLabel")->text(),
              "Detected variable name(s) at top of file.");
    const QAbstractItemModel& model = *Grid(dialog)->model();
    ASSERT_EQ(model.rowCount(), 3);
    const QStringList titles = {"#", "Variables", "Sel", "Num", "Str"};
    for (int i = 0; i < 5; ++i)
      EXPECT_EQ(model.headerData(i, Qt::Horizontal).toString(), titles[i]);
    EXPECT_EQ(model.index(1, 1).data(), "b");
    EXPECT_EQ(model.index(1, 4).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(Preview(dialog, 1, 2), "6");
    EXPECT_EQ(dialog.findChild<COXELMissingStrings*>()->Strings(), QStringList({"NA", "NIL"}));
  }));
  EXPECT_EQ(Cell(1, 2), "6");
}

TEST_F(TextImportDlg, MouseAndKeyboardChangeTheMarks) {
  ASSERT_TRUE(Import("a,b,c\n1,2,3\n", [](CdlgImportTextData& dialog) {
    CUGTextDataImportVariables& grid = *Grid(dialog);
    const auto click = [&](int row, int column) {
      QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                        grid.visualRect(grid.model()->index(row, column)).center());
    };
    click(0, 2);
    EXPECT_EQ(grid.model()->index(0, 2).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
    click(1, 3);
    EXPECT_EQ(grid.model()->index(1, 3).data(Qt::CheckStateRole).toInt(), Qt::Checked)
        << "a round mark is not taken away";
    grid.setCurrentIndex(grid.model()->index(0, 2));
    grid.selectAll();
    QTest::keyClick(&grid, Qt::Key_Space);
    QTest::keyClick(&grid, Qt::Key_Space);
    EXPECT_FALSE(Ok(dialog)->isEnabled()) << "nothing selected";
    grid.clearSelection();
    grid.setCurrentIndex(grid.model()->index(2, 2));
    QTest::keyClick(&grid, Qt::Key_Space);
    EXPECT_TRUE(Ok(dialog)->isEnabled());
  }));
  EXPECT_EQ(frame.CurrentWindow()->Document().GetVarnum(), 1);
  EXPECT_EQ(Cell(0, 0), "3");
}

TEST_F(TextImportDlg, RefusesANameThatIsInUse) {
  ASSERT_TRUE(Import("a,b\n1,2\n", [this](CdlgImportTextData& dialog) {
    QAbstractItemModel& model = *Grid(dialog)->model();
    driver.ThenPress(QMessageBox::Ok);
    EXPECT_FALSE(model.setData(model.index(1, 1), "A", Qt::EditRole));
    Settle();
    EXPECT_EQ(driver.Texts().value(0), "A already defined in row 1");
    EXPECT_EQ(model.index(1, 1).data(), "b");
    EXPECT_TRUE(model.setData(model.index(1, 1), "new", Qt::EditRole));
  }));
  EXPECT_EQ(frame.CurrentWindow()->Document().GetTorvik()->variable[1].name, "new");
}

TEST_F(TextImportDlg, ThePreviewFollowsTheWayOfReading) {
  ASSERT_TRUE(Import("\xE4;b\n1,5;2\n-;3\n", [](CdlgImportTextData& dialog) {
    EXPECT_TRUE(dialog.findChild<QLabel*>("problemLabel")->isVisible()) << "fields too many";
    Choose(dialog, "separatorBox", "Semicolon");
    Choose(dialog, "decimalBox", "Comma");
    EXPECT_FALSE(dialog.findChild<QLabel*>("problemLabel")->isVisible());
    EXPECT_EQ(Preview(dialog, 0, 0), "1,5");
    EXPECT_EQ(Grid(dialog)->model()->index(0, 1).data().toString(), QString::fromUtf8("\u00E4"));
    auto* const missing = dialog.findChild<COXELMissingStrings*>();
    missing->setCurrentRow(0);
    missing->item(0)->setText("-");
    emit missing->itemDelegate()->closeEditor(nullptr);
    Settle();
    EXPECT_EQ(Grid(dialog)->model()->index(0, 3).data(Qt::CheckStateRole).toInt(), Qt::Checked)
        << "numeric, now that - is no text";
    dialog.findChild<QCheckBox*>("namesCheck")->click();
    EXPECT_EQ(dialog.findChild<QLabel*>("namesLabel")->text(), "Variable name not detected.");
    EXPECT_EQ(Preview(dialog, 1, 0), "1,5");
    dialog.findChild<QCheckBox*>("namesCheck")->click();
  }));
  EXPECT_EQ(Cell(0, 0), "1.5");
  EXPECT_EQ(frame.CurrentWindow()->Document().GetRecnum(), 2);
}

TEST_F(TextImportDlg, CancelWritesNothing) {
  EXPECT_FALSE(Import("a,b\n1,2\n", [](CdlgImportTextData& dialog) { dialog.reject(); }));
  EXPECT_TRUE(frame.DataWindows().empty());
  EXPECT_EQ(folder.FileCount(), 1U);
}

}  // namespace
