#include "vexutils/SideFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include <sys/stat.h>

namespace {

std::string Resolved(const std::string& target) {
  std::error_code error;
  const auto path = std::filesystem::weakly_canonical(target, error);
  return error ? target : path.string();
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

bool SyncFolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (descriptor < 0) return false;
  const bool synced = fsync(descriptor) == 0 || errno == EINVAL;
  close(descriptor);
  return synced;
}

}  // namespace

bool CSideFile::Fail() {
  error_ = errno;
  return false;
}

bool CSideFile::Create(const std::string& target) {
  Discard();
  error_ = 0;
  target_ = Resolved(target);
  struct stat info {};
  const bool exists = stat(target_.c_str(), &info) == 0;
  if (exists && !MayReplace(info, target_)) return Fail();

  std::string name = target_ + ".XXXXXX";
  descriptor_ = mkstemp(name.data());
  if (descriptor_ < 0) return Fail();
  path_ = name;
  // The owner first: changing it may clear bits of the mode. Only a privileged process can give
  // files away; for anyone else the file stays their own, as any file that they write anew.
  if (exists && fchown(descriptor_, info.st_uid, info.st_gid) != 0) errno = 0;
  if (fchmod(descriptor_, exists ? info.st_mode & 07777 : ModeOfNewFile()) != 0) return Fail();
  return true;
}

bool CSideFile::Commit() {
  if (descriptor_ < 0) {
    errno = EBADF;
    return Fail();
  }
  if (fsync(descriptor_) != 0) return Fail();
  if (rename(path_.c_str(), target_.c_str()) != 0) return Fail();
  path_.clear();
  Close();
  if (!SyncFolderOf(target_)) return Fail();
  return true;
}

void CSideFile::Discard() {
  Close();
  if (!path_.empty()) unlink(path_.c_str());
  path_.clear();
}

std::string CSideFile::KeepPart() {
  if (descriptor_ < 0) return {};
  Close();
  std::string kept = path_;
  path_.clear();
  // A link fails where something has taken the name meanwhile; a rename would replace it.
  if (link(kept.c_str(), target_.c_str()) == 0) {
    unlink(kept.c_str());
    kept = target_;
  }
  return kept;
}

void CSideFile::Close() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
}

std::string CSideFile::ErrorText() const {
  return std::strerror(error_);
}
