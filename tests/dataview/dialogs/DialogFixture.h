// A document to open dialogs on, and hands to work their controls with.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <functional>

#include <QtTest/QTest>
#include <gtest/gtest.h>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Recorder.h"

class DialogTest : public testing::Test {
 protected:
  DialogTest() : view(document) { Fill(5, 20); }

  void Fill(std::int32_t variables, std::int32_t cases) {
    document.SetExtern(EXTERNDATA(), {}, cases, variables, true);
    for (std::int32_t i = 0; i < variables; ++i) {
      document.GetTorvik()->variable[static_cast<std::size_t>(i)].name =
          "x" + std::to_string(i + 1);
    }
  }

  template <typename Widget>
  static Widget& Find(QWidget& parent, const char* name) {
    auto* const found = parent.findChild<Widget*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("no widget ") + name);
    return *found;
  }
  static void Click(QWidget& parent, const char* name) {
    Find<QAbstractButton>(parent, name).click();
  }
  static QPushButton& Ok(QWidget& parent) {
    return *Find<QDialogButtonBox>(parent, "buttonBox").button(QDialogButtonBox::Ok);
  }
  // Does `answer` with the dialog that the next action opens.
  static void Then(const std::function<void(QDialog&)>& answer) {
    QTimer::singleShot(0, [answer] {
      auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      answer(*dialog);
      if (dialog->isVisible()) dialog->reject();
    });
  }

  CRecorder host;
  CDataDoc document;
  CDataView view;
};
