// Names and rows in file dialogs, files that must not be written, and questions that want an
// answer.
#include <QComboBox>
#include <QKeyEvent>
#include <filesystem>

#include "resources/Commands.h"
#include "support/TestData.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Driver.h"
#include "vexapp/FileDialogs.h"

namespace {

namespace fs = std::filesystem;

class OpenFilesTest : public AppFrameTest {
 protected:
  OpenFilesTest() : a(Sample("a.VSF", 5, 1)), b(Sample("b.VSF", 7, 2)) {
    EXPECT_TRUE(frame.OpenPath(a) && frame.OpenPath(b));
  }

  // The name is refused with `text`; the dialog then comes again and is closed.
  void ExpectRefused(int command, const QString& path, const QString& text) {
    driver.ThenSaveUnder(path);
    driver.ThenPress(QMessageBox::Ok);
    driver.ThenReject();
    Trigger(command);
    EXPECT_TRUE(driver.AllAnswered());
    EXPECT_EQ(driver.Texts().value(driver.Texts().size() - 1), text);
    EXPECT_EQ(frame.CurrentWindow()->FileName(), "b.VSF");
  }

  const QString a, b;
  const QString another = "a.VSF is open in another window. Close it there first.";
};

TEST_F(OpenFilesTest, AreNotSavedOverFromAnotherWindow) {
  fs::create_symlink(folder / "a.VSF", folder / "link.VSF");
  fs::create_directory_symlink(folder.Path(), folder / "folder");
  for (const char* name : {"a.VSF", "a", "link.VSF", "folder/a.VSF"}) {
    ExpectRefused(commands::kFileSaveAs, QString::fromStdString(folder / name), another);
  }
  // The name is taken even while the file is away.
  fs::remove(folder / "a.VSF");
  ExpectRefused(commands::kFileSaveAs, QString::fromStdString(folder / "folder/a.VSF"), another);
  EXPECT_FALSE(fs::exists(folder / "a.VSF"));
}

TEST_F(OpenFilesTest, AreNotExportedOverFromAnotherWindow) {
  fs::create_hard_link(folder / "a.VSF", folder / "a.csv");
  const auto size = fs::file_size(folder / "a.csv");
  ExpectRefused(commands::kFileExport, QString::fromStdString(folder / "a.csv"), another);
  EXPECT_EQ(fs::file_size(folder / "a.csv"), size);
}

TEST_F(OpenFilesTest, AreSavedAsThemselves) {
  frame.CurrentWindow()->Document().SetWeight(1);
  frame.CurrentWindow()->Document().SetModifiedFlag();
  driver.ThenSaveUnder(b);
  driver.ThenPress(QMessageBox::Yes);
  Trigger(commands::kFileSaveAs);
  EXPECT_TRUE(driver.AllAnswered());
  EXPECT_EQ(driver.Texts(), QStringList("b.VSF already exists.\nDo you want to replace it?"));
  EXPECT_FALSE(frame.isWindowModified());
}

TEST_F(OpenFilesTest, AreNotImportedOverWhenTheyHaveChanges) {
  frame.CurrentWindow()->Document().SetModifiedFlag();
  driver.ThenSaveUnder(b);
  driver.ThenPress(QMessageBox::Ok);
  driver.ThenReject();
  EXPECT_FALSE(frame.ImportPath(QString::fromStdString(TestData("survey.sav"))));
  EXPECT_TRUE(driver.AllAnswered());
  EXPECT_EQ(driver.Texts(), QStringList("b.VSF is open in a window and has unsaved changes. "
                                        "Close it there first."));
  EXPECT_TRUE(frame.CurrentWindow()->Document().IsModified());
  EXPECT_EQ(frame.CurrentWindow()->Document().GetRecnum(), 7);
  frame.CurrentWindow()->Document().SetModifiedFlag(false);
}

TEST_F(AppFrameTest, WaitsForAnAnswerToAQuestion) {
  for (const auto& [button, wanted] : {std::pair{QMessageBox::Yes, MessageAnswer::Yes},
                                       std::pair{QMessageBox::No, MessageAnswer::No}}) {
    driver.Then([pressed = button](QDialog& box) {
      QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
      QApplication::sendEvent(&box, &escape);
      EXPECT_TRUE(box.isVisible());
      EXPECT_FALSE(box.close());
      EXPECT_TRUE(box.isVisible());
      dynamic_cast<QMessageBox&>(box).button(pressed)->click();
    });
    EXPECT_EQ(app.ShowMessage("Well?", {}, MessageButtons::YesNo), wanted);
  }
  driver.Then([](QDialog& box) { EXPECT_TRUE(box.close()); });
  EXPECT_EQ(app.ShowMessage("Well.", {}, MessageButtons::Ok), MessageAnswer::Ok);
}

// The dialog asks about the file that the component will write.
TEST_F(AppFrameTest, AsksAboutTheNameThatIsWritten) {
  const struct {
    const char* typed;
    const char* existing;
    bool asks;
  } cases[] = {
      {"plain", "plain.VSF", true},    {".foo", ".foo.VSF", true},  {".bar", ".bar", false},
      {"data.", "data.", true},        {"dot.", "dot..VSF", false}, {"other.x", "other.x", true},
      {"kept.x", "kept.x.VSF", false},
  };
  FileDialogRequest request;
  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.rows = {{"VEXMOR Data (*.VSF)", "*.VSF", "VSF"}};
  int asked = 0;
  for (const auto& c : cases) {
    WriteBytes(folder / c.existing, "there");
    driver.ThenSaveUnder(QString::fromStdString(folder / c.typed));
    if (c.asks) driver.ThenPress(QMessageBox::Yes);
    FileDialogChoice choice;
    EXPECT_TRUE(RunFileDialog(request, choice, &frame));
    EXPECT_TRUE(driver.AllAnswered()) << c.typed;
    EXPECT_EQ(choice.path, folder / c.typed);
    EXPECT_EQ(driver.Texts().size(), c.asks ? ++asked : asked) << c.typed;
    if (!c.asks) continue;
    EXPECT_TRUE(driver.Texts().last().startsWith(c.existing)) << c.typed;
  }
}

class FileRowsTest : public AppFrameTest {
 protected:
  FileRowsTest() {
    request.title = "Some Data";
    request.folder = folder.Path();
    request.rows = {{"Free (*.raw)", "*.raw", "raw"},
                    {"HTML Table (*.htm*)", "*.htm*", ""},
                    {"Lotus 1-2-3 (*.wk*;*.wr*)", "*.wk*;*.wr*", ".wk3"},
                    {"S-Plus (*.ssc )", "*.ssc ", "ssc "},
                    {"All Files (*.*)", "*.*", ""}};
  }
  void AskToSave() {
    request.save = true;
    request.flags = FileDialogRequest::kSaveFlags;
    request.fileName = "survey.VSF";
  }
  int StartRow() const {
    return RowOfFilter(request.rows, MakeFileDialog(request, nullptr)->selectedNameFilter());
  }
  // Opens the dialog, chooses a row as a user does, and accepts.
  FileDialogChoice ChooseRow(int row, const QString& name) {
    driver.Then([row, name](QDialog& dialog) {
      auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
      if (!name.isEmpty()) edit->setText(name);
      auto* combo = dialog.findChild<QComboBox*>("fileTypeCombo");
      combo->setFocus();
      combo->setCurrentIndex(row > 0 ? row - 1 : 1);
      QKeyEvent step(QEvent::KeyPress, row > 0 ? Qt::Key_Down : Qt::Key_Up, Qt::NoModifier);
      QApplication::sendEvent(combo, &step);
      EXPECT_EQ(combo->currentIndex(), row);
      dialog.accept();
    });
    FileDialogChoice choice;
    EXPECT_TRUE(RunFileDialog(request, choice, &frame));
    return choice;
  }

