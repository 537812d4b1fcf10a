#include "statrn32/ReadStatWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "host/Numbers.h"
#include "host/Text.h"
#include "host/statrn32.h"

namespace statrn32 {
namespace {

constexpr int kWidestNumber = 40;
constexpr int kMostDecimals = 16;

std::string NumberFormat(const char* pattern, const VARIABLE& variable) {
  const int width = std::clamp(variable.width, 1, kWidestNumber);
  const int decimals = std::clamp(variable.decimals, 0, std::min(kMostDecimals, width - 1));
  char text[32];
  std::snprintf(text, sizeof text, pattern, width, decimals);
  return text;
}

bool IsWhole(double number) {
  return number == std::floor(number) &&
         std::fabs(number) <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace

CReadStatWriter::~CReadStatWriter() {
  if (writer_ == nullptr) return;
  if (begun_) {
    // Some formats free what they hold only at their end, which comes only after as many records as
    // announced.
    if (rowBegun_ && writer_->current_row == 0) writer_->current_row = 1;
    writer_->row_count = writer_->current_row;
    readstat_end_writing(writer_);
  }
  readstat_writer_free(writer_);
}

ssize_t CReadStatWriter::OnWrite(const void* data, std::size_t size, void* context) {
  auto& writer = *static_cast<CReadStatWriter*>(context);
  return writer.file_.Write(data, size) ? static_cast<ssize_t>(size) : -1;
}

void CReadStatWriter::OnError(const char* message, void* context) {
  if (message != nullptr) static_cast<CReadStatWriter*>(context)->detail_ = message;
}

bool CReadStatWriter::Begin(const std::string& name, const DICTIONARY& dictionary,
                            std::int64_t cases) {
  name_ = name;
  cases_ = cases;
  if (cases > std::numeric_limits<int>::max()) {
    return Fail(name + ": more than 2,147,483,647 records cannot be written");
  }
  if (dictionary.variables.size() > target_.variables) {
    return Fail(name + ": the data set has " + std::to_string(dictionary.variables.size()) +
                " variables; a file of this type holds at most " +
                std::to_string(target_.variables));
  }
  writer_ = readstat_writer_init();
  if (writer_ == nullptr) return Fail(name + ": not enough memory");
  readstat_set_data_writer(writer_, OnWrite);
  readstat_writer_set_error_handler(writer_, OnError);
  if (target_.version != 0) readstat_writer_set_file_format_version(writer_, target_.version);
  readstat_writer_set_compression(writer_, target_.compression(name));
  const std::vector<readstat_label_set_t*> sets = AddLabelSets(dictionary);
  for (const VARIABLE& variable : dictionary.variables) {
    if (!AddVariable(variable, sets)) return false;
  }
  if (!file_.Create(name)) return Fail(name + ": cannot be created: " + file_.Reason());
  begun_ = Check(target_.begin(writer_, this, static_cast<long>(cases)), "cannot be begun");
  return begun_;
}

std::vector<readstat_label_set_t*> CReadStatWriter::AddLabelSets(const DICTIONARY& dictionary) {
  std::vector<readstat_label_set_t*> sets;
  for (const LABEL_SET& set : dictionary.labelSets) {
    const std::string name = "labels" + std::to_string(sets.size());
    sets.push_back(nullptr);
    if (target_.valueLabelBytes == 0) continue;
    for (const VALUE_LABEL& label : set) {
      if (target_.wholeLabels && !IsWhole(label.number)) continue;
      if (sets.back() == nullptr) {
        const readstat_type_t type =
            target_.wholeLabels ? READSTAT_TYPE_INT32 : READSTAT_TYPE_DOUBLE;
        sets.back() = readstat_add_label_set(writer_, type, name.c_str());
      }
      const std::string text = CutText(label.label, target_.valueLabelBytes);
      if (target_.wholeLabels) {
        readstat_label_int32_value(sets.back(), static_cast<std::int32_t>(label.number),
                                   text.c_str());
      } else {
        readstat_label_double_value(sets.back(), label.number, text.c_str());
      }
    }
  }
  return sets;
}

bool CReadStatWriter::AddVariable(const VARIABLE& variable,
                                  const std::vector<readstat_label_set_t*>& sets) {
  const bool text = variable.type == ST_TYPE_STRING;
  const auto bytes = text ? static_cast<std::size_t>(std::max(1, variable.width)) : 0;
  if (bytes > target_.textBytes) {
    return Fail(name_ + ": the variable " + variable.name + " holds texts of " +
                std::to_string(bytes) + " bytes; this file type has room for " +
                std::to_string(target_.textBytes));
  }
  readstat_variable_t* const added = readstat_add_variable(
      writer_, variable.name.c_str(), text ? READSTAT_TYPE_STRING : READSTAT_TYPE_DOUBLE, bytes);
  readstat_variable_set_label(added, CutText(variable.label, target_.labelBytes).c_str());
  if (!text && variable.width > 0) {
    readstat_variable_set_format(added, NumberFormat(target_.numberFormat, variable).c_str());
    readstat_variable_set_display_width(added, std::min(variable.width, kWidestNumber));
  }
  if (!text && variable.labelSet >= 0 &&
      sets[static_cast<std::size_t>(variable.labelSet)] != nullptr) {
    readstat_variable_set_label_set(added, sets[static_cast<std::size_t>(variable.labelSet)]);
  }
  columns_.push_back({added, variable.name, bytes});
  return true;
}

bool CReadStatWriter::WriteRecord(const std::vector<OUT_CELL>& cells) {
  if (!Error().empty()) return false;
  if (written_ >= cases_) {
    return Fail(name_ + ": more records than the " + std::to_string(cases_) + " announced");
  }
  rowBegun_ = true;
  if (!Check(readstat_begin_row(writer_), "cannot be written")) return false;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (!WriteCell(columns_[i], cells[i])) return false;
  }
  if (!Check(readstat_end_row(writer_), "cannot be written")) return false;
  ++written_;
  return true;
}

bool CReadStatWriter::WriteCell(const COLUMN& column, const OUT_CELL& cell) {
  if (column.textBytes > 0) return WriteText(column, cell.missing ? std::string() : cell.text);
  if (!cell.missing && !std::isnan(cell.number)) return WriteNumber(column, cell.number);
  return Check(readstat_insert_missing_value(writer_, column.variable), "cannot be written");
}

bool CReadStatWriter::WriteNumber(const COLUMN& column, double number) {
  if (!(std::fabs(number) <= target_.largest)) {
    return Fail(name_ + ": the value " + FormatShortest(number) + " of the variable " +
                column.name + " in record " + std::to_string(written_ + 1) +
                " is too large for this file type");
  }
  return Check(readstat_insert_double_value(writer_, column.variable, number), column.name);
}

bool CReadStatWriter::WriteText(const COLUMN& column, const std::string& text) {
  if (text.size() > column.textBytes) {
    return Fail(name_ + ": the text of the variable " + column.name + " in record " +
                std::to_string(written_ + 1) + " is longer than the " +
                std::to_string(column.textBytes) + " bytes announced");
  }
  return Check(readstat_insert_string_value(writer_, column.variable, text.c_str()), column.name);
}

bool CReadStatWriter::Finish() {
  if (Error().empty() && written_ != cases_) {
    Fail(name_ + ": " + std::to_string(written_) + " records were written where " +
         std::to_string(cases_) + " were announced");
  }
  if (Error().empty()) {
    begun_ = false;
    Check(readstat_end_writing(writer_), "cannot be completed");
  }
  if (!file_.Close()) Fail(name_ + ": " + file_.Reason());
  return Error().empty();
}

bool CReadStatWriter::Check(readstat_error_t code, const std::string& what) {
  if (code == READSTAT_OK) return true;
  if (!file_.Reason().empty()) return Fail(name_ + ": " + file_.Reason());
  const char* const text = readstat_error_message(code);
  std::string error = name_ + ": " + what + ": " + (text != nullptr ? text : "unknown error");
  if (!detail_.empty()) error += ": " + std::string(Trimmed(detail_));
  return Fail(error + " (record " + std::to_string(written_ + 1) + ")");
}

}  // namespace statrn32
