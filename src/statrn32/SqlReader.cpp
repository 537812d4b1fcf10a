#include <algorithm>
#include <charconv>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileReader.h"
#include "statrn32/SqlFiles.h"
#include "statrn32/SqlLexer.h"
#include "statrn32/TableChoice.h"

namespace statrn32 {
namespace {

std::string UpperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// What a column of this type holds, by the words that its name contains.
void TellType(const std::string& word, VARIABLE* variable) {
  const std::string upper = UpperCase(word);
  const auto has = [&](const char* part) { return upper.find(part) != std::string::npos; };
  if (has("CHAR") || has("TEXT") || has("CLOB") || has("STRING")) {
    variable->type = ST_TYPE_STRING;
  } else if (has("DATE") || has("TIMESTAMP")) {
    variable->type = ST_TYPE_DATE;
    const bool time = has("TIME");
    variable->date = time ? DATE_KIND::SerialMoment : DATE_KIND::SerialDate;
  } else if (upper == "TIME") {
    variable->type = ST_TYPE_DATE;
    variable->date = DATE_KIND::SerialTime;
  }
}

// ISO 8601, or yyyymmdd with perhaps a time behind it.
bool ParseSqlDate(std::string_view text, double* serial) {
  std::string iso(Trimmed(text));
  const bool compact =
      iso.size() >= 8 && iso.find_first_not_of("0123456789") >= 8 && iso.find('-') > 8;
  if (compact) iso = iso.substr(0, 4) + "-" + iso.substr(4, 2) + "-" + iso.substr(6);
  const ISO_MOMENT moment = ParseIsoMoment(iso);
  *serial = moment.serial;
  return moment.kind != DATE_KIND::None;
}

class CSqlReader final : public CFileReader {
 public:
  explicit CSqlReader(std::int32_t code) : CFileReader(code), lexer_(&Input()) {}

  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Tables() const override;
  std::vector<std::string> Notes() const override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 private:
  struct TABLE {
    std::string name;
    std::vector<VARIABLE> columns;
  };
  // One value of a row.
  struct SQL_VALUE {
    bool null = true;
    bool isText = false;
    std::string text;  // also of a number, as it was written
    double number = 0;
  };

  bool FailLine(const std::string& what) {
    return FailFile("line " + std::to_string(lexer_.Line()) + ": " + what);
  }
  std::string NameAtHand() { return TextForDisplay(decoder_.Decode(lexer_.Text())); }
  bool ReadName(std::string* out);
  bool ReadNameAtHand(std::string* out);
  bool ReadTarget(std::string* out);
  bool ReadTable();
  bool ReadColumn(TABLE* table, bool* more);
  bool FindRows(bool* found);
  bool ReadOrder();
  bool ReadRow();
  bool ReadValue(SQL_VALUE* value);
  bool ReadSpecialValue(SQL_VALUE* value);
  bool ReadCast(SQL_VALUE* value);
  void PutRow(CBlockFiller* out);
  void PutValue(const VARIABLE& variable, const SQL_VALUE& value, CBlockFiller* out);

