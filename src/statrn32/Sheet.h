// The cells of one sheet of a spreadsheet, or of one table of a page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/Reader.h"

namespace statrn32 {

enum class SHEET_KIND : std::uint8_t { Number, Date, Moment, Time, Logical, Text, Error };

struct SHEET_CELL {
  std::uint32_t row;
  std::uint32_t column : 24;
  SHEET_KIND kind : 8;
  CELL value;  // of an error cell nothing; of a logical one 0 or 1
};

// Only cells with something in them are kept, 16 bytes each. Rows and columns count from 0. Of two
// cells in one place the later one holds.
class CSheet {
 public:
  // `date` is SerialDate, SerialMoment or SerialTime where the cell is displayed so.
  void Number(std::uint32_t row, std::uint32_t column, double number,
              DATE_KIND date = DATE_KIND::None);
  void Logical(std::uint32_t row, std::uint32_t column, bool value);
  // UTF-8; an empty text is no cell.
  void Text(std::uint32_t row, std::uint32_t column, std::string_view text);
  // A text that AddText was given before.
  void StoredText(std::uint32_t row, std::uint32_t column, std::uint64_t stored);
  std::uint64_t AddText(std::string_view text);
  void Error(std::uint32_t row, std::uint32_t column);

  // Puts the cells in the order of rows and columns and forgets those that were overwritten.
  void Arrange();

  const std::vector<SHEET_CELL>& Cells() const { return cells_; }
  std::string_view TextOf(const SHEET_CELL& cell) const { return texts_.data() + cell.value.text; }
  // Those that hold a cell.
  std::size_t CountRows() const;

  std::int64_t epochDay = kSerialEpochDay;

 private:
  void Put(std::uint32_t row, std::uint32_t column, SHEET_KIND kind, CELL value);

  std::vector<SHEET_CELL> cells_;
  std::string texts_ = std::string(1, '\0');
  bool arranged_ = true;  // so far they came in order
};

// A file with sheets. Used from one thread; a failure is told by Error(), without the file's name.
class CWorkbook {
 public:
  CWorkbook() = default;
  virtual ~CWorkbook() = default;
  CWorkbook(const CWorkbook&) = delete;
  CWorkbook& operator=(const CWorkbook&) = delete;

  // Opens the file and finds its sheets. Its first bytes have been recognised.
  virtual bool Open(const std::string& name, const READ_OPTIONS& options) = 0;
  virtual std::vector<std::string> Sheets() const = 0;
  // The sheet that is read when none is asked for.
  virtual std::size_t Preferred() const { return 0; }
  virtual bool Load(std::size_t sheet, CSheet* out) = 0;
  virtual std::string GuessedEncoding() const { return {}; }
  // 0 to 1.
  virtual double Progress() const { return -1; }

  const std::string& Error() const { return error_; }

 protected:
  bool Fail(std::string error) {
    if (error_.empty()) error_ = std::move(error);
    return false;
  }

 private:
  std::string error_;
};

}  // namespace statrn32
