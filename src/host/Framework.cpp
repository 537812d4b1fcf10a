#include "host/Framework.h"

#include <algorithm>
#include <filesystem>

#include "host/Host.h"

void CDocument::SetPathName(const CString& pathName, bool addToRecentFiles) {
  pathName_ = pathName;
  if (addToRecentFiles) {
    if (CMainFrame* frame = APPUTIL_GetMainFrame()) frame->AddToRecentFileList(pathName);
  }
  if (onTitleChanged) onTitleChanged();
}

void CDocument::SetModifiedFlag(bool modified) {
  if (modified_ == modified) return;
  modified_ = modified;
  if (onTitleChanged) onTitleChanged();
}

void CDocument::AddView(CView* view) {
  views_.push_back(view);
}

void CDocument::RemoveView(CView* view) {
  std::erase(views_, view);
}

int CDocument::OnNewDocument() {
  pathName_.clear();
  SetModifiedFlag(false);
  return 1;
}

void CDocument::OnCloseDocument() {
  SetModifiedFlag(false);
}

int CDocument::OnFileSave() {
  if (pathName_.empty()) return OnFileSaveAs();
  return OnSaveDocument(pathName_);
}

int CDocument::OnFileSaveAs() {
  FileDialogRequest request;
  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.rows = SaveAsRows();
  if (request.rows.empty()) return 0;
  const std::filesystem::path old(pathName_);
  request.folder = old.parent_path().string();
  request.fileName = old.filename().string();
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return 0;

  std::filesystem::path path(choice.path);
  if (!path.has_extension()) {
    path.replace_extension(request.rows.at(static_cast<std::size_t>(choice.row)).defaultExtension);
  }
  OnSaveAsRowChosen(choice.row);
  if (!OnSaveDocument(path.string())) return 0;
  SetPathName(path.string());
  return 1;
}

std::vector<FileDialogRow> CDocument::SaveAsRows() const {
  return {};
}

void CDocument::OnSaveAsRowChosen(int) {}

CVexAppUtil* APPUTIL_GetApp() {
  return Host().GetApp();
}

CMainFrame* APPUTIL_GetMainFrame() {
  return Host().GetMainFrame();
}
