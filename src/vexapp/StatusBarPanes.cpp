#include "vexapp/StatusBarPanes.h"

#include <QLabel>
#include <QStatusBar>

#include "vexapp/Display.h"

namespace {

QLabel* MakePane(QStatusBar& bar, const char* name) {
  auto* label = new QLabel(&bar);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setContentsMargins(6, 0, 6, 0);
  return label;
}

}  // namespace

CStatusBarPanes::CStatusBarPanes(QStatusBar& bar)
    : message_(MakePane(bar, "messagePane")),
      size_(MakePane(bar, "sizePane")),
      statistics_(MakePane(bar, "statisticsPane")) {
  // A long message must not widen the window.
  message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  bar.addWidget(message_, 1);
  bar.addPermanentWidget(statistics_);
  bar.addPermanentWidget(size_);
}

void CStatusBarPanes::SetPaneText(int pane, const CString& text) {
  QLabel* const label = pane == kSizePane         ? size_
                        : pane == kStatisticsPane ? statistics_
                                                  : message_;
  label->setText(ShownText(text));
  label->setToolTip(label->text());
  // Work that shows its progress here may not return to the event loop for a while.
  label->repaint();
}
