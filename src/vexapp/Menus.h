// The menu bar and the context menus, made from the tables of resources/Commands.h.
#pragma once

#include <QAction>
#include <QMenu>
#include <map>
#include <memory>

class QMenuBar;

class CMenus {
 public:
  // Every action belongs to `bar`'s window and starts disabled: what is built is enabled by whoever
  // handles it.
  explicit CMenus(QMenuBar& bar);

  // The action of a command; null for a number that no menu has.
  QAction* Action(int number) const;
  // A menu by its title, as in the table ("&View|&Appearance"); null when there is none.
  QMenu* Menu(const char* title) const;
  QMenu* RecentFilesMenu() const { return recentFiles_; }

  // The menu of a right click: 0 cell, 1 row heading, 2 column heading. Its entries follow the menu
  // bar's.
  std::unique_ptr<QMenu> ContextMenu(int type, QWidget* parent) const;

  const std::map<int, QAction*>& Actions() const { return actions_; }

 private:
  QMenu* MenuFor(QMenuBar& bar, const QString& title);

  std::map<QString, QMenu*> menus_;
  std::map<int, QAction*> actions_;
  QMenu* recentFiles_ = nullptr;
};
