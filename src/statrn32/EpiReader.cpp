// The first line says how many field lines follow. The fields of a record stand behind each other,
// cut into lines of 78 characters with a mark behind each: ! good, ? deleted, ^ verified.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/EpiFiles.h"
#include "statrn32/FileReader.h"
#include "statrn32/LineReader.h"

namespace statrn32 {
namespace {

constexpr int kMostFields = 100'000;
constexpr int kMostLength = 32'000;
constexpr std::string_view kMarks = "!?^";
constexpr char kDeleted = '?';
constexpr char kFileEnd = '\x1A';

enum class FIELD_KIND { Number, Text, UsDate, EuropeanDate, YesNo };

struct EPI_FIELD {
  std::size_t begin = 0;
  std::size_t length = 0;
  FIELD_KIND kind = FIELD_KIND::Text;
};

FIELD_KIND KindOf(int type) {
  switch (type) {
    case 0:
    case 6:
    case 12:
      return FIELD_KIND::Number;
    case 2:
    case 10:
      return FIELD_KIND::UsDate;
    case 11:
    case 16:
      return FIELD_KIND::EuropeanDate;
    case 5:
      return FIELD_KIND::YesNo;
    default:
      return type >= kEpiNumber ? FIELD_KIND::Number : FIELD_KIND::Text;
  }
}

// The next word of a line; empty at its end.
std::string_view TakeWord(std::string_view* line) {
  while (!line->empty() && line->front() == ' ') line->remove_prefix(1);
  const std::string_view word = line->substr(0, line->find(' '));
  line->remove_prefix(word.size());
  return word;
}

bool ParseWhole(std::string_view text, int* number) {
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size();
}

// A field line's name and numbers; false when it is none.
struct FIELD_LINE {
  std::string_view name;
  std::array<int, 8> numbers{};
  int Type() const { return numbers[5]; }
  int Length() const { return numbers[6]; }
};
bool ParseFieldLine(std::string_view line, FIELD_LINE* out) {
  out->name = TakeWord(&line);
  for (int& number : out->numbers) {
    if (!ParseWhole(TakeWord(&line), &number)) return false;
  }
  return !out->name.empty() && out->Length() >= 0 && out->Length() <= kMostLength;
}

class CEpiReader final : public CFileReader {
 public:
  CEpiReader() : CFileReader(32), lines_(&Input()) {}

  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const override;

 protected:
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;

 private:
  bool FailLine(const std::string& what) {
    return FailFile("line " + std::to_string(lines_.Number()) + ": " + what);
  }
  void AddField(const FIELD_LINE& line, std::string_view question, DICTIONARY* out);
  // The next record and the mark behind it; false at the end and after FailFile.
  bool NextRecord(char* mark);
  void PutField(const EPI_FIELD& field, CBlockFiller* out);
  static bool ParseDate(std::string_view text, bool european, double* serial);

