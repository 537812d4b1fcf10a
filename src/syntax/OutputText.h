// The text of an output file, line by line: read whole, indexed once, so that a window opens an
// output of any length at once.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/Types.h"

class COutputText {
 public:
  // Takes the place of what was read before. False, with the reason, when the file cannot be read;
  // what was read before then stays.
  bool Read(const CString& fileName, CString& reason);
  void Set(CString bytes);

  const CString& Bytes() const { return bytes_; }
  std::int64_t LineCount() const { return static_cast<std::int64_t>(begins_.size()) - 1; }
  // As it stands in the file, without its line end. Lines are counted from 0.
  std::string_view Line(std::int64_t line) const;
  // In bytes, without the line end.
  std::int64_t LongestLine() const { return longest_; }

  // A place between two bytes.
  struct Place {
    std::int64_t line = 0;
    std::int64_t byte = 0;  // in its line
    bool operator==(const Place&) const = default;
    bool operator<(const Place& other) const {
      return line != other.line ? line < other.line : byte < other.byte;
    }
  };
  std::int64_t OffsetOf(const Place& place) const;
  Place PlaceOf(std::int64_t offset) const;

  // The offset of the first occurrence at or behind `from`, or of the last one before it. ASCII
  // letters are equal in both cases unless `matchCase`.
  std::optional<std::int64_t> Find(std::string_view text, bool matchCase, std::int64_t from) const;
  std::optional<std::int64_t> FindBefore(std::string_view text, bool matchCase,
                                         std::int64_t from) const;

  // What a line is in an output of the engine, for showing it so.
  enum class Kind { Plain, Heading, Rule, Warning, Error };
  Kind KindOf(std::int64_t line) const;

 private:
  void Index();
  bool ContinuesWarning(std::int64_t line) const;

  CString bytes_;
  std::vector<std::int64_t> begins_ = {0, 0};  // of the lines, and one behind the last
  std::int64_t longest_ = 0;
};

// The line of the syntax (counted from 1) that a failed run's output names; 0 when it names none.
int ErrorLineIn(std::string_view output);
