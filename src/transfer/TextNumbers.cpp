// The records of a text file straight into cells.
#include <algorithm>

#include "host/NumberScan.h"
#include "host/Text.h"
#include "transfer/TextCharacters.h"
#include "transfer/TextImport.h"

namespace STUtils {

template <typename CharT>
std::size_t basic_text_import_t<CharT>::ReadNumbers(double missing, std::span<double> cells) {
  if (columns_.empty() || cells.size() < kSpareCells) return 0;
  const std::size_t room = (cells.size() - kSpareCells) / std::max<std::size_t>(selected_, 1);
  std::size_t records = 0;
  while (records < room && ReadRow(missing, &cells[records * selected_])) ++records;
  PutMissing(missing, cells.first(records * selected_));
  return records;
}

template <typename CharT>
void basic_text_import_t<CharT>::PutMissing(double missing, std::span<double> cells) const {
  if (!missing_.HasNumbers()) return;
  for (double& cell : cells) {
    if (missing_.HasNumber(cell)) cell = missing;
  }
}

template <typename CharT>
bool basic_text_import_t<CharT>::ReadRow(double missing, double* cells) {
  if (layout_ != Layout::Delimited) {
    rowValues_.resize(columns_.size());
    if (!ReadRecord(rowValues_)) return false;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (columns_[i] == Column::Skipped) continue;
      *cells++ = columns_[i] == Column::Number ? CellOf(rowValues_[i], missing) : missing;
    }
    return true;
  }
  rowValues_.resize(1);
  return ReadWhole([&] { return ReadCells(missing, cells); });
}

// A delimited record. Fields that are a plain number are read on the spot; runs of single digits,
// the answers of a questionnaire, several at a time.
template <typename CharT>
auto basic_text_import_t<CharT>::ReadCells(double missing, double* cells) -> Outcome {
  const CharT* at = at_;
  const CharT separator = separator_;
  const char mark = mark_;
  const std::size_t count = columns_.size();
  double* const end = cells + selected_;
  if (IsWhite(*at) && count > 1) {
    if (!SkipBlankLines()) return Outcome::End;
    at = at_;
  }
  for (std::size_t i = 0; i < count;) {
    const CharT* next = nullptr;
    if (const std::size_t numbers = numbersFrom_[i]; numbers > 0) {
      if (at[1] == separator) {
        const std::size_t fields = std::min(ScanOneDigitFields(at, separator, cells), numbers);
        at += 2 * fields;
        cells += fields;
        i += fields;
        if (fields > 0) continue;
      }
      next = ScanNumber(at, mark, *cells);
      if (next != nullptr && *next == separator) {
        at = next + 1;
        ++cells;
        ++i;
        continue;
      }
    }
    if (next == nullptr || !IsLineEnd(*next)) next = ReadOtherCell(at, i, missing, cells);
    if (next == nullptr) return Outcome::NeedsMore;
    if (columns_[i] != Column::Skipped) ++cells;
    if (IsLineEnd(*next)) {
      std::fill(cells, end, missing);
      at_ = SkipLineEnd(next);
      return Outcome::Read;
    }
    at = next + 1;
    ++i;
  }
  return SkipFurtherFields(at);
}

// Any field: with blanks or quotes around it, a text, or one of a column that is skipped. The cell
// is left alone where the column has none.
template <typename CharT>
const CharT* basic_text_import_t<CharT>::ReadOtherCell(const CharT* at, std::size_t column,
                                                       double missing, double* cell) {
  const bool isNumber = columns_[column] == Column::Number;
  if (isNumber) {
    const CharT* const begin = SkipBlanks(at);
    const CharT* end = SkipBlanks(begin + missing_.ShortTextAt(begin));
    if (IsFieldEnd(*end)) {
      *cell = missing;
      return end;
    }
    end = ScanNumber(begin, mark_, *cell);
    if (end != nullptr) end = SkipBlanks(end);
    if (end != nullptr && IsFieldEnd(*end)) return end;
  }
  const CharT* const end = ReadOther(at, column, rowValues_.front());
  if (columns_[column] == Column::Skipped) return end;
  *cell = isNumber ? CellOf(rowValues_.front(), missing) : missing;
  return end;
}

template <typename CharT>
double basic_text_import_t<CharT>::CellOf(const basic_variable_data_t<CharT>& value,
                                          double missing) const {
  const bool means = value.value == 0 && !value.text.empty() && missing_.HasText(value.text);
  return value.missing || means ? missing : value.value;
}

template std::size_t basic_text_import_t<char>::ReadNumbers(double, std::span<double>);
template void basic_text_import_t<char>::PutMissing(double, std::span<double>) const;
template bool basic_text_import_t<char>::ReadRow(double, double*);
template auto basic_text_import_t<char>::ReadCells(double, double*) -> Outcome;
template const char* basic_text_import_t<char>::ReadOtherCell(const char*, std::size_t, double,
                                                              double*);
template double basic_text_import_t<char>::CellOf(const basic_variable_data_t<char>&, double) const;

}  // namespace STUtils
