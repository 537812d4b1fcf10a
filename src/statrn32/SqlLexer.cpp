#include "statrn32/SqlLexer.h"

#include "host/Text.h"

namespace statrn32 {
namespace {

bool IsDigit(int c) {
  return c >= '0' && c <= '9';
}
bool IsWordPart(int c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '_' || c == '$' ||
         c == '#' || c == '@' || c >= 0x80;
}

}  // namespace

bool CSqlLexer::Is(std::string_view what) const {
  const bool word = kind_ == SQL_TOKEN::Word && EqualIgnoringCase(text_, what);
  return word || (kind_ == SQL_TOKEN::Sign && text_ == what);
}

void CSqlLexer::Rewind() {
  file_->Seek(0);
  buffer_.clear();
  at_ = 0;
  line_ = 1;
}

bool CSqlLexer::Fill() {
  constexpr std::size_t kPart = 1 << 16;
  buffer_.erase(0, at_);
  at_ = 0;
  const std::size_t old = buffer_.size();
  buffer_.resize(old + kPart);
  const std::int64_t got = file_->Read(buffer_.data() + old, kPart);
  buffer_.resize(old + (got > 0 ? static_cast<std::size_t>(got) : 0));
  return got > 0;
}

int CSqlLexer::Peek(std::size_t ahead) {
  if (at_ + ahead >= buffer_.size() && (!Fill() || at_ + ahead >= buffer_.size())) return -1;
  return static_cast<unsigned char>(buffer_[at_ + ahead]);
}

int CSqlLexer::Take() {
  const int c = Peek();
  if (c >= 0) ++at_;
  if (c == '\n') ++line_;
  return c;
}

// False when a comment does not end.
bool CSqlLexer::SkipBlanks() {
  for (;;) {
    const int c = Peek();
    if (c >= 0 && c <= ' ') {
      Take();
    } else if (c == 0xEF && Peek(1) == 0xBB && Peek(2) == 0xBF) {  // the mark of UTF-8
      Take(), Take(), Take();
    } else if (c == '-' && Peek(1) == '-') {
      while (Peek() >= 0 && Peek() != '\n') Take();
    } else if (c == '/' && Peek(1) == '*') {
      Take(), Take();
      while (Peek() >= 0 && !(Peek() == '*' && Peek(1) == '/')) Take();
      if (Take() < 0) return false;
      Take();
    } else {
      return true;
    }
  }
}

SQL_TOKEN CSqlLexer::Next() {
  text_.clear();
  kind_ = SQL_TOKEN::Damaged;
  if (!SkipBlanks()) return kind_;
  const int c = Peek();
  if (c < 0) return kind_ = SQL_TOKEN::End;
  if ((c == 'N' || c == 'n') && Peek(1) == '\'') {
    Take();
    return kind_ = Quoted('\'', SQL_TOKEN::Text);
  }
  if (c == '\'') return kind_ = Quoted('\'', SQL_TOKEN::Text);
  if (c == '"' || c == '`') return kind_ = Quoted(static_cast<char>(c), SQL_TOKEN::Name);
  if (c == '[') return kind_ = Quoted(']', SQL_TOKEN::Name);
  const bool sign = c == '-' || c == '+';
  const int next = sign ? Peek(1) : c;
  if (IsDigit(next) || (next == '.' && IsDigit(Peek(sign ? 2 : 1)))) return kind_ = NumberToken();
  if (IsWordPart(c)) {
    while (IsWordPart(Peek()) && text_.size() < kLongest) text_ += static_cast<char>(Take());
    return kind_ = SQL_TOKEN::Word;
  }
  text_ = static_cast<char>(Take());
  return kind_ = SQL_TOKEN::Sign;
}

// The closing mark stands twice where it is part of the text.
SQL_TOKEN CSqlLexer::Quoted(char close, SQL_TOKEN kind) {
  Take();
  while (text_.size() < kLongest) {
    const int c = Take();
    if (c < 0) return SQL_TOKEN::Damaged;
    if (c == close) {
      if (Peek() != close) return kind;
      Take();
    }
    text_ += static_cast<char>(c);
  }
  return SQL_TOKEN::Damaged;
}

// With a sign, a point and an exponent; a letter behind it that says how exact it is ("d") is left
// out.
SQL_TOKEN CSqlLexer::NumberToken() {
  constexpr std::size_t kLongestNumber = 400;
  if (Peek() == '+') {
    Take();
  } else if (Peek() == '-') {
    text_ += static_cast<char>(Take());
  }
  for (int last = 0; text_.size() < kLongestNumber;) {
    const int c = Peek();
    const bool exponent = c == 'e' || c == 'E';
    const bool sign = (c == '-' || c == '+') && (last == 'e' || last == 'E');
    if (!IsDigit(c) && c != '.' && !exponent && !sign) break;
    last = Take();
    if (last != '+') text_ += static_cast<char>(last);
  }
  if (Peek() == 'd' || Peek() == 'f' || Peek() == 'D' || Peek() == 'F') Take();
  return SQL_TOKEN::Number;
}

bool CSqlLexer::RawUntilParenthesis(std::string* out) {
  out->clear();
  while (Peek() >= 0 && Peek() != ')' && out->size() < kLongest) *out += static_cast<char>(Take());
  return Take() == ')';
}

}  // namespace statrn32
