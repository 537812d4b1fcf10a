// Words, names, texts, numbers and signs of an SQL script.
#pragma once

#include <string>
#include <string_view>

#include "statrn32/InputFile.h"

namespace statrn32 {

enum class SQL_TOKEN { Word, Name, Text, Number, Sign, End, Damaged };

// Reads token by token. Comments (two minus signs, or between slashes and stars) are blanks.
class CSqlLexer {
 public:
  explicit CSqlLexer(CInputFile* file) : file_(file) {}

  SQL_TOKEN Next();
  // Of a word as it stands, of a name and a text without their quotes, of a number with its sign.
  const std::string& Text() const { return text_; }
  // Is the token this word (in upper case) or sign?
  bool Is(std::string_view what) const;
  SQL_TOKEN Kind() const { return kind_; }
  std::int64_t Line() const { return line_; }
  // The characters up to a closing parenthesis, which is taken too.
  bool RawUntilParenthesis(std::string* out);
  void Rewind();

 private:
  static constexpr std::size_t kLongest = std::size_t{16} << 20;

  int Peek(std::size_t ahead = 0);
  int Take();
  bool Fill();
  bool SkipBlanks();
  SQL_TOKEN Quoted(char close, SQL_TOKEN kind);
  SQL_TOKEN NumberToken();

  CInputFile* file_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::int64_t line_ = 1;
  SQL_TOKEN kind_ = SQL_TOKEN::End;
  std::string text_;
};

}  // namespace statrn32
