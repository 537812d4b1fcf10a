// The menus: which commands there are, their texts, numbers, shortcuts and status tips.
#pragma once

#include <QString>
#include <span>

namespace commands {

// Numbers that the program acts on. The other entries of the menus stand only in the table: they
// are not built.
inline constexpr int kFileNew = 57600;
inline constexpr int kFileOpen = 57601;
inline constexpr int kFileClose = 57602;
inline constexpr int kFileSave = 57603;
inline constexpr int kFileSaveAs = 57604;
inline constexpr int kFilePrint = 57607;
inline constexpr int kFilePrintPreview = 57609;
inline constexpr int kFileImport = 40001;
inline constexpr int kFileExport = 40002;
inline constexpr int kFileKeepLabels = 40003;
inline constexpr int kFileExit = 57665;
inline constexpr int kEditCopy = 57634;
inline constexpr int kEditPaste = 57637;
inline constexpr int kEditUndo = 57643;
inline constexpr int kEditRedo = 57644;
inline constexpr int kEditSelectAll = 57642;
inline constexpr int kEditCopyCells = 40040;
inline constexpr int kEditPasteCells = 40041;
inline constexpr int kEditClearCells = 40042;
inline constexpr int kEditFind = 40030;
inline constexpr int kEditFindNext = 40031;
inline constexpr int kEditFindPrevious = 40032;
inline constexpr int kEditReplace = 40033;
inline constexpr int kViewToolBar = 59392;
inline constexpr int kViewDataToolBar = 9255;
inline constexpr int kViewStatusBar = 59393;
inline constexpr int kViewGoToCase = 40010;
inline constexpr int kViewLabels = 40043;
inline constexpr int kViewZoomIn = 40034;
inline constexpr int kViewZoomOut = 40035;
inline constexpr int kViewZoomReset = 40036;
inline constexpr int kAppearanceSystem = 40011;
inline constexpr int kAppearanceLight = 40012;
inline constexpr int kAppearanceDark = 40013;
inline constexpr int kDataDefine = 1228;
inline constexpr int kDataInsertVariable = 9026;
inline constexpr int kDataInsertCase = 9027;
inline constexpr int kDataDeleteVariable = 9028;
inline constexpr int kDataDeleteCase = 9029;
inline constexpr int kDataSelect = 1235;
inline constexpr int kDataSort = 34064;
inline constexpr int kDataGroup = 34088;
inline constexpr int kDataWeight = 1242;
inline constexpr int kDataFormat = 1243;
inline constexpr int kStatisticsRunSyntax = 40037;
inline constexpr int kStatisticsEngine = 40038;
inline constexpr int kStatisticsScreening = 9248;
inline constexpr int kStatisticsOutputOptions = 1226;
inline constexpr int kWindowTabs = 40020;
inline constexpr int kWindowTile = 57651;
inline constexpr int kWindowCascade = 57650;
inline constexpr int kWindowNext = 40021;
inline constexpr int kWindowPrevious = 40022;
inline constexpr int kWindowCloseAll = 40023;
inline constexpr int kHelpAbout = 57664;

inline constexpr int kSeparator = 0;
inline constexpr int kRecentFiles = -1;  // the place of the sub-menu of recent files

}  // namespace commands

// One entry, in the order of the menus. Entries with the same `menu` follow each other.
struct MENUENTRY {
  const char* menu;      // titles from the menu bar down, a '|' between them: "&View|&Appearance"
  const char* text;      // with its mnemonic
  int number;            // the command; kSeparator and kRecentFiles for what is none
  const char* shortcut;  // as QKeySequence reads it; may be null
  const char* tip;       // for the status bar; may be null
};

std::span<const MENUENTRY> MainMenu();

// The menus of a right click in the data window: cell, row heading, column heading. `menu` is "0",
// "1", "2".
std::span<const MENUENTRY> ContextMenus();

// A text of these tables in the user's language.
QString MenuText(const char* text);
