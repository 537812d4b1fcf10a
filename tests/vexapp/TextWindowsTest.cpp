// Outputs, syntaxes and runs in the main window. Shell scripts stand in for the engine.
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPdfWriter>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QWheelEvent>

#include <sys/stat.h>

#include "resources/Commands.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Display.h"
#include "vexapp/Driver.h"
#include "vexapp/OutputWindow.h"
#include "vexapp/ProgressDlg.h"
#include "vexapp/SyntaxWindow.h"
#include "vexutils/TickCount.h"

using namespace commands;

namespace {

class TextWindowsTest : public AppFrameTest {
 protected:
  ~TextWindowsTest() override { unsetenv("VEX_ENGINE"); }

  QString Text(const char* name, const std::string& text) {
    WriteBytes(folder / name, text);
    return QString::fromStdString(folder / name);
  }
  std::string Lines(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) text += "line " + std::to_string(i) + '\n';
    return text;
  }
  // $1 is the syntax file, $2 the output file.
  void Engine(const std::string& script) {
    const std::string name = folder / "engine";
    WriteBytes(name, "#!/bin/sh\n" + script + "\n");
    chmod(name.c_str(), 0700);
    setenv("VEX_ENGINE", name.c_str(), 1);
  }
  COutputWindow* Output() { return dynamic_cast<COutputWindow*>(frame.CurrentText()); }
  CSyntaxWindow* Syntax() { return dynamic_cast<CSyntaxWindow*>(frame.CurrentText()); }
  bool IsEnabled(int number) { return frame.Menus().Action(number)->isEnabled(); }
  QString Status() { return frame.findChild<QLabel*>("messagePane")->text(); }
  template <typename Condition>
  bool Wait(const Condition& condition) {
    const std::int64_t end = GetTickCount() + 10000;
    while (!condition() && GetTickCount() < end)
      QApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
  }
};

TEST_F(TextWindowsTest, OpensEachFileInAWindowOfItsKind) {
  const CString data = PathBytes(Sample("a.VSF"));
  const CString output = PathBytes(Text("a.out", "one\n"));
  const CString syntax = PathBytes(Text("a.TRK", "OU\n"));
  CVexAppUtil& util = *APPUTIL_GetApp();
  for (int i = 0; i < 2; ++i) {  // the second time they are there already
    EXPECT_TRUE(util.OpenDocumentFile(data));
    EXPECT_TRUE(frame.CurrentWindow() != nullptr && frame.CurrentText() == nullptr);
    EXPECT_FALSE(IsEnabled(kEditReplace) || IsEnabled(kStatisticsRunSyntax));
    EXPECT_TRUE(IsEnabled(kStatisticsScreening) && IsEnabled(kStatisticsOutputOptions));
    EXPECT_TRUE(util.OpenDocumentFile(output));
    ASSERT_NE(Output(), nullptr);
    EXPECT_EQ(frame.CurrentWindow(), nullptr);
    EXPECT_TRUE(IsEnabled(kEditFind) && IsEnabled(kFilePrint) && IsEnabled(kFileSaveAs));
    EXPECT_FALSE(IsEnabled(kFileSave) || IsEnabled(kStatisticsRunSyntax) ||
                 IsEnabled(kEditReplace) || IsEnabled(kStatisticsScreening));
    EXPECT_TRUE(util.OpenDocumentFile(syntax));
    ASSERT_NE(Syntax(), nullptr);
    EXPECT_TRUE(IsEnabled(kStatisticsRunSyntax) && IsEnabled(kEditReplace) && IsEnabled(kFileSave));
    EXPECT_EQ(frame.windowTitle(), "a.TRK[*] - Vex Data");
    EXPECT_EQ(frame.findChildren<CFrameWindow*>().size(), 3);
  }
  driver.ThenPress(QMessageBox::Ok);
  EXPECT_FALSE(util.OpenDocumentFile(folder / "none.OUT"));
  EXPECT_TRUE(driver.Texts().last().contains("none.OUT: No such file or directory"));
  Trigger(kWindowCloseAll);
  EXPECT_TRUE(frame.findChildren<CFrameWindow*>().isEmpty());
  EXPECT_FALSE(IsEnabled(kFileClose) || IsEnabled(kEditFind));
}

