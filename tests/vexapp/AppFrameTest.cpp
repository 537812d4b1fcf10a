// The main window: opening, showing, saving and closing data windows.
#include <QLabel>
#include <QMdiArea>
#include <QStackedWidget>
#include <QToolBar>

#include "resources/Commands.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"

using namespace commands;

namespace {

QString PaneText(const CAppFrame& frame, const char* name) {
  return frame.findChild<QLabel*>(name)->text();
}

bool ShowsStartPage(const CAppFrame& frame) {
  return frame.findChild<QWidget*>("StartPage")->isVisible();
}

TEST_F(AppFrameTest, ShowsAnOpenedDataSet) {
  EXPECT_TRUE(ShowsStartPage(frame));
  EXPECT_EQ(frame.windowTitle(), "Vex Data");
  ASSERT_TRUE(frame.OpenPath(Sample("survey.VSF", 2800, 28)));
  EXPECT_FALSE(ShowsStartPage(frame));
  EXPECT_EQ(frame.windowTitle(), "survey.VSF[*] - Vex Data");
  EXPECT_EQ(PaneText(frame, "sizePane"), "2,800 cases, 28 variables");
  EXPECT_TRUE(frame.CurrentWindow()->parentWidget()->isMaximized());
  EXPECT_EQ(PaneText(frame, "cellLabel"), "Case 1, x1 = 0");
  frame.CurrentWindow()->Table().SetCurrentCell({6, 0});
  EXPECT_EQ(PaneText(frame, "cellLabel"), "Case 7, x1 = -999999");
  EXPECT_EQ(frame.CurrentWindow()->Table().ColumnHeading(27), "x28");
}

TEST_F(AppFrameTest, OpensAFileOnce) {
  const QString path = Sample("a.VSF");
  ASSERT_TRUE(frame.OpenPath(path));
  CDataWindow* const first = frame.CurrentWindow();
  ASSERT_TRUE(frame.OpenPath(Sample("b.VSF")));
  ASSERT_TRUE(frame.OpenPath(QString::fromStdString(folder / "../") +
                             QString::fromStdString(folder.Path()).section('/', -1) + "/a.VSF"));
  EXPECT_EQ(frame.DataWindows().size(), 2U);
  EXPECT_EQ(frame.CurrentWindow(), first);
  EXPECT_EQ(frame.windowTitle(), "a.VSF[*] - Vex Data");
}

TEST_F(AppFrameTest, TellsWhatCannotBeOpenedAndStaysAsItWas) {
  WriteBytes(folder / "bad.VSF", "this is no data set");
  driver.ThenPress(QMessageBox::Ok);
  EXPECT_FALSE(frame.OpenPath(QString::fromStdString(folder / "bad.VSF")));
  EXPECT_EQ(driver.Texts(), QStringList("The file is not a correct VEXMOR data system file!"));
  driver.ThenPress(QMessageBox::Ok);
  EXPECT_FALSE(frame.OpenPath(QString::fromStdString(folder / "absent.VSF")));
  EXPECT_EQ(driver.Texts().last(), "The file does not exist!");
  EXPECT_TRUE(frame.DataWindows().empty());
  EXPECT_TRUE(ShowsStartPage(frame));
}

TEST_F(AppFrameTest, EnablesWhatIsBuiltAndHasSomethingToWorkOn) {
  const auto isEnabled = [this](int number) { return frame.Menus().Action(number)->isEnabled(); };
  EXPECT_TRUE(isEnabled(kFileOpen) && isEnabled(kFileImport) && isEnabled(kFileExit));
  for (const int number : {kFileSave, kFileSaveAs, kFileClose, kViewGoToCase, kWindowTile}) {
    EXPECT_FALSE(isEnabled(number)) << number;
  }
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  for (const int number : {kFileSave, kFileSaveAs, kFileClose, kViewGoToCase, kWindowTile}) {
    EXPECT_TRUE(isEnabled(number)) << number;
  }
  for (const int number : {kDataDefine, kDataInsertVariable, kDataSort, kFilePrint, kEditPaste}) {
    EXPECT_TRUE(isEnabled(number)) << number;
  }
  for (const int number : {9031, 34070, 34048, 34074, kEditUndo}) {
    EXPECT_FALSE(isEnabled(number)) << number;
  }
}

TEST_F(AppFrameTest, MarksChangesAndSavesThem) {
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  CDataDoc& document = frame.CurrentWindow()->Document();
  document.SetWeight(2);
  document.SetModifiedFlag();
  EXPECT_TRUE(frame.isWindowModified());
  Trigger(kFileSave);
  EXPECT_FALSE(frame.isWindowModified());
  Trigger(kFileClose);
  EXPECT_TRUE(ShowsStartPage(frame));
  ASSERT_TRUE(frame.OpenPath(QString::fromStdString(folder / "a.VSF")));
  EXPECT_EQ(frame.CurrentWindow()->Document().GetTorvik()->weightVariable, 2);
}

TEST_F(AppFrameTest, AsksBeforeChangesAreLost) {
  const struct {
    QMessageBox::StandardButton button;
    std::size_t windowsLeft;
    int weight;
  } cases[] = {
      {QMessageBox::Cancel, 1, 0},
      {QMessageBox::Discard, 0, 0},
      {QMessageBox::Save, 0, 1},
  };
  for (const auto& c : cases) {
    const QString path = Sample("a.VSF");
    ASSERT_TRUE(frame.OpenPath(path));
    frame.CurrentWindow()->Document().SetWeight(1);
    frame.CurrentWindow()->Document().SetModifiedFlag();
    driver.ThenPress(c.button);
    EXPECT_EQ(frame.close(), c.windowsLeft == 0);
    Settle();
    EXPECT_TRUE(driver.AllAnswered());
    EXPECT_EQ(driver.Texts().last(), "Save changes to a.VSF?");
    EXPECT_EQ(frame.DataWindows().size(), c.windowsLeft);
    if (c.windowsLeft > 0) {
      frame.CurrentWindow()->Document().SetModifiedFlag(false);
      Trigger(kFileClose);
    }
    ASSERT_TRUE(frame.OpenPath(path));
    EXPECT_EQ(frame.CurrentWindow()->Document().GetTorvik()->weightVariable, c.weight);
    Trigger(kFileClose);
    frame.show();
  }
}

TEST_F(AppFrameTest, ClosesNothingMoreAfterACancel) {
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  ASSERT_TRUE(frame.OpenPath(Sample("b.VSF")));
  for (CDataWindow* window : frame.DataWindows()) window->Document().SetModifiedFlag();
  driver.ThenPress(QMessageBox::Cancel);
  EXPECT_FALSE(frame.close());
  EXPECT_EQ(frame.DataWindows().size(), 2U);
  for (CDataWindow* window : frame.DataWindows()) window->Document().SetModifiedFlag(false);
}

TEST_F(AppFrameTest, KeepsTheDataToolBarWithTheDataWindows) {
  auto* bar = frame.findChild<QToolBar*>("dataToolBar");
  EXPECT_FALSE(bar->isVisible());
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  EXPECT_TRUE(bar->isVisible());
  EXPECT_TRUE(frame.Menus().Action(kViewDataToolBar)->isChecked());
  // As when a dialog opens: no window is active for a moment.
  emit frame.findChild<QMdiArea*>("dataArea")->subWindowActivated(nullptr);
  EXPECT_TRUE(bar->isVisible());
  ASSERT_TRUE(frame.OpenPath(Sample("b.VSF")));
  EXPECT_TRUE(bar->isVisible());
  Trigger(kViewDataToolBar);
  EXPECT_FALSE(bar->isVisible());
  Trigger(kWindowNext);
  EXPECT_FALSE(bar->isVisible()) << "what the user has hidden stays hidden";
  Trigger(kViewDataToolBar);
  EXPECT_TRUE(bar->isVisible());
  Trigger(kWindowCloseAll);
  EXPECT_FALSE(bar->isVisible());
}

TEST_F(AppFrameTest, SwitchesBetweenTabsAndSubWindows) {
  auto* area = frame.findChild<QMdiArea*>("dataArea");
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  ASSERT_TRUE(frame.OpenPath(Sample("b.VSF")));
  EXPECT_EQ(area->viewMode(), QMdiArea::TabbedView);
  Trigger(kWindowTile);
  EXPECT_EQ(area->viewMode(), QMdiArea::SubWindowView);
  EXPECT_FALSE(frame.Menus().Action(kWindowTabs)->isChecked());
  CDataWindow* const before = frame.CurrentWindow();
  Trigger(kWindowNext);
  EXPECT_NE(frame.CurrentWindow(), before);
  Trigger(kWindowTabs);
  EXPECT_EQ(area->viewMode(), QMdiArea::TabbedView);
}

}  // namespace
