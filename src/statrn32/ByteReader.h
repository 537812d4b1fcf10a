// Numbers and texts out of bytes in memory, bounds checked.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace statrn32 {

// Reads from a position that moves. Turns bad at the first field that does not lie within the bytes
// and gives zeros and empty texts from then on. Numbers are little-endian unless set otherwise.
class CByteReader {
 public:
  explicit CByteReader(std::string_view bytes) : bytes_(bytes) {}

  bool Ok() const { return ok_; }
  std::size_t Position() const { return position_; }
  std::size_t Left() const { return ok_ ? bytes_.size() - position_ : 0; }
  void SetBigEndian(bool big) { big_ = big; }

  // A position behind the last byte turns it bad.
  void Seek(std::size_t position) {
    ok_ = ok_ && position <= bytes_.size();
    if (ok_) position_ = position;
  }
  void Skip(std::size_t size) { Bytes(size); }
  std::string_view Bytes(std::size_t size) {
    ok_ = ok_ && size <= bytes_.size() - position_;
    if (!ok_) return {};
    const std::string_view part = bytes_.substr(position_, size);
    position_ += size;
    return part;
  }
  std::uint64_t Unsigned(std::size_t bytes) {
    const std::string_view raw = Bytes(bytes);
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < raw.size(); ++i) {
      number = number << 8 | static_cast<unsigned char>(raw[big_ ? i : raw.size() - 1 - i]);
    }
    return number;
  }
  std::uint8_t U8() { return static_cast<std::uint8_t>(Unsigned(1)); }
  std::uint16_t U16() { return static_cast<std::uint16_t>(Unsigned(2)); }
  std::uint32_t U32() { return static_cast<std::uint32_t>(Unsigned(4)); }
  std::int16_t I16() { return static_cast<std::int16_t>(Unsigned(2)); }
  std::int32_t I32() { return static_cast<std::int32_t>(Unsigned(4)); }
  std::int64_t I64() { return static_cast<std::int64_t>(Unsigned(8)); }
  double F64() { return std::bit_cast<double>(Unsigned(8)); }
  float F32() { return std::bit_cast<float>(U32()); }

 private:
  std::string_view bytes_;
  std::size_t position_ = 0;
  bool ok_ = true;
  bool big_ = false;
};

}  // namespace statrn32
