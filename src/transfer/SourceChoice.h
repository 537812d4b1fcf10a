// What a foreign file leaves open and the user may say before it is imported: which of its tables,
// the encoding of its texts, the password of its database.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace STUtils {

struct ImportEncoding {
  const char* shown;  // to people
  const char* name;   // as the library knows it; empty: as it thinks right
};
// All that are offered, in their order; the first leaves it to the library.
std::span<const ImportEncoding> ImportEncodings();

}  // namespace STUtils

class CSourceChoice {
 public:
  // Looks at the beginning of the file. One that cannot be opened leaves nothing open: the import
  // itself says why.
  CSourceChoice(std::string file, std::int32_t type);

  const std::string& File() const { return file_; }
  // Empty where there is no choice.
  const std::vector<std::string>& Tables() const { return tables_; }
  // Does the file not name its encoding, and hold texts that depend on it?
  bool AsksForEncoding() const { return asksForEncoding_; }
  bool AsksForPassword() const { return asksForPassword_; }
  bool AsksForAnything() const { return asksForPassword_ || asksForEncoding_ || !tables_.empty(); }

  // Texts that depend on the encoding, read with what is chosen now: names, labels and values, each
  // once, a few of them.
  std::vector<std::string> Sample() const;

  std::size_t table = 0;     // of Tables()
  std::size_t encoding = 0;  // of ImportEncodings()
  std::string password;

  // What is chosen, as the import takes it.
  std::string TableName() const { return tables_.empty() ? std::string() : tables_[table]; }
  std::string EncodingName() const { return STUtils::ImportEncodings()[encoding].name; }

 private:
  void Look();

  std::string file_;
  std::int32_t type_;
  std::vector<std::string> tables_;
  bool asksForEncoding_ = false;
  bool asksForPassword_ = false;
};
