// The dialog "Delete Cases".
#pragma once

#include <QDialog>
#include <memory>

#include "dataview/CaseOperations.h"

namespace Ui {
class DeleteCasesDlg;
}

class CdlgDeleteCases final : public QDialog {
  Q_OBJECT

 public:
  // Starts with the cases from `first` to `last` of `cases`, counted from 1.
  CdlgDeleteCases(std::int64_t first, std::int64_t last, std::int64_t cases, QWidget* parent);
  ~CdlgDeleteCases() override;

  DeleteCasesRequest Request() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::DeleteCasesDlg> ui_;
  std::int64_t cases_;
};
