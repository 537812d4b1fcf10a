// Values as bytes, on their way between processes of the same program.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

class CParcelWriter {
 public:
  template <typename T>
  void Put(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void Put(const std::string& text) {
    Put(static_cast<std::uint64_t>(text.size()));
    bytes_ += text;
  }
  void PutDoubles(const double* values, std::size_t count) {
    bytes_.append(reinterpret_cast<const char*>(values), count * sizeof *values);
  }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// Throws std::runtime_error where there is less than was asked for.
class CParcelReader {
 public:
  explicit CParcelReader(const std::string& bytes) : bytes_(bytes) {}

  template <typename T>
  T Take() {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, Next(sizeof value), sizeof value);
    return value;
  }
  std::string TakeText() {
    const auto size = static_cast<std::size_t>(Take<std::uint64_t>());
    const char* const from = Next(size);
    return std::string(from, size);
  }
  void TakeDoubles(double* values, std::size_t count) {
    std::memcpy(values, Next(count * sizeof *values), count * sizeof *values);
  }
  bool AtEnd() const { return at_ == bytes_.size(); }

 private:
  const char* Next(std::size_t size) {
    if (size > bytes_.size() - at_) throw std::runtime_error("another process sent too few bytes");
    at_ += size;
    return bytes_.data() + (at_ - size);
  }
  const std::string& bytes_;
  std::size_t at_ = 0;
};
