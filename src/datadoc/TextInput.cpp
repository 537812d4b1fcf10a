#include "datadoc/TextInput.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "vexutils/BlockIo.h"

namespace {

constexpr std::size_t kReadBytes = std::size_t{128} << 10;
constexpr std::size_t kMostWord = 65536;

std::string_view WithoutReturn(const char* begin, const char* end) {
  if (end != begin && end[-1] == '\r') --end;
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

CTextInput::CTextInput(int file, std::int64_t begin, std::size_t mostColumns)
    : file_(file),
      offset_(begin),
      mostColumns_(mostColumns),
      buffer_(std::max(mostColumns, kMostWord) + 1 + kReadBytes),
      at_(buffer_.data()),
      end_(buffer_.data()) {}

// Moves what is left to the front and reads a block behind it.
bool CTextInput::Fill() {
  if (ended_) return false;
  const auto left = static_cast<std::size_t>(end_ - at_);
  std::memmove(buffer_.data(), at_, left);
  at_ = buffer_.data();
  end_ = at_ + left;
  const std::int64_t got = ReadAt(file_, offset_, end_, kReadBytes);
  if (got < 0) error_ = errno;
  ended_ = got < static_cast<std::int64_t>(kReadBytes);
  if (got <= 0) return false;
  offset_ += got;
  end_ += got;
  return true;
}

// Drops what was too long to be kept.
void CTextInput::SkipRest() {
  const bool line = rest_ == Rest::OfLine;
  rest_ = Rest::None;
  do {
    char* const stop = line ? std::find(at_, end_, '\n') : std::find_if(at_, end_, IsTextBlank);
    at_ = stop;
    if (stop != end_) {
      if (line) ++at_;
      return;
    }
  } while (Fill());
}

bool CTextInput::NextLine(std::string_view& line) {
  if (rest_ != Rest::None) SkipRest();
  std::size_t seen = 0;
  for (;;) {
    const auto left = static_cast<std::size_t>(end_ - at_);
    auto* const stop = static_cast<char*>(std::memchr(at_ + seen, '\n', left - seen));
    if (stop != nullptr) {
      line = WithoutReturn(at_, stop);
      line = line.substr(0, mostColumns_);
      at_ = stop + 1;
      return true;
    }
    if (left > mostColumns_) {
      line = {at_, mostColumns_};
      at_ = end_;
      rest_ = Rest::OfLine;
      return true;
    }
    seen = left;
    if (Fill()) continue;
    if (error_ != 0 || at_ == end_) return false;
    line = WithoutReturn(at_, end_).substr(0, mostColumns_);
    at_ = end_;
    return true;
  }
}

const char* CTextInput::WordEnd(const char* at) const {
  while (at != end_ && !IsTextBlank(*at)) ++at;
  return at;
}

bool CTextInput::NextWord(std::string_view& word) {
  if (rest_ != Rest::None) SkipRest();
  do {
    while (at_ != end_ && IsTextBlank(*at_)) ++at_;
  } while (at_ == end_ && Fill());
  if (at_ == end_) return false;
  std::size_t seen = 0;
  for (;;) {
    const char* const stop = WordEnd(at_ + seen);
    const auto length = static_cast<std::size_t>(stop - at_);
    if (length > kMostWord) {
      word = {at_, kMostWord};
      at_ += length;
      rest_ = Rest::OfWord;
      return true;
    }
    if (stop == end_) {
      seen = length;
      if (Fill()) continue;
      if (error_ != 0) return false;
    }
    word = {at_, length};
    at_ += length;
    return true;
  }
}
