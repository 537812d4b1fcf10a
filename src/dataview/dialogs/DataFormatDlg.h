// The dialog "Data Format": how cells are shown in all data windows.
#pragma once

#include <QDialog>
#include <memory>

#include "host/Framework.h"

namespace Ui {
class DataFormatDlg;
}

class CDataFormatDlg final : public QDialog {
  Q_OBJECT

 public:
  CDataFormatDlg(const DisplaySettings& settings, QWidget* parent);
  ~CDataFormatDlg() override;

  DisplaySettings Settings() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::DataFormatDlg> ui_;
};
