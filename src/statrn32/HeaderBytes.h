// Fields of a file's header, read one after the other.
#pragma once

#include <cstdint>
#include <cstring>

#include "statrn32/InputFile.h"

namespace statrn32 {

// Turns bad at the first field that the file no longer has and gives zeros from then on.
class CHeaderBytes {
 public:
  explicit CHeaderBytes(CInputFile* file) : file_(file) {}

  bool Ok() const { return ok_; }
  void SetBigEndian(bool big) { big_ = big; }

  void Bytes(void* out, std::int64_t size) {
    if (ok_ && file_->Read(out, size) == size) return;
    ok_ = false;
    std::memset(out, 0, static_cast<std::size_t>(size));
  }
  std::uint64_t Unsigned(int bytes) {
    unsigned char raw[8] = {};
    Bytes(raw, bytes);
    std::uint64_t number = 0;
    for (int i = 0; i < bytes; ++i) number = number << 8 | raw[big_ ? i : bytes - 1 - i];
    return number;
  }
  std::int32_t Int32() { return static_cast<std::int32_t>(Unsigned(4)); }
  // What is skipped must be there.
  void Skip(std::int64_t size) {
    ok_ = ok_ && size >= 0 && size <= file_->Size() - file_->Position() &&
          file_->Seek(file_->Position() + size);
  }

 private:
  CInputFile* file_;
  bool ok_ = true;
  bool big_ = false;
};

}  // namespace statrn32