  CSqlLexer lexer_;
  CTextDecoder decoder_;
  std::string decoded_;
  std::vector<TABLE> tables_;
  std::size_t table_ = 0;
  std::unordered_map<std::string, std::size_t> columns_;  // of the table, in upper case
  bool inRows_ = false;
  bool atHand_ = false;  // is the token behind a statement's last row still to be looked at?
  std::vector<std::size_t> order_;  // the table's column of each value of a row
  std::vector<SQL_VALUE> values_;   // by the table's columns
  std::int64_t unreadable_ = 0;
};

// A name whose parts stand between dots: the last one counts.
bool CSqlReader::ReadName(std::string* out) {
  lexer_.Next();
  return ReadNameAtHand(out);
}

bool CSqlReader::ReadNameAtHand(std::string* out) {
  for (;;) {
    const SQL_TOKEN kind = lexer_.Kind();
    if (kind != SQL_TOKEN::Name && kind != SQL_TOKEN::Word) return FailLine("a name is expected");
    *out = NameAtHand();
    lexer_.Next();
    if (!lexer_.Is(".")) return true;
    lexer_.Next();
  }
}

// The table of an INSERT statement: INTO may be left out, words between say what to do with
// doubles.
bool CSqlReader::ReadTarget(std::string* out) {
  constexpr std::string_view kBetween[] = {"OR",    "IGNORE",       "REPLACE", "ROLLBACK",
                                           "ABORT", "LOW_PRIORITY", "FAIL",    "DELAYED"};
  lexer_.Next();
  const auto between = [this](std::string_view word) { return lexer_.Is(word); };
  while (std::any_of(std::begin(kBetween), std::end(kBetween), between)) lexer_.Next();
  if (lexer_.Is("INTO")) lexer_.Next();
  return ReadNameAtHand(out);
}

bool CSqlReader::LookInside() {
  decoder_.SetEncoding(Options().encoding.c_str());
  bool begins = true;  // a statement
  for (SQL_TOKEN kind = lexer_.Next(); kind != SQL_TOKEN::End; kind = lexer_.Next()) {
    if (kind == SQL_TOKEN::Damaged) return FailLine("a quote or comment does not end");
    if (begins && lexer_.Is("COPY")) {
      return FailLine("rows behind COPY are not read; please have the script written with INSERT");
    }
    begins = lexer_.Is(";");
    if (!lexer_.Is("CREATE")) continue;
    lexer_.Next();
    if (lexer_.Is("TABLE") && !ReadTable()) return false;
  }
  if (!tables_.empty()) return true;
  return FailFile(
      "there is no CREATE TABLE statement in it: neither an SQL script nor a connection file");
}

bool CSqlReader::ReadTable() {
  TABLE table;
  if (!ReadName(&table.name)) return false;
  if (EqualIgnoringCase(table.name, "IF")) {  // IF NOT EXISTS
    lexer_.Next();
    if (!ReadName(&table.name)) return false;
  }
  if (!lexer_.Is("(")) return true;  // made from a query
  for (bool more = true; more;) {
    if (!ReadColumn(&table, &more)) return false;
  }
  if (!table.columns.empty()) tables_.push_back(std::move(table));
  return true;
}

// A column's name and the words of its type, up to a comma or the closing parenthesis.
bool CSqlReader::ReadColumn(TABLE* table, bool* more) {
  constexpr std::size_t kMostColumns = 32767;
  VARIABLE variable;
  const SQL_TOKEN kind = lexer_.Next();
  bool constraint = false;
  for (const char* const word : {"PRIMARY", "CONSTRAINT", "UNIQUE", "FOREIGN", "CHECK", "KEY"}) {
    constraint = constraint || lexer_.Is(word);
  }
  if (kind != SQL_TOKEN::Name && kind != SQL_TOKEN::Word) return FailLine("a column is expected");
  variable.name = NameAtHand();
  variable.type = ST_TYPE_NUMERIC;
  variable.width = 12;
  variable.decimals = 3;
  int depth = 0;
  for (bool first = true;; first = false) {
    const SQL_TOKEN token = lexer_.Next();
    if (token == SQL_TOKEN::End || token == SQL_TOKEN::Damaged) {
      return FailLine("the description of a table is cut off");
    }
    if (first) TellType(lexer_.Text(), &variable);
    if (token == SQL_TOKEN::Number && depth == 1 && variable.type == ST_TYPE_STRING) {
      std::from_chars(lexer_.Text().data(), lexer_.Text().data() + lexer_.Text().size(),
                      variable.width);
    }
    if (lexer_.Is("(")) ++depth;
    const bool closes = lexer_.Is(")");
    if ((closes || lexer_.Is(",")) && depth == 0) {
      *more = !closes;
      break;
    }
    if (closes) --depth;
  }
  if (!constraint) table->columns.push_back(std::move(variable));
  return table->columns.size() <= kMostColumns || FailLine("there are too many columns");
}

std::vector<std::string> CSqlReader::Tables() const {
  std::vector<std::string> names;
  for (const TABLE& table : tables_) names.push_back(table.name);
  return names;
}

bool CSqlReader::ReadHeader(DICTIONARY* out) {
  table_ = ChooseTable(Tables(), Options().table);
  if (table_ == tables_.size()) {
    return FailFile("there is no table \"" + Options().table + "\" in it");
  }
  out->variables = tables_[table_].columns;
  for (std::size_t i = 0; i < out->variables.size(); ++i) {
    columns_.emplace(UpperCase(out->variables[i].name), i);
  }
  values_.resize(out->variables.size());
  lexer_.Rewind();
  return true;
}

// The columns that the values of a row stand for: named in parentheses, or all in their order.
bool CSqlReader::ReadOrder() {
  order_.clear();
  if (!lexer_.Is("(")) {
    order_.resize(values_.size());
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    return true;
  }
  while (!lexer_.Is(")")) {
    lexer_.Next();
    const auto column = columns_.find(UpperCase(NameAtHand()));
    if (column == columns_.end()) {
      return FailLine("the table has no column \"" + lexer_.Text() + "\"");
    }
    order_.push_back(column->second);
    lexer_.Next();
    if (!lexer_.Is(",") && !lexer_.Is(")")) return FailLine("a comma is expected");
  }
  lexer_.Next();
  return true;
}

// The next INSERT statement of the table, up to the first row's parenthesis.
bool CSqlReader::FindRows(bool* found) {
  const TABLE& table = tables_[table_];
  *found = false;
  bool begins = true;  // a statement
  for (SQL_TOKEN kind = atHand_ ? lexer_.Kind() : lexer_.Next(); kind != SQL_TOKEN::End;
       kind = lexer_.Next()) {
    if (kind == SQL_TOKEN::Damaged) return FailLine("a quote or comment does not end");
    const bool replaces = lexer_.Is("REPLACE") && begins;
    begins = lexer_.Is(";");
    if (!lexer_.Is("INSERT") && !replaces) continue;
    std::string name;
    if (!ReadTarget(&name)) return false;
    if (!EqualIgnoringCase(name, table.name)) continue;
    if (!ReadOrder()) return false;
    if (!lexer_.Is("VALUES")) return FailLine("VALUES is expected");
    lexer_.Next();
    *found = true;
    return true;
  }
  return true;
}

// From the opening parenthesis to what stands behind the closing one.
bool CSqlReader::ReadRow() {
  if (!lexer_.Is("(")) return FailLine("a row in parentheses is expected");
  for (SQL_VALUE& value : values_) value.null = true;
  for (std::size_t i = 0; i < order_.size(); ++i) {
    lexer_.Next();
    if (!ReadValue(&values_[order_[i]])) return false;
    const bool last = i + 1 == order_.size();
    if (!lexer_.Is(last ? ")" : ",")) {
      return FailLine("a row has more or fewer than " + std::to_string(order_.size()) + " values");
    }
  }
  lexer_.Next();
  return true;
}

bool CSqlReader::ReadValue(SQL_VALUE* value) {
  value->null = false;
  value->isText = lexer_.Kind() == SQL_TOKEN::Text;
  value->text = lexer_.Text();
  if (lexer_.Kind() == SQL_TOKEN::Number) {
    const std::string& text = value->text;
    const auto [stop, failed] =
        std::from_chars(text.data(), text.data() + text.size(), value->number);
    if (failed != std::errc() || stop != text.data() + text.size()) {
      return FailLine("\"" + text + "\" is no number");
    }
  } else if (!value->isText) {
    return ReadSpecialValue(value);
  }
  lexer_.Next();
  return true;
}

// NULL, TRUE, FALSE, DATE '...', DATETIME (...) YEAR TO DAY.
bool CSqlReader::ReadSpecialValue(SQL_VALUE* value) {
  const bool date = lexer_.Is("DATE") || lexer_.Is("TIMESTAMP") || lexer_.Is("TIME");
  if (lexer_.Is("NULL")) {
    value->null = true;
  } else if (lexer_.Is("TRUE") || lexer_.Is("FALSE")) {
    value->number = lexer_.Is("TRUE") ? 1 : 0;
    value->text = lexer_.Is("TRUE") ? "1" : "0";
  } else if (date && lexer_.Next() == SQL_TOKEN::Text) {
    value->isText = true;
    value->text = lexer_.Text();
  } else if (lexer_.Is("CAST")) {
    return ReadCast(value);
  } else if (lexer_.Is("DATETIME")) {
    lexer_.Next();
    value->isText = true;
    if (!lexer_.Is("(") || !lexer_.RawUntilParenthesis(&value->text)) {
      return FailLine("a date in parentheses is expected");
    }
    while (lexer_.Next() == SQL_TOKEN::Word) continue;  // YEAR TO DAY
    return true;
  } else {
    return FailLine("\"" + lexer_.Text() + "\" is no value that is understood here");
  }
  lexer_.Next();
  return true;
}

// CAST(value AS type), whose column tells the type again.
bool CSqlReader::ReadCast(SQL_VALUE* value) {
  lexer_.Next();
  if (!lexer_.Is("(")) return FailLine("a parenthesis is expected behind CAST");
  lexer_.Next();
  if (lexer_.Is("CAST") || !ReadValue(value)) return FailLine("a value is expected behind CAST");
  if (!lexer_.Is("AS")) return FailLine("AS is expected within CAST");
  for (int depth = 1; depth > 0;) {
    const SQL_TOKEN kind = lexer_.Next();
    if (kind == SQL_TOKEN::End || kind == SQL_TOKEN::Damaged) return FailLine("CAST does not end");
    depth += lexer_.Is("(") ? 1 : lexer_.Is(")") ? -1 : 0;
  }
  lexer_.Next();
  return true;
}

void CSqlReader::FillBlock(CBlockFiller* out) {
  while (!out->Full()) {
    if (!inRows_ && !FindRows(&inRows_)) return;
    if (!inRows_) return;
    if (!ReadRow()) return;
    PutRow(out);
    inRows_ = lexer_.Is(",");
    atHand_ = !inRows_;
    if (inRows_) lexer_.Next();
  }
}

void CSqlReader::PutRow(CBlockFiller* out) {
  const std::vector<VARIABLE>& columns = tables_[table_].columns;
  for (std::size_t i = 0; i < columns.size(); ++i) PutValue(columns[i], values_[i], out);
  out->EndRecord();
}

void CSqlReader::PutValue(const VARIABLE& variable, const SQL_VALUE& value, CBlockFiller* out) {
  double number = value.number;
  if (variable.type == ST_TYPE_STRING) {
    if (value.null) return out->Text({}, ST_STATUS_MISSING);
    decoded_.clear();
    decoder_.AppendWhole(value.text, &decoded_);
    return out->Text(decoded_);
  }
  bool there = !value.null && std::isfinite(number);
  if (there && value.isText) {
    const std::string_view text = value.text;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    there = variable.type == ST_TYPE_DATE
                ? ParseSqlDate(text, &number)
                : parsed.ec == std::errc() && parsed.ptr == text.data() + text.size();
    if (!there) ++unreadable_;
  }
  there ? out->Number(number) : out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CSqlReader::Notes() const {
  std::vector<std::string> notes;
  if (tables_.size() > 1 && Options().table.empty()) {
    notes.push_back(NoteOtherTables(Tables(), table_));
  }
  if (unreadable_ > 0) {
    notes.push_back("Texts that are no value of their column became missing values: " +
                    std::to_string(unreadable_) + ".");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CReader> ReadSqlScript(std::int32_t code) {
  return std::make_unique<CSqlReader>(code);
}

}  // namespace statrn32
