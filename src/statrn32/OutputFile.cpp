#include "statrn32/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "vexutils/BlockIo.h"

namespace statrn32 {

COutputFile::~COutputFile() {
  if (file_ >= 0) close(file_);
}

bool COutputFile::Create(const std::string& name) {
  buffer_ = std::make_unique<char[]>(kBlockBytes);
  file_ = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return file_ >= 0 || Fail();
}

bool COutputFile::Write(const void* data, std::size_t size) {
  const auto* from = static_cast<const char*>(data);
  if (file_ < 0 || !reason_.empty()) return false;
  while (size > 0) {
    const std::size_t part = std::min(size, kBlockBytes - used_);
    std::memcpy(buffer_.get() + used_, from, part);
    used_ += part;
    from += part;
    size -= part;
    if (used_ == kBlockBytes && !Flush()) return false;
  }
  return true;
}

bool COutputFile::Close() {
  if (file_ < 0) return reason_.empty();
  bool done = reason_.empty() && Flush();
  if (close(file_) != 0 && done) done = Fail();
  file_ = -1;
  return done;
}

bool COutputFile::Flush() {
  std::size_t done = 0;
  while (done < used_) {
    const ssize_t put = write(file_, buffer_.get() + done, used_ - done);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return Fail();
    done += static_cast<std::size_t>(put);
  }
  used_ = 0;
  return true;
}

bool COutputFile::Fail() {
  reason_ = std::strerror(errno);
  return false;
}

}  // namespace statrn32
