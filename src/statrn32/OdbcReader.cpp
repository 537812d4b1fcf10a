#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileReader.h"
#include "statrn32/OdbcConnection.h"
#include "statrn32/OdbcFiles.h"
#include "statrn32/TableChoice.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

constexpr double kDayMillis = 86'400'000;
constexpr double kNanosOfMilli = 1e6;

bool Succeeded(SQLRETURN result) {
  return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

enum class COLUMN_KIND : std::uint8_t { None, Bit, Number, Text, Date, Moment, Time };

COLUMN_KIND KindOfType(SQLSMALLINT type) {
  switch (type) {
    case SQL_BIT:
      return COLUMN_KIND::Bit;
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      return COLUMN_KIND::Number;
    case SQL_TYPE_DATE:
      return COLUMN_KIND::Date;
    case SQL_TYPE_TIMESTAMP:
      return COLUMN_KIND::Moment;
    case SQL_TYPE_TIME:
      return COLUMN_KIND::Time;
    case SQL_CHAR:
    case SQL_VARCHAR:
    case SQL_LONGVARCHAR:
    case SQL_WCHAR:
    case SQL_WVARCHAR:
    case SQL_WLONGVARCHAR:
    case SQL_GUID:
      return COLUMN_KIND::Text;
    default:
      return COLUMN_KIND::None;
  }
}

class COdbcReader final : public CFileReader {
 public:
  explicit COdbcReader(std::int32_t code) : CFileReader(code) {}

  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Tables() const override { return tables_; }
  std::vector<std::string> Notes() const override;
  double Progress() const override { return -1; }

 private:
  struct COLUMN {
    SQLUSMALLINT number = 0;  // from 1
    COLUMN_KIND kind = COLUMN_KIND::None;
  };
  bool FailDriver() { return FailFile(connection_.Error()); }
  bool DescribeColumn(SQLUSMALLINT number, DICTIONARY* out);
  bool FillValue(const COLUMN& column, CBlockFiller* out);
  bool FillText(const COLUMN& column, CBlockFiller* out);
  bool Get(const COLUMN& column, SQLSMALLINT type, void* value, std::size_t bytes, bool* there);

  COdbcConnection connection_;
  std::vector<std::string> tables_;
  std::size_t chosen_ = 0;
  std::vector<COLUMN> columns_;
  std::string leftOut_;
  std::string utf16_;
  std::string text_;
};

bool COdbcReader::LookInside() {
  if (!connection_.Open(Name(), Options().password)) return FailDriver();
  if (!connection_.TableName().empty()) {
    tables_ = {connection_.TableName()};
    return true;
  }
  if (!connection_.ListTables(&tables_)) return FailDriver();
  return !tables_.empty() || FailFile("there is no table in the database");
}

// A table that is asked for need not stand in the file.
bool COdbcReader::ReadHeader(DICTIONARY* out) {
  const std::string& wanted = Options().table;
  chosen_ = ChooseTable(tables_, wanted);
  std::string sql = "SELECT * FROM ";
  AppendSqlPath(connection_.Dialect(), chosen_ < tables_.size() ? tables_[chosen_] : wanted, &sql);
  if (!connection_.Execute(sql)) return FailDriver();
  SQLSMALLINT columns = 0;
  if (!Succeeded(connection_.Library().numResultCols(connection_.Statement(), &columns))) {
    return connection_.FailStatement() || FailDriver();
  }
  for (SQLSMALLINT i = 1; i <= columns; ++i) {
    if (!DescribeColumn(static_cast<SQLUSMALLINT>(i), out)) return false;
  }
  return !columns_.empty() || FailFile("the table has no columns of values");
}

bool COdbcReader::DescribeColumn(SQLUSMALLINT number, DICTIONARY* out) {
  constexpr SQLSMALLINT kNameRoom = 256;
  constexpr int kNumberWidth = 12;
  constexpr SQLULEN kMostWidth = 32767;
  SQLWCHAR name[kNameRoom] = {};
  SQLSMALLINT length = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT decimals = 0;
  SQLSMALLINT nullable = 0;
  if (!Succeeded(connection_.Library().describeColW(connection_.Statement(), number, name,
                                                    kNameRoom, &length, &type, &size, &decimals,
                                                    &nullable))) {
    return connection_.FailStatement() || FailDriver();
  }
  VARIABLE variable;
  for (const SQLWCHAR* unit = name; *unit != 0; ++unit) AppendCodePoint(*unit, &variable.name);
  const COLUMN column{number, KindOfType(type)};
  if (column.kind == COLUMN_KIND::None) {
    leftOut_ += (leftOut_.empty() ? "" : ", ") + variable.name;
    return true;
  }
  const bool text = column.kind == COLUMN_KIND::Text;
  const bool isNumber = column.kind == COLUMN_KIND::Number || column.kind == COLUMN_KIND::Bit;
  variable.type = text ? ST_TYPE_STRING : isNumber ? ST_TYPE_NUMERIC : ST_TYPE_DATE;
  variable.width = text ? static_cast<int>(std::min(size, kMostWidth)) : kNumberWidth;
  const bool fraction = type == SQL_REAL || type == SQL_FLOAT || type == SQL_DOUBLE;
  variable.decimals = fraction ? 3 : isNumber ? std::clamp<int>(decimals, 0, 15) : 0;
  if (column.kind == COLUMN_KIND::Date) variable.date = DATE_KIND::SerialDate;
  if (column.kind == COLUMN_KIND::Moment) variable.date = DATE_KIND::SerialMoment;
  if (column.kind == COLUMN_KIND::Time) variable.date = DATE_KIND::SerialTime;
  columns_.push_back(column);
  out->variables.push_back(std::move(variable));
  return true;
}

void COdbcReader::FillBlock(CBlockFiller* out) {
  while (!out->Full()) {
    const SQLRETURN result = connection_.Library().fetch(connection_.Statement());
    if (result == SQL_NO_DATA) return;
    if (!Succeeded(result)) {
      connection_.FailStatement();
      FailDriver();
      return;
    }
    for (const COLUMN& column : columns_) {
      if (FillValue(column, out)) continue;
      out->DropRecord();
      connection_.FailStatement();
      FailDriver();
      return;
    }
    out->EndRecord();
  }
}

bool COdbcReader::Get(const COLUMN& column, SQLSMALLINT type, void* value, std::size_t bytes,
                      bool* there) {
  SQLLEN length = 0;
  const SQLRETURN result = connection_.Library().getData(
      connection_.Statement(), column.number, type, value, static_cast<SQLLEN>(bytes), &length);
  *there = Succeeded(result) && length != SQL_NULL_DATA;
  return Succeeded(result);
}

bool COdbcReader::FillValue(const COLUMN& column, CBlockFiller* out) {
  if (column.kind == COLUMN_KIND::Text) return FillText(column, out);
  bool there = false;
  double number = 0;
  if (column.kind == COLUMN_KIND::Number) {
    if (!Get(column, SQL_C_DOUBLE, &number, sizeof number, &there)) return false;
  } else if (column.kind == COLUMN_KIND::Bit) {  // not every driver makes a double of it
    unsigned char bit = 0;
    if (!Get(column, SQL_C_BIT, &bit, sizeof bit, &there)) return false;
    number = bit;
  } else if (column.kind == COLUMN_KIND::Time) {
    SQL_TIME_STRUCT time{};
    if (!Get(column, SQL_C_TYPE_TIME, &time, sizeof time, &there)) return false;
    number = (time.hour * 3600 + time.minute * 60 + time.second) * 1000 / kDayMillis;
  } else {
    SQL_TIMESTAMP_STRUCT moment{};
    if (!Get(column, SQL_C_TYPE_TIMESTAMP, &moment, sizeof moment, &there)) return false;
    const double millis = (moment.hour * 3600 + moment.minute * 60 + moment.second) * 1000.0 +
                          static_cast<double>(moment.fraction) / kNanosOfMilli;
    there = there && SerialOfDate(moment.year, moment.month, moment.day, &number);
    number += column.kind == COLUMN_KIND::Moment ? millis / kDayMillis : 0;
  }
  there&& std::isfinite(number) ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
  return true;
}

// Long texts come in parts, each closed by a zero.
bool COdbcReader::FillText(const COLUMN& column, CBlockFiller* out) {
  constexpr std::size_t kPart = 2048;
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  SQLWCHAR part[kPart];
  utf16_.clear();
  for (;;) {
    SQLLEN length = 0;
    const SQLRETURN result = connection_.Library().getData(connection_.Statement(), column.number,
                                                           SQL_C_WCHAR, part, sizeof part, &length);
    if (result == SQL_NO_DATA) break;
    if (!Succeeded(result)) return false;
    if (length == SQL_NULL_DATA) {
      out->Text({}, ST_STATUS_MISSING);
      return true;
    }
    std::size_t units = 0;
    while (units < kPart && part[units] != 0) ++units;
    utf16_.append(reinterpret_cast<const char*>(part), 2 * units);
    if (result == SQL_SUCCESS || units + 1 < kPart || utf16_.size() > kMostBytes) break;
  }
  text_.clear();
  AppendUtf16(utf16_, &text_);
  out->Text(text_);
  return true;
}

std::vector<std::string> COdbcReader::Notes() const {
  std::vector<std::string> notes;
  if (tables_.size() > 1 && Options().table.empty()) {
    notes.push_back(NoteOtherTables(tables_, chosen_));
  }
  if (!leftOut_.empty()) {
    notes.push_back("Columns of bytes and other kinds were left out: " + leftOut_ + ".");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CReader> ReadOdbcTable(std::int32_t code) {
  return std::make_unique<COdbcReader>(code);
}

}  // namespace statrn32
