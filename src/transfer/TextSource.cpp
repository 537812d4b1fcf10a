#include "transfer/TextSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace STUtils {
namespace {

// Small enough to stay in the processor's cache together with what is made of it.
constexpr std::size_t kReadBytes = std::size_t{128} << 10;
constexpr std::size_t kDetectBytes = std::size_t{64} << 10;

}  // namespace

bool CTextSource::Open(const std::string& name) {
  error_.clear();
  struct stat status {};
  if (!file_.OpenForReading(name.c_str()) || fstat(file_.Get(), &status) != 0) {
    error_ = std::strerror(errno);
    file_.Close();
    return false;
  }
  size_ = status.st_size;
  changed_ = status.st_mtim;
  std::string first(kDetectBytes, '\0');
  const std::int64_t got = ReadAt(file_.Get(), 0, first.data(), first.size());
  if (got < 0) {
    error_ = std::strerror(errno);
    file_.Close();
    return false;
  }
  first.resize(static_cast<std::size_t>(got));
  encoding_ = DetectEncoding(first);
  Rewind();
  return true;
}

void CTextSource::Rewind() {
  char first[4] = {};
  const std::int64_t got = ReadAt(file_.Get(), 0, first, sizeof first);
  offset_ = got <= 0 ? 0
                     : static_cast<std::int64_t>(
                           ByteOrderMark({first, static_cast<std::size_t>(got)}, encoding_));
  used_ = 0;
  raw_.clear();
  error_.clear();
  Reserve(0);
}

void CTextSource::Reserve(std::size_t bytes) {
  const std::size_t needed = used_ + bytes + 2 * kNumberScanPadding + 2;  // a line end and a zero
  if (buffer_.size() < needed) buffer_.resize(std::max(needed, buffer_.size() * 2));
}

bool CTextSource::More(const char* from) {
  const auto keepFrom = static_cast<std::size_t>(from - Begin());
  used_ -= keepFrom;
  std::memmove(Text(), from, used_);
  if (AtEnd()) return false;
  return encoding_ == TextEncoding::Utf8 ? ReadPlain() : ReadConverted();
}

bool CTextSource::ReadPlain() {
  const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(kReadBytes, size_ - offset_));
  Reserve(wanted);
  const std::int64_t got = ReadAt(file_.Get(), offset_, Text() + used_, wanted);
  if (got <= 0) {
    error_ = got < 0 ? std::strerror(errno) : "";
    offset_ = size_;
    return false;
  }
  offset_ += got;
  used_ += static_cast<std::size_t>(got);
  EndText();
  return true;
}

// The last line gets an end where it has none; what stands behind the text is no line end.
void CTextSource::EndText() {
  if (AtEnd() && used_ > 0 && Text()[used_ - 1] != '\n' && Text()[used_ - 1] != '\r') {
    Text()[used_++] = '\n';
  }
  Text()[used_] = '\0';
}

bool CTextSource::ReadConverted() {
  const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(kReadBytes, size_ - offset_));
  const std::size_t held = raw_.size();
  raw_.resize(held + wanted);
  const std::int64_t got = ReadAt(file_.Get(), offset_, raw_.data() + held, wanted);
  if (got <= 0) {
    error_ = got < 0 ? std::strerror(errno) : "";
    offset_ = size_;
    return false;
  }
  offset_ += got;
  raw_.resize(held + static_cast<std::size_t>(got));
  converted_.clear();
  raw_.erase(0, AppendAsUtf8(raw_, encoding_, AtEnd(), converted_));
  Reserve(converted_.size());
  std::memcpy(Text() + used_, converted_.data(), converted_.size());
  used_ += converted_.size();
  EndText();
  return true;
}

double CTextSource::Fraction() const {
  return size_ > 0 ? static_cast<double>(offset_) / static_cast<double>(size_) : 1;
}

bool CTextSource::HasChanged() const {
  struct stat status {};
  return fstat(file_.Get(), &status) != 0 || status.st_size != size_ ||
         status.st_mtim.tv_sec != changed_.tv_sec || status.st_mtim.tv_nsec != changed_.tv_nsec;
}

}  // namespace STUtils
