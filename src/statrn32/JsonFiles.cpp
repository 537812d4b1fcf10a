#include "statrn32/JsonFiles.h"

#include <cmath>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileReader.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/LineReader.h"

namespace statrn32 {
namespace {

using nlohmann::json;

// What the values of one name are.
struct JSON_COLUMN {
  std::string name;
  std::int64_t numbers = 0;
  std::int64_t texts = 0;
  std::int64_t dates = 0;
  DATE_KIND kind = DATE_KIND::None;
  std::size_t bytes = 1;
  std::int32_t type = 0;
};

// Counts the kinds of values by name, in the order in which the names come, without keeping the
// values: the parser calls the members in small letters. Each of them returns false to end it.
class CJsonCounter {
 public:
  static constexpr std::size_t kMostColumns = 32767;

  // Before each record.
  void Begin() { depth_ = 0; }
  bool HasTooMany() const { return columns_.size() > kMostColumns; }
  std::vector<JSON_COLUMN>& Columns() { return columns_; }

  bool null() { return depth_ > 0; }
  bool boolean(bool) { return Number(); }
  bool number_integer(json::number_integer_t) { return Number(); }
  bool number_unsigned(json::number_unsigned_t) { return Number(); }
  bool number_float(json::number_float_t, const std::string&) { return Number(); }
  bool binary(json::binary_t&) { return depth_ > 0; }
  bool string(std::string& text) {
    if (depth_ == 1) CountText(text);
    return depth_ > 0;
  }
  bool key(std::string& name) { return depth_ != 1 || Choose(name); }
  bool start_object(std::size_t) { return ++depth_ > 0; }
  bool end_object() { return depth_-- > 0; }
  bool start_array(std::size_t) { return depth_++ > 0; }
  bool end_array() { return depth_-- > 0; }
  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) {
    return false;
  }

 private:
  bool Number() {
    if (depth_ == 1) ++columns_[column_].numbers;
    return depth_ > 0;
  }
  void CountText(const std::string& text);
  bool Choose(const std::string& name);

  std::vector<JSON_COLUMN> columns_;
  std::unordered_map<std::string, std::size_t> places_;
  std::size_t column_ = 0;
  int depth_ = 0;
};

bool CJsonCounter::Choose(const std::string& name) {
  const auto [entry, added] = places_.emplace(name, columns_.size());
  if (added) columns_.emplace_back().name = name;
  column_ = entry->second;
  return !HasTooMany();
}

void CJsonCounter::CountText(const std::string& text) {
  JSON_COLUMN& column = columns_[column_];
  const DATE_KIND kind = ParseIsoMoment(text).kind;
  ++column.texts;
  if (kind != DATE_KIND::None) ++column.dates;
  if (column.kind != DATE_KIND::SerialMoment) column.kind = kind;
  column.bytes = std::max(column.bytes, text.size());
}

class CJsonReader final : public CFileReader {
 public:
  CJsonReader() : CFileReader(903), lines_(&Input()) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Notes() const override;

 private:
  // The next line that is not blank; false at the end and after FailFile.
  bool NextLine();
  bool FailLine();
  void FillValue(const JSON_COLUMN& column, const json& object, CBlockFiller* out);

