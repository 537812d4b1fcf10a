// The dialog "Delete Variables".
#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "datadoc/DataSet.h"

namespace Ui {
class DeleteVariablesDlg;
}

class CdlgDeleteVariables final : public QDialog {
  Q_OBJECT

 public:
  // Starts with `selected` (counted from 0, ascending). Not all variables can be chosen.
  CdlgDeleteVariables(const TORVIKSTRUCT& dataSet, const std::vector<std::int32_t>& selected,
                      QWidget* parent);
  ~CdlgDeleteVariables() override;

  std::vector<std::int32_t> Variables() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::DeleteVariablesDlg> ui_;
};
