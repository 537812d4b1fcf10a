#include "dataview/dialogs/DataSelectDlg.h"

#include "datadoc/DataDoc.h"
#include "dataview/dialogs/DialogLook.h"
#include "dataview/operations/SelectionLines.h"
#include "syntax/OutputDialog.h"
#include "ui_DataSelectDlg.h"

CDataSelectDlg::CDataSelectDlg(CDataDoc& document, QWidget* parent)
    : CProcedureDlg(document, kOutputOther, parent), ui_(std::make_unique<Ui::DataSelectDlg>()) {
  ui_->setupUi(this);
  ui_->variablePage->SetVariables(*document.GetTorvik());
  ui_->casePage->SetVariables(*document.GetTorvik());
  ui_->tabs->setCurrentWidget(ui_->casePage);
  ConnectButtons(*ui_->buttons);
  ui_->buttons->HideHelp();
  connect(ui_->casePage, &CCaseSelectPage::RulesChanged, this, &CDataSelectDlg::Refresh);
  connect(ui_->variablePage, &CDataSelectDlgPg::VariablesChanged, this, &CDataSelectDlg::Refresh);
  DressDialog(*this, 640);
  Refresh();
}

CDataSelectDlg::~CDataSelectDlg() = default;

CStringList CDataSelectDlg::SelectionLines() const {
  return ui_->casePage->SyntaxLines();
}

ProcedureJob CDataSelectDlg::Job() const {
  ProcedureJob job;
  job.lines = SelectionJobLines(SelectionLines(), ui_->variablePage->Variables());
  return job;
}

void CDataSelectDlg::done(int endCode) {
  const bool runs = ActionOfEndCode(endCode) == ProcedureAction::Run;
  if (runs && confirm_ && !confirm_(SelectionLines())) return;
  CProcedureDlg::done(endCode);
}

// There must be something to do.
void CDataSelectDlg::Refresh() {
  ui_->buttons->SetComplete(!SelectionLines().empty() || !ui_->variablePage->Variables().empty());
}
