// SPSS portable files. The layout: lines of 80 characters, whose ends do not count. Five titles of
// 40 characters; a table of the 256 characters as this file writes them; the word SPSSPORT; then
// records, each begun by a letter, of numbers and texts. A number stands in base 30 (digits 0 to 9
// and A to T) with a slash behind; a text is its length and its characters. Behind the letter F
// follow the values, a missing number as "*."; the letter Z fills the last line.
#include <algorithm>
#include <cmath>
#include <ctime>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/SpssFiles.h"

namespace statrn32 {
namespace {

constexpr std::size_t kLineBytes = 80;
constexpr int kWidestNumber = 40;
constexpr int kMostDecimals = 16;
constexpr double kLargest = 1e308;
constexpr std::string_view kReserved[] = {"ALL", "AND", "BY",  "EQ", "GE", "GT",  "LE",
                                          "LT",  "NE",  "NOT", "OR", "TO", "WITH"};

// The characters of the format from number 64 on, and the last ones.
constexpr std::size_t kFirstCharacter = 64;
constexpr std::string_view kCharacters =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz .<(+|&[]!$*);^-/|,%_>?`:#@'=\"";
constexpr std::size_t kTilde = 162;
constexpr std::size_t kBraces = 184;

// Of each of the 256 characters its byte, or "0" where this file has none.
std::string CharacterTable() {
  std::string table(256, '0');
  table.replace(kFirstCharacter, kCharacters.size(), kCharacters);
  table[table.rfind('|')] = '0';  // stands a second time for a broken bar
  table[kTilde] = '~';
  table.replace(kBraces, 3, "{}\\");
  return table;
}

std::string Today(const char* form) {
  const std::time_t now = std::time(nullptr);
  std::tm day{};
  gmtime_r(&now, &day);
  char text[32];
  return {text, std::strftime(text, sizeof text, form, &day)};
}

std::string DigitsOf(std::uint64_t number) {
  std::string digits;
  do {
    digits += "0123456789ABCDEFGHIJKLMNOPQRST"[number % 30];
    number /= 30;
  } while (number > 0);
  std::reverse(digits.begin(), digits.end());
  return digits;
}

// The digits and the power of 30 that they are to be multiplied by: twelve digits hold a double.
struct SCALED {
  std::string digits;
  int power = 0;
};
SCALED Scale(double size) {
  constexpr double kExact = 9007199254740992.0;  // whole numbers below it have exact digits
  if (size == std::floor(size) && size < kExact) {
    return {DigitsOf(static_cast<std::uint64_t>(size)), 0};
  }
  constexpr int kDigits = 12;
  const auto wide = static_cast<long double>(size);
  const int power = static_cast<int>(std::floor(std::log(wide) / std::log(30.0L))) - (kDigits - 1);
  SCALED scaled{DigitsOf(static_cast<std::uint64_t>(
                    std::llround(wide * std::pow(30.0L, static_cast<long double>(-power))))),
                power};
  while (scaled.digits.back() == '0') {
    scaled.digits.pop_back();
    ++scaled.power;
  }
  return scaled;
}

// In base 30, with the slash behind it.
std::string NumberText(double number) {
  const SCALED scaled = Scale(std::fabs(number));
  const std::string& digits = scaled.digits;
  const std::string sign = number < 0 ? "-" : "";
  const auto count = static_cast<int>(digits.size());
  constexpr int kZeros = 3;
  if (scaled.power == 0) return sign + digits + '/';
  if (scaled.power > 0) {
    return sign + digits + '+' + DigitsOf(static_cast<std::uint64_t>(scaled.power)) + '/';
  }
  const int whole = count + scaled.power;  // digits in front of the point
  if (whole < -kZeros) {
    return sign + digits + '-' + DigitsOf(static_cast<std::uint64_t>(-scaled.power)) + '/';
  }
  if (whole <= 0) {
    return sign + '.' + std::string(static_cast<std::size_t>(-whole), '0') + digits + '/';
  }
  const auto point = static_cast<std::size_t>(whole);
  return sign + digits.substr(0, point) + '.' + digits.substr(point) + '/';
}

std::string NumberText(std::size_t number) {
  return DigitsOf(number) + '/';
}

// What has no place in the table of characters becomes a blank.
std::string TextOf(const std::string& text) {
  std::string ascii = ToAscii(text);
  for (char& c : ascii) {
    if (c < ' ' || c > '~') c = ' ';
  }
  return NumberText(ascii.size()) + ascii;
}

class CPortableWriter final : public CFileWriter {
 public:
  CPortableWriter() : CFileWriter(13) {}

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;

 private:
  void AppendVariable(const VARIABLE& variable);
  void AppendLabels(const VARIABLE& variable);
  // Puts what was appended, in lines.
  bool PutLines();

  std::string text_;  // not yet in lines
  std::string lines_;
  std::size_t column_ = 0;
};

std::size_t TextWidth(const VARIABLE& variable) {
  return static_cast<std::size_t>(std::max(1, variable.width));
}

bool CPortableWriter::PutHeader() {
  std::string title = "ASCII SPSS PORT FILE";
  title.resize(kLineBytes / 2, ' ');
  for (int i = 0; i < 5; ++i) text_ += title;
  text_ += CharacterTable() + "SPSSPORT";
  text_ += "A" + TextOf(Today("%Y%m%d")) + TextOf(Today("%H%M%S")) + "1" + TextOf("data transfer");
  text_ += "4" + NumberText(Variables().size()) + "5" + NumberText(std::size_t{11});
  for (const VARIABLE& variable : Variables()) AppendVariable(variable);
  for (const VARIABLE& variable : Variables()) AppendLabels(variable);
  text_ += "F";
  return PutLines();
}

void CPortableWriter::AppendVariable(const VARIABLE& variable) {
  constexpr std::size_t kNumberFormat = 5;
  constexpr std::size_t kTextFormat = 1;
  const bool text = variable.type == ST_TYPE_STRING;
  const auto width = text ? TextWidth(variable)
                          : static_cast<std::size_t>(std::clamp(
                                variable.width > 0 ? variable.width : 8, 1, kWidestNumber));
  const int most = std::min(kMostDecimals, static_cast<int>(width) - 1);
  const auto decimals = text ? 0 : static_cast<std::size_t>(std::clamp(variable.decimals, 0, most));
  const std::string format =
      NumberText(text ? kTextFormat : kNumberFormat) + NumberText(width) + NumberText(decimals);
  text_ += "7" + NumberText(text ? width : 0) + TextOf(variable.name) + format + format;
  if (!variable.label.empty()) text_ += "C" + TextOf(variable.label);
}

void CPortableWriter::AppendLabels(const VARIABLE& variable) {
  if (variable.type == ST_TYPE_STRING || variable.labelSet < 0) return;
  const LABEL_SET& set = Dictionary().labelSets[static_cast<std::size_t>(variable.labelSet)];
  text_ += "D" + NumberText(std::size_t{1}) + TextOf(variable.name) + NumberText(set.size());
  for (const VALUE_LABEL& label : set) text_ += NumberText(label.number) + TextOf(label.label);
}

// Texts are filled up with blanks: some readers show what lay in memory behind a shorter one.
bool CPortableWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const OUT_CELL& cell = cells[i];
    if (Variables()[i].type == ST_TYPE_STRING) {
      std::string text = cell.missing ? std::string() : ToAscii(cell.text);
      text.resize(TextWidth(Variables()[i]), ' ');
      text_ += TextOf(text);
    } else if (cell.missing || std::isnan(cell.number)) {
      text_ += "*.";
    } else {
      text_ += NumberText(cell.number);
    }
  }
  return PutLines();
}

bool CPortableWriter::PutEnd() {
  text_.append(kLineBytes - column_, 'Z');
  return PutLines();
}

bool CPortableWriter::PutLines() {
  lines_.clear();
  for (std::size_t at = 0; at < text_.size();) {
    const std::size_t part = std::min(kLineBytes - column_, text_.size() - at);
    lines_.append(text_, at, part);
    at += part;
    column_ += part;
    if (column_ < kLineBytes) continue;
    lines_ += "\r\n";
    column_ = 0;
  }
  text_.clear();
  return Put(lines_);
}

}  // namespace

constexpr NAME_RULES kPorNames = {8, "@", "@._$#", true, true, false, kReserved};
constexpr LIMITS kPorLimits = {.records = kMostRecords,
                               .textBytes = 255,
                               .labelBytes = 255,
                               .valueLabelBytes = 60,
                               .largest = kLargest,
                               .textRemark = "Letters outside ASCII become the nearest ones."};

std::unique_ptr<CWriter> WritePor() {
  return std::make_unique<CPortableWriter>();
}

}  // namespace statrn32
