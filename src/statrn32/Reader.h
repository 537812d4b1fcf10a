// What every format's reader gives: a dictionary, then blocks of records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "statrn32/Dictionary.h"

namespace statrn32 {

// A value of a record: its number, or where its text begins in the block's texts.
union CELL {
  double number;
  std::uint64_t text;
};

// Some records, one after the other, each with one cell and one status (ST_STATUS_...) per
// variable.
struct RECORD_BLOCK {
  std::size_t records = 0;
  std::vector<CELL> cells;
  std::vector<std::uint8_t> status;
  std::string texts;  // NUL-terminated; the first is empty

  void Clear() {
    records = 0;
    texts.assign(1, '\0');
  }
};

// Used from one thread. A failure is told by Error(): one sentence with file, place and what was
// expected.
class CReader {
 public:
  CReader() = default;
  virtual ~CReader() = default;
  CReader(const CReader&) = delete;
  CReader& operator=(const CReader&) = delete;

  // Opens the file and looks at its first bytes.
  virtual bool Open(const std::string& name) = 0;
  virtual bool ReadDictionary(DICTIONARY* out) = 0;
  // The next records, valid until the next call; null at the end (Error() is empty) and on failure.
  // Records that could be read before a damaged place are given first.
  virtual const RECORD_BLOCK* NextBlock() = 0;
  // 0 to 1; negative when unknown.
  virtual double Progress() const { return -1; }
  // Day number of the dates' epoch, counted from 1970-01-01.
  virtual std::int64_t EpochDay() const { return 0; }
  // What the numbers of this file count that are displayed so (ST_DISPLAY_...).
  virtual DATE_KIND DateKindOf(std::int32_t /*display*/) const { return DATE_KIND::None; }

  const std::string& Error() const { return error_; }

 protected:
  bool Fail(std::string error) {
    error_ = std::move(error);
    return false;
  }

 private:
  std::string error_;
};

}  // namespace statrn32
