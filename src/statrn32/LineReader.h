// Lines of a text file.
#pragma once

#include <cstring>
#include <string>

#include "statrn32/InputFile.h"

namespace statrn32 {

// Lines end with LF, CR LF or the end of the file; the mark of UTF-8 before the first one is no
// part of it. A line that is longer than `most` bytes ends the reading.
class CLineReader {
 public:
  explicit CLineReader(CInputFile* file, std::size_t most = std::size_t{16} << 20)
      : file_(file), most_(most) {}

  // False at the end, on a read failure and behind too long a line.
  bool Next(std::string* line) {
    line->clear();
    for (;;) {
      if (at_ == got_) {
        const std::int64_t got = file_->Read(buffer_, sizeof buffer_);
        at_ = 0;
        got_ = got > 0 ? static_cast<std::size_t>(got) : 0;
        if (got_ == 0) break;
      }
      const auto* const begin = buffer_ + at_;
      const auto* const end = static_cast<const char*>(std::memchr(begin, '\n', got_ - at_));
      const std::size_t part = end != nullptr ? static_cast<std::size_t>(end - begin) : got_ - at_;
      line->append(begin, part);
      at_ += part + (end != nullptr ? 1 : 0);
      if (line->size() > most_) {
        tooLong_ = true;
        return false;
      }
      if (end != nullptr) {
        ++number_;
        Tidy(line);
        return true;
      }
    }
    if (line->empty()) return false;
    ++number_;
    if (number_ == 1) DropMark(line);
    return true;
  }
  // Of the line read last, from 1.
  std::int64_t Number() const { return number_; }
  bool TooLong() const { return tooLong_; }
  // Begins again at the start of the file.
  void Rewind() {
    file_->Seek(0);
    at_ = got_ = 0;
    number_ = 0;
    tooLong_ = false;
  }

 private:
  void Tidy(std::string* line) const {
    if (!line->empty() && line->back() == '\r') line->pop_back();
    if (number_ == 1) DropMark(line);
  }
  static void DropMark(std::string* line) {
    if (line->compare(0, 3, "\xEF\xBB\xBF") == 0) line->erase(0, 3);
  }

  CInputFile* file_;
  std::size_t most_;
  char buffer_[1 << 16];
  std::size_t at_ = 0;
  std::size_t got_ = 0;
  std::int64_t number_ = 0;
  bool tooLong_ = false;
};

}  // namespace statrn32
