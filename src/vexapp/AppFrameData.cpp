// The commands of the data windows in the main window.
#include <QToolBar>

#include "dataview/CommandRules.h"
#include "dataview/dialogs/NewDataDlg.h"
#include "resources/Commands.h"
#include "vexapp/AppFrame.h"
#include "vexapp/DataWindow.h"
#include "vexapp/DataWindowCommands.h"
#include "vexapp/VexApp.h"

using namespace commands;

void CAppFrame::HandleData() {
  for (const DATAWINDOWCOMMAND& command : DataWindowCommands()) {
    connect(menus_->Action(command.number), &QAction::triggered, this, [this, run = command.run] {
      if (app_.IsBusy() || current_ == nullptr) return;
      CDataWindow& window = *current_;
      window.Table().EndEdit();
      run(window);
      UpdateCell();
      UpdateActions();
    });
  }
  menus_->Action(kViewLabels)->setCheckable(true);
  for (const char* menu : {"&Edit", "&Data", "&View"}) {
    connect(menus_->Menu(menu), &QMenu::aboutToShow, this, &CAppFrame::UpdateActions);
  }
}

// Commands that texts have too stay enabled for them.
void CAppFrame::UpdateDataActions() {
  const DataWindowState state = current_ == nullptr ? DataWindowState() : StateOf(current_->View());
  for (const DATAWINDOWCOMMAND& command : DataWindowCommands()) {
    QAction* const action = menus_->Action(command.number);
    if (current_ != nullptr) {
      action->setEnabled(command.enabled(state));
    } else if (!HandlesText(command.number)) {
      action->setEnabled(false);
    }
  }
  menus_->Action(kViewLabels)->setChecked(current_ != nullptr && current_->Table().ShowsLabels());
  const auto name = [this](int number, const char* text, const CString& step) {
    const QString what = QString::fromStdString(step);
    menus_->Action(number)->setText(what.isEmpty() ? MenuText(text) : MenuText(text) + ' ' + what);
  };
  name(kEditUndo, "&Undo", current_ == nullptr ? CString() : current_->View().UndoText());
  name(kEditRedo, "Re&do", current_ == nullptr ? CString() : current_->View().RedoText());
}

void CAppFrame::NewDataSet() {
  CNewDataDlg dialog(this);
  if (dialog.exec() != QDialog::Accepted) return;
  auto window = std::make_unique<CDataWindow>(app_);
  if (window->New(dialog.Cases(), dialog.Variables())) AddDataWindow(std::move(window));
}
