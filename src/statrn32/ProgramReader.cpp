#include "statrn32/ProgramReader.h"

#include <charconv>
#include <cmath>
#include <filesystem>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/BesideFile.h"

namespace statrn32 {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsWordPart(char c, std::string_view marks) {
  const auto byte = static_cast<unsigned char>(c);
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         byte >= 0x80 || c == '_' || marks.find(c) != std::string_view::npos;
}

}  // namespace

bool PROGRAM_TOKEN::Is(std::string_view upper) const {
  return kind != Text && kind != End && EqualIgnoringCase(text, upper);
}

std::vector<PROGRAM_TOKEN> SplitCommand(std::string_view command, std::int64_t line,
                                        std::string_view wordMarks) {
  std::vector<PROGRAM_TOKEN> tokens;
  for (std::size_t at = 0; at < command.size();) {
    const char c = command[at];
    PROGRAM_TOKEN token;
    token.line = line;
    if (c == '\n') ++line;
    if (IsBlank(c)) {
      ++at;
      continue;
    }
    const bool compound = command.substr(at, 2) == "`\"";
    if (compound) {
      const std::size_t end = std::min(command.find("\"'", at + 2), command.size());
      token.kind = PROGRAM_TOKEN::Text;
      token.text = command.substr(at + 2, end - at - 2);
      at = std::min(end + 2, command.size());
    } else if (c == '"' || c == '\'') {
      token.kind = PROGRAM_TOKEN::Text;
      for (++at; at < command.size(); ++at) {
        if (command[at] == c && (at + 1 >= command.size() || command[at + 1] != c)) break;
        if (command[at] == c) ++at;
        token.text += command[at];
      }
      ++at;
    } else if (IsWordPart(c, wordMarks)) {
      token.kind = PROGRAM_TOKEN::Word;
      while (at < command.size() && IsWordPart(command[at], wordMarks)) token.text += command[at++];
    } else {
      token.kind = PROGRAM_TOKEN::Sign;
      token.text = command[at++];
    }
    tokens.push_back(std::move(token));
  }
  PROGRAM_TOKEN end;
  end.line = line;
  tokens.push_back(end);
  return tokens;
}

PROGRAM_COLUMN* CProgramReader::FindColumn(PROGRAM_DATA* data, std::string_view name) {
  for (PROGRAM_COLUMN& column : data->columns) {
    if (EqualIgnoringCase(column.variable.name, name)) return &column;
  }
  return nullptr;
}

bool CProgramReader::ParseProgramNumber(std::string_view text, double* number) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size() && std::isfinite(*number);
}

bool CProgramReader::ReadHeader(DICTIONARY* out) {
  decoder_.SetEncoding(Options().encoding.c_str());
  if (!ReadProgram(&data_)) return false;
  if (data_.columns.empty()) return FailFile("this program reads no data");
  for (const PROGRAM_COLUMN& column : data_.columns) out->variables.push_back(column.variable);
  out->labelSets = data_.labelSets;
  return OpenData();
}

bool CProgramReader::OpenData() {
  CInputFile* input = &Input();
  if (data_.file.empty() && data_.end.empty()) {
    return FailFile("the program holds no data and names no file that does");
  }
  if (!data_.file.empty()) {
    const std::string wanted = std::filesystem::path(data_.file).filename().string();
    const std::string name = FindInFolderOf(Name(), wanted);
    if (name.empty() || !dataFile_.Open(name)) {
      return FailFile("its data file \"" + wanted + "\" is not beside it");
    }
    input = &dataFile_;
  }
  input->Seek(0);
  dataLines_ = std::make_unique<CLineReader>(input);
  while (dataLines_->Number() + 1 < data_.firstLine && dataLines_->Next(&line_)) continue;
  return true;
}

bool CProgramReader::NextDataLine() {
  at_ = 0;
  lineOpen_ = !ended_ && dataLines_->Next(&line_);
  if (lineOpen_ && data_.file.empty()) lineOpen_ = !EndsData();
  if (dataLines_->TooLong()) FailFile("a line of its data has more than 16 MiB");
  ended_ = !lineOpen_;
  return lineOpen_;
}

bool CProgramReader::EndsData() const {
  if (data_.end == ";") return line_.find(';') != std::string::npos;
  std::string_view text = Trimmed(line_);
  if (!text.empty() && text.back() == '.') text.remove_suffix(1);
  return EqualIgnoringCase(text, data_.end);
}

bool CProgramReader::AtLineEnd() {
  return at_ >= line_.size();
}

