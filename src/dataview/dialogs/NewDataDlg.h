// The dialog of File > New: how many variables and cases.
#pragma once

#include <QDialog>
#include <cstdint>
#include <memory>

namespace Ui {
class NewDataDlg;
}

class CNewDataDlg final : public QDialog {
  Q_OBJECT

 public:
  explicit CNewDataDlg(QWidget* parent);
  ~CNewDataDlg() override;

  std::int32_t Variables() const;
  std::int32_t Cases() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::NewDataDlg> ui_;
};
