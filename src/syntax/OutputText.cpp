#include "syntax/OutputText.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <unistd.h>

#include "vexutils/BlockIo.h"

namespace {

// The engine sets the text of a warning flush behind this.
constexpr std::string_view kWarning = "  WARNING: ";

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameLetter(char a, char b) {
  return Lower(a) == Lower(b);
}

std::string_view WithoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool IsRule(std::string_view line, char mark) {
  return line.size() > 1 && line.find_first_not_of(mark) == std::string_view::npos;
}

}  // namespace

bool COutputText::Read(const CString& fileName, CString& reason) {
  CDescriptor file;
  CString bytes;
  std::int64_t size = 0;
  bool read = file.OpenForReading(fileName.c_str());
  if (read) {
    size = lseek(file.Get(), 0, SEEK_END);
    bytes.resize(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)));
    const std::int64_t got = ReadAt(file.Get(), 0, bytes.data(), bytes.size());
    read = got >= 0;
    if (read) bytes.resize(static_cast<std::size_t>(got));
  }
  if (!read) {
    reason = fileName + ": " + std::strerror(errno);
    return false;
  }
  Set(std::move(bytes));
  return true;
}

void COutputText::Set(CString bytes) {
  bytes_ = std::move(bytes);
  Index();
}

void COutputText::Index() {
  begins_.assign(1, 0);
  longest_ = 0;
  const auto size = static_cast<std::int64_t>(bytes_.size());
  for (std::int64_t begin = 0; begin < size;) {
    const void* const found =
        std::memchr(bytes_.data() + begin, '\n', static_cast<std::size_t>(size - begin));
    const std::int64_t end =
        found == nullptr ? size : static_cast<const char*>(found) - bytes_.data();
    longest_ = std::max(longest_, end - begin);
    begin = std::min(end + 1, size);
    begins_.push_back(begin);
  }
  // A text without any line shows as one that is empty.
  if (begins_.size() == 1) begins_.push_back(0);
}

std::string_view COutputText::Line(std::int64_t line) const {
  const std::int64_t begin = begins_[static_cast<std::size_t>(line)];
  const std::int64_t end = begins_[static_cast<std::size_t>(line) + 1];
  std::string_view text = std::string_view(bytes_).substr(static_cast<std::size_t>(begin),
                                                          static_cast<std::size_t>(end - begin));
  if (text.ends_with('\n')) text.remove_suffix(1);
  return WithoutReturn(text);
}

std::int64_t COutputText::OffsetOf(const Place& place) const {
  return begins_[static_cast<std::size_t>(place.line)] + place.byte;
}

COutputText::Place COutputText::PlaceOf(std::int64_t offset) const {
  const auto behind = std::upper_bound(begins_.begin(), begins_.end() - 1, offset);
  const std::int64_t line = behind - begins_.begin() - 1;
  return {line, offset - begins_[static_cast<std::size_t>(line)]};
}

std::optional<std::int64_t> COutputText::Find(std::string_view text, bool matchCase,
                                              std::int64_t from) const {
  if (text.empty()) return std::nullopt;
  const std::string_view all = bytes_;
  const auto begin = all.begin() + from;
  const auto found = matchCase
                         ? std::search(begin, all.end(), text.begin(), text.end())
                         : std::search(begin, all.end(), text.begin(), text.end(), SameLetter);
  if (found == all.end()) return std::nullopt;
  return found - all.begin();
}

std::optional<std::int64_t> COutputText::FindBefore(std::string_view text, bool matchCase,
                                                    std::int64_t from) const {
  if (text.empty()) return std::nullopt;
  const std::string_view all = std::string_view(bytes_).substr(0, static_cast<std::size_t>(from));
  const auto found =
      matchCase ? std::find_end(all.begin(), all.end(), text.begin(), text.end())
                : std::find_end(all.begin(), all.end(), text.begin(), text.end(), SameLetter);
  if (found == all.end()) return std::nullopt;
  return found - all.begin();
}

// Does the line go on with a warning that began above it?
bool COutputText::ContinuesWarning(std::int64_t line) const {
  constexpr std::int64_t kLongestWarning = 20;  // lines
  const std::int64_t last = std::max<std::int64_t>(0, line - kLongestWarning);
  for (; line >= last; --line) {
    const std::string_view text = Line(line);
    if (text.starts_with(kWarning)) return true;
    if (text.find_first_not_of(' ') != kWarning.size()) return false;
  }
  return false;
}

COutputText::Kind COutputText::KindOf(std::int64_t line) const {
  const std::string_view text = Line(line);
  if (IsRule(text, '-') || IsRule(text, '=')) return Kind::Rule;
  if (ContinuesWarning(line)) return Kind::Warning;
  if (text.starts_with("ERROR")) return Kind::Error;
  const bool underlined = line + 1 < LineCount() && !text.empty() && IsRule(Line(line + 1), '-');
  return underlined ? Kind::Heading : Kind::Plain;
}

int ErrorLineIn(std::string_view output) {
  constexpr std::string_view kBefore = "\nERROR in line ";
  constexpr std::string_view kBehind = " of the syntax";
  const std::size_t at = output.find(kBefore);
  if (at == std::string_view::npos) return 0;
  output.remove_prefix(at + kBefore.size());
  int line = 0;
  const auto number = std::from_chars(output.data(), output.data() + output.size(), line);
  output.remove_prefix(static_cast<std::size_t>(number.ptr - output.data()));
  return number.ec == std::errc() && output.starts_with(kBehind) ? std::max(line, 0) : 0;
}
