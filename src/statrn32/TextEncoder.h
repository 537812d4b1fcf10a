// UTF-8 as the text of a foreign file.
#pragma once

#include <cstdint>
#include <iconv.h>
#include <string>
#include <string_view>
#include <vector>

namespace statrn32 {

// Turns UTF-8 into a code page. A character that the code page does not have becomes "?" and is
// counted.
class CTextEncoder {
 public:
  // `encoding` as iconv knows it ("CP1252", "CP437", "UTF-16LE").
  explicit CTextEncoder(const char* encoding);
  ~CTextEncoder();
  CTextEncoder(const CTextEncoder&) = delete;
  CTextEncoder& operator=(const CTextEncoder&) = delete;

  std::string Encode(std::string_view utf8);
  // Characters so far that the code page does not have.
  std::int64_t Lost() const { return lost_; }
  // Appends a sentence where any was lost.
  void Note(std::vector<std::string>* notes) const;

 private:
  iconv_t converter_;
  std::int64_t lost_ = 0;
};

}  // namespace statrn32
