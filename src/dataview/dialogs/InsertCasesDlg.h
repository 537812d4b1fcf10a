// The dialog "Insert Cases".
#pragma once

#include <QDialog>
#include <memory>

#include "dataview/CaseOperations.h"

namespace Ui {
class InsertCasesDlg;
}

class CdlgInsertCases final : public QDialog {
  Q_OBJECT

 public:
  // Starts at `caseNumber` of `cases` cases (counted from 1; 0 where there are none).
  CdlgInsertCases(std::int64_t caseNumber, std::int64_t cases, QWidget* parent);
  ~CdlgInsertCases() override;

  InsertCasesRequest Request() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::InsertCasesDlg> ui_;
  std::int64_t cases_;
};
