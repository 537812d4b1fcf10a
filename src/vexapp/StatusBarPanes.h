// The main window's status bar: pane 0 for messages and progress, then the size of the data set.
#pragma once

#include "host/Framework.h"

class QLabel;
class QStatusBar;

class CStatusBarPanes final : public CStatusBar {
 public:
  static constexpr int kMessagePane = 0;
  static constexpr int kSizePane = 1;

  explicit CStatusBarPanes(QStatusBar& bar);

  void SetPaneText(int pane, const CString& text) override;

 private:
  QLabel* message_;
  QLabel* size_;
};
