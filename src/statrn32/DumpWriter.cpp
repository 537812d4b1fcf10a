// A data frame as text. Its columns stand behind each other, but records come one by one: they wait
// in a temporary file.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/ColumnFile.h"
#include "statrn32/DumpFiles.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"

namespace statrn32 {
namespace {

constexpr char kMissingText = '\x01';

class CDumpWriter final : public CFileWriter {
 public:
  CDumpWriter() : CFileWriter(17) {}

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;

 private:
  // Of what went wrong before, such as a full disk, the first word stays.
  bool FailSpool() { return FailFile("temporary file: " + spool_.Reason()); }
  bool PutColumn(const VARIABLE& variable, std::int64_t offset, std::size_t bytes);
  void AppendTextElement(const char* element);
  void AppendNumberElement(const char* element);
  void AppendText(std::string_view text);
  bool PutVector(const char* name, const char* mode, std::int64_t count);
  bool PutNames();
  bool PutRowNames();

  CColumnFile spool_;
  std::string lines_;
};

// Of a text: whether it is missing, then its bytes and a NUL.
std::size_t BytesOf(const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return sizeof(double);
  return static_cast<std::size_t>(std::max(1, variable.width)) + 2;
}

bool CDumpWriter::PutHeader() {
  if (!spool_.Create("")) return FailSpool();
  std::int64_t offset = 0;
  for (const VARIABLE& variable : Variables()) {
    spool_.AddColumn(offset, BytesOf(variable));
    offset += Cases() * static_cast<std::int64_t>(BytesOf(variable));
  }
  return true;
}

bool CDumpWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    char* const element = spool_.Element(i);
    if (Variables()[i].type != ST_TYPE_STRING) {
      const double number = cells[i].missing ? std::nan("") : cells[i].number;
      std::memcpy(element, &number, sizeof number);
    } else if (cells[i].missing) {
      *element = kMissingText;
    } else {
      std::memcpy(element + 1, cells[i].text.data(), cells[i].text.size());
    }
  }
  return spool_.EndRecord() || FailSpool();
}

bool CDumpWriter::PutVector(const char* name, const char* mode, std::int64_t count) {
  return Put(std::string(name) + '\n' + mode + '\n' + std::to_string(count) + '\n');
}

// A line is an element: line ends become blanks.
void CDumpWriter::AppendText(std::string_view text) {
  const std::size_t begin = lines_.size();
  lines_.append(text);
  std::replace_if(
      lines_.begin() + static_cast<std::ptrdiff_t>(begin), lines_.end(),
      [](char c) { return c == '\n' || c == '\r'; }, ' ');
  lines_ += '\n';
}

bool CDumpWriter::PutColumn(const VARIABLE& variable, std::int64_t offset, std::size_t bytes) {
  const bool text = variable.type == ST_TYPE_STRING;
  if (!PutVector(variable.name.c_str(), text ? "character" : "numeric", Cases())) return false;
  const auto putLines = [&](std::string_view block) {
    lines_.clear();
    for (std::size_t at = 0; at < block.size(); at += bytes) {
      text ? AppendTextElement(block.data() + at) : AppendNumberElement(block.data() + at);
    }
    return Put(lines_);
  };
  return spool_.ReadColumn(offset, bytes, Cases(), putLines) || FailSpool();
}

void CDumpWriter::AppendTextElement(const char* element) {
  AppendText(*element == kMissingText ? "N" : element + 1);
}

void CDumpWriter::AppendNumberElement(const char* element) {
  double number = 0;
  std::memcpy(&number, element, sizeof number);
  lines_.append(std::isnan(number) ? "N" : FormatShortest(number)) += '\n';
}

bool CDumpWriter::PutNames() {
  lines_.clear();
  for (const VARIABLE& variable : Variables()) AppendText(variable.name);
  return PutVector(".Names", "character", static_cast<std::int64_t>(Variables().size())) &&
         Put(lines_);
}

bool CDumpWriter::PutRowNames() {
  if (!PutVector("row.names", "character", Cases())) return false;
  for (std::int64_t i = 1; i <= Cases(); ++i) {
    if (!Put(std::to_string(i) + '\n')) return false;
  }
  return true;
}

bool CDumpWriter::PutEnd() {
  if (!spool_.Flush()) return FailSpool();
  const auto variables = static_cast<std::int64_t>(Variables().size());
  if (!PutVector("data", "structure", 4) || !PutVector(".Data", "list", variables)) return false;
  std::int64_t offset = 0;
  for (const VARIABLE& variable : Variables()) {
    if (!PutColumn(variable, offset, BytesOf(variable))) return false;
    offset += Cases() * static_cast<std::int64_t>(BytesOf(variable));
  }
  return PutNames() && PutRowNames() && PutVector("class", "character", 1) && Put("data.frame\n");
}

constexpr std::string_view kReserved[] = {
    "if",   "else", "repeat", "while", "function", "for", "next", "break", "TRUE",  "FALSE",
    "NULL", "Inf",  "NaN",    "NA",    "T",        "F",   "in",   "N",     "return"};

}  // namespace

constexpr NAME_RULES kDumpNames = {255, ".", ".", true, false, true, kReserved};
constexpr LIMITS kDumpLimits = {
    .textBytes = 4000,
    .textRemark =
        "Line ends inside texts become blanks; the text \"N\" and a missing one are the "
        "same."};

std::unique_ptr<CWriter> WriteDump() {
  return std::make_unique<CDumpWriter>();
}

}  // namespace statrn32
