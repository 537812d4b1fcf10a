// The document's reading and writing of system data files.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "datadoc/VsfReader.h"
#include "datadoc/VsfWriter.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr const char* kNoFile = "The file does not exist!";
constexpr const char* kNotCorrect = "The file is not a correct VEXMOR data system file!";
constexpr const char* kCannotWrite = "Cannot write to file!";
constexpr const char* kLayoutTitle = "Save VSF File";
constexpr const char* kLayoutQuestion =
    "Do you want to save '%1%' in new format?\n\n"
    "New format supports 16 character field data,\n"
    "but not compatible to older version of VexWin.\n\n"
    "Click [Yes] to save in new format.\n"
    "Click [No] to save in old format.";

CopyProgress ReportTo(CProgress& progress, std::int64_t total) {
  return [&progress, total](std::int64_t done) {
    return progress.Advance(static_cast<double>(done) / static_cast<double>(total));
  };
}

// Writes the missing-data code into the cells from `firstCell` on.
bool FillWithMissing(int scratch, std::int64_t firstCell, std::int64_t cells) {
  const std::vector<double> block(
      static_cast<std::size_t>(std::min<std::int64_t>(cells, kBlockBytes / kCellBytes)),
      kMissingCode);
  while (cells > 0) {
    const auto part = std::min<std::int64_t>(cells, static_cast<std::int64_t>(block.size()));
    const auto bytes = static_cast<std::size_t>(CellBytes(part, 1));
    if (!WriteAt(scratch, CellBytes(firstCell, 1), block.data(), bytes)) return false;
    firstCell += part;
    cells -= part;
  }
  return true;
}

// 0, or why it failed (an errno value).
int CopyCells(int from, const VsfContents& contents, int scratch, const CString& title) {
  const std::int64_t bytes = CellBytes(contents.wholeCells, 1);
  const auto progress = Host().StartProgress(title);
  const bool copied =
      CopyRange(from, contents.cellsOffset, scratch, 0, bytes, ReportTo(*progress, bytes)) &&
      FillWithMissing(scratch, contents.wholeCells, contents.AbsentCells());
  return copied ? 0 : errno;
}

CString DamageNote(const VsfContents& contents) {
  if (contents.data.records != contents.statedRecords) {
    return boost::str(
        boost::format("The file is shorter than its header says: %1% of %2% record(s) read.") %
        contents.data.records % contents.statedRecords);
  }
  if (contents.AbsentCells() > 0) {
    return boost::str(
        boost::format("The file is shorter than its header says: its last %1% value(s) are "
                      "missing.") %
        contents.AbsentCells());
  }
  return "The file is damaged: part of its description is not there.";
}

}  // namespace

int CDataDoc::OpenVSFFile(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  CDescriptor file;
  if (!file.OpenForReading(fileName.c_str())) {
    AfxMessageBox(kNoFile);
    return 0;
  }
  VsfContents contents;
  try {
    switch (ReadVsf(file.Get(), contents)) {
      case VsfStatus::Ok:
        break;
      case VsfStatus::NotCorrect:
        data_.format = kNoFormat;
        AfxMessageBox(kNotCorrect);
        return 0;
      case VsfStatus::ReadError:
        AfxMessageBox(fileName + ": " + std::strerror(errno));
        return 0;
    }
  } catch (const std::bad_alloc&) {
    AfxMessageBox("Not enough memory!");
    return 0;
  }

  std::FILE* const scratch = view->OpenScratchFile("w+b");
  const int error = scratch == nullptr
                        ? errno
                        : CopyCells(file.Get(), contents, fileno(scratch), "Opening " + fileName);
  if (error != 0) {
    if (error != ECANCELED) {
      AfxMessageBox("Unable to create temporary work file\n" + fileName + ": " +
                    std::strerror(error));
    }
    ResetDescription();
    return 0;
  }
  data_ = std::move(contents.data);
  capacity_ = CapacityFor(data_.variables, capacity_);
  data_.ResizeArrays(static_cast<std::size_t>(capacity_));
  SizeRecordBuffer();
  if (contents.damaged) WriteStatusInfo(DamageNote(contents));
  return 1;
}

void CDataDoc::ExportFrom(const CString& fileName, int file, VsfContents contents) {
  exportCells_.TakeFile(file, contents);
  if (contents.damaged) Host().ShowNote(fileName + ": " + DamageNote(contents));
  data_ = std::move(contents.data);
  SetPathName(fileName, false);
}

// The scratch file was lost on the way: nothing is left to describe.
void CDataDoc::ResetDescription() {
  data_ = TORVIKSTRUCT();
  MemoryReInit(0);
}

int CDataDoc::SaveVSFFile(const CString& fileName) {
  if (data_.format != kNewFormat) {
    const CString question = boost::str(boost::format(kLayoutQuestion) % fileName);
    const MessageAnswer answer = AfxMessageBox(question, MessageButtons::YesNo, kLayoutTitle);
    data_.format = answer == MessageAnswer::Yes ? kNewFormat : kOldFormat;
  }
  return SaveVSFFile(fileName, data_.format);
}

int CDataDoc::SaveVSFFile(const CString& fileName, int kind) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  SizeRecordBuffer();
  std::FILE* const scratch = view->OpenScratchFile("rb");
  CString reason = "the temporary work file is gone";
  bool written = false;
  bool stopped = false;
  if (scratch != nullptr) {
    const std::int64_t bytes = CellBytes(data_.records, data_.variables);
    const auto progress = Host().StartProgress("Saving " + fileName);
    written =
        WriteVsfFile(fileName, data_, kind, fileno(scratch), reason, ReportTo(*progress, bytes));
    stopped = !written && errno == ECANCELED;
  }
  view->ReopenFile();
  if (written) return 1;
  WriteStatusInfo(stopped ? fileName + " was not saved." : fileName + ": " + reason);
  if (!stopped) AfxMessageBox(kCannotWrite);
  return 0;
}
