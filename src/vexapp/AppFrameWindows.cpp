// The windows inside the main window.
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStackedWidget>
#include <QTabBar>

#include "resources/Commands.h"
#include "vexapp/AppFrame.h"
#include "vexapp/DataWindow.h"
#include "vexapp/StartPage.h"
#include "vexapp/TextWindow.h"

using namespace commands;

namespace {

CFrameWindow* WindowIn(const QMdiSubWindow* sub) {
  return sub == nullptr ? nullptr : qobject_cast<CFrameWindow*>(sub->widget());
}

}  // namespace

std::vector<CFrameWindow*> CAppFrame::Windows() const {
  std::vector<CFrameWindow*> windows;
  for (const QMdiSubWindow* sub : area_->subWindowList()) {
    if (CFrameWindow* const window = WindowIn(sub)) windows.push_back(window);
  }
  return windows;
}

std::vector<CDataWindow*> CAppFrame::DataWindows() const {
  std::vector<CDataWindow*> found;
  for (CFrameWindow* window : Windows()) {
    if (auto* const shown = qobject_cast<CDataWindow*>(window)) found.push_back(shown);
  }
  return found;
}

CFrameWindow* CAppFrame::Active() const {
  if (current_ != nullptr) return current_;
  return currentText_;
}

CDataWindow* CAppFrame::WindowOf(const QString& path) const {
  for (CDataWindow* window : DataWindows()) {
    if (window->Holds(path)) return window;
  }
  return nullptr;
}

void CAppFrame::AddDataWindow(std::unique_ptr<CDataWindow> window) {
  CDataWindow* const added = window.release();
  connect(added, &CDataWindow::CellChanged, this, &CAppFrame::UpdateCell);
  connect(added, &CDataWindow::CellChanged, this, &CAppFrame::UpdateDataActions);
  connect(added, &CDataWindow::StatisticsChanged, this, &CAppFrame::ShowStatistics);
  connect(added, &CDataWindow::ContextMenuAsked, this, &CAppFrame::ShowContextMenu);
  AddWindow(added);
}

void CAppFrame::AddWindow(CFrameWindow* added) {
  if (layoutBefore_.isEmpty()) layoutBefore_ = saveState();
  QMdiSubWindow* const sub = area_->addSubWindow(added);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  sub->setWindowIcon(added->windowIcon());
  connect(added, &CFrameWindow::TitleChanged, this, &CAppFrame::UpdateTitle);
  connect(added, &QObject::destroyed, this, &CAppFrame::WindowGone);
  pages_->setCurrentWidget(area_);
  added->show();
  const bool tabs = area_->viewMode() == QMdiArea::TabbedView;
  tabs ? sub->showMaximized() : sub->show();
  ActivateWindow(added);
}

void CAppFrame::ActivateWindow(CFrameWindow* window) {
  area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(window->parentWidget()));
  window->setFocus();
  // Qt tells of it only once the main window itself is active.
  MakeCurrent(window);
}

void CAppFrame::WindowActivated(QMdiSubWindow* sub) {
  CFrameWindow* const window = WindowIn(sub);
  // While a dialog opens no window is active for a moment; the tool bars stay as they are.
  if (window != nullptr || area_->subWindowList().isEmpty()) MakeCurrent(window);
}

void CAppFrame::MakeCurrent(CFrameWindow* window) {
  if (window == Active()) return;
  CDataWindow* const before = current_;
  current_ = qobject_cast<CDataWindow*>(window);
  currentText_ = qobject_cast<CTextWindow*>(window);
  setUpdatesEnabled(false);
  if (before != nullptr) before->View().OnActivateView(false);
  if (current_ != nullptr) current_->View().OnActivateView(true);
  setUpdatesEnabled(true);
  ShowCurrent();
}

void CAppFrame::WindowGone(const QObject* window) {
  if (current_ == window) current_ = nullptr;
  if (currentText_ == window) currentText_ = nullptr;
  ShowCurrent();
}

// Brings everything that speaks of the active window up to date.
void CAppFrame::ShowCurrent() {
  if (area_->subWindowList().isEmpty()) pages_->setCurrentWidget(startPage_);
  UpdateTitle();
  UpdateCell();
  ShowStatistics();
  UpdateActions();
}

void CAppFrame::ShowAsTabs(bool tabs) {
  area_->setViewMode(tabs ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
  menus_->Action(kWindowTabs)->setChecked(tabs);
  // Tabs as wide as their names, not as the window.
  if (auto* bar = area_->findChild<QTabBar*>()) bar->setExpanding(false);
}

void CAppFrame::CloseCurrent() {
  if (CFrameWindow* const active = Active()) active->parentWidget()->close();
}

// Stops at the first window that stays open.
void CAppFrame::CloseAll() {
  for (CFrameWindow* window : Windows()) {
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

// The windows by name, at the end of the Window menu.
void CAppFrame::FillWindowMenu() {
  QMenu* const menu = menus_->Menu("&Window");
  for (QAction* action : windowList_) delete action;
  windowList_.clear();
  const std::vector<CFrameWindow*> windows = Windows();
  if (!windows.empty()) windowList_.push_back(menu->addSeparator());
  int number = 0;
  for (CFrameWindow* window : windows) {
    const QString name = window->FileName().replace('&', "&&");
    QAction* const action = menu->addAction(QString("&%1  %2").arg(++number).arg(name));
    action->setCheckable(true);
    action->setChecked(window == Active());
    connect(action, &QAction::triggered, window, [this, window] { ActivateWindow(window); });
    windowList_.push_back(action);
  }
}
