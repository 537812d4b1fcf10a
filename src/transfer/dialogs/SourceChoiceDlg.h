// Asks what a foreign file leaves open.
#pragma once

#include <QDialog>
#include <memory>

class CSourceChoice;

namespace Ui {
class SourceChoiceDlg;
}

// Shows only what is open, and how the texts read with what is chosen.
class CSourceChoiceDlg final : public QDialog {
  Q_OBJECT

 public:
  // The choice must outlive the dialog; it holds what was chosen last.
  CSourceChoiceDlg(CSourceChoice& choice, QWidget* parent);
  ~CSourceChoiceDlg() override;

  void accept() override;

 private:
  void Choose();

  CSourceChoice& choice_;
  std::unique_ptr<Ui::SourceChoiceDlg> ui_;
};
