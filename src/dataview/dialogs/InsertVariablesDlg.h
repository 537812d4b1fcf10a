// The dialog "Insert Variables".
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/DataSet.h"
#include "dataview/CaseOperations.h"

namespace Ui {
class InsertVariablesDlg;
}

class CdlgInsertVariables final : public QDialog {
  Q_OBJECT

 public:
  // Starts at `selected`, counted from 0. The data set outlives the dialog.
  CdlgInsertVariables(const TORVIKSTRUCT& dataSet, std::int32_t selected, QWidget* parent);
  ~CdlgInsertVariables() override;

  InsertVariablesRequest Request() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::InsertVariablesDlg> ui_;
  const TORVIKSTRUCT& data_;
};
