// A text file in blocks, given out line by line or word by word. Lines and words of any length may
// come; of each only as much as the caller can use is kept.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

class CTextInput {
 public:
  // Reads the open file from `begin` on. Lines are kept up to `mostColumns` characters.
  CTextInput(int file, std::int64_t begin, std::size_t mostColumns);

  // The next line without its end. False at the end of the file, or when it cannot be read. The
  // view holds until the next call.
  bool NextLine(std::string_view& line);
  // The next word: what stands between blanks, line ends and other control characters. Its first
  // 65,536 characters are kept.
  bool NextWord(std::string_view& word);

  // Where in the file the line behind those given out begins.
  std::int64_t NextLineOffset() {
    if (rest_ != Rest::None) SkipRest();
    return Offset();
  }
  // How far the file is used up.
  std::int64_t Offset() const { return offset_ - static_cast<std::int64_t>(end_ - at_); }
  // Why reading failed, an errno value; 0 when it did not.
  int Error() const { return error_; }

 private:
  bool Fill();
  void SkipRest();
  const char* WordEnd(const char* at) const;

  int file_;
  std::int64_t offset_;  // in the file, of what stands behind end_
  std::size_t mostColumns_;
  std::vector<char> buffer_;
  char* at_;  // what was not given out yet
  char* end_;
  bool ended_ = false;
  enum class Rest { None, OfLine, OfWord } rest_ = Rest::None;  // still to be dropped
  int error_ = 0;
};

// A character that separates words.
inline bool IsTextBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}