TEST_F(TextWindowsTest, RunServerTellsResultAndReason) {
  const struct {
    const char* script;
    int result;
    const char* status;
  } cases[] = {
      {"cp \"$1\" \"$2\"", 0, ""},
      {"cp \"$1\" \"$2\"; exit 1", 1, ""},
      {"echo out of paper >&2; exit 1", -1,
       "The engine ended with code 1 and wrote no output: out of paper"},
      {"cp \"$1\" \"$2\"; [ \"$(pwd -P)\" = \"$(cd \"$(dirname \"$1\")\"; pwd -P)\" ] || exit 9", 0,
       ""},  // works where the syntax lies
  };
  const CString syntax = PathBytes(Text("a b.TRK", "OU\n"));
  const CString output = folder / "a b.OUT";
  CVexAppUtil& util = *APPUTIL_GetApp();
  const auto run = [&] { return util.RunServer(syntax.c_str(), output.c_str(), 1, 0, 0, 0); };
  for (const auto& c : cases) {
    std::filesystem::remove(output);
    Engine(c.script);
    EXPECT_EQ(run(), c.result) << c.script;
    EXPECT_EQ(Status(), c.status) << c.script;
  }
  setenv("VEX_ENGINE", (folder / "absent").c_str(), 1);
  EXPECT_LT(run(), 0);
  EXPECT_TRUE(Status().contains("absent cannot be run: No such file or directory"));
  unsetenv("VEX_ENGINE");
  const QString mine = QString::fromStdString(folder / "engine");
  driver.Then([&](QDialog& dialog) {
    dialog.findChild<QRadioButton*>("otherRadio")->click();
    dialog.findChild<QLineEdit*>("pathEdit")->setText(mine + "x");
    dialog.accept();
    dialog.findChild<QLineEdit*>("pathEdit")->setText(mine);
    dialog.accept();
  });
  driver.ThenPress(QMessageBox::Ok);  // there is no such program
  Trigger(kStatisticsEngine);
  EXPECT_TRUE(driver.Texts().last().contains("enginex cannot be run"));
  EXPECT_EQ(run(), 0);
  std::filesystem::remove(folder / "engine");
  EXPECT_LT(run(), 0);
  EXPECT_TRUE(Status().contains("engine cannot be run"));
}

TEST_F(TextWindowsTest, TheWindowLivesDuringARunThatCanBeCancelled) {
  ASSERT_TRUE(frame.OpenPath(Sample("a.VSF")));
  Engine("echo progress: 40 >&2; exec sleep 600");
  bool seen = false;
  QTimer clock;
  QObject::connect(&clock, &QTimer::timeout, [&] {
    auto* const progress = frame.findChild<CProgressDlg*>();
    if (progress == nullptr || !progress->isVisible() || seen) return;
    seen = true;
    EXPECT_TRUE(app.IsBusy());
    EXPECT_FALSE(frame.close()) << "documents are locked";
    EXPECT_FALSE(frame.OpenPath(Text("other.OUT", "")));
    frame.Menus().Action(kStatisticsScreening)->trigger();  // does not start a second run
    progress->reject();
  });
  clock.start(20);
  driver.ThenPress(QMessageBox::Ok);
  const std::int64_t begin = GetTickCount();
  Trigger(kStatisticsScreening);
  EXPECT_TRUE(seen);
  EXPECT_LT(GetTickCount() - begin, 5000);
  EXPECT_EQ(driver.Texts(), QStringList("Serious errors occured, no output file available!"));
  EXPECT_EQ(Status(), "The run was cancelled");
  EXPECT_FALSE(app.IsBusy());
  EXPECT_NE(frame.CurrentWindow(), nullptr);
}

