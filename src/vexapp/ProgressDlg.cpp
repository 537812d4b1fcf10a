#include "vexapp/ProgressDlg.h"

#include <QGuiApplication>
#include <QPushButton>
#include <algorithm>

#include "ui_ProgressDlg.h"

namespace {

constexpr qint64 kShowAfter = 300;  // milliseconds
constexpr qint64 kUpdateEvery = 60;
constexpr int kTaskWidth = 420;

}  // namespace

CProgressDlg::CProgressDlg(const QString& task, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      ui_(std::make_unique<Ui::ProgressDlg>()) {
  ui_->setupUi(this);
  setWindowModality(Qt::WindowModal);
  ui_->taskLabel->setText(fontMetrics().elidedText(task, Qt::ElideMiddle, kTaskWidth));
  ui_->taskLabel->setToolTip(task);
  connect(ui_->buttonBox, &QDialogButtonBox::rejected, this, &CProgressDlg::reject);
}

CProgressDlg::~CProgressDlg() = default;

void CProgressDlg::ShowFraction(double fraction) {
  if (fraction < 0) {
    ui_->progressBar->setMaximum(0);
    return;
  }
  constexpr int kSteps = 1000;
  ui_->progressBar->setMaximum(kSteps);
  ui_->progressBar->setValue(static_cast<int>(std::min(fraction, 1.0) * kSteps));
}

void CProgressDlg::reject() {
  cancelled_ = true;
  ui_->buttonBox->button(QDialogButtonBox::Cancel)->setEnabled(false);
  ui_->buttonBox->button(QDialogButtonBox::Cancel)->setText(tr("Stopping..."));
}

CShownProgress::CShownProgress(const QString& task, QWidget* parent)
    : window_(task, parent), nextUpdate_(kShowAfter) {
  clock_.start();
}

CShownProgress::~CShownProgress() {
  window_.hide();
}

bool CShownProgress::Advance(double fraction) {
  const qint64 now = clock_.elapsed();
  if (now < nextUpdate_) return !window_.IsCancelled();
  window_.ShowFraction(fraction);
  if (!window_.isVisible()) {
    window_.show();
    // The wait cursor would say that nothing can be pressed.
    if (QGuiApplication::overrideCursor() != nullptr) {
      QGuiApplication::changeOverrideCursor(Qt::BusyCursor);
    }
  }
  QGuiApplication::processEvents();
  nextUpdate_ = clock_.elapsed() + kUpdateEvery;
  return !window_.IsCancelled();
}