// The next field of the line; false at its end.
bool CProgramReader::NextField(std::string* field, bool* quoted) {
  const bool commas = data_.commas && data_.separators.empty();
  const auto isSeparator = [&](char c) {
    return data_.separators.find(c) != std::string::npos || (commas && c == ',');
  };
  field->clear();
  *quoted = false;
  while (!AtLineEnd() && IsBlank(line_[at_]) && !isSeparator(line_[at_])) ++at_;
  if (AtLineEnd()) return false;
  const char first = line_[at_];
  if (line_.compare(at_, 2, "`\"") == 0) {
    const std::size_t end = std::min(line_.find("\"'", at_ + 2), line_.size());
    field->assign(line_, at_ + 2, end - at_ - 2);
    at_ = std::min(end + 2, line_.size());
    *quoted = true;
  } else if (first == '"' || first == '\'') {
    *quoted = true;
    for (++at_; !AtLineEnd(); ++at_) {
      if (line_[at_] == first) {
        if (!data_.doubledQuotes || at_ + 1 >= line_.size() || line_[at_ + 1] != first) break;
        ++at_;
      }
      *field += line_[at_];
    }
    if (!AtLineEnd()) ++at_;
  } else {
    const auto ends = [&](char c) {
      return isSeparator(c) || (data_.separators.empty() && IsBlank(c));
    };
    while (!AtLineEnd() && !ends(line_[at_])) *field += line_[at_++];
    while (!field->empty() && IsBlank(field->back())) field->pop_back();
  }
  if (commas || !data_.separators.empty()) {
    while (!AtLineEnd() && IsBlank(line_[at_]) && !isSeparator(line_[at_])) ++at_;
    if (!AtLineEnd() && isSeparator(line_[at_])) ++at_;
  }
  return true;
}

void CProgramReader::FillBlock(CBlockFiller* out) {
  const bool fixed = data_.columns.front().begin >= 0;
  while (!out->Full() && Error().empty()) {
    if (fixed) {
      if (!NextDataLine()) return;
      if (!line_.empty()) FillFixedRecord(out);
    } else if (!FillListRecord(out)) {
      return;
    }
  }
}

bool CProgramReader::FillListRecord(CBlockFiller* out) {
  bool quoted = false;
  if (!data_.flows || !lineOpen_ || AtLineEnd()) {
    do {
      if (!NextDataLine()) return false;
    } while (Trimmed(line_).empty());
  }
  for (std::size_t i = 0; i < data_.columns.size(); ++i) {
    bool there = NextField(&field_, &quoted);
    while (!there && (data_.flows || data_.wraps)) {
      if (!NextDataLine()) {
        out->DropRecord();
        cutOff_ = true;
        return false;  // the data end within a record
      }
      there = NextField(&field_, &quoted);
    }
    PutField(data_.columns[i], field_, quoted, out);
  }
  out->EndRecord();
  return true;
}

void CProgramReader::FillFixedRecord(CBlockFiller* out) {
  for (const PROGRAM_COLUMN& column : data_.columns) {
    const auto begin = static_cast<std::size_t>(column.begin);
    std::string_view field;
    if (begin < line_.size()) {
      field = std::string_view(line_).substr(begin, static_cast<std::size_t>(column.width));
    }
    PutField(column, field, false, out);
  }
  out->EndRecord();
}

void CProgramReader::PutField(const PROGRAM_COLUMN& column, std::string_view field, bool quoted,
                              CBlockFiller* out) {
  if (column.variable.type == ST_TYPE_STRING) {
    const std::string_view text = !quoted && field == "." && column.begin < 0 ? "" : field;
    return out->Text(&decoder_, text);
  }
  double number = 0;
  if (ParseProgramNumber(field, &number)) {
    const bool implied = column.impliedDecimals > 0 && field.find('.') == std::string_view::npos;
    if (implied) number /= std::pow(10, column.impliedDecimals);
    for (const MISSING_RANGE& range : column.variable.missing) {
      if (number < range.low || number > range.high) continue;
      return out->MissingNumber(ST_STATUS_USER_MISSING, number);
    }
    return out->Number(number);
  }
  const std::string_view text = Trimmed(field);
  const bool tagged = text.size() <= 2 && !text.empty() && text.front() == '.';
  if (!text.empty() && !tagged) ++unreadable_;
  out->MissingNumber(tagged && text.size() == 2 ? ST_STATUS_TAGGED : ST_STATUS_MISSING);
}

std::vector<std::string> CProgramReader::Notes() const {
  std::vector<std::string> notes;
  if (unreadable_ > 0) {
    notes.push_back(
        "Texts among the numbers became missing values: " + std::to_string(unreadable_) + ".");
  }
  if (cutOff_) notes.emplace_back("The data end within a record, which was left out.");
  return notes;
}

}  // namespace statrn32