TEST_F(TextWindowsTest, DataScreeningListsTheContentsAndOpensTheOutput) {
  const QString data = Sample("survey.VSF", 30, 9);
  ASSERT_TRUE(frame.OpenPath(data));
  frame.CurrentWindow()->Document().SetModifiedFlag();
  driver.ThenPress(QMessageBox::Ok);
  Trigger(kStatisticsScreening);
  EXPECT_EQ(driver.Texts(), QStringList("Please save data before performing this operation"));
  EXPECT_FALSE(QFile::exists(QString::fromStdString(folder / "survey.TRK")));
  frame.CurrentWindow()->Document().SetModifiedFlag(false);

  Engine("cp \"$1\" \"$2\"");
  Trigger(kStatisticsScreening);
  ASSERT_NE(Output(), nullptr);
  EXPECT_EQ(Output()->Path(), QString::fromStdString(folder / "survey.OUT"));
  const CString& text = Output()->View().Text().Bytes();
  EXPECT_EQ(text.find("!TORVIK SYNTAX: Can be edited \n\n!Contents of VSFFILE: \n"), 0U);
  EXPECT_NE(text.find("!DA NI=9 NO=30 MI="), CString::npos);
  EXPECT_TRUE(text.ends_with("\nSY='" + PathBytes(data) + "'\nOU XM\n"));
  // The next run shows its output in the same window.
  ASSERT_TRUE(frame.OpenPath(data));
  Engine("echo second > \"$2\"");
  Trigger(kStatisticsScreening);
  EXPECT_EQ(Output()->View().Text().Bytes(), "second\n");
  EXPECT_EQ(frame.findChildren<COutputWindow*>().size(), 1);
}

TEST_F(TextWindowsTest, AnOutputFollowsItsFileAndKeepsItsPlace) {
  const QString path = Text("a.OUT", Lines(500));
  ASSERT_TRUE(frame.OpenPath(path));
  COutputView& view = Output()->View();
  view.ScrollTo(200);
  Text("a.OUT", Lines(400));
  EXPECT_TRUE(Wait([&] { return view.Text().LineCount() == 400; }));
  EXPECT_EQ(view.FirstLine(), 200);
  // As a run does: away, and then another file under the name.
  QFile::remove(path);
  QApplication::processEvents();
  EXPECT_EQ(view.Text().LineCount(), 400) << "what was there is shown until there is more";
  Text("new", "short\n");
  std::filesystem::rename(folder / "new", folder / "a.OUT");
  EXPECT_TRUE(Wait([&] { return view.Text().LineCount() == 1; }));
  Text("a.OUT", "again\nlonger\n");
  EXPECT_TRUE(Wait([&] { return view.Text().LineCount() == 2; }));
}

TEST_F(TextWindowsTest, FindsSelectsAndCopies) {
  ASSERT_TRUE(frame.OpenPath(Text("a.OUT", "Größe A\nmean Größe b\n" + Lines(300) + "mean C\n")));
  COutputView& view = Output()->View();
  Trigger(kEditFind);
  auto& field = *Output()->findChild<QLineEdit*>("findEdit");
  auto& result = *Output()->findChild<QLabel*>("findResult");
  const struct {
    const char* text;
    bool forward;
    const char* selected;
    const char* result;
  } steps[] = {
      {"MEAN", true, "mean", ""},
      {"MEAN", true, "mean", ""},
      {"MEAN", true, "mean", "Continued from the beginning"},
      {"MEAN", false, "mean", "Continued from the end"},
      {"GRÖ", true, "", "Not found"},  // only ASCII letters are equal in both cases
      {"Größe", true, "Größe", "Continued from the beginning"},
      {"line 299", true, "line 299", ""},
      {"nowhere", true, "line 299", "Not found"},
  };
  for (const auto& step : steps) {
    field.setText(step.text);
    Output()->FindNext(step.forward);
    if (QString(step.result) != "Not found") {
      EXPECT_EQ(view.SelectedText(), step.selected);
    }
    EXPECT_EQ(result.text(), step.result) << step.text;
  }
  EXPECT_GT(view.FirstLine(), 200) << "what was found is in sight";
  view.Copy();
  EXPECT_EQ(QApplication::clipboard()->text(), "line 299");
  view.SelectAll();
  EXPECT_TRUE(view.SelectedText().startsWith("Größe A\nmean Größe b\nline 1\n"));
}

