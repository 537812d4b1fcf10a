// What the dialogs of all procedures have in common: the buttons, the output options, the end codes
// and the way from a choice to a run.
#pragma once

#include <QDialog>

#include "syntax/ProcedureRun.h"

class CDataDoc;
class CProcedureButtons;

// A procedure's dialog derives from this, calls ConnectButtons() once its controls are there and
// answers Job(). exec() returns kEndRun, kEndCancel or kEndSyntax.
class CProcedureDlg : public QDialog {
  Q_OBJECT

 public:
  // `outputMode` is the mode in which Output Options opens (syntax/OutputDialog.h).
  CProcedureDlg(CDataDoc& document, int outputMode, QWidget* parent);

  // The procedure's own lines and how they run, from what stands in the controls. Asked once, after
  // the dialog ended in Run or Syntax. For lines followed by the document's output line:
  // JobOfLines().
  virtual ProcedureJob Job() const = 0;

  void reject() override;

 protected:
  void ConnectButtons(CProcedureButtons& buttons);
  // What is wrong with the choice, told when Run or Syntax is pressed; the dialog then stays open.
  // Empty: nothing.
  virtual CString Problem() const { return {}; }
  // The `tests` argument of the output options: by the types of all variables.
  virtual int OutputTests() const;

  // Run or Syntax was pressed: tells the problem, or closes.
  virtual void EndWith(int endCode);

  CDataDoc& Document() const { return document_; }

 private:
  void AskForOutputOptions();

  CDataDoc& document_;
  int outputMode_;
};

// Shows the dialog and does what it ended in (see RunProcedure).
ProcedureResult RunProcedureDialog(CDataDoc& document, CProcedureDlg& dialog);
