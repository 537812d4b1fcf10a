#include "datadoc/VsfWriter.h"

#include <cerrno>
#include <cstring>

#include "datadoc/VsfLayout.h"
#include "vexutils/SideFile.h"

namespace {

bool FailWith(int error, CString& reason) {
  reason = std::strerror(error);
  errno = error;
  return false;
}

}  // namespace

bool WriteVsfFile(const CString& fileName, const TORVIKSTRUCT& data, int kind, int scratch,
                  CString& reason, const CopyProgress& progress) {
  CSideFile file;
  if (!file.Create(fileName)) return FailWith(file.Error(), reason);
  const CString description = EncodeVsfDescription(data, kind, VsfFiller::Spaces);
  const auto cellsOffset = static_cast<std::int64_t>(description.size());
  if (!WriteAt(file.Descriptor(), 0, description.data(), description.size()) ||
      !CopyRange(scratch, 0, file.Descriptor(), cellsOffset,
                 CellBytes(data.records, data.variables), progress)) {
    return FailWith(errno, reason);
  }
  if (!file.Commit()) return FailWith(file.Error(), reason);
  return true;
}
