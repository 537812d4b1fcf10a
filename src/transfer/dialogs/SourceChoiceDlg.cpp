#include "transfer/dialogs/SourceChoiceDlg.h"

#include <QFileInfo>

#include "transfer/SourceChoice.h"
#include "ui_SourceChoiceDlg.h"

CSourceChoiceDlg::CSourceChoiceDlg(CSourceChoice& choice, QWidget* parent)
    : QDialog(parent), choice_(choice), ui_(std::make_unique<Ui::SourceChoiceDlg>()) {
  ui_->setupUi(this);
  const QString name = QFileInfo(QString::fromStdString(choice.File())).fileName();
  setWindowTitle(tr("Import %1").arg(name));
  for (const std::string& table : choice.Tables()) {
    ui_->tableBox->addItem(QString::fromStdString(table));
  }
  for (const auto& encoding : STUtils::ImportEncodings()) {
    ui_->encodingBox->addItem(tr(encoding.shown));
  }
  for (QWidget* const part :
       {static_cast<QWidget*>(ui_->tableLabel), static_cast<QWidget*>(ui_->tableBox)}) {
    part->setVisible(!choice.Tables().empty());
  }
  for (QWidget* const part :
       {static_cast<QWidget*>(ui_->encodingLabel), static_cast<QWidget*>(ui_->encodingBox),
        static_cast<QWidget*>(ui_->sampleLabel), static_cast<QWidget*>(ui_->sampleList)}) {
    part->setVisible(choice.AsksForEncoding());
  }
  for (QWidget* const part :
       {static_cast<QWidget*>(ui_->passwordLabel), static_cast<QWidget*>(ui_->passwordEdit)}) {
    part->setVisible(choice.AsksForPassword());
  }
  Choose();
  connect(ui_->tableBox, &QComboBox::currentIndexChanged, this, &CSourceChoiceDlg::Choose);
  connect(ui_->encodingBox, &QComboBox::currentIndexChanged, this, &CSourceChoiceDlg::Choose);
  adjustSize();
}

CSourceChoiceDlg::~CSourceChoiceDlg() = default;

void CSourceChoiceDlg::Choose() {
  choice_.table = static_cast<std::size_t>(std::max(0, ui_->tableBox->currentIndex()));
  choice_.encoding = static_cast<std::size_t>(std::max(0, ui_->encodingBox->currentIndex()));
  if (!choice_.AsksForEncoding()) return;
  ui_->sampleList->clear();
  for (const std::string& text : choice_.Sample()) {
    ui_->sampleList->addItem(QString::fromStdString(text));
  }
}

void CSourceChoiceDlg::accept() {
  choice_.password = ui_->passwordEdit->text().toStdString();
  QDialog::accept();
}
