// The document's reading and writing of DSF files.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/DsfLayout.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"
#include "vexutils/FieldWidth.h"
#include "vexutils/SideFile.h"

namespace {

constexpr const char* kNoFile = "The file does not exist!";
constexpr const char* kCannotWrite = "Cannot write to file!";

std::int32_t StatedVariables(int file) {
  std::int32_t variables = 0;
  const std::int64_t got = ReadAt(file, kDsfVariablesOffset, &variables, sizeof variables);
  return got == sizeof variables ? variables : 0;
}

// Empty, or why the file has no such group.
CString WhyNoGroup(int file, std::int32_t variables, std::int32_t group, std::int64_t nameBytes) {
  const std::int64_t fileBytes = FileBytes(file);
  if (!DsfFits(variables, fileBytes)) {
    return boost::str(boost::format("This is no DSF file: it states %1% variable(s) and has %2% "
                                    "bytes.") %
                      variables % fileBytes);
  }
  if (DsfReadOffset(variables, group, nameBytes, fileBytes) < 0) {
    return boost::str(boost::format("The file holds no group %1% of %2% variable(s).") %
                      (std::int64_t{group} + 1) % variables);
  }
  return {};
}

// False, with the reason in errno, when the user has stopped the work. What shows the progress may
// have changed errno.
bool GoesOn(CProgress& progress, std::int64_t done, std::int64_t all) {
  if (progress.Advance(static_cast<double>(done) / static_cast<double>(all))) return true;
  errno = ECANCELED;
  return false;
}

// How many rows of a matrix are moved at once.
std::int64_t RowsAtOnce(std::int64_t variables) {
  return std::max<std::int64_t>(1,
                                static_cast<std::int64_t>(kBlockBytes) / CellBytes(1, variables));
}

// Copies the lower triangle at `offset` into rows of a file of cells, zeros behind them.
bool SpreadTriangle(int file, std::int64_t offset, std::int64_t variables, int scratch,
                    CProgress& progress) {
  const auto width = static_cast<std::size_t>(variables);
  const std::int64_t atOnce = RowsAtOnce(variables);
  std::vector<double> packed;
  std::vector<double> rows;
  for (std::int64_t row = 0; row < variables; row += atOnce) {
    const std::int64_t end = std::min(row + atOnce, variables);
    packed.resize(static_cast<std::size_t>(DsfTriangle(end) - DsfTriangle(row)));
    const std::size_t bytes = packed.size() * kCellBytes;
    errno = EIO;  // the reason where the file is only too short
    if (ReadAt(file, offset + DsfTriangle(row) * 8, packed.data(), bytes) !=
        static_cast<std::int64_t>(bytes)) {
      return false;
    }
    rows.assign(static_cast<std::size_t>(end - row) * width, 0.0);
    auto from = packed.begin();
    for (std::int64_t i = row; i < end; ++i) {
      std::copy(from, from + i + 1, rows.begin() + (i - row) * variables);
      from += i + 1;
    }
    if (!WriteAt(scratch, CellBytes(row, variables), rows.data(), rows.size() * kCellBytes)) {
      return false;
    }
    if (!GoesOn(progress, end, variables)) return false;
  }
  return true;
}

// The other way round.
bool PackTriangle(int scratch, std::int64_t variables, int file, std::int64_t offset,
                  CProgress& progress) {
  const std::int64_t atOnce = RowsAtOnce(variables);
  std::vector<double> rows;
  std::vector<double> packed;
  for (std::int64_t row = 0; row < variables; row += atOnce) {
    const std::int64_t end = std::min(row + atOnce, variables);
    rows.resize(static_cast<std::size_t>((end - row) * variables));
    const std::size_t bytes = rows.size() * kCellBytes;
    errno = EIO;
    if (ReadAt(scratch, CellBytes(row, variables), rows.data(), bytes) !=
        static_cast<std::int64_t>(bytes)) {
      return false;
    }
    packed.clear();
    for (std::int64_t i = row; i < end; ++i) {
      const auto from = rows.begin() + (i - row) * variables;
      packed.insert(packed.end(), from, from + i + 1);
    }
    if (!WriteAt(file, offset + DsfTriangle(row) * 8, packed.data(), packed.size() * kCellBytes)) {
      return false;
    }
    if (!GoesOn(progress, end, variables)) return false;
  }
  return true;
}

// Header, number of variables and names, as they stand from the beginning of a group on. The field
// between the first two is left out.
struct DsfHead {
  CString text;
  CString names;
};

DsfHead EncodeHead(const TORVIKSTRUCT& data) {
  DsfHead head;
  head.text = kDsfHeaderText;
  head.text.resize(kDsfHeaderBytes, ' ');
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) {
    const CString name = CutText(data.variable[i].name, kDsfWrittenNameBytes);
    head.names += name;
    head.names.append(kDsfWrittenNameBytes - name.size(), '\0');
  }
  return head;
}