TEST_F(TextWindowsTest, ZoomsAndRemembersTheSize) {
  ASSERT_TRUE(frame.OpenPath(Text("a.OUT", Lines(3))));
  const qreal usual = Output()->PointSize();
  Trigger(kViewZoomIn);
  EXPECT_EQ(Output()->View().font().pointSizeF(), usual + 1);
  const auto turn = [&](int delta, Qt::KeyboardModifiers keys) {
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, delta}, Qt::NoButton, keys, Qt::NoScrollPhase, false);
    QApplication::sendEvent(Output()->View().viewport(), &wheel);
  };
  turn(120, Qt::ControlModifier);
  turn(120, Qt::NoModifier);  // scrolls
  EXPECT_EQ(Output()->PointSize(), usual + 2);
  ASSERT_TRUE(frame.OpenPath(Text("a.TRK", "OU\n")));
  EXPECT_EQ(Syntax()->Edit().font().pointSizeF(), usual + 2);
  Trigger(kViewZoomOut);
  EXPECT_EQ(Syntax()->PointSize(), usual + 1);
  Trigger(kViewZoomReset);
  EXPECT_EQ(Syntax()->PointSize(), usual);
  for (int i = 0; i < 100; ++i) Syntax()->Zoom(-1);
  EXPECT_GT(Syntax()->PointSize(), 1);
}

TEST_F(TextWindowsTest, SavesAnOutputAsTextOrPdf) {
  const std::string text = Lines(200) + "\xfc\n";  // bytes go through as they are
  ASSERT_TRUE(frame.OpenPath(Text("a.OUT", text)));
  driver.ThenSaveUnder(QString::fromStdString(folder / "copy.txt"));
  Trigger(kFileSaveAs);
  EXPECT_EQ(ReadBytes(folder / "copy.txt"), text);
  ASSERT_TRUE(Output()->WriteTo(QString::fromStdString(folder / "copy.pdf")));
  const std::string pdf = ReadBytes(folder / "copy.pdf");
  EXPECT_TRUE(pdf.starts_with("%PDF-") && pdf.find("/Count 4") != std::string::npos);
  driver.ThenPress(QMessageBox::Ok);
  EXPECT_FALSE(Output()->WriteTo(QString::fromStdString(folder / "none/copy.pdf")));
  EXPECT_TRUE(driver.Texts().last().startsWith("Cannot write to file!\n"));
}

TEST_F(TextWindowsTest, PrintsTheChosenPagesAndBreaksLongLines) {
  // How many lines a page takes depends on the machine's fixed font: at most 66 in any.
  const auto pages = [this](const TEXTTOPRINT& text, int first, int last) {
    const std::string name = folder / "p.pdf";
    QPdfWriter pdf(QString::fromStdString(name));
    EXPECT_TRUE(PrintText(pdf, text, first, last));
    const std::string bytes = ReadBytes(name);
    const std::size_t count = bytes.find("/Count ");
    return count == std::string::npos ? 0 : std::atoi(bytes.c_str() + count + 7);
  };
  const TEXTTOPRINT text{"t", 240, [](std::int64_t line) { return QString::number(line); }, 3};
  const int all = pages(text, 0, 0);
  EXPECT_GE(all, 4);
  EXPECT_EQ(pages(text, 2, 3), 2);
  EXPECT_EQ(pages(text, all, all + 5), 1);
  const TEXTTOPRINT wide{"t", 240, [](std::int64_t) { return QString(132, 'x'); }, 132};
  const TEXTTOPRINT oneLine{"t", 1, [](std::int64_t) { return QString(132 * 240, 'x'); },
                            132 * 240};
  EXPECT_EQ(pages(oneLine, 0, 0), pages(wide, 0, 0));
}

TEST_F(TextWindowsTest, ASyntaxKeepsTheBytesItDoesNotChange) {
  const std::string text = "! \xe9t\xe9\nSY='/d/\xc3\xa9.VSF'\nFA\nOU";
  ASSERT_TRUE(frame.OpenPath(Text("a.TRK", text)));
  EXPECT_EQ(Syntax()->Edit().toPlainText(), "! été\nSY='/d/é.VSF'\nFA\nOU");
  Syntax()->Edit().moveCursor(QTextCursor::End);
  Syntax()->Edit().insertPlainText(" XM\n");
  EXPECT_TRUE(frame.isWindowModified());
  Trigger(kFileSave);
  EXPECT_FALSE(frame.isWindowModified());
  EXPECT_EQ(ReadBytes(folder / "a.TRK"), text + " XM\n");
  for (const char* const whole : {"", "\n", "OU", "OU\n\n"}) {
    Text("b.TRK", whole);
    ASSERT_TRUE(frame.OpenPath(QString::fromStdString(folder / "b.TRK")));
    ASSERT_TRUE(Syntax()->Save());
    EXPECT_EQ(ReadBytes(folder / "b.TRK"), whole);
  }
}

