#include "resources/Commands.h"

#include <QCoreApplication>

namespace {

using namespace commands;

constexpr const char* kFile = "&File";
constexpr const char* kEdit = "&Edit";
constexpr const char* kView = "&View";
constexpr const char* kData = "&Data";
constexpr const char* kTransformation = "&Transformation";
constexpr const char* kStatistics = "&Statistics";
constexpr const char* kGraphs = "&Graphs";
constexpr const char* kWindow = "&Window";
constexpr const char* kHelp = "&Help";
constexpr const char* kMultilevelLinear = "&Multilevel|&Linear Model";
constexpr const char* kMultilevelNonLinear = "&Multilevel|&Non-Linear Model";
constexpr const char* kMultilevelGeneralized = "&Multilevel|&Generalized Linear Model";
constexpr const char* kSurveyGeneralized = "S&urvey Models|&Survey Generalized Linear Model";
constexpr const char* kGeneralized = "S&urvey Models|&Generalized Linear Model";
constexpr const char* kAppearance = "&View|&Appearance";

constexpr MENUENTRY kMainMenu[] = {
    {kFile, "&New...", kFileNew, "Ctrl+N", "Make an empty data set"},
    {kFile, "&Open...", kFileOpen, "Ctrl+O", "Open a system data file"},
    {kFile, "&Save", kFileSave, "Ctrl+S", "Save the data set"},
    {kFile, "Save &As...", kFileSaveAs, "Ctrl+Shift+S", "Save the data set under another name"},
    {kFile, "", kSeparator, nullptr, nullptr},
    {kFile, "&Import...", kFileImport, "Ctrl+I",
     "Turn a file of another program into a system data file and open it"},
    {kFile, "&Keep Labels and Full Names", kFileKeepLabels, nullptr,
     "Import makes names unique and keeps full names and value labels where they fit"},
    {kFile, "&Export...", kFileExport, "Ctrl+E", "Write the data set as a file of another program"},
    {kFile, "", kSeparator, nullptr, nullptr},
    {kFile, "&Print...", kFilePrint, "Ctrl+P", "Print the data set, the output or the syntax"},
    {kFile, "Print Pre&view", kFilePrintPreview, nullptr, "Show how it prints"},
    {kFile, "", kSeparator, nullptr, nullptr},
    {kFile, "&Recent Files", kRecentFiles, nullptr, nullptr},
    {kFile, "", kSeparator, nullptr, nullptr},
    {kFile, "&Close", kFileClose, "Ctrl+W", "Close this window"},
    {kFile, "E&xit", kFileExit, "Ctrl+Q", "Close all windows and leave the program"},

    {kEdit, "&Undo", kEditUndo, "Ctrl+Z", "Take back the last change of the data set"},
    {kEdit, "Re&do", kEditRedo, "Ctrl+Y", "Make the change again that was taken back"},
    {kEdit, "", kSeparator, nullptr, nullptr},
    {kEdit, "&Copy", kEditCopy, nullptr, "Remember the value of the current cell"},
    {kEdit, "&Paste", kEditPaste, nullptr, "Put the remembered value into the current cell"},
    {kEdit, "", kSeparator, nullptr, nullptr},
    {kEdit, "Copy C&ells", kEditCopyCells, "Ctrl+C",
     "Copy the selected cells for this and other programs"},
    {kEdit, "Pa&ste Cells", kEditPasteCells, "Ctrl+V",
     "Put copied cells in, from the current cell on"},
    {kEdit, "C&lear Cells", kEditClearCells, "Del", "Make the selected cells missing"},
    {kEdit, "Select &All", kEditSelectAll, "Ctrl+A", "Select all cells"},
    {kEdit, "", kSeparator, nullptr, nullptr},
    {kEdit, "&Find...", kEditFind, "Ctrl+F", "Find a value, or a text in an output or a syntax"},
    {kEdit, "Find &Next", kEditFindNext, "F3", "Go to the next place"},
    {kEdit, "Find Pre&vious", kEditFindPrevious, "Shift+F3", "Go to the place before"},
    {kEdit, "&Replace...", kEditReplace, "Ctrl+H", "Replace text in a syntax"},

    {kView, "&Toolbar", kViewToolBar, nullptr, "Show or hide the tool bar"},
    {kView, "&Data Toolbar", kViewDataToolBar, nullptr, "Show or hide the data tool bar"},
    {kView, "&Status Bar", kViewStatusBar, nullptr, "Show or hide the status bar"},
    {kView, "", kSeparator, nullptr, nullptr},
    {kView, "&Go to Case...", kViewGoToCase, "Ctrl+G", "Go to a case and a variable"},
    {kView, "", kSeparator, nullptr, nullptr},
    {kView, "Value &Labels", kViewLabels, "Ctrl+L",
     "Show the labels of categories instead of their values"},
    {kView, "", kSeparator, nullptr, nullptr},
    {kView, "Zoom &In", kViewZoomIn, "Ctrl++", "Show the window's content larger"},
    {kView, "Zoom &Out", kViewZoomOut, "Ctrl+-", "Show the window's content smaller"},
    {kView, "&Usual Size", kViewZoomReset, "Ctrl+0", "Show the window's content as at first"},
    {kView, "", kSeparator, nullptr, nullptr},
    {kAppearance, "Follow the &System", kAppearanceSystem, nullptr,
     "Light or dark as the desktop is"},
    {kAppearance, "&Light", kAppearanceLight, nullptr, "Dark text on a light ground"},
    {kAppearance, "&Dark", kAppearanceDark, nullptr, "Light text on a dark ground"},

    {kData, "&Define Variables...", kDataDefine, nullptr,
     "Add and rename variables; set their types, missing values and categories"},
    {kData, "&Select Variables/Cases...", kDataSelect, nullptr,
     "Choose the variables and cases to work with"},
    {kData, "", kSeparator, nullptr, nullptr},
    {kData, "&Insert Variable", kDataInsertVariable, nullptr, "Insert variables whose cells are 0"},
    {kData, "Insert &Cases", kDataInsertCase, nullptr, "Insert cases whose cells are 0"},
    {kData, "Delete &Variable", kDataDeleteVariable, nullptr, "Delete variables"},
    {kData, "&Delete Case", kDataDeleteCase, nullptr, "Delete cases"},
    {kData, "", kSeparator, nullptr, nullptr},
    {kData, "S&ort Case...", kDataSort, nullptr, "Sort the cases by a variable"},
    {kData, "&Group Variable...", kDataGroup, nullptr,
     "Choose the variable that tells the groups apart"},
    {kData, "&Weight Cases...", kDataWeight, nullptr, "Choose the variable that weights the cases"},
    {kData, "S&urvey Design...", 34070, nullptr, "Describe how the cases were sampled"},
    {kData, "", kSeparator, nullptr, nullptr},
    {kData, "Format...", kDataFormat, nullptr, "Set width, decimals and alignment of the cells"},

    {kTransformation, "&Recode...", 1233, nullptr, "Give values of variables new values"},
    {kTransformation, "&Compute...", 1236, nullptr, "Compute a variable from others"},

    {kStatistics, "&Data Screening", kStatisticsScreening, nullptr, "Describe every variable"},
    {kStatistics, "&Impute Missing Values...", 9240, nullptr,
     "Fill missing values from similar cases"},
    {kStatistics, "&Multiple Imputation...", 34059, nullptr,
     "Fill missing values several times over"},
    {kStatistics, "", kSeparator, nullptr, nullptr},
    {kStatistics, "&Equal Thresholds...", 9244, nullptr,
     "Estimate thresholds that are equal over variables"},
    {kStatistics, "Fi&x Thresholds...", 9243, nullptr,
     "Set the thresholds of a variable to fixed values"},
    {kStatistics, "&Homogeneity Test...", 9249, nullptr,
     "Test whether variables are distributed alike"},
    {kStatistics, "&Normal Scores...", 1250, nullptr, "Replace values by normal scores"},
    {kStatistics, "", kSeparator, nullptr, nullptr},
    {kStatistics, "E&xploratory Factor Analysis...", 34044, nullptr,
     "Look for the factors behind continuous variables"},
    {kStatistics, "E&FA of Ordinal Variables...", 34077, nullptr,
     "Look for the factors behind ordinal variables"},
    {kStatistics, "&Principal Component Analysis...", 34083, nullptr,
     "Find the principal components of variables"},
    {kStatistics, "", kSeparator, nullptr, nullptr},
    {kStatistics, "&Censored Regressions...", 34065, nullptr,
     "Regress censored variables on others"},
    {kStatistics, "&Logistic Regressions...", 34063, nullptr,
     "Regress variables of categories on others, logistic"},
    {kStatistics, "Pro&bit Regressions...", 1247, nullptr,
     "Regress ordinal variables on others, probit"},
    {kStatistics, "&Regressions...", 9242, nullptr, "Regress variables on others by least squares"},
    {kStatistics, "&Two-Stage Least-Squares...", 34043, nullptr,
     "Regress with instrumental variables"},
    {kStatistics, "", kSeparator, nullptr, nullptr},
    {kStatistics, "&Bootstrapping...", 1240, nullptr, "Draw samples from the cases"},
    {kStatistics, "&Output Options...", kStatisticsOutputOptions, nullptr,
     "Choose what the procedures write"},
    {kStatistics, "", kSeparator, nullptr, nullptr},
    {kStatistics, "Run S&yntax", kStatisticsRunSyntax, "F5",
     "Save this syntax, run the engine on it and open the output"},
    {kStatistics, "En&gine...", kStatisticsEngine, nullptr,
     "Choose the program that the procedures run"},

    {kGraphs, "&Univariate...", 9031, nullptr, "Draw one variable"},
    {kGraphs, "&Bivariate...", 9032, nullptr, "Draw two variables"},
    {kGraphs, "&Multivariate...", 9033, nullptr, "Draw several variables"},

    {kMultilevelLinear, "&Title and Settings...", 34048, nullptr, nullptr},
    {kMultilevelLinear, "&Levels...", 34049, nullptr, nullptr},
    {kMultilevelLinear, "&Outcome and Predictors...", 34050, nullptr, nullptr},
    {kMultilevelLinear, "&Random Effects...", 34051, nullptr, nullptr},
    {kMultilevelLinear, "&Build Syntax", 34052, nullptr, nullptr},
    {kMultilevelNonLinear, "&Title and Settings...", 34053, nullptr, nullptr},
    {kMultilevelNonLinear, "&Levels...", 34054, nullptr, nullptr},
    {kMultilevelNonLinear, "&Curve...", 34055, nullptr, nullptr},
    {kMultilevelNonLinear, "&Parameters...", 34056, nullptr, nullptr},
    {kMultilevelNonLinear, "&Random Effects...", 34057, nullptr, nullptr},
    {kMultilevelNonLinear, "&Build Syntax", 34058, nullptr, nullptr},
    {kMultilevelGeneralized, "&Title and Settings...", 34066, nullptr, nullptr},
    {kMultilevelGeneralized, "&Distribution and Link...", 34067, nullptr, nullptr},
    {kMultilevelGeneralized, "&Levels...", 34068, nullptr, nullptr},
    {kMultilevelGeneralized, "&Outcome and Predictors...", 34069, nullptr, nullptr},
    {kMultilevelGeneralized, "&Random Effects...", 34072, nullptr, nullptr},
    {kMultilevelGeneralized, "&Build Syntax", 34073, nullptr, nullptr},

    {kSurveyGeneralized, "&Title and Settings...", 34074, nullptr, nullptr},
    {kSurveyGeneralized, "&Distribution and Link...", 34075, nullptr, nullptr},
    {kSurveyGeneralized, "&Strata and Clusters...", 34076, nullptr, nullptr},
    {kSurveyGeneralized, "&Outcome and Predictors...", 34078, nullptr, nullptr},
    {kSurveyGeneralized, "&Build Syntax", 34079, nullptr, nullptr},
    {kGeneralized, "&Title and Settings...", 34080, nullptr, nullptr},
    {kGeneralized, "&Distribution and Link...", 34081, nullptr, nullptr},
    {kGeneralized, "&Outcome and Predictors...", 34082, nullptr, nullptr},
    {kGeneralized, "&Build Syntax", 34085, nullptr, nullptr},

    {kWindow, "&Tabs", kWindowTabs, nullptr, "Show the windows as tabs, or inside the main window"},
    {kWindow, "T&ile", kWindowTile, nullptr, "Show all windows side by side"},
    {kWindow, "&Cascade", kWindowCascade, nullptr, "Show all windows one upon another"},
    {kWindow, "", kSeparator, nullptr, nullptr},
    {kWindow, "&Next", kWindowNext, "Ctrl+Tab", "Go to the next window"},
    {kWindow, "&Previous", kWindowPrevious, "Ctrl+Shift+Tab", "Go to the window before"},
    {kWindow, "", kSeparator, nullptr, nullptr},
    {kWindow, "Close &All", kWindowCloseAll, nullptr, "Close all windows inside the main window"},

    {kHelp, "&About Vex Data", kHelpAbout, nullptr, "Version and licence"},
};

constexpr MENUENTRY kContextMenus[] = {
    {"0", "&Copy", kEditCopy, nullptr, nullptr},
    {"0", "&Paste", kEditPaste, nullptr, nullptr},
    {"1", "&Delete Cases", kDataDeleteCase, nullptr, nullptr},
    {"1", "&Insert Case", kDataInsertCase, nullptr, nullptr},
    {"2", "&Define Variables...", kDataDefine, nullptr, nullptr},
    {"2", "&Delete Variables", kDataDeleteVariable, nullptr, nullptr},
    {"2", "&Insert Variable", kDataInsertVariable, nullptr, nullptr},
};

}  // namespace

std::span<const MENUENTRY> MainMenu() {
  return kMainMenu;
}

std::span<const MENUENTRY> ContextMenus() {
  return kContextMenus;
}

QString MenuText(const char* text) {
  return QCoreApplication::translate("Menu", text);
}
