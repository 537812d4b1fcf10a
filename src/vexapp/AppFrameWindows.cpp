// The data windows of the main window.
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStackedWidget>
#include <QTabBar>

#include "resources/Commands.h"
#include "vexapp/AppFrame.h"
#include "vexapp/DataWindow.h"
#include "vexapp/StartPage.h"

using namespace commands;

namespace {

CDataWindow* DataWindowIn(const QMdiSubWindow* sub) {
  return sub == nullptr ? nullptr : qobject_cast<CDataWindow*>(sub->widget());
}

}  // namespace

std::vector<CDataWindow*> CAppFrame::DataWindows() const {
  std::vector<CDataWindow*> windows;
  for (const QMdiSubWindow* sub : area_->subWindowList()) {
    if (CDataWindow* const window = DataWindowIn(sub)) windows.push_back(window);
  }
  return windows;
}

CDataWindow* CAppFrame::WindowOf(const QString& path) const {
  for (CDataWindow* window : DataWindows()) {
    if (window->Holds(path)) return window;
  }
  return nullptr;
}

void CAppFrame::AddWindow(std::unique_ptr<CDataWindow> window) {
  if (layoutBefore_.isEmpty()) layoutBefore_ = saveState();
  CDataWindow* const added = window.release();
  QMdiSubWindow* const sub = area_->addSubWindow(added);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  connect(added, &CDataWindow::TitleChanged, this, &CAppFrame::UpdateTitle);
  connect(added, &CDataWindow::CellChanged, this, &CAppFrame::UpdateCell);
  connect(added, &CDataWindow::ContextMenuAsked, this, &CAppFrame::ShowContextMenu);
  connect(added, &QObject::destroyed, this, &CAppFrame::WindowGone);
  pages_->setCurrentWidget(area_);
  added->show();
  const bool tabs = area_->viewMode() == QMdiArea::TabbedView;
  tabs ? sub->showMaximized() : sub->show();
  ActivateWindow(added);
}

void CAppFrame::ActivateWindow(CDataWindow* window) {
  area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(window->parentWidget()));
  window->setFocus();
  // Qt tells of it only once the main window itself is active.
  MakeCurrent(window);
}

void CAppFrame::WindowActivated(QMdiSubWindow* sub) {
  CDataWindow* const window = DataWindowIn(sub);
  // While a dialog opens no window is active for a moment; the tool bars stay as they are.
  if (window != nullptr || area_->subWindowList().isEmpty()) MakeCurrent(window);
}

void CAppFrame::MakeCurrent(CDataWindow* window) {
  if (window == current_) return;
  CDataWindow* const before = current_;
  current_ = window;
  setUpdatesEnabled(false);
  if (before != nullptr) before->View().OnActivateView(false);
  if (window != nullptr) window->View().OnActivateView(true);
  setUpdatesEnabled(true);
  ShowCurrent();
}

void CAppFrame::WindowGone(const QObject* window) {
  if (current_ == window) current_ = nullptr;
  ShowCurrent();
}

// Brings everything that speaks of the active data window up to date.
void CAppFrame::ShowCurrent() {
  if (area_->subWindowList().isEmpty()) pages_->setCurrentWidget(startPage_);
  UpdateTitle();
  UpdateCell();
  UpdateActions();
}

void CAppFrame::ShowAsTabs(bool tabs) {
  area_->setViewMode(tabs ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
  menus_->Action(kWindowTabs)->setChecked(tabs);
  // Tabs as wide as their names, not as the window.
  if (auto* bar = area_->findChild<QTabBar*>()) bar->setExpanding(false);
}

void CAppFrame::GoToCase() {
  if (current_ != nullptr) current_->AskForCase();
}

void CAppFrame::CloseCurrent() {
  if (current_ != nullptr) current_->parentWidget()->close();
}

// Stops at the first window that stays open.
void CAppFrame::CloseAll() {
  for (CDataWindow* window : DataWindows()) {
    ActivateWindow(window);
    if (!window->parentWidget()->close()) return;
  }
}

void CAppFrame::Tile() {
  ShowAsTabs(false);
  area_->tileSubWindows();
}

void CAppFrame::Cascade() {
  ShowAsTabs(false);
  area_->cascadeSubWindows();
}

void CAppFrame::Next() {
  area_->activateNextSubWindow();
}

void CAppFrame::Previous() {
  area_->activatePreviousSubWindow();
}

// The data windows by name, at the end of the Window menu.
void CAppFrame::FillWindowMenu() {
  QMenu* const menu = menus_->Menu("&Window");
  for (QAction* action : windowList_) delete action;
  windowList_.clear();
  const std::vector<CDataWindow*> windows = DataWindows();
  if (!windows.empty()) windowList_.push_back(menu->addSeparator());
  int number = 0;
  for (CDataWindow* window : windows) {
    const QString name = window->FileName().replace('&', "&&");
    QAction* const action = menu->addAction(QString("&%1  %2").arg(++number).arg(name));
    action->setCheckable(true);
    action->setChecked(window == current_);
    connect(action, &QAction::triggered, window, [this, window] { ActivateWindow(window); });
    windowList_.push_back(action);
  }
}
