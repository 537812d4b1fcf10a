#include "vexapp/Menus.h"

#include <QMenuBar>

#include "resources/Commands.h"

CMenus::CMenus(QMenuBar& bar) {
  for (const MENUENTRY& entry : MainMenu()) {
    QMenu* const menu = MenuFor(bar, entry.menu);
    if (entry.number == commands::kSeparator) {
      menu->addSeparator();
    } else if (entry.number == commands::kRecentFiles) {
      recentFiles_ = menu->addMenu(MenuText(entry.text));
    } else {
      QAction* const action = menu->addAction(MenuText(entry.text));
      action->setObjectName(QString("command%1").arg(entry.number));
      action->setData(entry.number);
      action->setEnabled(false);
      if (entry.shortcut != nullptr) action->setShortcut(QKeySequence(entry.shortcut));
      if (entry.tip != nullptr) action->setStatusTip(MenuText(entry.tip));
      actions_[entry.number] = action;
    }
  }
}

QMenu* CMenus::MenuFor(QMenuBar& bar, const QString& title) {
  const auto at = menus_.find(title);
  if (at != menus_.end()) return at->second;
  const qsizetype cut = title.lastIndexOf('|');
  const QString own = MenuText(title.mid(cut + 1).toUtf8().constData());
  QMenu* const menu = cut < 0 ? bar.addMenu(own) : MenuFor(bar, title.left(cut))->addMenu(own);
  menus_[title] = menu;
  return menu;
}

QAction* CMenus::Action(int number) const {
  const auto at = actions_.find(number);
  return at == actions_.end() ? nullptr : at->second;
}

QMenu* CMenus::Menu(const char* title) const {
  const auto at = menus_.find(title);
  return at == menus_.end() ? nullptr : at->second;
}

std::unique_ptr<QMenu> CMenus::ContextMenu(int type, QWidget* parent) const {
  auto menu = std::make_unique<QMenu>(parent);
  for (const MENUENTRY& entry : ContextMenus()) {
    if (QString::number(type) != entry.menu) continue;
    QAction* const original = Action(entry.number);
    QAction* const action = menu->addAction(MenuText(entry.text));
    action->setData(entry.number);
    action->setEnabled(original != nullptr && original->isEnabled());
    if (original != nullptr) {
      QObject::connect(action, &QAction::triggered, original, &QAction::trigger);
    }
  }
  return menu;
}
