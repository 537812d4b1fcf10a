// System data files written by hand, field by field, without the code under test.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

inline constexpr double kUnset = -9.999e301;

class Bytes {
 public:
  Bytes& Text(const std::string& text, std::size_t width, char filler = '\0') {
    bytes_ += text;
    bytes_.append(width - text.size(), filler);
    return *this;
  }
  Bytes& Int(std::int32_t value) { return Raw(&value, sizeof value); }
  Bytes& Real(double value) { return Raw(&value, sizeof value); }
  Bytes& Reals(const std::vector<double>& values) {
    for (const double value : values) Real(value);
    return *this;
  }
  Bytes& Zeros(std::size_t count) {
    bytes_.append(count, '\0');
    return *this;
  }
  Bytes& Add(const std::string& bytes) {
    bytes_ += bytes;
    return *this;
  }
  const std::string& Get() const { return bytes_; }

 private:
  Bytes& Raw(const void* data, std::size_t size) {
    bytes_.append(static_cast<const char*>(data), size);
    return *this;
  }
  std::string bytes_;
};

// The first 128 bytes, with defaults behind the counts.
inline std::string VsfHead(const std::string& word, char filler, std::int32_t records,
                           std::int32_t variables) {
  return Bytes()
      .Text(word, 32, filler)
      .Zeros(12 + 4 + 16)
      .Int(records)
      .Int(variables)
      .Reals({kUnset, kUnset, kUnset, kUnset, kUnset, -999999.0})
      .Int(0)
      .Int(0)
      .Get();
}

// A block of an ordinal variable without missing values and categories.
inline std::string VsfVariable(const std::string& name, std::size_t width,
                               char labelFiller = '\0') {
  Bytes bytes;
  bytes.Text(name, width).Zeros(32).Int(0).Reals({kUnset, kUnset, kUnset, kUnset, kUnset}).Int(0);
  for (int i = 0; i < 15; ++i) bytes.Text("", 8, labelFiller);
  return bytes.Zeros(60).Get();
}
