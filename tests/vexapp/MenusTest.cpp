// The menus are complete, and each command is there once.
#include <QMenuBar>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "resources/Commands.h"
#include "vexapp/Menus.h"

namespace {

struct Wanted {
  const char* menu;
  const char* text;
  int number;
};

constexpr Wanted kWanted[] = {
    {"&Data", "&Define Variables...", 1228},
    {"&Data", "&Select Variables/Cases...", 1235},
    {"&Data", "&Insert Variable", 9026},
    {"&Data", "Insert &Cases", 9027},
    {"&Data", "Delete &Variable", 9028},
    {"&Data", "&Delete Case", 9029},
    {"&Data", "S&ort Case...", 34064},
    {"&Data", "&Group Variable...", 34088},
    {"&Data", "&Weight Cases...", 1242},
    {"&Data", "S&urvey Design...", 34070},
    {"&Data", "Format...", 1243},
    {"&Transformation", "&Recode...", 1233},
    {"&Transformation", "&Compute...", 1236},
    {"&Graphs", "&Univariate...", 9031},
    {"&Graphs", "&Bivariate...", 9032},
    {"&Graphs", "&Multivariate...", 9033},
    {"&Statistics", "&Data Screening", 9248},
    {"&Statistics", "&Impute Missing Values...", 9240},
    {"&Statistics", "&Multiple Imputation...", 34059},
    {"&Statistics", "&Equal Thresholds...", 9244},
    {"&Statistics", "Fi&x Thresholds...", 9243},
    {"&Statistics", "&Homogeneity Test...", 9249},
    {"&Statistics", "&Normal Scores...", 1250},
    {"&Statistics", "E&xploratory Factor Analysis...", 34044},
    {"&Statistics", "E&FA of Ordinal Variables...", 34077},
    {"&Statistics", "&Principal Component Analysis...", 34083},
    {"&Statistics", "&Censored Regressions...", 34065},
    {"&Statistics", "&Logistic Regressions...", 34063},
    {"&Statistics", "Pro&bit Regressions...", 1247},
    {"&Statistics", "&Regressions...", 9242},
    {"&Statistics", "&Two-Stage Least-Squares...", 34043},
    {"&Statistics", "&Bootstrapping...", 1240},
    {"&Statistics", "&Output Options...", 1226},
    {"&Edit", "&Copy", 57634},
    {"&Edit", "&Paste", 57637},
    {"&View", "&Data Toolbar", 9255},
    {"&View", "&Toolbar", 59392},
    {"&File", "&Save", 57603},
    {"&File", "&Print...", 57607},
    {"&File", "Print Pre&view", 57609},
};

TEST(Menus, HoldEveryCommandUnderItsTextAndNumber) {
  for (const Wanted& wanted : kWanted) {
    int found = 0;
    for (const MENUENTRY& entry : MainMenu()) {
      found += entry.number == wanted.number && QString(entry.text) == wanted.text &&
               QString(entry.menu) == wanted.menu;
    }
    EXPECT_EQ(found, 1) << wanted.menu << " " << wanted.text << " " << wanted.number;
  }
}

TEST(Menus, HoldEveryPageOfTheModelWizards) {
  std::set<int> numbers;
  for (const MENUENTRY& entry : MainMenu()) numbers.insert(entry.number);
  const std::pair<int, int> ranges[] = {
      {34048, 34058}, {34066, 34069}, {34072, 34082}, {34085, 34085}};
  for (const auto& [first, last] : ranges) {
    for (int number = first; number <= last; ++number)
      EXPECT_TRUE(numbers.contains(number)) << number;
  }
}

TEST(Menus, UseEachNumberAndShortcutOnce) {
  std::set<int> numbers;
  std::set<QString> shortcuts;
  for (const MENUENTRY& entry : MainMenu()) {
    if (entry.number == commands::kSeparator) continue;
    EXPECT_TRUE(numbers.insert(entry.number).second) << entry.number;
    if (entry.shortcut == nullptr) continue;
    EXPECT_FALSE(QKeySequence(entry.shortcut).isEmpty()) << entry.shortcut;
    EXPECT_TRUE(shortcuts.insert(entry.shortcut).second) << entry.shortcut;
  }
}

// In the Data and Statistics menus the texts are given, and three of their letters stand twice.
TEST(Menus, UseEachMnemonicOnceInAMenu) {
  QMenuBar bar;
  const CMenus menus(bar);
  std::map<QWidget*, QList<QAction*>> all;
  all[&bar] = bar.actions();
  for (QMenu* menu : bar.findChildren<QMenu*>()) all[menu] = menu->actions();
  std::set<QString> twice;
  for (const auto& [menu, actions] : all) {
    std::set<QKeySequence> letters;
    for (const QAction* action : actions) {
      const QKeySequence letter = QKeySequence::mnemonic(action->text());
      if (!letter.isEmpty() && !letters.insert(letter).second) twice.insert(action->text());
    }
  }
  EXPECT_EQ(twice, (std::set<QString>{"&Delete Case", "E&xploratory Factor Analysis...",
                                      "&Bootstrapping..."}))
      << "beside those that the texts bring along";
}

TEST(Menus, OfferTheContextMenusByArea) {
  QMenuBar bar;
  const CMenus menus(bar);
  const QStringList wanted[] = {{"&Copy", "&Paste"},
                                {"&Delete Cases", "&Insert Case"},
                                {"&Define Variables...", "&Delete Variables", "&Insert Variable"}};
  for (int type = 0; type < 3; ++type) {
    const auto menu = menus.ContextMenu(type, nullptr);
    QStringList texts;
    for (const QAction* action : menu->actions()) texts << action->text();
    EXPECT_EQ(texts, wanted[type]) << type;
  }
}

TEST(Menus, EnableContextEntriesAsTheMenuBarDoes) {
  QMenuBar bar;
  const CMenus menus(bar);
  menus.Action(commands::kEditCopy)->setEnabled(true);
  int triggered = 0;
  QObject::connect(menus.Action(commands::kEditCopy), &QAction::triggered, [&] { ++triggered; });
  const auto menu = menus.ContextMenu(0, nullptr);
  EXPECT_TRUE(menu->actions().at(0)->isEnabled());
  EXPECT_FALSE(menu->actions().at(1)->isEnabled());
  menu->actions().at(0)->trigger();
  EXPECT_EQ(triggered, 1);
}

}  // namespace