// Writes the group at its place in an open file. False with the reason in errno.
bool WriteGroup(int file, const TORVIKSTRUCT& data, std::int64_t start, int scratch,
                CProgress& progress) {
  const std::int64_t variables = data.variables;
  const DsfHead head = EncodeHead(data);
  const std::int64_t triangle =
      start + kDsfNamesOffset + static_cast<std::int64_t>(head.names.size());
  return WriteAt(file, start, head.text.data(), head.text.size()) &&
         WriteAt(file, start + kDsfVariablesOffset, &data.variables, sizeof data.variables) &&
         WriteAt(file, start + kDsfNamesOffset, head.names.data(), head.names.size()) &&
         PackTriangle(scratch, variables, file, triangle, progress) &&
         CopyRange(scratch, CellBytes(variables, variables), file,
                   triangle + DsfTriangle(variables) * 8, CellBytes(1, variables));
}

// Do two files hold the same bytes in these places?
bool SameBytes(int fileA, std::int64_t offsetA, int fileB, std::int64_t offsetB,
               std::int64_t size) {
  std::vector<char> a(kBlockBytes);
  std::vector<char> b(kBlockBytes);
  while (size > 0) {
    const auto part = std::min<std::int64_t>(size, static_cast<std::int64_t>(kBlockBytes));
    const auto bytes = static_cast<std::size_t>(part);
    if (ReadAt(fileA, offsetA, a.data(), bytes) != part ||
        ReadAt(fileB, offsetB, b.data(), bytes) != part ||
        !std::equal(a.begin(), a.begin() + part, b.begin())) {
      return false;
    }
    offsetA += part;
    offsetB += part;
    size -= part;
  }
  return true;
}

// Would a reader find what was written at `start` as this group, and its neighbours as they were?
bool ReadsBack(int oldFile, int newFile, const TORVIKSTRUCT& data, std::int32_t group,
               std::int64_t start) {
  const std::int64_t variables = data.variables;
  const std::int64_t nameBytes = FieldWidth(data.format);
  const std::int64_t size = DsfGroupBytes(variables, nameBytes);
  const std::int64_t fileBytes = FileBytes(oldFile);
  const std::int64_t own = DsfReadOffset(variables, group, nameBytes, FileBytes(newFile));
  if (nameBytes != static_cast<std::int64_t>(kDsfWrittenNameBytes) || own < 0 ||
      !SameBytes(newFile, start + kDsfNamesOffset, newFile, own, size)) {
    return false;
  }
  for (const std::int64_t neighbour : {std::int64_t{group} - 1, std::int64_t{group} + 1}) {
    const std::int64_t offset = DsfReadOffset(variables, neighbour, nameBytes, fileBytes);
    if (offset >= 0 && !SameBytes(oldFile, offset, newFile, offset, size)) return false;
  }
  return true;
}

// Gives the file a second name beside its own, which stays when the first is replaced: "~" at its
// end, and a number where that is taken. Empty when that failed.
CString KeepOldFile(const CString& fileName) {
  constexpr int kMost = 1000;
  std::error_code error;
  const CString real = std::filesystem::canonical(fileName, error).string();
  for (int i = 0; i < kMost; ++i) {
    const CString kept = real + '~' + (i == 0 ? CString() : std::to_string(i));
    if (link(real.c_str(), kept.c_str()) == 0) return kept;
    if (errno == EEXIST) continue;
    // Not every file system has second names.
    if (std::filesystem::copy_file(real, kept, error)) return kept;
    return {};
  }
  return {};
}

}  // namespace

std::int64_t DsfReadOffset(std::int64_t variables, std::int64_t group, std::int64_t nameBytes,
                           std::int64_t fileBytes) {
  const std::int64_t stride = DsfReadStride(variables);
  if (group < 0 || group > fileBytes / stride) return -1;
  const std::int64_t offset = kDsfNamesOffset + group * stride;
  return offset + DsfGroupBytes(variables, nameBytes) <= fileBytes ? offset : -1;
}

std::int64_t CountDsfGroups(const CString& fileName) {
  CDescriptor file;
  if (!file.OpenForReading(fileName.c_str())) return 0;
  const std::int64_t variables = StatedVariables(file.Get());
  const std::int64_t fileBytes = FileBytes(file.Get());
  if (!DsfFits(variables, fileBytes)) return 0;
  const std::int64_t first = kDsfNamesOffset + DsfGroupBytes(variables, kDsfWrittenNameBytes);
  return fileBytes < first ? 0 : 1 + (fileBytes - first) / DsfReadStride(variables);
}

