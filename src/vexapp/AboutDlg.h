// The About box.
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class AboutDlg;
}

class CAboutDlg final : public QDialog {
  Q_OBJECT

 public:
  explicit CAboutDlg(QWidget* parent);
  ~CAboutDlg() override;

 private:
  std::unique_ptr<Ui::AboutDlg> ui_;
};
