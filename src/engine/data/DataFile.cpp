#include "engine/data/DataFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>

#include "datadoc/VsfLayout.h"
#include "host/Text.h"

CString ExistingDataFile(const CString& name) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path path(name);
  if (fs::exists(path, error)) return name;
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  CString found;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& other = entry->path();
    if (other.stem() != path.stem() ||
        !EqualIgnoringCase(other.extension().string(), path.extension().string())) {
      continue;
    }
    if (!found.empty()) return name;
    found = (path.parent_path() / other.filename()).string();
  }
  return found.empty() ? name : found;
}

bool CDataFile::Open(const CString& name, FAULT& fault) {
  name_ = ExistingDataFile(name);
  if (!file_.OpenForReading(name_.c_str())) {
    fault.cause = "the data file " + name + " cannot be opened: " + std::strerror(errno);
    fault.remedy = "Check the name in the SY line and that the file may be read.";
    return false;
  }
  try {
    switch (ReadVsf(file_.Get(), contents_)) {
      case VsfStatus::Ok:
        return true;
      case VsfStatus::ReadError:
        fault.cause = "the data file " + name_ + " cannot be read: " + std::strerror(errno);
        break;
      case VsfStatus::NotCorrect:
        fault.cause = name_ + " is not a system data file";
        fault.remedy = "Name a file that ends in .VSF; other data have to be imported first.";
        break;
    }
  } catch (const std::bad_alloc&) {
    fault.cause = "there is not enough memory for the description of " + name_;
  }
  return false;
}

bool CDataFile::ReadRecords(std::int64_t first, std::int64_t count, double* cells) const {
  const std::int64_t variables = contents_.data.variables;
  const std::int64_t begin = first * variables;
  const std::int64_t wanted = count * variables;
  const std::int64_t there = std::clamp<std::int64_t>(contents_.wholeCells - begin, 0, wanted);
  const std::int64_t got = ReadAt(file_.Get(), contents_.cellsOffset + CellBytes(1, begin), cells,
                                  static_cast<std::size_t>(CellBytes(1, there)));
  if (got < 0) return false;
  std::fill(cells + got / static_cast<std::int64_t>(kCellBytes), cells + wanted,
            std::numeric_limits<double>::quiet_NaN());
  return true;
}
