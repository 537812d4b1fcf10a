// Asks which program the procedures run.
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class EngineDlg;
}

class CEngineDlg final : public QDialog {
  Q_OBJECT

 public:
  explicit CEngineDlg(QWidget* parent);
  ~CEngineDlg() override;

  // Keeps the choice for this and later starts; stays open when that program cannot be run.
  void accept() override;

 private:
  void ChooseFile();
  void Refresh();

  std::unique_ptr<Ui::EngineDlg> ui_;
};
