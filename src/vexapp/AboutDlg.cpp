#include "vexapp/AboutDlg.h"

#include "resources/DrawnIcon.h"
#include "ui_AboutDlg.h"

CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::AboutDlg>()) {
  constexpr int kPictureSize = 64;
  ui_->setupUi(this);
  ui_->pictureLabel->setPixmap(
      DrawnIcon(Picture::Program).pixmap(QSize(kPictureSize, kPictureSize), devicePixelRatioF()));
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.6);
  large.setBold(true);
  ui_->nameLabel->setFont(large);
  ui_->versionLabel->setText(tr("Version %1").arg(VEX_VERSION));
}

CAboutDlg::~CAboutDlg() = default;
