// The layout, in columns from 1. The dictionary has records of 80 characters, in ASCII with line
// ends or without, or in EBCDIC. The first one: 1 the type "1", 6-9 the first and 11-14 the last
// variable's number. Then one for each variable, begun by "T": 2-6 its number, 8 the kind (0
// digits, 1 text, 2 binary integer; floating point is not read), 12-35 its name, 36-40 where it
// begins in a record of the data, 42-46 its width, 48 its decimals, 56-62 and 64-70 two missing
// codes. The first code stands for itself; the second for itself and what lies beyond it, away from
// zero.
#include "statrn32/OsirisFiles.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/BesideFile.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/LineReader.h"

namespace statrn32 {
namespace {

constexpr std::size_t kCardBytes = 80;
constexpr std::int64_t kMostDictionary = std::int64_t{8} << 20;
constexpr int kMostRecordBytes = 1 << 20;
constexpr const char* kExtensions[] = {"dat", "data", "da", "raw", "txt"};
constexpr char kEbcdicT = '\xE3';
constexpr char kEbcdicOne = '\xF1';

struct OSIRIS_FIELD {
  std::size_t begin = 0;
  std::size_t width = 0;
  char kind = '0';
  int decimals = 0;
};

// Columns from 1, both ends included.
std::string_view Columns(std::string_view card, std::size_t first, std::size_t last) {
  return card.size() < first ? std::string_view() : card.substr(first - 1, last - first + 1);
}

bool ParseWhole(std::string_view text, int* number) {
  text = Trimmed(text);
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size();
}

bool ParseNumber(std::string_view text, int decimals, double* number) {
  text = Trimmed(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  if (failed != std::errc() || stop != text.data() + text.size()) return false;
  // Without a point the last digits are decimals.
  if (text.find_first_of(".eE") == std::string_view::npos) *number /= std::pow(10.0, decimals);
  return std::isfinite(*number);
}

// The decoder knows the blanks of ASCII only.
std::string TrimmedAtEnd(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

class COsirisReader final : public CFileReader {
 public:
  COsirisReader() : CFileReader(36) {}

  std::vector<std::string> Notes() const override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 protected:
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;

 private:
  bool ReadCards(std::vector<std::string>* cards);
  bool AddVariable(const std::string& card, std::size_t number, DICTIONARY* out);
  void AddMissing(const std::string& card, VARIABLE* variable) const;
  bool OpenData(DICTIONARY* out);
  bool NextRecord();
  void PutField(std::size_t index, CBlockFiller* out);

  CTextDecoder decoder_;
  bool ebcdic_ = false;
  std::vector<OSIRIS_FIELD> fields_;
  std::vector<std::vector<MISSING_RANGE>> missing_;
  std::size_t recordBytes_ = 0;
  CInputFile data_;
  std::unique_ptr<CLineReader> lines_;  // null: records of one length without line ends
  std::string record_;
  std::int64_t unreadable_ = 0;
};

bool COsirisReader::ReadCards(std::vector<std::string>* cards) {
  std::string whole;
  if (!ReadWhole(&whole, kMostDictionary)) return false;
  ebcdic_ = whole.front() == kEbcdicOne;
  decoder_.SetEncoding(!Options().encoding.empty() ? Options().encoding.c_str()
                       : ebcdic_                   ? "CP037"
                                                   : nullptr);
  if (ebcdic_ || whole.find('\n') == std::string::npos) {
    for (std::size_t at = 0; at < whole.size(); at += kCardBytes) {
      cards->push_back(decoder_.Decode(whole.substr(at, kCardBytes)));
    }
    return true;
  }
  for (std::size_t at = 0; at < whole.size();) {
    const std::size_t end = std::min(whole.find('\n', at), whole.size());
    cards->push_back(decoder_.Decode(whole.substr(at, end - at)));
    if (!cards->back().empty() && cards->back().back() == '\r') cards->back().pop_back();
    at = end + 1;
  }
  return true;
}

bool COsirisReader::ReadHeader(DICTIONARY* out) {
  std::vector<std::string> cards;
  if (!ReadCards(&cards)) return false;
  for (std::size_t i = 1; i < cards.size(); ++i) {
    if (cards[i].empty() || cards[i][0] != 'T') continue;
    if (!AddVariable(cards[i], i + 1, out)) return false;
  }
  if (fields_.empty()) return FailFile("there are no variables in the dictionary");
  return OpenData(out);
}

bool COsirisReader::AddVariable(const std::string& card, std::size_t number, DICTIONARY* out) {
  int begin = 0;
  int width = 0;
  OSIRIS_FIELD field;
  const std::string where = "record " + std::to_string(number) + ": ";
  if (!ParseWhole(Columns(card, 36, 40), &begin) || !ParseWhole(Columns(card, 42, 46), &width) ||
      begin < 1 || width < 1 || begin + width > kMostRecordBytes) {
    return FailFile(where + "the place of the variable was expected in columns 36 to 46");
  }
  field.kind = card.size() > 7 && card[7] != ' ' ? card[7] : '0';
  if (field.kind < '0' || field.kind > '2') {
    return FailFile(where + "variables of the kind " + field.kind + " are not read");
  }
  ParseWhole(Columns(card, 48, 48), &field.decimals);
  field.begin = static_cast<std::size_t>(begin) - 1;
  field.width = static_cast<std::size_t>(width);
  recordBytes_ = std::max(recordBytes_, field.begin + field.width);
  VARIABLE& variable = out->variables.emplace_back();
  variable.name = std::string(Trimmed(Columns(card, 12, 35)));
  if (variable.name.empty()) variable.name = "V" + std::to_string(out->variables.size());
  variable.type = field.kind == '1' ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  variable.width = width;
  variable.decimals = field.decimals;
  if (field.kind != '1') AddMissing(card, &variable);
  missing_.push_back(variable.missing);
  fields_.push_back(field);
  return true;
}

void COsirisReader::AddMissing(const std::string& card, VARIABLE* variable) const {
  double code = 0;
  if (ParseNumber(Columns(card, 56, 62), variable->decimals, &code)) {
    variable->missing.push_back({code, code, {}, {}});
  }
  if (ParseNumber(Columns(card, 64, 70), variable->decimals, &code)) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    variable->missing.push_back(
        {code < 0 ? -kInfinite : code, code < 0 ? code : kInfinite, {}, {}});
  }
}

bool COsirisReader::OpenData(DICTIONARY* out) {
  std::string name;
  for (const char* const extension : kExtensions) {
    if (name.empty()) name = FindBeside(Name(), extension);
  }
  if (name.empty() || !data_.Open(name)) {
    return FailFile(
        "its file of data is not beside it (the same name with .dat, .data, .da, .raw "
        "or .txt)");
  }
  // Records with line ends are told by the end of the first one, which may hold more than what the
  // dictionary speaks of.
  std::string first(std::max<std::size_t>(recordBytes_ + 2, 1 << 16), '\0');
  data_.Read(first.data(), static_cast<std::int64_t>(first.size()));
  data_.Seek(0);
  const bool lines = !ebcdic_ && first.find('\n') != std::string::npos;
  const bool binary = std::any_of(fields_.begin(), fields_.end(),
                                  [](const OSIRIS_FIELD& field) { return field.kind >= '2'; });
  if (lines && !binary) {
    lines_ = std::make_unique<CLineReader>(&data_);
  } else {
    out->cases = data_.Size() / static_cast<std::int64_t>(recordBytes_);
  }
  return true;
}

// Short records are filled up: editors cut blanks off.
bool COsirisReader::NextRecord() {
  if (lines_ != nullptr) {
    if (!lines_->Next(&record_)) return false;
    record_.resize(std::max(record_.size(), recordBytes_), ' ');
    return true;
  }
  record_.resize(recordBytes_);
  const std::int64_t got = data_.Read(record_.data(), static_cast<std::int64_t>(recordBytes_));
  if (got == static_cast<std::int64_t>(recordBytes_)) return true;
  return got > 0 && FailFile("the file of data ends within a record");
}

void COsirisReader::FillBlock(CBlockFiller* out) {
  while (!out->Full() && NextRecord()) {
    for (std::size_t i = 0; i < fields_.size(); ++i) PutField(i, out);
    out->EndRecord();
  }
}

void COsirisReader::PutField(std::size_t index, CBlockFiller* out) {
  const OSIRIS_FIELD& field = fields_[index];
  const std::string_view bytes = std::string_view(record_).substr(field.begin, field.width);
  if (field.kind == '1' && ebcdic_) return out->Text(TrimmedAtEnd(decoder_.Decode(bytes)));
  if (field.kind == '1') return out->Text(&decoder_, bytes);
  double number = 0;
  bool there = false;
  if (field.kind == '0') {
    const std::string text = ebcdic_ ? decoder_.Decode(bytes) : std::string(bytes);
    there = ParseNumber(text, field.decimals, &number);
    if (!there && !Trimmed(text).empty()) ++unreadable_;
  } else {
    CByteReader in(bytes);
    in.SetBigEndian(true);
    there = field.width == 2 || field.width == 4;
    number = (field.width == 2 ? in.I16() : in.I32()) / std::pow(10.0, field.decimals);
  }
  if (!there) return out->MissingNumber(ST_STATUS_MISSING);
  for (const MISSING_RANGE& range : missing_[index]) {
    if (number >= range.low && number <= range.high) {
      return out->MissingNumber(ST_STATUS_USER_MISSING, number);
    }
  }
  out->Number(number);
}

std::vector<std::string> COsirisReader::Notes() const {
  if (unreadable_ == 0) return {};
  return {"Values that are no numbers became missing: " + std::to_string(unreadable_) + "."};
}

}  // namespace

bool IsOsiris(std::string_view first) {
  // The first record tells the first and the last variable; the next one is that of a variable.
  if (first.size() <= kCardBytes) return false;
  if (first[0] == kEbcdicOne) return first[kCardBytes] == kEbcdicT;
  const std::size_t end = first.find('\n');
  const std::size_t next = end == std::string_view::npos ? kCardBytes : end + 1;
  int number = 0;
  return first[0] == '1' && ParseWhole(Columns(first, 6, 9), &number) &&
         ParseWhole(Columns(first, 11, 14), &number) && next < first.size() && first[next] == 'T';
}

std::unique_ptr<CReader> ReadOsiris() {
  return std::make_unique<COsirisReader>();
}

}  // namespace statrn32