  CLineReader lines_;
  std::string line_;
  std::vector<JSON_COLUMN> columns_;
  std::int64_t left_ = 0;  // lists and objects left out
};

bool CJsonReader::NextLine() {
  do {
    if (lines_.Next(&line_)) continue;
    if (lines_.TooLong()) {
      FailFile("line " + std::to_string(lines_.Number() + 1) + " has more than 16 MiB");
    }
    return false;
  } while (Trimmed(line_).empty());
  return true;
}

bool CJsonReader::FailLine() {
  return FailFile("line " + std::to_string(lines_.Number()) + " is not a JSON object");
}

bool CJsonReader::ReadHeader(DICTIONARY* out) {
  constexpr int kNumberWidth = 12;
  CJsonCounter counter;
  out->cases = 0;
  while (NextLine()) {
    counter.Begin();
    const bool counted = json::sax_parse(line_, &counter);
    if (counter.HasTooMany()) return FailFile("the records have more than 32767 names");
    if (!counted) return FailLine();
    ++out->cases;
  }
  columns_ = std::move(counter.Columns());
  if (!Error().empty()) return false;
  if (columns_.empty()) return FailFile("there is no record with a value");
  for (JSON_COLUMN& column : columns_) {
    const bool date = column.texts > 0 && column.dates == column.texts && column.numbers == 0;
    const bool text = !date && column.texts > column.numbers;
    VARIABLE variable;
    variable.name = TextForDisplay(column.name);
    variable.type = column.type = date ? ST_TYPE_DATE : text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
    variable.date = date ? column.kind : DATE_KIND::None;
    variable.width = text ? static_cast<int>(column.bytes) : kNumberWidth;
    variable.decimals = text || date ? 0 : 3;
    out->variables.push_back(std::move(variable));
  }
  lines_.Rewind();
  return true;
}

void CJsonReader::FillBlock(CBlockFiller* out) {
  json object;
  while (!out->Full() && NextLine()) {
    object = json::parse(line_, nullptr, false);
    if (!object.is_object()) {
      FailLine();
      return;
    }
    for (const JSON_COLUMN& column : columns_) FillValue(column, object, out);
    out->EndRecord();
  }
}

void CJsonReader::FillValue(const JSON_COLUMN& column, const json& object, CBlockFiller* out) {
  const auto entry = object.find(column.name);
  const bool there = entry != object.end() && !entry->is_null();
  if (there && entry->is_structured()) ++left_;
  if (column.type == ST_TYPE_STRING) {
    if (!there || entry->is_structured()) return out->Text({}, ST_STATUS_MISSING);
    return out->Text(entry->is_string() ? entry->get_ref<const std::string&>() : entry->dump());
  }
  double number = 0;
  if (there && entry->is_number()) {
    number = entry->get<double>();
    if (std::isfinite(number)) return out->Number(number);
  } else if (there && entry->is_boolean()) {
    return out->Number(entry->get<bool>() ? 1 : 0);
  } else if (there && entry->is_string() && column.type == ST_TYPE_DATE) {
    return out->Number(ParseIsoMoment(entry->get_ref<const std::string&>()).serial);
  } else if (there && entry->is_string()) {
    ++left_;
  }
  out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CJsonReader::Notes() const {
  std::vector<std::string> notes;
  if (left_ > 0) {
    notes.push_back("Lists, objects and texts among numbers became missing values: " +
                    std::to_string(left_) + ".");
  }
  return notes;
}

// A text with its quotes. What is no UTF-8 has become so before.
std::string JsonText(const std::string& text) {
  return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

class CJsonWriter final : public CFileWriter {
 public:
  CJsonWriter() : CFileWriter(903) {}

 protected:
  bool PutHeader() override {
    for (const VARIABLE& variable : Variables()) {
      names_.push_back((names_.empty() ? "{" : ",") + JsonText(variable.name) + ":");
    }
    return true;
  }

  bool PutRecord(const std::vector<OUT_CELL>& cells) override {
    line_.clear();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool text = Variables()[i].type == ST_TYPE_STRING;
      line_ += names_[i];
      if (cells[i].missing || (!text && std::isnan(cells[i].number))) {
        line_ += "null";
      } else {
        line_ += text ? JsonText(cells[i].text) : FormatShortest(cells[i].number);
      }
    }
    return Put(line_ += "}\n");
  }

 private:
  std::vector<std::string> names_;
  std::string line_;
};

}  // namespace

constexpr LIMITS kJsonLimits = {.textRemark =
                                    "A file without records does not tell its variables."};

bool IsJsonLines(std::string_view first) {
  if (first.substr(0, 3) == "\xEF\xBB\xBF") first.remove_prefix(3);
  const std::string_view text = Trimmed(first);
  if (text.empty() || text.front() != '{') return false;
  const std::string_view inside = Trimmed(text.substr(1));
  return !inside.empty() && (inside.front() == '"' || inside.front() == '}');
}

std::unique_ptr<CReader> ReadJsonLines() {
  return std::make_unique<CJsonReader>();
}
std::unique_ptr<CWriter> WriteJsonLines() {
  return std::make_unique<CJsonWriter>();
}

}  // namespace statrn32
