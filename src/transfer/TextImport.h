// A text file that is being read: its lines as fields, its records as values.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "transfer/MissingStrings.h"
#include "transfer/TextSource.h"
#include "transfer/TextTransfer.h"
#include "transfer/TransferTypes.h"

namespace STUtils {

// How a text file is to be read, as far as its type leaves that open.
struct TextSettings {
  std::optional<TextEncoding> encoding = std::nullopt;  // else as detected
  char decimalMark = '.';                               // or ','
  char delimiter = 0;                           // instead of the type's own; needed for type 1004
  std::optional<bool> hasNames = std::nullopt;  // else as the first line suggests
};

// Fields of one variable that hold something else than a number or a missing-value string.
struct UnreadableFields {
  std::int64_t count = 0;
  std::int64_t firstLine = 0;  // where the first such record begins, counted from 1
};

// Reads delimited text (1003, 1005, 1004 and 1001: a record a line) and free format (1002: a record
// is the next fields, whatever the lines).
//
// Fields: blanks around a field do not count. A field in double quotes may hold delimiters and line
// ends; "" and \" in it stand for a quote, \\ for a backslash. Lines end in LF, CR LF or CR, the
// last one at the end of the file. Lines of blanks are skipped, but in delimited files with one
// variable they are records behind the first line. Short records are filled up with missing
// values, longer ones are an error unless what is too much is blank.
//
// Use: Open, set what is known, ReadFirstLine; then SetVariables, StartRecords and ReadRecord until
// it is false. Memory holds one block or one record, whichever is longer.
template <typename CharT>
class basic_text_import_t : public basic_text_transfer_t<CharT> {
 public:
  using string = std::basic_string<CharT>;
  using variables_t = std::vector<basic_variable_info_t<CharT>>;
  using values_t = std::vector<basic_variable_data_t<CharT>>;

  // Records and fields that are more than this are refused.
  static constexpr std::size_t kMostRecordBytes = std::size_t{16} << 20;
  static constexpr std::size_t kMostVariables = std::size_t{1} << 18;

  // Opens the file; after a failure everything else fails, for the reason in Error().
  bool Open(const string& name, std::int32_t fileType);
  // Takes effect with the next ReadFirstLine or StartRecords. False with the reason in Error()
  // where the settings do not go together with the type.
  bool Configure(const TextSettings& settings);
  void SetMissingStrings(CMissingStrings missing);

  bool IsFailed() const { return !error_.empty(); }
  // The file, the line where there is one, and what is wrong; empty when nothing is.
  const string& Error() const { return error_; }
  const CTextSource& Source() const { return source_; }
  // After a failed Configure or scan: the file is open and can be read in another way.
  void ClearError() { error_.clear(); }
  string ChangedText() const { return name_ + ": the file changed while it was read"; }
  const TextSettings& Settings() const { return settings_; }
  // What is between the fields; a blank where that is any white space.
  CharT FieldSeparator() const { return separator_; }

  // The fields of the first line with content. False without one.
  bool ReadFirstLine(std::vector<string>& fields);

  // Does the first line hold names? As ReadFirstLine's caller found; StartRecords skips it then.
  void SetHasNames(bool hasNames) { hasNames_ = hasNames; }
  bool HasNames() const { return hasNames_; }

  // What is to become of each column: those that are not selected are not converted.
  void SetVariables(const variables_t& variables);
  // As `count` columns of texts, for looking at them.
  void SetTextColumns(std::size_t count);

  // Goes to the first record and forgets what was counted.
  bool StartRecords();
  // Reads the next record into one value per variable. A number has its value and no text; any
  // other field its text, and of a numeric variable the number that it begins with (0 and missing
  // when there is none, and for a missing-value string). Kinds are left alone. False at the end and
  // after an error.
  bool ReadRecord(values_t& values);

  std::size_t SelectedColumns() const { return selected_; }
  // Cells that ReadNumbers needs for its own use behind those of the records.
  static constexpr std::size_t kSpareCells = kOneDigitFields;
  // Reads the next records straight into cells: of each record those of the selected variables, and
  // `missing` where a value is missing, is a missing-value string or number, or has a variable of
  // texts. As many as there is room for without the spare cells; fewer at the end and where an
  // error follows. Returns how many there are.
  std::size_t ReadNumbers(double missing, std::span<double> cells);

