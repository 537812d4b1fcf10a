// Answers the dialogs that a test's action opens, and holds a main window to act on.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QSet>
#include <QSettings>
#include <QTimer>
#include <deque>
#include <functional>

#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "vexapp/AppFrame.h"
#include "vexapp/SampleData.h"
#include "vexapp/VexApp.h"

// Hands each modal dialog that comes up to the next answer. One that nobody answers is rejected.
class CDialogDriver {
 public:
  using Answer = std::function<void(QDialog&)>;

  CDialogDriver() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
    timer_.start();
  }

  void Then(Answer answer) { answers_.push_back(std::move(answer)); }
  void ThenPress(QMessageBox::StandardButton button) {
    Then([button](QDialog& dialog) { dynamic_cast<QMessageBox&>(dialog).button(button)->click(); });
  }
  // Types a name into a file dialog and accepts it.
  void ThenSaveUnder(const QString& path) {
    Then([path](QDialog& dialog) {
      dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
      dialog.accept();
    });
  }
  void ThenReject() {
    Then([](QDialog& dialog) { dialog.reject(); });
  }
  bool AllAnswered() const { return answers_.empty(); }
  const QStringList& Texts() const { return texts_; }  // of the message boxes that came up

 private:
  void Look() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible() || dialog == last_) return;
    if (answering_.contains(dialog)) return;
    if (dialog->objectName() == "ProgressDlg") return;  // goes by itself
    last_ = dialog;
    if (auto* box = qobject_cast<QMessageBox*>(dialog)) texts_ << box->text();
    if (answers_.empty()) {
      ADD_FAILURE() << "an unexpected dialog: " << dialog->windowTitle().toStdString();
      return dialog->reject();
    }
    const Answer answer = std::move(answers_.front());
    answers_.pop_front();
    // From the event loop: a dialog may open another one before it returns.
    QTimer::singleShot(0, dialog, [this, answer, dialog] {
      last_ = nullptr;
      answering_.insert(dialog);
      answer(*dialog);
      answering_.remove(dialog);
    });
  }

  QTimer timer_;
  QDialog* last_ = nullptr;
  QSet<QDialog*> answering_;  // their answers are handling events
  std::deque<Answer> answers_;
  QStringList texts_;
};

inline void Settle() {
  for (int i = 0; i < 3; ++i) {
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

class AppFrameTest : public testing::Test {
 protected:
  AppFrameTest() : frame(app) {
    frame.show();
    Settle();
  }

  QString Sample(const char* name, int cases = 20, int variables = 3) {
    const QString path = QString::fromStdString(folder / name);
    EXPECT_TRUE(WriteSampleData(path, cases, variables));
    return path;
  }
  void Trigger(int number) {
    frame.Menus().Action(number)->trigger();
    Settle();
  }

  struct FreshSettings {
    FreshSettings() { QSettings().clear(); }
  } settings;
  TempFolder folder;
  CDialogDriver driver;
  CVexApp app;
  CAppFrame frame;
};
