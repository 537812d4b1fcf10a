// The part of the document framework that the component builds on, without a toolkit.
#pragma once

#include <functional>
#include <vector>

#include "host/Types.h"

struct FileDialogRow;  // host/Host.h

// One window's (or no window's) look at a document. Owned by whoever created it, not by the
// document.
class CView {
 public:
  CView() = default;
  virtual ~CView() = default;
  CView(const CView&) = delete;
  CView& operator=(const CView&) = delete;
};

// A document: a path name, a modified mark and the views that look at it.
//
// File operations return 1 for success and 0 for failure; what went wrong has then been shown
// already.
class CDocument {
 public:
  CDocument() = default;
  virtual ~CDocument() = default;
  CDocument(const CDocument&) = delete;
  CDocument& operator=(const CDocument&) = delete;

  const CString& GetPathName() const { return pathName_; }
  // Sets the name and, when asked, puts it on the main frame's list of recent files.
  void SetPathName(const CString& pathName, bool addToRecentFiles = true);

  bool IsModified() const { return modified_; }
  void SetModifiedFlag(bool modified = true);

  // Views in the order in which they were added. The caller removes a view before destroying it.
  void AddView(CView* view);
  void RemoveView(CView* view);
  const std::vector<CView*>& GetViews() const { return views_; }

  virtual int OnNewDocument();
  virtual int OnOpenDocument(const CString& fileName) = 0;
  virtual int OnSaveDocument(const CString& fileName) = 0;
  virtual void OnCloseDocument();
  virtual void Serialize() {}

  // Save under the own path; asks for a name when there is none yet.
  virtual int OnFileSave();
  // Ask for a name, save under it and keep it.
  virtual int OnFileSaveAs();

  // Called after the path name or the modified mark changed, for a title bar. May be empty.
  std::function<void()> onTitleChanged;

 protected:
  // The rows of the save-as dialog; none when a document cannot be saved under another name.
  virtual std::vector<FileDialogRow> SaveAsRows() const;
  // Told which of SaveAsRows() the user took, before the file is written.
  virtual void OnSaveAsRowChosen(int row);

 private:
  CString pathName_;
  bool modified_ = false;
  std::vector<CView*> views_;
};

class CStatusBar {
 public:
  virtual ~CStatusBar() = default;
  // Pane 0 is the one for messages and progress.
  virtual void SetPaneText(int pane, const CString& text) = 0;
};

class CMainFrame {
 public:
  static constexpr int kDataToolBar = 3;  // bar number of the data tool bar

  virtual ~CMainFrame() = default;
  virtual CStatusBar* GetStatusBar() = 0;  // null when there is none
  virtual void ToggleBarVisible(int bar, bool visible) = 0;
  // Puts the window arrangement back as it was before a document was shown.
  virtual void RestoreViewLayout() = 0;
  virtual void AddToRecentFileList(const CString& pathName) = 0;
};

// How cells are shown, for the whole application.
struct DisplaySettings {
  int width = 13;
  int decimals = 3;
  int alignment = 2;  // 0 left, 1 center, 2 right
};

class CVexAppUtil {
 public:
  virtual ~CVexAppUtil() = default;
  virtual DisplaySettings GetDisplaySettings() const = 0;
  virtual void SetDisplaySettings(const DisplaySettings& settings) = 0;
  // Runs an engine on a syntax file and comes back when it has ended. Negative: there is no output
  // file (the reason goes to the status bar); else what the engine ended with. Data screening
  // passes 1, 0, 0, 0 behind the names.
  virtual int RunServer(const char* syntaxPath, const char* outputPath, unsigned int server,
                        int option1, int option2, int option3) = 0;
  // Opens a data, syntax or output file in a window of its kind. False when it could not be opened,
  // which the user has then been told.
  virtual bool OpenDocumentFile(const CString& pathName) = 0;
};

// The application object and the main frame of the installed host; null where there is none.
CVexAppUtil* APPUTIL_GetApp();
CMainFrame* APPUTIL_GetMainFrame();
