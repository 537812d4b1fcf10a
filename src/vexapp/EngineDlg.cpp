#include "vexapp/EngineDlg.h"

#include "host/Host.h"
#include "syntax/EngineRun.h"
#include "ui_EngineDlg.h"
#include "vexapp/AppUtil.h"
#include "vexapp/Display.h"

CEngineDlg::CEngineDlg(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::EngineDlg>()) {
  ui_->setupUi(this);
  const QString chosen = CAppUtil::ChosenEngine();
  (chosen.isEmpty() ? ui_->ownRadio : ui_->otherRadio)->setChecked(true);
  ui_->pathEdit->setText(chosen);
  const QString fixed = qEnvironmentVariable("VEX_ENGINE");
  ui_->hintLabel->setText(tr("VEX_ENGINE is set and goes before this choice: %1").arg(fixed));
  ui_->hintLabel->setVisible(!fixed.isEmpty());
  connect(ui_->otherRadio, &QRadioButton::toggled, this, &CEngineDlg::Refresh);
  connect(ui_->pathButton, &QToolButton::clicked, this, &CEngineDlg::ChooseFile);
  Refresh();
}

CEngineDlg::~CEngineDlg() = default;

void CEngineDlg::Refresh() {
  const bool other = ui_->otherRadio->isChecked();
  ui_->pathEdit->setEnabled(other);
  ui_->pathButton->setEnabled(other);
}

void CEngineDlg::ChooseFile() {
  FileDialogRequest request;
  request.title = tr("Choose the Engine").toStdString();
  request.fileName = PathBytes(ui_->pathEdit->text());
  request.rows = {{tr("All Files (*)").toStdString(), "*", ""}};
  FileDialogChoice choice;
  if (Host().AskForFile(request, choice)) ui_->pathEdit->setText(PathText(choice.path));
}

void CEngineDlg::accept() {
  const bool other = ui_->otherRadio->isChecked();
  const QString path = other ? ui_->pathEdit->text().trimmed() : QString();
  CString reason;
  if (other && !CanBeRun(PathBytes(path), reason)) {
    AfxMessageBox(reason);
    ui_->pathEdit->setFocus();
    return;
  }
  CAppUtil::ChooseEngine(path);
  QDialog::accept();
}