TEST_F(TextWindowsTest, RunSavesAndMarksTheLineThatFailed) {
  ASSERT_TRUE(frame.OpenPath(Text("a.TRK", "SY='a.VSF'\nOU\n")));
  CSyntaxWindow& syntax = *Syntax();
  syntax.Edit().insertPlainText("! new\n");
  Engine("{ echo title; echo 'ERROR in line 2 of the syntax'; } > \"$2\"; exit 1");
  Trigger(kStatisticsRunSyntax);
  EXPECT_EQ(ReadBytes(folder / "a.TRK"), "! new\nSY='a.VSF'\nOU\n");
  ASSERT_NE(Output(), nullptr) << "the output is shown";
  EXPECT_EQ(syntax.Edit().MarkedLine(), 2);
  EXPECT_EQ(syntax.Edit().textCursor().blockNumber(), 1);
  // Who opens the syntax of a failed run sees the line too.
  syntax.parentWidget()->close();
  Settle();
  ASSERT_TRUE(frame.OpenPath(QString::fromStdString(folder / "a.TRK")));
  EXPECT_EQ(Syntax()->Edit().MarkedLine(), 2);
  Syntax()->Edit().insertPlainText("x");
  EXPECT_EQ(Syntax()->Edit().MarkedLine(), 0);
  Engine("cp \"$1\" \"$2\"");
  Trigger(kStatisticsRunSyntax);
  EXPECT_EQ(frame.findChild<CSyntaxWindow*>()->Edit().MarkedLine(), 0);
}

TEST_F(TextWindowsTest, ChangesOfASyntaxAreNotLost) {
  const QString path = Text("a.TRK", "OU\n");
  ASSERT_TRUE(frame.OpenPath(path));
  CSyntaxWindow& syntax = *Syntax();
  Text("a.TRK", "OU XM\n");
  EXPECT_TRUE(Wait([&] { return syntax.Edit().toPlainText() == "OU XM\n"; }));
  syntax.Edit().insertPlainText("mine ");
  Text("a.TRK", "OU XT XM\n");
  auto& notice = *syntax.findChild<QWidget*>("changedNotice");
  EXPECT_TRUE(Wait([&] { return notice.isVisible(); }));
  EXPECT_EQ(syntax.Edit().toPlainText(), "mine OU XM\n");
  ASSERT_TRUE(frame.OpenPath(path));  // nor when a procedure opens it
  EXPECT_EQ(syntax.Edit().toPlainText(), "mine OU XM\n");
  driver.ThenPress(QMessageBox::Cancel);
  EXPECT_FALSE(frame.close());
  notice.findChildren<QPushButton*>().first()->click();
  EXPECT_EQ(syntax.Edit().toPlainText(), "OU XT XM\n");
  EXPECT_FALSE(notice.isVisible());
  syntax.Edit().insertPlainText("again ");
  driver.ThenPress(QMessageBox::Save);
  Trigger(kFileClose);
  EXPECT_EQ(ReadBytes(PathBytes(path)), "again OU XT XM\n");
}

TEST_F(TextWindowsTest, ReplacesOneAndAll) {
  ASSERT_TRUE(frame.OpenPath(Text("a.TRK", "SE a1 A1 a1a1\nOU\n")));
  Trigger(kEditReplace);
  CSyntaxWindow& syntax = *Syntax();
  syntax.findChild<QLineEdit*>("findEdit")->setText("a1");
  syntax.findChild<QLineEdit*>("replaceEdit")->setText("a1x");  // holds what is looked for
  auto& one = *syntax.findChild<QToolButton*>("replaceButton");
  one.click();  // finds
  one.click();
  EXPECT_EQ(syntax.Edit().toPlainText(), "SE a1x A1 a1a1\nOU\n");
  syntax.findChild<QToolButton*>("replaceAllButton")->click();
  EXPECT_EQ(syntax.Edit().toPlainText(), "SE a1xx a1x a1xa1x\nOU\n");
  EXPECT_EQ(syntax.findChild<QLabel*>("findResult")->text(), "4 replaced");
  syntax.Edit().undo();
  EXPECT_EQ(syntax.Edit().toPlainText(), "SE a1x A1 a1a1\nOU\n") << "in one step";
}

}  // namespace
