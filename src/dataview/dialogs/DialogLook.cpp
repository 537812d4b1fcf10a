#include "dataview/dialogs/DialogLook.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>

#include "host/Text.h"

namespace {
constexpr int kMargin = 14;
constexpr int kSpacing = 12;
constexpr int kHintWidth = 300;
}  // namespace

void DressDialog(QDialog& dialog, int width) {
  if (QLayout* const layout = dialog.layout()) {
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(kSpacing);
  }
  for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
    button->setAutoDefault(button->isDefault());
  }
  if (auto* const box = dialog.findChild<QDialogButtonBox*>()) {
    if (QPushButton* const ok = box->button(QDialogButtonBox::Ok)) ok->setDefault(true);
  }
  // A hint that changes neither wraps at every word nor makes the dialog jump.
  if (auto* const hint = dialog.findChild<QLabel*>("hintLabel")) {
    hint->setMinimumWidth(kHintWidth);
    hint->setMinimumHeight(hint->fontMetrics().height());
  }
  dialog.setSizeGripEnabled(false);
  if (width > 0) dialog.resize(width, dialog.sizeHint().height());
}

CString TypedText(const QString& text) {
  return TextForFile(text.toStdString());
}
