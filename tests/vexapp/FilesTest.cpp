// Files that come in: recent ones, dropped ones, imported ones, and those left behind by a crash.
#include <QDropEvent>
#include <QListWidget>
#include <QMimeData>
#include <filesystem>
#include <unistd.h>

#include "dataview/ScratchFile.h"
#include "resources/Commands.h"
#include "support/TestData.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"
#include "vexapp/ProgressDlg.h"

namespace {

void Drop(CAppFrame& frame, const QString& path) {
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(path)});
  QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&frame, &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&frame, &drop);
  Settle();
}

QStringList RecentTexts(const CAppFrame& frame) {
  QStringList texts;
  for (const QAction* action : frame.Menus().RecentFilesMenu()->actions()) {
    texts << action->text().section('/', -1);
  }
  return texts;
}

TEST_F(AppFrameTest, ListsRecentFilesAndForgetsThoseThatAreGone) {
  const QString a = Sample("a.VSF");
  ASSERT_TRUE(frame.OpenPath(a));
  ASSERT_TRUE(frame.OpenPath(Sample("b & c.VSF")));
  EXPECT_EQ(RecentTexts(frame).mid(0, 2), QStringList({"b && c.VSF", "a.VSF"}));
  auto* list = frame.findChild<QListWidget*>("recentList");
  EXPECT_EQ(list->item(1)->data(Qt::UserRole).toString(), a);

  Trigger(commands::kWindowCloseAll);
  frame.Menus().RecentFilesMenu()->actions().at(1)->trigger();
  EXPECT_EQ(frame.DataWindows().size(), 1U);
  Trigger(commands::kWindowCloseAll);
  std::filesystem::remove(a.toStdString());
  driver.ThenPress(QMessageBox::Ok);
  frame.Menus().RecentFilesMenu()->actions().at(0)->trigger();
  EXPECT_TRUE(driver.AllAnswered());
  EXPECT_FALSE(RecentTexts(frame).contains("a.VSF"));
}

TEST_F(AppFrameTest, OpensADroppedDataSet) {
  Drop(frame, Sample("a.VSF"));
  ASSERT_EQ(frame.DataWindows().size(), 1U);
  EXPECT_EQ(frame.CurrentWindow()->FileName(), "a.VSF");
}

TEST_F(AppFrameTest, ImportsADroppedForeignFile) {
  const QString target = QString::fromStdString(folder / "in.VSF");
  driver.ThenSaveUnder(target);
  Drop(frame, QString::fromStdString(TestData("survey.sav")));
  EXPECT_TRUE(driver.AllAnswered());
  ASSERT_EQ(frame.DataWindows().size(), 1U);
  EXPECT_EQ(frame.CurrentWindow()->FileName(), "in.VSF");
  EXPECT_GT(frame.CurrentWindow()->Document().GetRecnum(), 0);
  EXPECT_FALSE(frame.CurrentWindow()->Document().IsModified());
}

TEST_F(AppFrameTest, KeepsValueLabelsOnlyWhenAskedTo) {
  for (const bool keep : {false, true}) {
    if (keep) Trigger(commands::kFileKeepLabels);
    driver.ThenSaveUnder(QString::fromStdString(folder / (keep ? "with.VSF" : "without.VSF")));
    ASSERT_TRUE(frame.ImportPath(QString::fromStdString(TestData("survey.sav"))));
    const TORVIKSTRUCT& data = *frame.CurrentWindow()->Document().GetTorvik();
    std::int32_t categories = 0;
    for (const VARSTRUCT& variable : data.variable) categories += variable.categories;
    EXPECT_EQ(categories > 0, keep);
  }
}

TEST_F(AppFrameTest, GivesATypedNameTheExtensionAndAsksBeforeItReplaces) {
  const QString target = Sample("in.VSF", 5, 1);
  driver.ThenSaveUnder(QString(target).remove(".VSF"));
  driver.ThenPress(QMessageBox::No);
  driver.ThenReject();
  EXPECT_FALSE(frame.ImportPath(QString::fromStdString(TestData("survey.sav"))));
  EXPECT_TRUE(driver.AllAnswered());
  ASSERT_TRUE(frame.OpenPath(target));
  EXPECT_EQ(frame.CurrentWindow()->Document().GetRecnum(), 5) << "the old file stands";
}

TEST_F(AppFrameTest, ShowsWhatAnImportPutIntoAFileThatIsOpen) {
  const QString target = QString::fromStdString(folder / "in.VSF");
  driver.ThenSaveUnder(target);
  ASSERT_TRUE(frame.ImportPath(QString::fromStdString(TestData("survey.sav"))));
  driver.ThenSaveUnder(target);
  driver.ThenPress(QMessageBox::Yes);
  ASSERT_TRUE(frame.ImportPath(QString::fromStdString(TestData("names.sav"))));
  EXPECT_TRUE(driver.AllAnswered());
  ASSERT_EQ(frame.DataWindows().size(), 1U);
  EXPECT_EQ(frame.CurrentWindow()->Document().GetRecnum(), 2);
}