  FileDialogRequest request;
};

TEST_F(FileRowsTest, GiveAProposedNameTheirExtension) {
  AskToSave();
  const struct {
    int row;
    const char* typed;  // null: as proposed
    const char* wanted;
  } cases[] = {
      {0, nullptr, "survey.raw"},  {1, nullptr, "survey.htm"}, {2, nullptr, "survey.wk3"},
      {3, nullptr, "survey.ssc"},  {2, "a b.raw", "a b.wk3"},  {2, "plain", "plain"},
      {4, "kept.raw", "kept.raw"},
  };
  for (const auto& c : cases) {
    QSettings().clear();
    EXPECT_EQ(MakeFileDialog(request, nullptr)->selectedFiles().value(0),
              QString::fromStdString(folder / "survey.raw"));
    const FileDialogChoice choice = ChooseRow(c.row, c.typed);
    EXPECT_EQ(choice.path, folder / c.wanted);
    EXPECT_EQ(choice.row, c.row);
  }
}

TEST_F(FileRowsTest, LeaveAProposedNameThatOneOfThemKnows) {
  AskToSave();
  for (const char* name : {"survey.wk1", "SURVEY.RAW", "plain", "x.html"}) {
    request.fileName = name;
    EXPECT_EQ(MakeFileDialog(request, nullptr)->selectedFiles().value(0),
              QString::fromStdString(folder / name));
  }
}

TEST_F(FileRowsTest, StartWithAllFilesOrWhereTheyWereLeft) {
  WriteBytes(folder / "x.wk1", "there");
  EXPECT_EQ(StartRow(), 4);
  ChooseRow(2, "x.wk1");
  EXPECT_EQ(StartRow(), 2);
  request.title = "Other Data";
  EXPECT_EQ(StartRow(), 4) << "each title for itself";
  request.rows.resize(2);
  EXPECT_EQ(StartRow(), 0) << "one type and all files";
}

TEST_F(FileRowsTest, AreRememberedForANameToSaveUnderUnlessTheyHaveNoExtension) {
  AskToSave();
  EXPECT_EQ(StartRow(), 0);
  ChooseRow(2, "x.wk1");
  ChooseRow(4, "x.raw");
  EXPECT_EQ(StartRow(), 2);
  EXPECT_EQ(MakeFileDialog(request, nullptr)->selectedFiles().value(0),
            QString::fromStdString(folder / "survey.wk3"));
}

// As proposed and accepted, an export must come to a type.
TEST_F(AppFrameTest, ExportsUnderTheProposedName) {
  ASSERT_TRUE(frame.OpenPath(Sample("data.VSF", 5, 2)));
  driver.Then([](QDialog& dialog) { dialog.accept(); });
  Trigger(commands::kFileExport);
  EXPECT_TRUE(driver.AllAnswered());
  EXPECT_TRUE(driver.Texts().isEmpty());
  EXPECT_TRUE(fs::exists(folder / "data.raw"));
}

}  // namespace
