// Dates and times as texts write them, and the display formats of spreadsheets.
#include <array>

#include "host/Text.h"
#include "statrn32/Dates.h"

namespace statrn32 {
namespace {

constexpr double kDaySeconds = 86400;

// Digits and marks of a text, taken from its front.
class CScanner {
 public:
  explicit CScanner(std::string_view text) : text_(text) {}

  bool AtEnd() const { return text_.empty(); }
  bool Take(char mark) {
    if (text_.empty() || text_.front() != mark) return false;
    text_.remove_prefix(1);
    return true;
  }
  // A number of `least` to `most` digits.
  bool Digits(std::size_t least, std::size_t most, std::int64_t* number) {
    std::size_t count = 0;
    *number = 0;
    while (count < text_.size() && count < most && text_[count] >= '0' && text_[count] <= '9') {
      *number = *number * 10 + (text_[count++] - '0');
    }
    text_.remove_prefix(count);
    return count >= least;
  }
  // The digits behind a decimal point, as a fraction.
  bool Fraction(double* fraction) {
    double unit = 0.1;
    *fraction = 0;
    std::size_t count = 0;
    for (; count < text_.size() && text_[count] >= '0' && text_[count] <= '9'; ++count) {
      *fraction += (text_[count] - '0') * unit;
      unit /= 10;
    }
    text_.remove_prefix(count);
    return count > 0;
  }

 private:
  std::string_view text_;
};

bool ScanDate(CScanner* in, double* serial) {
  std::int64_t year = 0;
  std::int64_t month = 0;
  std::int64_t day = 0;
  return in->Digits(4, 4, &year) && in->Take('-') && in->Digits(2, 2, &month) && in->Take('-') &&
         in->Digits(2, 2, &day) && SerialOfDate(year, month, day, serial);
}

bool ScanTime(CScanner* in, double* fraction) {
  std::int64_t hours = 0;
  std::int64_t minutes = 0;
  std::int64_t seconds = 0;
  double part = 0;
  if (!in->Digits(2, 2, &hours) || !in->Take(':') || !in->Digits(2, 2, &minutes)) return false;
  if (in->Take(':')) {
    if (!in->Digits(2, 2, &seconds)) return false;
    if (in->Take('.') && !in->Fraction(&part)) return false;
  }
  in->Take('Z');
  const double all = static_cast<double>(hours * 3600 + minutes * 60 + seconds) + part;
  if (minutes > 59 || seconds > 60 || all > kDaySeconds + 1) return false;
  *fraction = all / kDaySeconds;
  return true;
}

// A number format without what stands in it as text, in lower case; only its first section counts.
std::string FormatLetters(std::string_view format, bool* elapsed) {
  std::string letters;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char c = format[i];
    if (c == '\\' || c == '_' || c == '*') {
      ++i;
    } else if (c == '"') {
      i = std::min(format.find('"', i + 1), format.size());
    } else if (c == '[') {
      const std::size_t end = std::min(format.find(']', i + 1), format.size());
      const std::string_view inside = format.substr(i + 1, end - i - 1);
      for (const char* const unit : {"h", "hh", "m", "mm", "s", "ss"}) {
        *elapsed = *elapsed || EqualIgnoringCase(inside, unit);
      }
      i = end;
    } else if (c == ';') {
      break;
    } else {
      letters += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
  }
  return letters;
}

}  // namespace

ISO_MOMENT ParseIsoMoment(std::string_view text) {
  ISO_MOMENT moment;
  CScanner time(text);
  if (ScanTime(&time, &moment.serial) && time.AtEnd()) {
    moment.kind = DATE_KIND::SerialTime;
    return moment;
  }
  CScanner in(text);
  double fraction = 0;
  if (!ScanDate(&in, &moment.serial)) return {};
  if (in.AtEnd()) {
    moment.kind = DATE_KIND::SerialDate;
    return moment;
  }
  if ((!in.Take('T') && !in.Take(' ')) || !ScanTime(&in, &fraction) || !in.AtEnd()) return {};
  moment.kind = DATE_KIND::SerialMoment;
  moment.serial += fraction;
  return moment;
}

DATE_KIND SheetDateKind(std::string_view format) {
  bool elapsed = false;
  const std::string letters = FormatLetters(format, &elapsed);
  if (letters.find("general") != std::string::npos) return DATE_KIND::None;
  const auto has = [&](const char* wanted) {
    return letters.find_first_of(wanted) != std::string::npos;
  };
  // "m" alone may be a month or minutes; it never stands beside digits' places.
  const bool number = has("0#?") && !has("dyhs");
  if (number) return DATE_KIND::None;
  const bool time = elapsed || has("hs");
  const bool date = has("dy") || (has("m") && !time);
  if (date) return time ? DATE_KIND::SerialMoment : DATE_KIND::SerialDate;
  return time ? DATE_KIND::SerialTime : DATE_KIND::None;
}

}  // namespace statrn32