  // The part of the file that has been read, 0 to 1.
  double Fraction() const { return source_.Fraction(); }
  // By column, for the records since StartRecords.
  const std::vector<UnreadableFields>& Unreadable() const { return unreadable_; }
  // Fields at the end of a free-format file that make no whole record.
  std::size_t FieldsLeft() const { return fieldsLeft_; }

  // Is this text a number from its first character to its last, with the decimal mark of the file?
  bool IsNumber(std::string_view trimmed) const;
  // Is it one of the missing-value strings, or equal to one as a number?
  bool IsMissingText(std::string_view trimmed) const;
  const CMissingStrings& Missing() const { return missing_; }

 private:
  enum class Layout { Delimited, CommaOrBlanks, Free };
  enum class Column : std::uint8_t { Skipped, Number, Text };
  enum class Outcome { Read, NeedsMore, End };

  void Rewind();
  bool NeedMore();
  void FindLimit();
  bool Fail(std::int64_t line, const string& what);
  bool SkipBlankLines();
  const CharT* SkipLineEnd(const CharT* at);
  const CharT* SkipBlanks(const CharT* at) const;
  const CharT* SkipWhite(const CharT* at);

  bool IsFieldEnd(CharT c) const;
  const CharT* ReadField(const CharT* at, std::string_view& text);
  const CharT* ReadPlainField(const CharT* at, std::string_view& text);
  const CharT* ReadQuotedField(const CharT* at, std::string_view& text);
  const CharT* EndOfField(const CharT* at) const;

  void FindNumbers();
  void StartRecord();
  bool ReadOn();
  // Reads a record by `read`, which gives an Outcome, once more where the text ended within it.
  template <typename Read>
  bool ReadWhole(const Read& read) {
    while (!IsFailed()) {
      StartRecord();
      const Outcome outcome = at_ == limit_ ? Outcome::NeedsMore : read();
      if (outcome == Outcome::Read) {
        if (!unreadableNow_.empty()) Count();
        return true;
      }
      if (outcome == Outcome::End || !ReadOn()) return false;
    }
    return false;
  }
  Outcome ReadLine(values_t& values);
  Outcome ReadFree(values_t& values);
  Outcome SkipFurtherFields(const CharT* at);
  bool ReadRow(double missing, double* cells);
  Outcome ReadCells(double missing, double* cells);
  const CharT* ReadOtherCell(const CharT* at, std::size_t column, double missing, double* cell);
  double CellOf(const basic_variable_data_t<CharT>& value, double missing) const;
  void PutMissing(double missing, std::span<double> cells) const;
  const CharT* ReadOther(const CharT* at, std::size_t column, basic_variable_data_t<CharT>& value);
  void Convert(std::size_t column, std::string_view text, basic_variable_data_t<CharT>& value);
  std::optional<double> Number(std::string_view text, bool& whole) const;
  void Count();

  string name_;
  string error_;
  CTextSource source_;
  TextSettings settings_;
  Layout layout_ = Layout::Delimited;
  char mark_ = '.';
  CharT separator_ = ',';
  bool hasNames_ = false;
  CMissingStrings missing_;

  const CharT* at_ = nullptr;     // where the next record begins
  const CharT* limit_ = nullptr;  // behind the last line end of the text at hand
  std::int64_t line_ = 1;         // of what was read last
  std::int64_t recordLine_ = 1;   // that at_ stands in
  std::int64_t quoteLine_ = 0;    // of the last quote that did not close before limit_
  string unquoted_;
  mutable string numberText_;

  std::vector<Column> columns_;
  std::vector<std::size_t> numbersFrom_;  // columns of numbers from each column to the next other
  std::size_t selected_ = 0;              // columns that are not skipped
  values_t rowValues_;                    // where a record cannot be read straight into cells
  std::vector<UnreadableFields> unreadable_;
  std::vector<std::size_t> unreadableNow_;  // columns of the record that is being read
  std::size_t fieldsLeft_ = 0;
};

extern template class basic_text_import_t<char>;

}  // namespace STUtils
