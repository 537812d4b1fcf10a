// Which display formats mean a date, family by family.
#include "host/Text.h"
#include "statrn32/Dates.h"

namespace statrn32 {
namespace {

struct DATE_FORMAT {
  std::string_view name;
  DATE_KIND kind;
  std::string_view suffixes = {};
};

char UpperAscii(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr DATE_FORMAT kSpssFormats[] = {
    {"DATE", DATE_KIND::SecondDate},   {"ADATE", DATE_KIND::SecondDate},
    {"EDATE", DATE_KIND::SecondDate},  {"JDATE", DATE_KIND::SecondDate},
    {"SDATE", DATE_KIND::SecondDate},  {"DATETIME", DATE_KIND::Seconds},
    {"YMDHMS", DATE_KIND::Seconds},    {"TIME", DATE_KIND::TimeOfDay},
    {"MTIME", DATE_KIND::TimeOfDay},   {"DTIME", DATE_KIND::Duration},
    {"QYR", DATE_KIND::SecondQuarter}, {"MOYR", DATE_KIND::SecondMonth},
    {"WKYR", DATE_KIND::SecondWeek},   {"WKDAY", DATE_KIND::WeekdayNumber},
    {"MONTH", DATE_KIND::MonthNumber},
};

// Names are matched whole, because a user's own format may begin like one of these. `suffixes` are
// the letters that may follow (the separator shown between the parts); "*" stands for any ending.
constexpr DATE_FORMAT kSasFormats[] = {
    {"DATETIME", DATE_KIND::Seconds},
    {"DATEAMPM", DATE_KIND::Seconds},
    {"MDYAMPM", DATE_KIND::Seconds},
    {"TOD", DATE_KIND::Seconds},
    {"E8601DT", DATE_KIND::Seconds},
    {"B8601DT", DATE_KIND::Seconds},
    {"IS8601DT", DATE_KIND::Seconds},
    {"E8601DX", DATE_KIND::Seconds},
    {"B8601DX", DATE_KIND::Seconds},
    {"E8601DZ", DATE_KIND::Seconds},
    {"B8601DZ", DATE_KIND::Seconds},
    {"NLDATM", DATE_KIND::Seconds, "*"},
    {"DTDATE", DATE_KIND::Seconds},
    {"DTWKDATX", DATE_KIND::Seconds},
    {"E8601DN", DATE_KIND::Seconds},
    {"B8601DN", DATE_KIND::Seconds},
    {"IS8601DN", DATE_KIND::Seconds},
    {"DTMONYY", DATE_KIND::SecondMonth},
    {"DTYEAR", DATE_KIND::SecondYear},
    {"DTYYQC", DATE_KIND::SecondQuarter},
    {"E8601TM", DATE_KIND::TimeOfDay},
    {"B8601TM", DATE_KIND::TimeOfDay},
    {"IS8601TM", DATE_KIND::TimeOfDay},
    {"E8601TZ", DATE_KIND::TimeOfDay},
    {"B8601TZ", DATE_KIND::TimeOfDay},
    {"E8601LZ", DATE_KIND::TimeOfDay},
    {"TIME", DATE_KIND::TimeOfDay},
    {"TIMEAMPM", DATE_KIND::TimeOfDay},
    {"HHMM", DATE_KIND::TimeOfDay},
    {"HOUR", DATE_KIND::TimeOfDay},
    {"MMSS", DATE_KIND::TimeOfDay},
    {"NLTIM", DATE_KIND::TimeOfDay, "*"},
    {"DATE", DATE_KIND::DayDate},
    {"E8601DA", DATE_KIND::DayDate},
    {"B8601DA", DATE_KIND::DayDate},
    {"IS8601DA", DATE_KIND::DayDate},
    {"JULIAN", DATE_KIND::DayDate},
    {"JULDAY", DATE_KIND::DayDate},
    {"WEEKDATE", DATE_KIND::DayDate},
    {"WEEKDATX", DATE_KIND::DayDate},
    {"WORDDATE", DATE_KIND::DayDate},
    {"WORDDATX", DATE_KIND::DayDate},
    {"MINGUO", DATE_KIND::DayDate},
    {"DAY", DATE_KIND::DayDate},
    {"DOWNAME", DATE_KIND::DayDate},
    {"WEEKDAY", DATE_KIND::DayDate},
    {"DDMMYY", DATE_KIND::DayDate, "BCDNPS"},
    {"MMDDYY", DATE_KIND::DayDate, "BCDNPS"},
    {"YYMMDD", DATE_KIND::DayDate, "BCDNPS"},
    {"NLDATE", DATE_KIND::DayDate, "*"},
    {"EURDF", DATE_KIND::DayDate, "*"},
    {"WEEK", DATE_KIND::DayWeek, "UVW"},
    {"MMYY", DATE_KIND::DayMonth, "BCDNPS"},
    {"YYMM", DATE_KIND::DayMonth, "BCDNPS"},
    {"MONYY", DATE_KIND::DayMonth},
    {"YYMON", DATE_KIND::DayMonth},
    {"MONNAME", DATE_KIND::DayMonth},
    {"MONTH", DATE_KIND::DayMonth},
    {"YYQR", DATE_KIND::DayQuarter, "BCDNPS"},
    {"YYQ", DATE_KIND::DayQuarter, "BCDNPS"},
    {"QTR", DATE_KIND::DayQuarter},
    {"QTRR", DATE_KIND::DayQuarter},
    {"YEAR", DATE_KIND::DayYear},
};

bool SasNameFits(std::string_view name, const DATE_FORMAT& row) {
  if (name.size() < row.name.size()) return false;
  if (!EqualIgnoringCase(name.substr(0, row.name.size()), row.name)) return false;
  const std::string_view rest = name.substr(row.name.size());
  if (rest.empty() || row.suffixes == "*") return true;
  return rest.size() == 1 && row.suffixes.find(UpperAscii(rest[0])) != std::string_view::npos;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

FORMAT_PARTS SplitFormat(std::string_view format) {
  FORMAT_PARTS parts;
  std::string_view text = Trimmed(format);
  while (!text.empty() && (text[0] == '%' || text[0] == '-' || text[0] == '~')) {
    text.remove_prefix(1);
  }
  const auto takeNumber = [](std::string_view digits) {
    int number = 0;
    for (const char c : digits) number = number > 9999 ? number : number * 10 + (c - '0');
    return number;
  };
  // "%9.2f" has its numbers in front, "F9.2" and "E8601DT19.3" behind.
  std::size_t begin = 0;
  std::size_t end = text.size();
  const bool inFront = !text.empty() && IsDigit(text[0]);
  if (inFront) {
    end = text.find_first_not_of("0123456789.,");
    if (end == std::string_view::npos) end = text.size();
  } else {
    begin = text.size();
    bool point = false;
    while (begin > 0 && (IsDigit(text[begin - 1]) || (text[begin - 1] == '.' && !point))) {
      point = point || text[begin - 1] == '.';
      --begin;
    }
  }
  parts.name = inFront ? text.substr(end) : text.substr(0, begin);
  const std::string_view numbers = text.substr(begin, end - begin);
  const std::size_t mark = numbers.find_first_of(".,");
  const std::string_view width = numbers.substr(0, mark);
  if (!width.empty()) parts.width = takeNumber(width);
  if (mark != std::string_view::npos && mark + 1 < numbers.size()) {
    parts.decimals = takeNumber(
        numbers.substr(mark + 1, numbers.find_first_not_of("0123456789", mark + 1) - mark - 1));
  }
  return parts;
}

DATE_KIND SpssDateKind(std::string_view format) {
  const std::string_view name = SplitFormat(format).name;
  for (const DATE_FORMAT& row : kSpssFormats) {
    if (EqualIgnoringCase(name, row.name)) return row.kind;
  }
  return DATE_KIND::None;
}

DATE_KIND SasDateKind(std::string_view format) {
  const std::string_view name = SplitFormat(format).name;
  for (const DATE_FORMAT& row : kSasFormats) {
    if (SasNameFits(name, row)) return row.kind;
  }
  return DATE_KIND::None;
}

DATE_KIND StataDateKind(std::string_view format) {
  std::string_view text = Trimmed(format);
  if (text.empty() || text[0] != '%') return DATE_KIND::None;
  text.remove_prefix(1);
  if (!text.empty() && (text[0] == '-' || text[0] == '~')) text.remove_prefix(1);
  if (!text.empty() && text[0] == 'd') return DATE_KIND::DayDate;
  if (text.size() < 2 || text[0] != 't') return DATE_KIND::None;
  switch (text[1]) {
    case 'd':
      return DATE_KIND::DayDate;
    case 'c':
    case 'C':
      return DATE_KIND::Millis;
    case 'w':
      return DATE_KIND::WeekCount;
    case 'm':
      return DATE_KIND::MonthCount;
    case 'q':
      return DATE_KIND::QuarterCount;
    case 'h':
      return DATE_KIND::HalfCount;
    case 'y':
      return DATE_KIND::YearNumber;
    default:
      return DATE_KIND::None;  // a business calendar counts days that only its own file knows
  }
}

}  // namespace statrn32
