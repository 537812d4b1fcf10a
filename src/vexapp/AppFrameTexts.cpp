// Outputs and syntaxes in the main window.
#include <QFileInfo>
#include <algorithm>

#include "resources/Commands.h"
#include "vexapp/AppFrame.h"
#include "vexapp/OutputWindow.h"
#include "vexapp/SyntaxWindow.h"
#include "vexapp/VexApp.h"

using namespace commands;

namespace {

// Which windows a command is for.
enum class For { Text, Syntax };

struct TextCommand {
  int number;
  For windows;
  void (*run)(CTextWindow& window);
};

constexpr TextCommand kTextCommands[] = {
    {kFilePrint, For::Text, [](CTextWindow& window) { window.Print(); }},
    {kFilePrintPreview, For::Text, [](CTextWindow& window) { window.PrintPreview(); }},
    {kEditFind, For::Text, [](CTextWindow& window) { window.OpenFindBar(false); }},
    {kEditFindNext, For::Text, [](CTextWindow& window) { window.FindNext(true); }},
    {kEditFindPrevious, For::Text, [](CTextWindow& window) { window.FindNext(false); }},
    {kEditReplace, For::Syntax, [](CTextWindow& window) { window.OpenFindBar(true); }},
    {kViewZoomIn, For::Text, [](CTextWindow& window) { window.Zoom(1); }},
    {kViewZoomOut, For::Text, [](CTextWindow& window) { window.Zoom(-1); }},
    {kViewZoomReset, For::Text, [](CTextWindow& window) { window.ResetZoom(); }},
    {kStatisticsRunSyntax, For::Syntax,
     [](CTextWindow& window) { dynamic_cast<CSyntaxWindow&>(window).Run(); }},
};

}  // namespace

void CAppFrame::HandleTexts() {
  for (const TextCommand& command : kTextCommands) {
    connect(menus_->Action(command.number), &QAction::triggered, this, [this, run = command.run] {
      if (!app_.IsBusy() && currentText_ != nullptr) run(*currentText_);
    });
  }
  // On many keyboards the plus sign needs the Shift key.
  menus_->Action(kViewZoomIn)->setShortcuts({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")});
  app_.SetOpener([this](const QString& path) { return OpenPath(path); });
}

void CAppFrame::UpdateTextActions() {
  const bool open = currentText_ != nullptr;
  const bool syntax = open && currentText_->CanReplace();
  for (const TextCommand& command : kTextCommands) {
    menus_->Action(command.number)->setEnabled(command.windows == For::Syntax ? syntax : open);
  }
}

bool CAppFrame::HandlesText(int number) {
  return std::any_of(std::begin(kTextCommands), std::end(kTextCommands),
                     [number](const TextCommand& command) { return command.number == number; });
}

CTextWindow* CAppFrame::TextOf(const QString& path) const {
  for (CFrameWindow* window : Windows()) {
    auto* const text = qobject_cast<CTextWindow*>(window);
    if (text != nullptr && text->Holds(path)) return text;
  }
  return nullptr;
}

// A file that is open already is shown as it is now, unless that would lose changes.
bool CAppFrame::OpenText(const QString& path) {
  if (CTextWindow* const open = TextOf(path)) {
    ActivateWindow(open);
    return open->IsModified() || open->Reload();
  }
  std::unique_ptr<CTextWindow> window;
  if (QFileInfo(path).suffix().compare("OUT", Qt::CaseInsensitive) == 0) {
    window = std::make_unique<COutputWindow>(app_);
  } else {
    window = std::make_unique<CSyntaxWindow>(app_);
  }
  if (!window->Open(path)) return false;
  connect(window.get(), &CFrameWindow::TitleChanged, this, &CAppFrame::UpdateCell);
  AddWindow(window.release());
  return true;
}
