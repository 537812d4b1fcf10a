#include "dataview/dialogs/SortCasesDlg.h"

#include "dataview/dialogs/DialogLook.h"
#include "ui_SortCasesDlg.h"

CdlgDataSortCase::CdlgDataSortCase(const TORVIKSTRUCT& dataSet, std::int32_t current,
                                   QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::SortCasesDlg>()) {
  ui_->setupUi(this);
  ui_->variableList->SetSingle();
  ui_->variableList->SetVariables(dataSet);
  ui_->findEdit->SetList(ui_->variableList);
  ui_->ascendingRadio->setChecked(true);
  connect(ui_->variableList, &QListView::doubleClicked, this, &QDialog::accept);
  DressDialog(*this, 320);
  if (current >= 0) ui_->variableList->Select({current});
  ui_->variableList->setFocus();
}

CdlgDataSortCase::~CdlgDataSortCase() = default;

SortCasesRequest CdlgDataSortCase::Request() const {
  return {ui_->variableList->FirstSelected(),
          ui_->ascendingRadio->isChecked() ? kSortAscending : kSortDescending};
}
