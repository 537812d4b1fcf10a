#include "dataview/dialogs/DataFormatDlg.h"

#include "dataview/DisplayPattern.h"
#include "dataview/dialogs/DialogLook.h"
#include "dataview/operations/Limits.h"
#include "ui_DataFormatDlg.h"

namespace {
constexpr double kExample = 1234.56789;
}

CDataFormatDlg::CDataFormatDlg(const DisplaySettings& settings, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::DataFormatDlg>()) {
  ui_->setupUi(this);
  ui_->widthSpin->setRange(kLeastColumnWidth, kGreatestColumnWidth);
  ui_->decimalsSpin->setRange(0, kMostDecimals);
  ui_->widthSpin->setValue(settings.width);
  ui_->decimalsSpin->setValue(settings.decimals);
  QRadioButton* const radios[] = {ui_->leftRadio, ui_->centerRadio, ui_->rightRadio};
  radios[settings.alignment < 0 || settings.alignment > 2 ? 2 : settings.alignment]->setChecked(
      true);
  connect(ui_->widthSpin, &QSpinBox::valueChanged, this, &CDataFormatDlg::Refresh);
  connect(ui_->decimalsSpin, &QSpinBox::valueChanged, this, &CDataFormatDlg::Refresh);
  DressDialog(*this);
  Refresh();
}

CDataFormatDlg::~CDataFormatDlg() = default;

DisplaySettings CDataFormatDlg::Settings() const {
  const int alignment = ui_->leftRadio->isChecked() ? 0 : ui_->centerRadio->isChecked() ? 1 : 2;
  return {ui_->widthSpin->value(), ui_->decimalsSpin->value(), alignment};
}

void CDataFormatDlg::Refresh() {
  const DisplaySettings settings = Settings();
  const CString pattern = CellPattern(settings.width, settings.decimals);
  ui_->exampleLabel->setText(tr("1234.56789 is shown as %1")
                                 .arg(QString::fromStdString(FormatByPattern(kExample, pattern))));
}
