#include "statrn32/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace statrn32 {
namespace {

constexpr auto kBufferBytes = static_cast<std::int64_t>(kBlockBytes);
// How much is kept behind a position that moved backwards: pages are searched from the end towards
// the start.
constexpr std::int64_t kKeepBehind = kBufferBytes / 8;

}  // namespace

bool CInputFile::Open(const std::string& name) {
  if (!file_.OpenForReading(name.c_str())) return false;
  struct stat info {};
  if (fstat(file_.Get(), &info) != 0) return false;
  if (!S_ISREG(info.st_mode)) {
    file_.Close();
    errno = ESPIPE;  // formats are read back and forth, which a pipe does not allow
    return false;
  }
  size_ = info.st_size;
  position_ = begin_ = end_ = 0;
  replacements_.clear();
  replacedEnd_ = 0;
  return true;
}

bool CInputFile::Fill() {
  if (stopped_.load(std::memory_order_relaxed)) {
    errno = ECANCELED;
    return false;
  }
  if (!buffer_) buffer_ = std::make_unique<char[]>(kBlockBytes);
  std::int64_t start = position_;
  if (position_ < begin_) start = std::max<std::int64_t>(0, position_ + kKeepBehind - kBufferBytes);
  const std::int64_t got = ReadAt(file_.Get(), start, buffer_.get(), kBlockBytes);
  if (got < 0) return false;
  begin_ = start;
  end_ = start + got;
  reached_.store(end_, std::memory_order_relaxed);
  return true;
}

std::int64_t CInputFile::Read(void* data, std::int64_t size) {
  auto* to = static_cast<char*>(data);
  std::int64_t done = 0;
  while (done < size) {
    if (position_ < begin_ || position_ >= end_) {
      if (position_ >= size_) break;
      if (!Fill()) return -1;
      if (position_ >= end_) break;  // the file has become shorter
    }
    const std::int64_t part = std::min(size - done, end_ - position_);
    std::memcpy(to + done, buffer_.get() + (position_ - begin_), static_cast<std::size_t>(part));
    if (position_ < replacedEnd_) PutReplacements(to + done, position_, part);
    done += part;
    position_ += part;
  }
  return done;
}

void CInputFile::Replace(std::int64_t position, char byte) {
  replacements_.push_back({position, byte});
  replacedEnd_ = std::max(replacedEnd_, position + 1);
}

void CInputFile::PutReplacements(char* data, std::int64_t begin, std::int64_t size) const {
  for (const REPLACEMENT& replacement : replacements_) {
    const std::int64_t place = replacement.position - begin;
    if (place >= 0 && place < size) data[place] = replacement.byte;
  }
}

bool CInputFile::Seek(std::int64_t position) {
  if (position < 0) {
    errno = EINVAL;
    return false;
  }
  position_ = position;
  return true;
}

double CInputFile::Progress() const {
  if (size_ <= 0) return 1;
  const auto reached = static_cast<double>(reached_.load(std::memory_order_relaxed));
  return std::min(1.0, reached / static_cast<double>(size_));
}

}  // namespace statrn32
