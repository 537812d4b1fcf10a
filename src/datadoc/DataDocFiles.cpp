// Opening, saving and creating: the dispatch on the kind of file.
#include <algorithm>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/SaveAsKinds.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr std::size_t kNameBytes = 16;
constexpr std::size_t kDescriptionBytes = 32;

// The name of a variable that came without one.
CString DefaultName(std::size_t number) {
  return boost::str(boost::format("VAR%03d") % number);
}

}  // namespace

int CDataDoc::OnOpenDocument(const CString& fileName) {
  if (GetDataView() == nullptr) return 0;
  if (extern_.data_type == kSystemDataFile) extern_ = EXTERNDATA();
  if (!ReadFileOfKind(fileName)) return 0;
  return FinishOpening(fileName);
}

int CDataDoc::OnOpenDbmsDocument(const CString& fileName) {
  if (GetDataView() == nullptr) return 0;
  extern_ = EXTERNDATA();
  if (!OpenVSFFile(fileName)) return 0;
  return FinishOpening(fileName);
}

int CDataDoc::ReadFileOfKind(const CString& fileName) {
  switch (extern_.data_type) {
    case kSystemDataFile:
      return OpenVSFFile(fileName);
    case kDsfFile:
      return OpenDSFFile(fileName);
    case kTextFile:
      return OpenASCIIFile(fileName);
    default:
      return 1;
  }
}

int CDataDoc::FinishOpening(const CString& fileName) {
  CDataView& view = *GetDataView();
  view.RebuildColumns();
  SetPathName(fileName);  // the name goes into the scratch file's description
  view.ReopenFile();
  view.OnDocumentSaved();
  SetModifiedFlag(false);
  return 1;
}

int CDataDoc::OnSaveDocument(const CString& fileName) {
  if (data_.variables < 1 || data_.records < 1 || GetDataView() == nullptr) return 0;
  if (!WriteFileOfKind(fileName)) return 0;
  GetDataView()->OnDocumentSaved();
  SetModifiedFlag(false);
  return 1;
}

int CDataDoc::WriteFileOfKind(const CString& fileName) {
  switch (extern_.data_type) {
    case kSystemDataFile:
      if (!SaveVSFFile(fileName)) return 0;
      if (CMainFrame* const frame = APPUTIL_GetMainFrame()) frame->AddToRecentFileList(fileName);
      return 1;
    case kDsfFile:
      return SaveDSFFile(fileName);
    case kTextFile:
      return SaveASCIIFile(fileName);
    default:
      return 0;  // nothing was written, so the document is as modified as it was
  }
}

int CDataDoc::OnFileSaveAs() {
  const EXTERNDATA before = extern_;
  if (!CDocument::OnFileSaveAs()) {
    extern_ = before;
    return 0;
  }
  // A recovery must not come back under the old name.
  if (CDataView* const view = GetDataView()) view->ReopenFile();
  return 1;
}

void CDataDoc::OnCloseDocument() {
  if (CMainFrame* const frame = APPUTIL_GetMainFrame()) frame->RestoreViewLayout();
  CDocument::OnCloseDocument();
}

int CDataDoc::SaveAsSystemDataFile() {
  onlySystemFile_ = true;
  const int saved = OnFileSaveAs();
  onlySystemFile_ = false;
  return saved;
}

std::vector<FileDialogRow> CDataDoc::SaveAsRows() const {
  if (onlySystemFile_) return {SystemDataRow()};
  std::vector<FileDialogRow> rows;
  for (const SAVEASKIND& choice : SaveAsKinds(extern_, data_)) rows.push_back(choice.row);
  return rows;
}

void CDataDoc::OnSaveAsRowChosen(int row) {
  extern_ = onlySystemFile_ ? EXTERNDATA()
                            : SaveAsKinds(extern_, data_).at(static_cast<std::size_t>(row)).kind;
}

void CDataDoc::SetExtern(const EXTERNDATA& source, const std::vector<LABSTRUCT>& labels,
                         std::int32_t records, std::int32_t variables, bool create) {
  const CString formatStatement =
      source.fixedFormat != 0 ? CutText(source.formatStatement, EXTERNDATA::kFormatStatementBytes)
                              : extern_.formatStatement;
  extern_ = source;
  extern_.formatStatement = formatStatement;
  MemoryReInit(variables);
  data_.records = std::max(records, 0);
  for (std::size_t index = 0; index < record_.size(); ++index) {
    VARSTRUCT& variable = data_.variable[index];
    const LABSTRUCT label =
        index < labels.size() ? labels[index] : LABSTRUCT{DefaultName(index + 1), {}};
    variable.name = CutText(label.name, kNameBytes);
    variable.description = CutText(label.description, kDescriptionBytes);
  }
  if (create) OnNewExternFile();
}

int CDataDoc::OnNewExternFile() {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  if (!FillScratchFile(*view)) {
    AfxMessageBox("Unable to create temporary work file");
    return 0;
  }
  view->RebuildColumns();
  view->ReopenFile();
  SetModifiedFlag();
  return 1;
}

// Writes the one-record buffer once per record, in blocks of many records.
bool CDataDoc::FillScratchFile(CDataView& view) const {
  std::FILE* const scratch = view.OpenScratchFile("w+b");
  if (scratch == nullptr) return false;
  if (record_.empty()) return true;
  const std::size_t recordsAtOnce =
      std::max<std::size_t>(1, kBlockBytes / (record_.size() * kCellBytes));
  std::vector<double> block;
  block.reserve(recordsAtOnce * record_.size());
  for (std::size_t i = 0; i < recordsAtOnce; ++i) {
    block.insert(block.end(), record_.begin(), record_.end());
  }
  for (std::int64_t done = 0; done < data_.records;) {
    const auto part =
        std::min<std::int64_t>(static_cast<std::int64_t>(recordsAtOnce), data_.records - done);
    const auto bytes = static_cast<std::size_t>(CellBytes(part, data_.variables));
    if (!WriteAt(fileno(scratch), CellBytes(done, data_.variables), block.data(), bytes)) {
      return false;
    }
    done += part;
  }
  return true;
}
