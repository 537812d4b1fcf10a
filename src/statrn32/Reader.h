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

// What the caller asked for before a file is opened.
struct READ_OPTIONS {
  int nameRow = -1;      // the row of a sheet that holds the names; -1: not asked for
  std::string encoding;  // of a file that does not name its own, as iconv knows it; empty: guessed
  std::string password;  // of the database that a connection file leads to
  std::string table;     // the sheet, member or table wanted; empty: the reader's choice
};

// Used from one thread. A failure is told by Error(): one sentence with file, place and what was
// expected.
class CReader {
 public:
  CReader() = default;
  virtual ~CReader() = default;
  CReader(const CReader&) = delete;
  CReader& operator=(const CReader&) = delete;

  void SetOptions(const READ_OPTIONS& options) { options_ = options; }
  // Opens the file and looks at its first bytes.
  virtual bool Open(const std::string& name) = 0;
  virtual bool ReadDictionary(DICTIONARY* out) = 0;
  // The next records, valid until the next call; null at the end (Error() is empty) and on failure.
  // Records that could be read before a damaged place are given first.
  virtual const RECORD_BLOCK* NextBlock() = 0;
  // The sheets, members or tables of an open file, of which one is read; empty where a format holds
  // just one.
  virtual std::vector<std::string> Tables() const { return {}; }
  // Were the names of the variables found in the first row of a sheet?
  virtual bool NamesFound() const { return false; }
  // The encoding that was taken where the file tells none and the texts read so far depend on it,
  // for people to read; else empty.
  virtual std::string GuessedEncoding() const { return {}; }
  // What had to be left out or was changed, one sentence a fact; complete at the end of the
  // records.
  virtual std::vector<std::string> Notes() const { return {}; }
  // 0 to 1; negative when unknown.
  virtual double Progress() const { return -1; }
  // Day number of the dates' epoch, counted from 1970-01-01.
  virtual std::int64_t EpochDay() const { return 0; }
  // What the numbers of this file count that are displayed so (ST_DISPLAY_...).
  virtual DATE_KIND DateKindOf(std::int32_t /*display*/) const { return DATE_KIND::None; }

  const std::string& Error() const { return error_; }

 protected:
  const READ_OPTIONS& Options() const { return options_; }
  bool Fail(std::string error) {
    error_ = std::move(error);
    return false;
  }

 private:
  READ_OPTIONS options_;
  std::string error_;
};

}  // namespace statrn32