TEST_F(AppFrameTest, ExportsTheCurrentDataSet) {
  ASSERT_TRUE(frame.OpenPath(Sample("data.VSF")));
  const QString target = QString::fromStdString(folder / "data.csv");
  driver.ThenSaveUnder(target);
  Trigger(commands::kFileExport);
  EXPECT_TRUE(QFileInfo::exists(target));
  EXPECT_FALSE(frame.CurrentWindow()->Document().IsModified());
}

TEST_F(AppFrameTest, LeavesEverythingAsItWasWhenAnImportIsCalledOff) {
  driver.ThenReject();
  EXPECT_FALSE(frame.ImportPath(QString::fromStdString(TestData("survey.sav"))));
  EXPECT_TRUE(frame.DataWindows().empty());
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(AppFrameTest, StaysOpenWhileWorkRunsAndStopsItOnCancel) {
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  const auto progress = app.StartProgress("Saving something");
  EXPECT_TRUE(progress->Advance(0.1));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "short work shows no window";
  usleep(350'000);
  EXPECT_TRUE(progress->Advance(0.2));
  auto* window = qobject_cast<CProgressDlg*>(QApplication::activeModalWidget());
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->windowModality(), Qt::WindowModal);

  EXPECT_FALSE(frame.close());
  EXPECT_FALSE(frame.OpenPath(Sample("b.VSF")));
  frame.CurrentWindow()->parentWidget()->close();
  EXPECT_EQ(frame.DataWindows().size(), 1U);
  window->reject();
  EXPECT_FALSE(progress->Advance(0.3));
}

// What a program that was killed leaves in the folder of temporary files.
void LeaveBehind(const CDataView& view) {
  const std::filesystem::path live(view.GetScratchFileName());
  const std::filesystem::path left = live.parent_path() / "VSdead01.tmp";
  std::filesystem::copy_file(live, left);
  std::filesystem::copy_file(live.string() + ".vsd", left.string() + ".vsd");
}

class RecoveryTest : public AppFrameTest {
 protected:
  RecoveryTest() {
    setenv("TMPDIR", temporary.Path().c_str(), 1);
    EXPECT_TRUE(frame.OpenPath(Sample("lost.VSF", 12, 3)));
    LeaveBehind(frame.CurrentWindow()->View());
    Trigger(commands::kWindowCloseAll);
  }
  ~RecoveryTest() override { unsetenv("TMPDIR"); }

  void AnswerWith(const char* text) {
    driver.Then([text](QDialog& dialog) {
      for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->text() == text) return button->click();
      }
      ADD_FAILURE() << "no button " << text;
      dialog.reject();
    });
    frame.OfferRecovery();
    Settle();
  }

  TempFolder temporary;
};

TEST_F(RecoveryTest, BringsBackAsAChangedDataSet) {
  AnswerWith("&Recover");
  ASSERT_EQ(frame.DataWindows().size(), 1U);
  CDataWindow& window = *frame.CurrentWindow();
  EXPECT_EQ(window.FileName(), "lost.VSF");
  EXPECT_TRUE(window.Document().IsModified());
  EXPECT_EQ(window.Table().ValueText({11, 2}), "11.02");
  window.Document().SetModifiedFlag(false);
  Trigger(commands::kWindowCloseAll);
  EXPECT_TRUE(FindLeftOverScratch().empty());
}

TEST_F(RecoveryTest, KnowsTheNameOfASaveAs) {
  AnswerWith("&Discard");
  ASSERT_TRUE(frame.OpenPath(Sample("old.VSF")));
  const QString target = QString::fromStdString(folder / "new.VSF");
  driver.ThenSaveUnder(target);
  Trigger(commands::kFileSaveAs);
  EXPECT_EQ(frame.windowTitle(), "new.VSF[*] - Vex Data");
  EXPECT_EQ(RecentTexts(frame).value(0), "new.VSF");
  LeaveBehind(frame.CurrentWindow()->View());
  ASSERT_EQ(FindLeftOverScratch().size(), 1U);
  EXPECT_EQ(FindLeftOverScratch().front().pathName, target.toStdString());
}

TEST_F(RecoveryTest, DropsWhatIsNotWanted) {
  AnswerWith("&Discard");
  EXPECT_TRUE(frame.DataWindows().empty());
  EXPECT_TRUE(FindLeftOverScratch().empty());
}

TEST_F(RecoveryTest, OffersItAgainLater) {
  AnswerWith("&Later");
  EXPECT_EQ(FindLeftOverScratch().size(), 1U);
}

}  // namespace
