// The dialog "Missing Values for ...".
#pragma once

#include <QDialog>
#include <array>
#include <memory>

#include "datadoc/DataSet.h"

class QLineEdit;

namespace Ui {
class DataDefMissDlg;
}

class CDataDefMissDlg final : public QDialog {
  Q_OBJECT

 public:
  // On OK sets the missing values of `variable` and the global ones and the deletion method of
  // `data`; both outlive the dialog.
  CDataDefMissDlg(VARSTRUCT& variable, TORVIKSTRUCT& dataSet, QWidget* parent);
  ~CDataDefMissDlg() override;

  bool AppliesToAll() const;

  void accept() override;

 private:
  using Edits = std::array<QLineEdit*, 5>;

  void EnableFields();

  std::unique_ptr<Ui::DataDefMissDlg> ui_;
  VARSTRUCT& variable_;
  TORVIKSTRUCT& data_;
  Edits variableEdits_;
  Edits globalEdits_;
};
