// The main window: menus, tool bars, status bar, and the data windows as tabs or sub-windows.
#pragma once

#include <QMainWindow>
#include <memory>
#include <optional>
#include <vector>

#include "datadoc/TextOpening.h"
#include "host/Framework.h"
#include "vexapp/Menus.h"
#include "vexapp/RecentFiles.h"
#include "vexapp/StatusBarPanes.h"

class CDataWindow;
class CFrameWindow;
class CTextWindow;
class CStartPage;
class CVexApp;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QStackedWidget;

class CAppFrame final : public QMainWindow, public CMainFrame {
  Q_OBJECT

 public:
  explicit CAppFrame(CVexApp& app);  // `app` outlives the window
  ~CAppFrame() override;

  CStatusBar* GetStatusBar() override { return panes_.get(); }
  void ToggleBarVisible(int bar, bool visible) override;
  void RestoreViewLayout() override;
  void AddToRecentFileList(const CString& pathName) override;

  // Opens a system data file, an output (.OUT) or a syntax (.TRK), imports any other. False when
  // that did not come to a window.
  bool OpenPath(const QString& path);
  void OpenPaths(const QStringList& paths);
  // Imports a file; an empty path asks for one.
  bool ImportPath(const QString& path);
  // Offers the data sets that a program that ended badly has left behind.
  void OfferRecovery();

  const CMenus& Menus() const { return *menus_; }
  CDataWindow* CurrentWindow() const { return current_; }    // null while a text is active
  CTextWindow* CurrentText() const { return currentText_; }  // null while data are
  std::vector<CDataWindow*> DataWindows() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // AppFrame.cpp: what it is made of
  void BuildPages();
  void BuildBars();
  void FillBar(QToolBar& bar, std::initializer_list<int> numbers);
  void HandleCommands();
  void Handle(int number, void (CAppFrame::*handler)());
  void HandleProcedures();
  void BuildAppearanceMenu();
  void UpdateActions();
  void ShowRecentFiles();
  void UpdateTitle();
  void UpdateCell();
  void ShowStatistics();
  void ShowContextMenu(int type, const QPoint& point);
  void ShowAbout();
  void AskForEngine();
  void RestoreWindow();
  void StoreWindow();

  // AppFrameFiles.cpp: files
  void AskAndOpen();
  void AskAndImport() { ImportPath({}); }
  void SaveCurrent();
  void SaveCurrentAs();
  void ExportCurrent();
  void OpenRecent(const QString& path);
  bool OpenImported(const QString& path);
  bool OpenDocument(const QString& path, const EXTERNDATA& kind,
                    const std::optional<ASC2VSF>& text);
  bool OpenAs(const QString& path, EXTERNDATA kind);
  bool AskAboutKind(const QString& path, EXTERNDATA& kind, std::optional<ASC2VSF>& text);
  EXTERNDATA KindOf(const QString& path) const;
  QString WhyNotWriteTo(const QString& path) const;  // empty: it may be written

  // AppFrameData.cpp: commands of the data windows
  void HandleData();
  void UpdateDataActions();
  void NewDataSet();

  // AppFrameTexts.cpp: outputs and syntaxes
  void HandleTexts();
  bool OpenText(const QString& path);
  CTextWindow* TextOf(const QString& path) const;
  void UpdateTextActions();
  static bool HandlesText(int number);

  // AppFrameWindows.cpp: the windows inside
  std::vector<CFrameWindow*> Windows() const;
  CFrameWindow* Active() const;
  void AddDataWindow(std::unique_ptr<CDataWindow> window);
  void AddWindow(CFrameWindow* window);
  CDataWindow* WindowOf(const QString& path) const;
  void ActivateWindow(CFrameWindow* window);
  void MakeCurrent(CFrameWindow* window);
  void WindowActivated(QMdiSubWindow* window);
  void WindowGone(const QObject* window);
  void ShowCurrent();
  void ShowAsTabs(bool tabs);
  void CloseCurrent();
  void CloseAll();
  void Tile();
  void Cascade();
  void Next();
  void Previous();
  void FillWindowMenu();

  CVexApp& app_;
  std::unique_ptr<CMenus> menus_;
  std::unique_ptr<CStatusBarPanes> panes_;
  CRecentFiles recent_;
  QStackedWidget* pages_ = nullptr;
  CStartPage* startPage_ = nullptr;
  QMdiArea* area_ = nullptr;
  QToolBar* toolBar_ = nullptr;
  QToolBar* dataBar_ = nullptr;
  QLabel* cellLabel_ = nullptr;
  bool dataBarWanted_ = true;
  QByteArray layoutBefore_;             // of the tool bars, before a data window was shown
  CDataWindow* current_ = nullptr;      // the one that is active
  CTextWindow* currentText_ = nullptr;  // at most one of both is
  CDataWindow* opening_ = nullptr;      // the one whose file is being read
  std::vector<QAction*> windowList_;    // at the end of the Window menu
};
