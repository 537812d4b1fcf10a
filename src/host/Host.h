// What the component asks of the program that runs it. The program installs its own CHost before
// anything else of the component is used; everything here is called on the thread that installed
// it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/Framework.h"
#include "host/Types.h"

enum class MessageButtons { Ok, YesNo };
enum class MessageAnswer { Ok, Yes, No };

// One row of a file dialog's type box.
struct FileDialogRow {
  CString displayName;  // as shown, patterns included
  CString patterns;     // "*.sav;*.zsav"
  CString
      defaultExtension;  // proposed for a name without one; with or without its dot; may be empty
};

struct FileDialogRequest {
  static constexpr std::uint32_t kOpenFlags = 0x1800;  // the path and the file must exist
  static constexpr std::uint32_t kSaveFlags =
      0x802;  // the path must exist, overwriting is asked about

  bool save = false;
  std::uint32_t flags = kOpenFlags;
  CString title;
  CString folder;    // empty: the current directory
  CString fileName;  // proposed; may be empty
  std::vector<FileDialogRow> rows;
  int selectedRow = 0;
};

struct FileDialogChoice {
  CString path;  // as chosen or typed: the dialog adds no extension
  int row = 0;   // the row that stood in the type box
};

// A file type that the program offers beside the component's own rows.
struct HostFileType {
  CString name;
  CString filter;
  CString defaultExtension;  // empty: taken from the filter
  std::int32_t type = 0;
};

// Progress of one piece of long work, shown from construction to destruction.
class CProgress {
 public:
  virtual ~CProgress() = default;
  // `fraction` is 0 to 1, or negative when the end is not known. False: the user wants to stop.
  // Cheap enough to be called once per block; implementations throttle what they show.
  virtual bool Advance(double fraction) = 0;
};

class CHost {
 public:
  virtual ~CHost() = default;

  virtual MessageAnswer ShowMessage(const CString& text, const CString& title,
                                    MessageButtons buttons) = 0;
  // Something worth knowing about work that succeeds.
  virtual void ShowNote(const CString& text) { ShowMessage(text, {}, MessageButtons::Ok); }
  virtual void BeginWaitCursor() = 0;
  virtual void EndWaitCursor() = 0;
  // False when the user closed the dialog without choosing.
  virtual bool AskForFile(const FileDialogRequest& request, FileDialogChoice& choice) = 0;
  virtual std::unique_ptr<CProgress> StartProgress(const CString& title) = 0;

  virtual CVexAppUtil* GetApp() = 0;       // may be null
  virtual CMainFrame* GetMainFrame() = 0;  // may be null
  virtual std::vector<HostFileType> ExtraFileTypes() const { return {}; }
};

// The installed host. Without one, messages go to standard error, questions are answered No and
// dialogs are cancelled.
CHost& Host();
// Installs `host` (null: none) and returns the one that was installed. The caller keeps ownership.
CHost* InstallHost(CHost* host);

// A message box with an OK button; with YesNo, the answer is Yes or No.
MessageAnswer AfxMessageBox(const CString& text, MessageButtons buttons = MessageButtons::Ok,
                            const CString& title = {});

// Shows the wait cursor while it lives.
class CWaitCursor {
 public:
  CWaitCursor() { Host().BeginWaitCursor(); }
  ~CWaitCursor() { Host().EndWaitCursor(); }
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;
};
