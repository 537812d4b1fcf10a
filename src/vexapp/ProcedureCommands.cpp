#include "vexapp/ProcedureCommands.h"

#include <QSettings>
#include <filesystem>

#include "host/Host.h"
#include "resources/Commands.h"
#include "syntax/OutputDialog.h"
#include "syntax/ProcedureRun.h"
#include "syntax/dialogs/DataOutDlg.h"
#include "syntax/dialogs/ProcedureDialogs.h"
#include "vexapp/DataWindow.h"

namespace {

void ScreenData(CDataWindow& window) {
  RunContentsListing(window.Document());
}

void AskForOutputOptions(CDataWindow& window) {
  CDataDoc& document = window.Document();
  CDataOutDlg(&window, document.GetOutputOptions(), kOutputFromMenu,
              TestsFor(*document.GetTorvik(), {}))
      .exec();
}

// The dialog with fixed X variables in place of the newer one with covariates.
bool WantsFixedProbit() {
  return QSettings().value("procedures/fixedProbit", false).toBool();
}

// What the dialog starts with: what was chosen last in this window.
ProcedureChoices LastChoices(CDataWindow& window, const ProcedureEntry& procedure) {
  const auto last = window.LastChoices().find(procedure.command);
  ProcedureChoices choices = last == window.LastChoices().end() ? procedure.initial : last->second;
  if (auto* const probit = std::get_if<ProbitChoices>(&choices)) {
    probit->declareFixed = WantsFixedProbit();
  }
  return choices;
}

// New data are offered to be opened.
void OfferNewData(const CDataDoc& document, const ProcedureChoices& choices) {
  const CString newData = TextOf(*document.GetTorvik(), choices).newData;
  if (newData.empty()) return;
  const auto path = std::filesystem::path(document.GetPathName()).parent_path() / newData;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return;
  const CString question = "The new data were written to " + path.string() + ".\n\nOpen them now?";
  if (AfxMessageBox(question, MessageButtons::YesNo) == MessageAnswer::Yes) {
    APPUTIL_GetApp()->OpenDocumentFile(path.string());
  }
}

void RunWithDialog(CDataWindow& window, const ProcedureEntry& procedure) {
  CDataDoc& document = window.Document();
  std::unique_ptr<CChoicesDlg> dialog;
  const auto show = [&] {
    dialog = MakeProcedureDialog(document, LastChoices(window, procedure), &window);
    return dialog->exec();
  };
  const auto collect = [&] {
    window.LastChoices().insert_or_assign(procedure.command, dialog->Choices());
    return dialog->Job();
  };
  const ProcedureResult result = RunProcedure(document, show, collect);
  if (result.state == ProcedureState::Done && result.engine == 0) {
    OfferNewData(document, dialog->Choices());
  }
}

std::vector<PROCEDURECOMMAND> AllCommands() {
  std::vector<PROCEDURECOMMAND> all = {
      {commands::kStatisticsScreening, false, ScreenData},
      {commands::kStatisticsOutputOptions, false, AskForOutputOptions},
  };
  for (const ProcedureEntry& procedure : Procedures()) {
    all.push_back({procedure.command, procedure.needsOrdinal,
                   [&procedure](CDataWindow& window) { RunWithDialog(window, procedure); }});
  }
  return all;
}

}  // namespace

std::span<const PROCEDURECOMMAND> ProcedureCommands() {
  static const std::vector<PROCEDURECOMMAND> all = AllCommands();
  return all;
}
