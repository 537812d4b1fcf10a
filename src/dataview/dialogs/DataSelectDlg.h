// The dialog "Select Variables/Cases": two pages and the buttons of a procedure.
#pragma once

#include <functional>
#include <memory>

#include "syntax/dialogs/ProcedureDlg.h"

namespace Ui {
class DataSelectDlg;
}

class CDataSelectDlg final : public CProcedureDlg {
  Q_OBJECT

 public:
  CDataSelectDlg(CDataDoc& document, QWidget* parent);
  ~CDataSelectDlg() override;

  // The lines that select cases, in the order in which their rules were added.
  CStringList SelectionLines() const;
  // Those, the variables of the run, and the output form of a selection.
  ProcedureJob Job() const override;

  // Asked with the lines when Run is pressed; false keeps the dialog open.
  void SetConfirm(std::function<bool(const CStringList&)> confirm) {
    confirm_ = std::move(confirm);
  }

  void done(int endCode) override;

 private:
  void Refresh();

  std::unique_ptr<Ui::DataSelectDlg> ui_;
  std::function<bool(const CStringList&)> confirm_;
};
