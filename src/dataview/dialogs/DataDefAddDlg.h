// The dialog "Add Variables".
#pragma once

#include <QDialog>
#include <memory>

#include "dataview/definition/NewVariables.h"

namespace Ui {
class DataDefAddDlg;
}

class CdlgDataDefAdd final : public QDialog {
  Q_OBJECT

 public:
  // `present` is the number of variables that there are.
  CdlgDataDefAdd(std::int32_t present, QWidget* parent);
  ~CdlgDataDefAdd() override;

  const NewVariables& Result() const { return result_; }

  void accept() override;

 private:
  std::unique_ptr<Ui::DataDefAddDlg> ui_;
  std::int32_t present_;
  NewVariables result_;
};
