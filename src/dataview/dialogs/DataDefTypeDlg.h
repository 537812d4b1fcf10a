// The dialog "Variable Types for ...".
#pragma once

#include <QDialog>
#include <array>
#include <memory>

#include "datadoc/DataSet.h"

class QRadioButton;

namespace Ui {
class DataDefTypeDlg;
}

class CDataDefTypeDlg final : public QDialog {
  Q_OBJECT

 public:
  // Sets the type of `variable`, which outlives the dialog, on OK.
  CDataDefTypeDlg(VARSTRUCT& variable, QWidget* parent);
  ~CDataDefTypeDlg() override;

  bool AppliesToAll() const;

  void accept() override;

 private:
  std::unique_ptr<Ui::DataDefTypeDlg> ui_;
  VARSTRUCT& variable_;
  std::array<QRadioButton*, 5> radios_;  // by type code
};
