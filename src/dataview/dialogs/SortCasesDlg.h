// The dialog "Sort Cases".
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/DataSet.h"
#include "dataview/CaseOperations.h"

namespace Ui {
class SortCasesDlg;
}

class CdlgDataSortCase final : public QDialog {
  Q_OBJECT

 public:
  // Starts with the variable `current` (counted from 0; negative: none).
  CdlgDataSortCase(const TORVIKSTRUCT& dataSet, std::int32_t current, QWidget* parent);
  ~CdlgDataSortCase() override;

  SortCasesRequest Request() const;  // the key is negative when no variable is chosen

 private:
  std::unique_ptr<Ui::SortCasesDlg> ui_;
};
