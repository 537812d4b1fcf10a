#include "statrn32/ColumnFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "vexutils/TempFile.h"

namespace statrn32 {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{4} << 20;

}  // namespace

bool CColumnFile::Create(const std::string& name) {
  file_.Take(name.empty() ? OpenUnnamedTemporary()
                          : open(name.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  return file_.IsOpen() || Fail();
}

void CColumnFile::AddColumn(std::int64_t offset, std::size_t elementBytes) {
  columns_.push_back({offset, elementBytes, {}});
  recordBytes_ += elementBytes;
}

char* CColumnFile::Element(std::size_t column) {
  if (capacity_ == 0) {
    capacity_ = std::max<std::size_t>(1, kBufferBytes / std::max<std::size_t>(1, recordBytes_));
    for (COLUMN& each : columns_) each.block.resize(capacity_ * each.bytes);
  }
  COLUMN& wanted = columns_[column];
  return wanted.block.data() + used_ * wanted.bytes;
}

bool CColumnFile::EndRecord() {
  return ++used_ < capacity_ || Flush();
}

bool CColumnFile::Write(std::int64_t offset, std::string_view bytes) {
  if (!reason_.empty()) return false;
  return WriteAt(file_.Get(), offset, bytes.data(), bytes.size()) || Fail();
}

bool CColumnFile::Read(std::int64_t offset, char* data, std::size_t size) {
  if (!reason_.empty()) return false;
  errno = EIO;  // for a file that became shorter
  return ReadAt(file_.Get(), offset, data, size) == static_cast<std::int64_t>(size) || Fail();
}

bool CColumnFile::Flush() {
  for (COLUMN& column : columns_) {
    const std::size_t bytes = used_ * column.bytes;
    if (bytes > 0 && !Write(column.offset, {column.block.data(), bytes})) return false;
    column.offset += static_cast<std::int64_t>(bytes);
    std::fill(column.block.begin(), column.block.end(), '\0');
  }
  used_ = 0;
  return reason_.empty();
}

bool CColumnFile::Close() {
  if (!file_.IsOpen()) return reason_.empty();
  const bool done = reason_.empty() && Flush();
  const int file = file_.Release();
  return (close(file) == 0 || Fail()) && done;
}

bool CColumnFile::Fail() {
  if (reason_.empty()) reason_ = std::strerror(errno);
  return false;
}

}  // namespace statrn32
