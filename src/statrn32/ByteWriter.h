// Numbers and texts into bytes in memory.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace statrn32 {

// Appends to a string that it owns. Numbers are little-endian unless set otherwise.
class CByteWriter {
 public:
  void SetBigEndian(bool big) { big_ = big; }

  CByteWriter& Unsigned(std::uint64_t number, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
      bytes_ += static_cast<char>(number >> 8 * (big_ ? bytes - 1 - i : i));
    }
    return *this;
  }
  CByteWriter& U8(std::uint64_t number) { return Unsigned(number, 1); }
  CByteWriter& U16(std::uint64_t number) { return Unsigned(number, 2); }
  CByteWriter& U32(std::uint64_t number) { return Unsigned(number, 4); }
  CByteWriter& F64(double number) { return Unsigned(std::bit_cast<std::uint64_t>(number), 8); }
  CByteWriter& Bytes(std::string_view bytes) {
    bytes_.append(bytes);
    return *this;
  }
  CByteWriter& Zeros(std::size_t count, char filler = '\0') {
    bytes_.append(count, filler);
    return *this;
  }
  // `bytes` cut or filled up to `width`.
  CByteWriter& Field(std::string_view bytes, std::size_t width, char filler) {
    const std::string_view part = bytes.substr(0, width);
    return Bytes(part).Zeros(width - part.size(), filler);
  }
  // Changes a number that was written before.
  void Patch(std::size_t position, std::uint64_t number, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
      bytes_[position + i] = static_cast<char>(number >> 8 * (big_ ? bytes - 1 - i : i));
    }
  }

  std::size_t Size() const { return bytes_.size(); }
  const std::string& Data() const { return bytes_; }
  void Clear() { bytes_.clear(); }

 private:
  std::string bytes_;
  bool big_ = false;
};

}  // namespace statrn32
