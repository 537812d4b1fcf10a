// The dialog "Define Variables": names, types, missing values and categories, on a copy of the data
// set.
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/DataSet.h"

class CDataDoc;
class QLineEdit;

namespace Ui {
class DataDefDlg;
}

class CdlgDataDef final : public QDialog {
  Q_OBJECT

 public:
  // Works on a copy of the document's data set; `current` (counted from 0) is selected at first.
  CdlgDataDef(const CDataDoc& document, std::int32_t current, QWidget* parent);
  ~CdlgDataDef() override;

  // The copy as it is now. Null when there was not enough memory for one.
  const TORVIKSTRUCT* Copy() const { return copy_.get(); }

  void accept() override;
  void reject() override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void Insert();
  void StartRename();
  void EndRename();
  void ForgetRename();
  void AskForType();
  void AskForMissing();
  void AskForCategories();
  void Refresh();
  VARSTRUCT& First();

  std::unique_ptr<Ui::DataDefDlg> ui_;
  std::int32_t capacity_;
  std::unique_ptr<TORVIKSTRUCT> copy_;
  QLineEdit* renameEdit_;
  std::int32_t renamed_ = -1;  // the variable whose name is being edited
};
