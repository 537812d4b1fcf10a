// Reads a sheet as a table: columns become variables, rows become records.
#pragma once

#include <memory>

#include "statrn32/FileReader.h"
#include "statrn32/Sheet.h"

namespace statrn32 {

// The first row holds the names when each of its cells is text and there are further rows. Rows
// between filled ones are records even where they hold nothing, unless a stray cell far below made
// very many of them; columns without any cell are left out. A column is a date when all of its
// numbers are displayed so; it is numeric when its numbers are not fewer than its texts (which are
// then missing, and told); else it is text.
class CSheetReader final : public CReader {
 public:
  CSheetReader(std::int32_t code, std::unique_ptr<CWorkbook> workbook)
      : code_(code), workbook_(std::move(workbook)) {}

  bool Open(const std::string& name) override;
  bool ReadDictionary(DICTIONARY* out) override;
  const RECORD_BLOCK* NextBlock() override;
  std::vector<std::string> Tables() const override;
  bool NamesFound() const override { return namesFound_; }
  std::vector<std::string> Notes() const override;
  double Progress() const override;
  std::string GuessedEncoding() const override { return workbook_->GuessedEncoding(); }
  std::int64_t EpochDay() const override { return sheet_.epochDay; }
  DATE_KIND DateKindOf(std::int32_t display) const override;

 private:
  struct COLUMN {
    std::uint32_t place = 0;  // in the sheet
    std::size_t numbers = 0;
    std::size_t kinds[3] = {};  // dates, moments, times among the numbers
    std::size_t texts = 0;
    std::size_t textBytes = 0;
    std::size_t errors = 0;
    bool whole = true;
    std::int32_t type = 0;
    std::string name;
  };

  bool FailFile(const std::string& what) { return Fail(name_ + ": " + what); }
  bool LoadSheet();
  bool LoadFirstWithCells();
  void FindNames();
  void CountCells();
  void CountRows();
  void ReadNames();
  VARIABLE VariableOf(COLUMN* column);
  std::size_t ColumnAt(std::uint32_t place) const;
  void FillRow(CBlockFiller* out);
  void FillBlankRow(CBlockFiller* out);
  void FillCell(const COLUMN& column, const SHEET_CELL& cell, CBlockFiller* out);

  std::int32_t code_;
  std::unique_ptr<CWorkbook> workbook_;
  std::string name_;
  CSheet sheet_;
  std::size_t sheetIndex_ = 0;
  bool namesFound_ = false;
  std::size_t firstData_ = 0;  // cell behind the names
  std::vector<COLUMN> columns_;
  std::size_t next_ = 0;     // cell
  std::int64_t rows_ = 0;    // of data that hold anything
  std::int64_t blanks_ = 0;  // rows among them that hold nothing
  bool keepsBlanks_ = false;
  std::uint32_t row_ = 0;  // of the sheet, the next one
  std::string numberText_;
  RECORD_BLOCK block_;
};

}  // namespace statrn32
