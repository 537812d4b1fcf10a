#include "vexapp/ProcedureCommands.h"

#include "resources/Commands.h"
#include "syntax/OutputDialog.h"
#include "syntax/ProcedureRun.h"
#include "syntax/dialogs/DataOutDlg.h"
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

constexpr PROCEDURECOMMAND kCommands[] = {
    {commands::kStatisticsScreening, false, ScreenData},
    {commands::kStatisticsOutputOptions, false, AskForOutputOptions},
};

}  // namespace

std::span<const PROCEDURECOMMAND> ProcedureCommands() {
  return kCommands;
}
