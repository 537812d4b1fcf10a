#include "syntax/dialogs/ProcedureDlg.h"

#include "datadoc/DataDoc.h"
#include "host/Host.h"
#include "syntax/OutputDialog.h"
#include "syntax/dialogs/DataOutDlg.h"
#include "syntax/dialogs/ProcedureButtons.h"

CProcedureDlg::CProcedureDlg(CDataDoc& document, int outputMode, QWidget* parent)
    : QDialog(parent), document_(document), outputMode_(outputMode) {}

void CProcedureDlg::ConnectButtons(CProcedureButtons& buttons) {
  connect(&buttons, &CProcedureButtons::RunAsked, this, [this] { EndWith(kEndRun); });
  connect(&buttons, &CProcedureButtons::SyntaxAsked, this, [this] { EndWith(kEndSyntax); });
  connect(&buttons, &CProcedureButtons::CancelAsked, this, &CProcedureDlg::reject);
  connect(&buttons, &CProcedureButtons::OutputOptionsAsked, this,
          &CProcedureDlg::AskForOutputOptions);
}

void CProcedureDlg::EndWith(int endCode) {
  const CString problem = Problem();
  if (problem.empty()) return done(endCode);
  AfxMessageBox(problem);
}

void CProcedureDlg::reject() {
  done(kEndCancel);
}

int CProcedureDlg::OutputTests() const {
  return TestsFor(*document_.GetTorvik(), {});
}

void CProcedureDlg::AskForOutputOptions() {
  CDataOutDlg(this, document_.GetOutputOptions(), outputMode_, OutputTests()).exec();
}

ProcedureResult RunProcedureDialog(CDataDoc& document, CProcedureDlg& dialog) {
  return RunProcedure(
      document, [&] { return dialog.exec(); }, [&] { return dialog.Job(); });
}
