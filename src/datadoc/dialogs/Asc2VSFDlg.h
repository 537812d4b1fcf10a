// Asks for the number of variables of a text file before it is opened.
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/TextOpening.h"

namespace Ui {
class Asc2VSFDlg;
}

class CAsc2VSFDlg final : public QDialog {
  Q_OBJECT

 public:
  // Starts with `proposal`. Without `mayHaveNames` the file is of a kind that has no line of names.
  CAsc2VSFDlg(const ASC2VSF& proposal, bool mayHaveNames, QWidget* parent);
  ~CAsc2VSFDlg() override;

  ASC2VSF Chosen() const;

 private:
  std::unique_ptr<Ui::Asc2VSFDlg> ui_;
};
