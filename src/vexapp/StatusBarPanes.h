// The main window's status bar: pane 0 for messages and progress, then the size of the data set
// and, while several cells are selected, what they come to.
#pragma once

#include "host/Framework.h"

class QLabel;
class QStatusBar;

class CStatusBarPanes final : public CStatusBar {
 public:
  static constexpr int kMessagePane = 0;
  static constexpr int kSizePane = 1;
  static constexpr int kStatisticsPane = 2;  // of the selected cells

  explicit CStatusBarPanes(QStatusBar& bar);

  void SetPaneText(int pane, const CString& text) override;

 private:
  QLabel* message_;
  QLabel* size_;
  QLabel* statistics_;
};
