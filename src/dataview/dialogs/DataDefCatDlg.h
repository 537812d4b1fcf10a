// The dialog "Category Labels for ...".
#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "datadoc/DataSet.h"

namespace Ui {
class DataDefCatDlg;
}

class CDataDefCatDlg final : public QDialog {
  Q_OBJECT

 public:
  // Sets the categories of a variable (counted from 0) of `data`, which outlives the dialog, on OK.
  CDataDefCatDlg(TORVIKSTRUCT& dataSet, std::int32_t variable, QWidget* parent);
  ~CDataDefCatDlg() override;

  bool AppliesToAll() const;

  void accept() override;

 private:
  void Append(const CString& item);
  void Add();
  void Delete();
  void Refresh();

  std::unique_ptr<Ui::DataDefCatDlg> ui_;
  TORVIKSTRUCT& data_;
  std::int32_t variable_;
  std::vector<CString> items_;  // as they stand in the list
};
