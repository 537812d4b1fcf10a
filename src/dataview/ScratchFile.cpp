#include "dataview/ScratchFile.h"

#include <fcntl.h>
#include <filesystem>
#include <new>
#include <unistd.h>
#include <utility>

#include <sys/file.h>
#include <sys/stat.h>

#include "datadoc/VsfLayout.h"
#include "datadoc/VsfReader.h"
#include "vexutils/BlockIo.h"
#include "vexutils/TempFile.h"

namespace {

constexpr const char* kPrefix = "VS";
constexpr const char* kDescriptionExtension = ".vsd";
constexpr char kKindCharacter = '1';  // of format kind 0

CString DescriptionName(const CString& scratchName) {
  return scratchName + kDescriptionExtension;
}

void RemoveDescription(const CString& scratchName) {
  std::error_code error;
  std::filesystem::remove(DescriptionName(scratchName), error);
}

bool IsOurs(const CString& name) {
  struct stat info {};
  return lstat(name.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_uid == geteuid();
}

int OpenLocked(const CString& name) {
  const int file = open(name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
  if (file >= 0) flock(file, LOCK_EX | LOCK_NB);
  return file;
}

// Lets two files change names. Some file systems write a new file to disk before it may take
// another one's name, which a scratch file does not need and which takes as long as the writing; to
// an exchange they do not do that.
bool Exchange(const CString& a, const CString& b) {
#ifdef RENAME_EXCHANGE
  return renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0;
#else
  (void)a, (void)b;
  return false;
#endif
}

bool IsUnlocked(const CString& name) {
  const CDescriptor file(open(name.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
  return file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
}

// A description is the head of a system data file without cells, always in the new layout so that
// no name is cut, followed by a character for the format kind and the document's path.
bool ReadDescription(const CString& scratchName, LeftOverScratch& found) {
  CDescriptor file;
  VsfContents contents;
  if (!file.OpenForReading(DescriptionName(scratchName).c_str())) return false;
  try {
    if (ReadVsf(file.Get(), contents) != VsfStatus::Ok) return false;
  } catch (const std::bad_alloc&) {
    return false;
  }
  constexpr std::int64_t kLongestPath = 65536;
  const std::int64_t pathBytes = FileBytes(file.Get()) - contents.cellsOffset;
  if (pathBytes < 0 || pathBytes > kLongestPath) return false;
  found.pathName.resize(static_cast<std::size_t>(pathBytes));
  if (ReadAt(file.Get(), contents.cellsOffset, found.pathName.data(), found.pathName.size()) !=
      pathBytes) {
    return false;
  }
  if (found.pathName.empty()) return false;
  contents.data.format = found.pathName.front() - kKindCharacter;
  found.pathName.erase(0, 1);
  found.name = scratchName;
  found.data = std::move(contents.data);
  found.data.records = contents.statedRecords;
  return true;
}

}  // namespace

// Without a name, where the file system can do that, so that a crash leaves nothing behind.
CWorkFile::CWorkFile() : descriptor_(OpenUnnamedTemporary()) {
  if (descriptor_ >= 0) {
    flock(descriptor_, LOCK_EX | LOCK_NB);
    return;
  }
  name_ = GetTempName(kPrefix);
  if (!name_.empty()) descriptor_ = OpenLocked(name_);
}

CWorkFile::~CWorkFile() {
  if (!name_.empty()) unlink(name_.c_str());
  if (descriptor_ >= 0) close(descriptor_);
}

bool CWorkFile::TakeName() {
  if (!name_.empty()) return true;
  CString name = GetTempName(kPrefix);
  if (name.empty() || unlink(name.c_str()) != 0) return false;
  const CString open = "/proc/self/fd/" + std::to_string(descriptor_);
  if (linkat(AT_FDCWD, open.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) return false;
  name_ = std::move(name);
  return true;
}

CScratchFile::CScratchFile() : name_(GetTempName(kPrefix)) {
  if (!name_.empty()) lock_ = OpenLocked(name_);
}

CScratchFile::~CScratchFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  if (!name_.empty()) RemoveScratch(name_);
  if (lock_ >= 0) close(lock_);
}

std::FILE* CScratchFile::Open(const char* mode) {
  if (stream_ != nullptr) std::fclose(stream_);
  // Cells that are written anew are not those that the description speaks of.
  if (*mode == 'w') RemoveDescription(name_);
  stream_ = name_.empty() ? nullptr : std::fopen(OpenName().c_str(), mode);
  return stream_;
}

// Its name, or where that no longer leads to it the system's name of the descriptor.
CString CScratchFile::OpenName() const {
#ifdef __linux__
  if (lock_ >= 0 && !IsInPlace()) return "/proc/self/fd/" + std::to_string(lock_);
#endif
  return name_;
}

bool CScratchFile::IsInPlace() const {
  struct stat named {};
  struct stat held {};
  return lock_ >= 0 && fstat(lock_, &held) == 0 && lstat(name_.c_str(), &named) == 0 &&
         named.st_ino == held.st_ino && named.st_dev == held.st_dev;
}

bool CScratchFile::Replace(CWorkFile& work) {
  if (!work.TakeName()) return false;
  // The cells are not those any more that the description speaks of.
  RemoveDescription(name_);
  if (!Exchange(work.name_, name_)) {
    if (std::rename(work.name_.c_str(), name_.c_str()) != 0) return false;
    work.name_.clear();
  }
  if (stream_ != nullptr) std::fclose(stream_);
  stream_ = nullptr;
  if (lock_ >= 0) close(lock_);
  lock_ = std::exchange(work.descriptor_, -1);
  return true;
}

void CScratchFile::Describe(const TORVIKSTRUCT& data, const CString& pathName) const {
  if (name_.empty()) return;
  const CString side = DescriptionName(name_) + "~";
  const auto kind = static_cast<char>(kKindCharacter + data.format);
  const CString text = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces) + kind + pathName;
  std::error_code error;
  std::filesystem::remove(side, error);
  const CDescriptor file(
      open(side.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
  const bool written = file.IsOpen() && WriteAt(file.Get(), 0, text.data(), text.size());
  if (written) std::filesystem::rename(side, DescriptionName(name_), error);
  if (!written || error) std::filesystem::remove(side, error);
}

std::vector<LeftOverScratch> FindLeftOverScratch() {
  std::vector<LeftOverScratch> found;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(FolderOfTempFiles(), error), end;
       !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() != kDescriptionExtension) continue;
    const CString scratchName = std::filesystem::path(entry->path()).replace_extension().string();
    const CString fileName = std::filesystem::path(scratchName).filename().string();
    if (!fileName.starts_with(kPrefix) || !IsOurs(scratchName) || !IsUnlocked(scratchName)) {
      continue;
    }
    LeftOverScratch item;
    if (ReadDescription(scratchName, item)) found.push_back(std::move(item));
  }
  return found;
}

void RemoveScratch(const CString& name) {
  std::error_code error;
  std::filesystem::remove(name, error);
  RemoveDescription(name);
}
