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
using nlohmann::ordered_json;  // keeps the order of the names

class CJsonReader final : public CFileReader {
 public:
  CJsonReader() : CFileReader(903), lines_(&Input()) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::vector<std::string> Notes() const override;

 private:
  struct COLUMN {
    std::string name;
    std::int64_t numbers = 0;
    std::int64_t texts = 0;
    std::int64_t dates = 0;
    DATE_KIND kind = DATE_KIND::None;
    std::size_t bytes = 1;
    std::int32_t type = 0;
  };

  // The next line that is not blank; false at the end and after FailFile.
  template <typename JSON>
  bool NextObject(JSON* object);
  bool Count(const std::string& name, const ordered_json& value);
  void FillValue(const COLUMN& column, const json& object, CBlockFiller* out);

  CLineReader lines_;
  std::string line_;
  std::vector<COLUMN> columns_;
  std::unordered_map<std::string, std::size_t> places_;
  std::int64_t left_ = 0;  // lists and objects left out
};

template <typename JSON>
bool CJsonReader::NextObject(JSON* object) {
  do {
    if (lines_.Next(&line_)) continue;
    if (lines_.TooLong()) {
      FailFile("line " + std::to_string(lines_.Number() + 1) + " has more than 16 MiB");
    }
    return false;
  } while (Trimmed(line_).empty());
  *object = JSON::parse(line_, nullptr, false);
  if (object->is_object()) return true;
  return FailFile("line " + std::to_string(lines_.Number()) + " is not a JSON object");
}

bool CJsonReader::Count(const std::string& name, const ordered_json& value) {
  constexpr std::size_t kMostColumns = 32767;
  const auto [entry, added] = places_.emplace(name, columns_.size());
  if (added) columns_.emplace_back().name = name;
  if (columns_.size() > kMostColumns) return FailFile("the records have more than 32767 names");
  COLUMN& column = columns_[entry->second];
  if (value.is_number() || value.is_boolean()) ++column.numbers;
  if (!value.is_string()) return true;
  const auto& text = value.get_ref<const std::string&>();
  const DATE_KIND kind = ParseIsoMoment(text).kind;
  ++column.texts;
  if (kind != DATE_KIND::None) ++column.dates;
  if (column.kind != DATE_KIND::SerialMoment) column.kind = kind;
  column.bytes = std::max(column.bytes, text.size());
  return true;
}

bool CJsonReader::ReadHeader(DICTIONARY* out) {
  constexpr int kNumberWidth = 12;
  ordered_json object;
  out->cases = 0;
  while (NextObject(&object)) {
    ++out->cases;
    for (const auto& [name, value] : object.items()) {
      if (!Count(name, value)) return false;
    }
  }
  if (!Error().empty()) return false;
  if (columns_.empty()) return FailFile("there is no record with a value");
  for (COLUMN& column : columns_) {
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
  while (!out->Full() && NextObject(&object)) {
    for (const COLUMN& column : columns_) FillValue(column, object, out);
    out->EndRecord();
  }
}

void CJsonReader::FillValue(const COLUMN& column, const json& object, CBlockFiller* out) {
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
