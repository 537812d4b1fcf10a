#include "vexutils/SideFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

#include <sys/stat.h>

namespace {

// The file that the name stands for. A link whose file is not there yet is followed too: the file
// is what a plain write would create.
std::string Resolved(const std::string& target) {
  namespace fs = std::filesystem;
  constexpr int kMostLinks = 40;
  std::error_code error;
  fs::path path = target;
  for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(path, error));
       ++links) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  const auto canonical = fs::weakly_canonical(path, error);
  return error ? target : canonical.string();
}

// A name beside the target for mkstemp, cut where the target's own name leaves no room for the
// ending.
std::string SideName(const std::string& target) {
  constexpr const char* kEnding = ".XXXXXX";
  constexpr std::size_t kLongestName = 240;
  const std::filesystem::path path(target);
  return (path.parent_path() / path.filename().string().substr(0, kLongestName)).string() + kEnding;
}

// Gives the file a name that nothing has. Where the file system cannot be told so, a second name
// and the removal of the first do it.
bool RenameToFreeName(const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno == EEXIST) return false;
#endif
  return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

// The mode of a file that a program creates anew: everything that the process's mask allows.
mode_t ModeOfNewFile() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

bool MayReplace(const struct stat& info, const std::string& target) {
  if (S_ISDIR(info.st_mode)) {
    errno = EISDIR;
    return false;
  }
  if (!S_ISREG(info.st_mode)) {
    errno = EINVAL;
    return false;
  }
  // A file without any write permission was marked read-only on purpose, whoever runs this.
  constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
  if ((info.st_mode & kAnyWrite) == 0) {
    errno = EACCES;
    return false;
  }
  return access(target.c_str(), W_OK) == 0;
}

}  // namespace

bool CSideFile::Fail() {
  error_ = errno;
  return false;
}

bool CSideFile::Create(const std::string& target) {
  Discard();
  error_ = 0;
  behind_ = 0;
  target_ = Resolved(target);
  struct stat info {};
  const bool exists = stat(target_.c_str(), &info) == 0;
  if (exists ? !MayReplace(info, target_) : errno != ENOENT) return Fail();

  std::string name = SideName(target_);
  descriptor_ = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor_ < 0) return Fail();
  path_ = name;
  // The owner first: changing it may clear bits of the mode. Only a privileged process can give
  // files away; for anyone else the file stays their own, as any file that they write anew.
  if (exists && fchown(descriptor_, info.st_uid, info.st_gid) != 0) errno = 0;
  if (fchmod(descriptor_, exists ? info.st_mode & 07777 : ModeOfNewFile()) != 0) return Fail();
  return true;
}

void CSideFile::WriteBehind(std::int64_t written) {
#ifdef SYNC_FILE_RANGE_WRITE
  constexpr std::int64_t kPiece = std::int64_t{8} << 20;
  if (written - behind_ < kPiece) return;
  const std::int64_t end = written - written % kPiece;
  const int before = errno;
  sync_file_range(descriptor_, behind_, end - behind_, SYNC_FILE_RANGE_WRITE);
  errno = before;
  behind_ = end;
#else
  (void)written;
#endif
}

bool CSideFile::Sync() {
  if (descriptor_ < 0) {
    errno = EBADF;
    return Fail();
  }
  return fsync(descriptor_) == 0 || Fail();
}

bool CSideFile::PutInPlace() {
  if (rename(path_.c_str(), target_.c_str()) != 0) return Fail();
  path_.clear();
  Close();
  return true;
}

// The target has been replaced; a folder that cannot be synced no longer makes that a failure.
void CSideFile::SyncFolderOf(const std::string& target) {
  const std::string folder = std::filesystem::path(target).parent_path().string();
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

bool CSideFile::Commit() {
  if (!Sync() || !PutInPlace()) return false;
  SyncFolderOf(target_);
  return true;
}

void CSideFile::Discard() {
  Close();
  if (!path_.empty()) unlink(path_.c_str());
  path_.clear();
}

std::string CSideFile::KeepPart() {
  struct stat info {};
  if (descriptor_ < 0 || stat(path_.c_str(), &info) != 0 || info.st_size == 0) {
    Discard();
    return {};
  }
  Close();
  const std::string part = std::exchange(path_, {});
  return RenameToFreeName(part, target_) ? target_ : part;
}

void CSideFile::Close() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
}

std::string CSideFile::ErrorText() const {
  return std::strerror(error_);
}
