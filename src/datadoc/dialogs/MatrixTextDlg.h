// Asks what a text file of moment matrices holds, and in which order.
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/ExternData.h"

namespace Ui {
class MatrixTextDlg;
}

class CMatrixTextDlg final : public QDialog {
  Q_OBJECT

 public:
  // Starts with the parts of `kind`. The number of variables is asked for only with
  // `asksForVariables`; otherwise the file's format statement says it.
  CMatrixTextDlg(const EXTERNDATA& kind, bool asksForVariables, int variables, QWidget* parent);
  ~CMatrixTextDlg() override;

  EXTERNDATA ChosenKind() const;
  int Variables() const;

 private:
  EXTERNDATA kind_;
  std::unique_ptr<Ui::MatrixTextDlg> ui_;
};
