#include "vexapp/VexApp.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMessageBox>

#include "transfer/ProgramFileTypes.h"
#include "vexapp/Display.h"
#include "vexapp/ProgressDlg.h"

namespace {

// A dialog is no place for the wait cursor: it comes back when the dialog is gone.
class WaitCursorPause {
 public:
  WaitCursorPause() {
    while (QGuiApplication::overrideCursor() != nullptr) {
      QGuiApplication::restoreOverrideCursor();
      ++count_;
    }
  }
  ~WaitCursorPause() {
    while (count_-- > 0) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  }
  WaitCursorPause(const WaitCursorPause&) = delete;
  WaitCursorPause& operator=(const WaitCursorPause&) = delete;

 private:
  int count_ = 0;
};

// A question that only its buttons answer: Qt takes Escape and the close button for No, which may
// well be the answer that loses something.
class QuestionBox final : public QMessageBox {
 public:
  using QMessageBox::QMessageBox;

 protected:
  void closeEvent(QCloseEvent* event) override { event->ignore(); }
  void keyPressEvent(QKeyEvent* event) override {
    if (!event->matches(QKeySequence::Cancel)) QMessageBox::keyPressEvent(event);
  }
};

int RunBox(QMessageBox& box) {
  box.setTextFormat(Qt::PlainText);
  return box.exec();
}

// Progress that keeps the program busy while it lives.
class BusyProgress final : public CProgress {
 public:
  BusyProgress(CVexApp& app, const QString& task, QWidget* parent)
      : busy_(app), progress_(task, parent) {}
  bool Advance(double fraction) override { return progress_.Advance(fraction); }

 private:
  CBusy busy_;
  CShownProgress progress_;
};

}  // namespace

CVexApp::CVexApp() : previous_(InstallHost(this)) {}

CVexApp::~CVexApp() {
  InstallHost(previous_);
}

void CVexApp::SetMainFrame(QWidget* window, CMainFrame* frame) {
  window_ = window;
  frame_ = frame;
}

QWidget* CVexApp::DialogParent() const {
  QWidget* const modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : window_.data();
}

MessageAnswer CVexApp::ShowMessage(const CString& text, const CString& title,
                                   MessageButtons buttons) {
  const WaitCursorPause pause;
  const QString heading = title.empty() ? QCoreApplication::applicationName() : ShownText(title);
  if (buttons == MessageButtons::YesNo) {
    QuestionBox box(QMessageBox::Question, heading, ShownText(text),
                    QMessageBox::Yes | QMessageBox::No, DialogParent());
    return RunBox(box) == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
  }
  QMessageBox box(QMessageBox::Warning, heading, ShownText(text), QMessageBox::Ok, DialogParent());
  RunBox(box);
  return MessageAnswer::Ok;
}

void CVexApp::BeginWaitCursor() {
  ++waitCursors_;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

void CVexApp::EndWaitCursor() {
  if (waitCursors_ == 0) return;
  --waitCursors_;
  QGuiApplication::restoreOverrideCursor();
}

bool CVexApp::AskForFile(const FileDialogRequest& request, FileDialogChoice& choice) {
  const WaitCursorPause pause;
  return RunFileDialog(request, choice, DialogParent(), targetCheck_);
}

int CVexApp::RunDialog(QDialog& dialog) {
  const WaitCursorPause pause;
  return dialog.exec();
}

std::unique_ptr<CProgress> CVexApp::StartProgress(const CString& title) {
  return std::make_unique<BusyProgress>(*this, ShownText(title), DialogParent());
}

std::vector<HostFileType> CVexApp::ExtraFileTypes() const {
  return ProgramFileTypes();
}