int CDataDoc::OpenDSFFile(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  CDescriptor file;
  if (!file.OpenForReading(fileName.c_str())) {
    AfxMessageBox(kNoFile);
    return 0;
  }
  const std::int64_t nameBytes = FieldWidth(data_.format);
  const std::int32_t variables = StatedVariables(file.Get());
  const CString problem = WhyNoGroup(file.Get(), variables, extern_.group, nameBytes);
  if (!problem.empty()) {
    AfxMessageBox(fileName + ": " + problem);
    return 0;
  }
  const std::int64_t offset =
      DsfReadOffset(variables, extern_.group, nameBytes, FileBytes(file.Get()));
  if (CopyDsfGroup(file.Get(), offset, variables, nameBytes, *view, "Opening " + fileName)) {
    return 1;
  }
  if (errno != ECANCELED) AfxMessageBox(fileName + ": " + std::strerror(errno));
  ResetDescription();
  return 0;
}

// The description and the cells. False with the reason in errno.
bool CDataDoc::CopyDsfGroup(int file, std::int64_t offset, std::int32_t variables,
                            std::int64_t nameBytes, CDataView& view, const CString& title) {
  CString names(static_cast<std::size_t>(variables * nameBytes), '\0');
  const std::int64_t triangle = offset + static_cast<std::int64_t>(names.size());
  const std::int64_t lastRow = triangle + DsfTriangle(variables) * 8;
  std::FILE* const scratch = view.OpenScratchFile("w+b");
  auto progress = Host().StartProgress(title);
  if (scratch == nullptr || ReadAt(file, offset, names.data(), names.size()) < 0 ||
      !SpreadTriangle(file, triangle, variables, fileno(scratch), *progress) ||
      !CopyRange(file, lastRow, fileno(scratch), CellBytes(variables, variables),
                 CellBytes(1, variables))) {
    const int error = errno;
    progress.reset();  // may change errno
    errno = error;
    return false;
  }
  const std::int32_t format = data_.format;
  ResetDescription();
  data_.format = format;
  MemoryReInit(variables);
  data_.records = variables + 1;
  for (std::size_t i = 0; i < static_cast<std::size_t>(variables); ++i) {
    const auto width = static_cast<std::size_t>(nameBytes);
    const char* const name = names.data() + i * width;
    data_.variable[i].name.assign(name, strnlen(name, width));
  }
  return true;
}

int CDataDoc::SaveDSFFile(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  CDescriptor old;
  if (!old.OpenForReading(fileName.c_str())) {
    AfxMessageBox(kNoFile);
    return 0;
  }
  if (const CString problem = WhyNotSaveGroup(old.Get()); !problem.empty()) {
    AfxMessageBox(fileName + ": " + problem);
    return 0;
  }
  std::FILE* const scratch = view->OpenScratchFile("rb");
  CSideFile target;
  const bool written = scratch != nullptr && target.Create(fileName) &&
                       ReplaceDsfGroup(old.Get(), fileno(scratch), target, fileName);
  const int error = target.Error() != 0 ? target.Error() : errno;
  view->ReopenFile();
  if (written) return 1;
  WriteStatusInfo(error == ECANCELED ? fileName + " was not saved."
                                     : fileName + ": " + std::strerror(error));
  if (error != ECANCELED) AfxMessageBox(kCannotWrite);
  return 0;
}

// Empty, or why the data set cannot go into this file.
CString CDataDoc::WhyNotSaveGroup(int file) const {
  if (data_.records < data_.variables + 1) {
    return "A DSF file needs a matrix and one more row, which this data set has not.";
  }
  const std::int32_t variables = StatedVariables(file);
  if (variables != data_.variables) {
    return boost::str(boost::format("The file is one of %1% variable(s), the data set has %2%.") %
                      variables % data_.variables);
  }
  return WhyNoGroup(file, variables, extern_.group, FieldWidth(data_.format));
}

// Makes a copy of the file with the group in it, and the copy the file. False with the reason in
// errno or in the side file.
bool CDataDoc::ReplaceDsfGroup(int old, int scratch, CSideFile& target, const CString& fileName) {
  auto progress = Host().StartProgress("Saving " + fileName);
  const std::int64_t start = extern_.group * DsfWriteStride(data_.variables);
  const int side = target.Descriptor();
  if (!CopyRange(old, 0, side, 0, FileBytes(old)) ||
      !WriteGroup(side, data_, start, scratch, *progress)) {
    const int error = errno;
    progress.reset();  // may change errno
    errno = error;
    return false;
  }
  CString kept;
  const bool readsBack = ReadsBack(old, side, data_, extern_.group, start);
  if (!readsBack) {
    kept = KeepOldFile(fileName);
    if (kept.empty()) return false;
  }
  if (!target.Commit()) {
    if (!kept.empty()) unlink(kept.c_str());
    return false;
  }
  if (!readsBack) {
    AfxMessageBox(boost::str(
        boost::format("%1%: saving this group has changed what is read as it or as a group beside "
                      "it. The file as it was is kept as %2%.") %
        fileName % kept));
  }
  return true;
}