  CLineReader lines_;
  CTextDecoder decoder_;
  std::vector<EPI_FIELD> fields_;
  std::size_t recordBytes_ = 0;
  std::string line_;
  std::string record_;
  std::int64_t deleted_ = 0;
  std::int64_t unreadable_ = 0;
};

bool CEpiReader::ReadHeader(DICTIONARY* out) {
  int count = 0;
  decoder_.SetEncoding(Options().encoding, "CP850");
  if (!lines_.Next(&line_)) return FailFile("the file is empty");
  std::string_view words = line_;
  if (!ParseWhole(TakeWord(&words), &count) || count < 1 || count > kMostFields) {
    return FailLine("the number of fields was expected");
  }
  for (int i = 0; i < count; ++i) {
    FIELD_LINE field;
    if (!lines_.Next(&line_)) return FailFile("the file ends within the fields");
    if (!ParseFieldLine(line_, &field)) return FailLine("a field was expected");
    const bool asks = line_.size() > kEpiQuestion;
    AddField(field, asks ? std::string_view(line_).substr(kEpiQuestion) : std::string_view(), out);
  }
  return !fields_.empty() || FailFile("there are no fields with data");
}

void CEpiReader::AddField(const FIELD_LINE& line, std::string_view question, DICTIONARY* out) {
  const auto length = static_cast<std::size_t>(line.Length());
  if (length == 0) return;
  const FIELD_KIND kind = KindOf(line.Type());
  fields_.push_back({recordBytes_, length, kind});
  recordBytes_ += length;
  std::string_view name = line.name;
  if (name.size() > 1 && (name.front() == '#' || name.front() == '_')) name.remove_prefix(1);
  VARIABLE& variable = out->variables.emplace_back();
  variable.name = decoder_.Decode(name);
  variable.label = std::string(Trimmed(decoder_.Decode(question)));
  variable.width = line.Length();
  variable.type = kind == FIELD_KIND::Text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  if (kind == FIELD_KIND::Number && line.Type() > kEpiNumber) {
    variable.decimals = std::min(line.Type() - kEpiNumber, 15);
  }
  // A date without a year is none.
  constexpr std::size_t kDayAndMonth = 5;
  const bool date = kind == FIELD_KIND::UsDate || kind == FIELD_KIND::EuropeanDate;
  if (date && length <= kDayAndMonth) {
    fields_.back().kind = FIELD_KIND::Text;
    variable.type = ST_TYPE_STRING;
  } else if (date) {
    variable.type = ST_TYPE_DATE;
    variable.date = DATE_KIND::SerialDate;
  }
}

bool CEpiReader::NextRecord(char* mark) {
  record_.clear();
  while (record_.size() < recordBytes_) {
    const std::size_t wanted = std::min(kEpiLineBytes, recordBytes_ - record_.size());
    if (!lines_.Next(&line_) || (!line_.empty() && line_[0] == kFileEnd)) {
      if (lines_.TooLong()) return FailLine("the line is too long");
      return !record_.empty() && FailFile("the file ends within a record");
    }
    if (line_.empty() && record_.empty()) continue;
    // Blanks in front of the mark may be left out, the mark itself only behind a full line.
    const bool marked = !line_.empty() && kMarks.find(line_.back()) != std::string_view::npos;
    if (!marked && line_.size() < wanted) return FailLine("the record is cut off");
    *mark = marked ? line_.back() : ' ';
    if (marked) line_.pop_back();
    line_.resize(wanted, ' ');
    record_ += line_;
  }
  return true;
}

void CEpiReader::FillBlock(CBlockFiller* out) {
  char mark = 0;
  while (!out->Full() && NextRecord(&mark)) {
    if (mark == kDeleted) {
      ++deleted_;
      continue;
    }
    for (const EPI_FIELD& field : fields_) PutField(field, out);
    out->EndRecord();
  }
}

// "mm/dd/yyyy" or "dd/mm/yyyy"; two digits of a year are those of the twentieth century.
bool CEpiReader::ParseDate(std::string_view text, bool european, double* serial) {
  int first = 0;
  int second = 0;
  int year = 0;
  if (text.size() < 8 || !ParseWhole(text.substr(0, 2), &first) ||
      !ParseWhole(text.substr(3, 2), &second) || !ParseWhole(text.substr(6), &year)) {
    return false;
  }
  if (text.size() == 8) year += 1900;
  return SerialOfDate(year, european ? second : first, european ? first : second, serial);
}

void CEpiReader::PutField(const EPI_FIELD& field, CBlockFiller* out) {
  const std::string_view bytes = std::string_view(record_).substr(field.begin, field.length);
  if (field.kind == FIELD_KIND::Text) return out->Text(&decoder_, bytes);
  const std::string_view text = Trimmed(bytes);
  double number = 0;
  bool there = false;
  if (field.kind == FIELD_KIND::YesNo) {
    there = text == "Y" || text == "N";
    number = text == "Y" ? 1 : 0;
  } else if (field.kind == FIELD_KIND::Number) {
    const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    there = failed == std::errc() && stop == text.data() + text.size() && std::isfinite(number);
  } else {
    there = ParseDate(text, field.kind == FIELD_KIND::EuropeanDate, &number);
  }
  if (there) return out->Number(number);
  if (!text.empty()) ++unreadable_;
  out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CEpiReader::Notes() const {
  std::vector<std::string> notes;
  if (deleted_ > 0) {
    notes.push_back("Records marked as deleted were left out: " + std::to_string(deleted_) + ".");
  }
  if (unreadable_ > 0) {
    notes.push_back(
        "Values that are no numbers or dates became missing: " + std::to_string(unreadable_) + ".");
  }
  return notes;
}

}  // namespace

bool IsEpi(std::string_view first) {
  const std::size_t end = first.find('\n');
  if (end == std::string_view::npos) return false;
  std::string_view words = Trimmed(first.substr(0, end));
  std::string_view line = first.substr(end + 1);
  line = line.substr(0, line.find_first_of("\r\n"));
  int count = 0;
  FIELD_LINE field;
  return ParseWhole(TakeWord(&words), &count) && count > 0 && ParseFieldLine(line, &field);
}

std::unique_ptr<CReader> ReadEpi() {
  return std::make_unique<CEpiReader>();
}

}  // namespace statrn32
