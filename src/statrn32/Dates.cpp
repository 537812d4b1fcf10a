#include "statrn32/Dates.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "host/Numbers.h"
#include "host/statrn32.h"

namespace statrn32 {
namespace {

constexpr std::int64_t kDayMillis = 86'400'000;
constexpr double kLargestMillis = 4e14;  // beyond year 9999 from any epoch
constexpr int kEpochYear = 1960;         // of the families that count weeks, months and quarters

struct CIVIL {
  std::int64_t year = 0;
  int month = 0;
  int day = 0;
};

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
  return a / b - (a % b != 0 && (a < 0) != (b < 0));
}

// Day number 0 is 1970-01-01 of the Gregorian calendar, extended to all years. Years are counted
// from March so that a leap day is a year's last.
CIVIL CivilOfDay(std::int64_t day) {
  constexpr std::int64_t kDaysOfEra = 146097;  // 400 years
  const std::int64_t shifted = day + 719468;   // from 0000-03-01
  const std::int64_t era = FloorDiv(shifted, kDaysOfEra);
  const std::int64_t dayOfEra = shifted - era * kDaysOfEra;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t fromMarch = (5 * dayOfYear + 2) / 153;
  const int month = static_cast<int>(fromMarch < 10 ? fromMarch + 3 : fromMarch - 9);
  const int dayOfMonth = static_cast<int>(dayOfYear - (153 * fromMarch + 2) / 5 + 1);
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, dayOfMonth};
}

std::int64_t DayOfCivil(std::int64_t year, int month, int day) {
  const std::int64_t y = month <= 2 ? year - 1 : year;
  const std::int64_t era = FloorDiv(y, 400);
  const std::int64_t yearOfEra = y - era * 400;
  const std::int64_t fromMarch = month > 2 ? month - 3 : month + 9;
  const std::int64_t dayOfYear = (153 * fromMarch + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

// How many milliseconds one unit of the kind has; 0 when it does not count time from the epoch.
std::int64_t UnitMillis(DATE_KIND kind) {
  switch (kind) {
    case DATE_KIND::DayDate:
    case DATE_KIND::DayWeek:
    case DATE_KIND::DayMonth:
    case DATE_KIND::DayQuarter:
    case DATE_KIND::DayYear:
    case DATE_KIND::DayMoment:
    case DATE_KIND::SerialDate:
    case DATE_KIND::SerialMoment:
    case DATE_KIND::SerialTime:
      return kDayMillis;
    case DATE_KIND::SecondDate:
    case DATE_KIND::Seconds:
    case DATE_KIND::TimeOfDay:
    case DATE_KIND::Duration:
    case DATE_KIND::SecondWeek:
    case DATE_KIND::SecondMonth:
    case DATE_KIND::SecondQuarter:
    case DATE_KIND::SecondYear:
      return 1000;
    case DATE_KIND::Millis:
      return 1;
    default:
      return 0;
  }
}

struct MOMENT {
  CIVIL date;
  std::int64_t day = 0;     // since 1970-01-01
  std::int64_t millis = 0;  // since midnight
};

bool MillisOf(DATE_KIND kind, double value, std::int64_t* millis) {
  const auto unit = static_cast<double>(UnitMillis(kind));
  if (unit == 0 || !(std::fabs(value * unit) < kLargestMillis)) return false;
  *millis = std::llround(value * unit);
  return true;
}

// Spreadsheets that count from 1900 count 1900-02-29, which there never was, as day 60: the days
// before it stand one further from the epoch than their numbers say.
constexpr std::int64_t kFalseDay = 60;
std::int64_t LeapDayOf1900(DATE_KIND kind, std::int64_t epochDay, std::int64_t days) {
  const bool serial = kind == DATE_KIND::SerialDate || kind == DATE_KIND::SerialMoment;
  return serial && epochDay == kSerialEpochDay && days < kFalseDay ? 1 : 0;
}

bool MomentOf(DATE_KIND kind, std::int64_t epochDay, double value, MOMENT* moment) {
  std::int64_t millis = 0;
  if (!MillisOf(kind, value, &millis)) return false;
  const std::int64_t days = FloorDiv(millis, kDayMillis);
  moment->day = epochDay + days + LeapDayOf1900(kind, epochDay, days);
  moment->millis = millis - days * kDayMillis;
  moment->date = CivilOfDay(moment->day);
  return moment->date.year >= 1 && moment->date.year <= 9999;
}

bool IsTime(DATE_KIND kind) {
  return kind == DATE_KIND::TimeOfDay || kind == DATE_KIND::SerialTime;
}

void AppendPadded(std::int64_t number, std::size_t digits, std::string* out) {
  const std::string text = std::to_string(number);
  if (text.size() < digits) out->append(digits - text.size(), '0');
  *out += text;
}

std::string DateText(const CIVIL& date) {
  std::string text;
  AppendPadded(date.year, 4, &text);
  text += '-';
  AppendPadded(date.month, 2, &text);
  text += '-';
  AppendPadded(date.day, 2, &text);
  return text;
}

// Hours may exceed a day; a fraction of a second is shown only where there is one.
std::string TimeText(std::int64_t millis) {
  std::string text = millis < 0 ? "-" : "";
  const std::int64_t size = std::abs(millis);
  AppendPadded(size / 3'600'000, 2, &text);
  text += ':';
  AppendPadded(size / 60'000 % 60, 2, &text);
  text += ':';
  AppendPadded(size / 1000 % 60, 2, &text);
  if (size % 1000 != 0) {
    text += '.';
    AppendPadded(size % 1000, 3, &text);
    while (text.back() == '0') text.pop_back();
  }
  return text;
}

std::string DurationText(std::int64_t millis) {
  const std::int64_t size = std::abs(millis);
  std::string text = millis < 0 ? "-P" : "P";
  text += std::to_string(size / kDayMillis) + "DT";
  text += std::to_string(size / 3'600'000 % 24) + "H";
  text += std::to_string(size / 60'000 % 60) + "M";
  text += FormatShortest(static_cast<double>(size % 60'000) / 1000) + "S";
  return text;
}

std::string PartText(std::int64_t year, const char* mark, std::int64_t part, std::size_t digits) {
  std::string text;
  AppendPadded(year, 4, &text);
  text += mark;
  AppendPadded(part, digits, &text);
  return text;
}

// Week of the year as the packages count them: week 1 begins on the first of January.
std::string WeekText(const MOMENT& moment) {
  const std::int64_t dayOfYear = moment.day - DayOfCivil(moment.date.year, 1, 1);
  return PartText(moment.date.year, "-W", dayOfYear / 7 + 1, 2);
}

std::string MomentText(DATE_KIND kind, const MOMENT& moment) {
  const CIVIL& date = moment.date;
  switch (kind) {
    case DATE_KIND::DayDate:
    case DATE_KIND::SecondDate:
    case DATE_KIND::SerialDate:
      return DateText(date);
    case DATE_KIND::Seconds:
    case DATE_KIND::Millis:
    case DATE_KIND::DayMoment:
    case DATE_KIND::SerialMoment:
      return DateText(date) + "T" + TimeText(moment.millis);
    case DATE_KIND::DayWeek:
    case DATE_KIND::SecondWeek:
      return WeekText(moment);
    case DATE_KIND::DayMonth:
    case DATE_KIND::SecondMonth:
      return PartText(date.year, "-", date.month, 2);
    case DATE_KIND::DayQuarter:
    case DATE_KIND::SecondQuarter:
      return PartText(date.year, "-Q", (date.month - 1) / 3 + 1, 1);
    default:
      return PartText(date.year, "", 0, 0).substr(0, 4);
  }
}

// Weeks, months, quarters and half years counted from the start of the epoch's year.
std::string CountText(std::int64_t count, int perYear, const char* mark, std::size_t digits) {
  const std::int64_t year = kEpochYear + FloorDiv(count, perYear);
  return PartText(year, mark, count - FloorDiv(count, perYear) * perYear + 1, digits);
}

constexpr std::array kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                  "Thursday", "Friday", "Saturday"};
constexpr std::array kMonths = {"January",   "February", "March",    "April",
                                "May",       "June",     "July",     "August",
                                "September", "October",  "November", "December"};

// Kinds whose number is small and whole; empty when the number does not fit its kind.
std::string WholeNumberText(DATE_KIND kind, std::int64_t number) {
  switch (kind) {
    case DATE_KIND::WeekCount:
      return CountText(number, 52, "-W", 2);
    case DATE_KIND::MonthCount:
      return CountText(number, 12, "-", 2);
    case DATE_KIND::QuarterCount:
      return CountText(number, 4, "-Q", 1);
    case DATE_KIND::HalfCount:
      return CountText(number, 2, "-H", 1);
    case DATE_KIND::YearNumber:
      return PartText(number, "", 0, 0).substr(0, 4);
    case DATE_KIND::WeekdayNumber:
      return number >= 1 && number <= 7 ? kWeekdays[static_cast<std::size_t>(number - 1)] : "";
    case DATE_KIND::MonthNumber:
      return number >= 1 && number <= 12 ? kMonths[static_cast<std::size_t>(number - 1)] : "";
    default:
      return {};
  }
}

std::string WholeNumberText(DATE_KIND kind, double value) {
  constexpr double kLargest = 9999.0 * 52;
  if (!(value == std::floor(value)) || std::fabs(value) > kLargest) return {};
  const auto number = static_cast<std::int64_t>(value);
  if (kind == DATE_KIND::YearNumber && (number < 1 || number > 9999)) return {};
  return WholeNumberText(kind, number);
}

}  // namespace

std::int32_t DisplayOf(DATE_KIND kind) {
  switch (kind) {
    case DATE_KIND::None:
      return 0;
    case DATE_KIND::DayDate:
    case DATE_KIND::SecondDate:
    case DATE_KIND::SerialDate:
      return ST_DISPLAY_DATE;
    case DATE_KIND::TimeOfDay:
    case DATE_KIND::SerialTime:
      return ST_DISPLAY_TIME;
    case DATE_KIND::Seconds:
    case DATE_KIND::Millis:
    case DATE_KIND::DayMoment:
    case DATE_KIND::SerialMoment:
      return ST_DISPLAY_DATETIME;
    default:
      return ST_DISPLAY_OTHER;
  }
}

bool CalendarParts(DATE_KIND kind, std::int64_t epochDay, double value, std::int32_t* part1,
                   std::int32_t* part2) {
  MOMENT moment;
  if (!MomentOf(kind, IsTime(kind) ? 0 : epochDay, value, &moment)) return false;
  const std::int32_t display = DisplayOf(kind);
  if (display == ST_DISPLAY_TIME && moment.day != 0) return false;
  const CIVIL& date = moment.date;
  const bool hasDate = display == ST_DISPLAY_DATE || display == ST_DISPLAY_DATETIME;
  *part1 =
      hasDate ? static_cast<std::int32_t>(date.year * 10000 + date.month * 100L + date.day) : 0;
  *part2 = display == ST_DISPLAY_DATE ? 0 : static_cast<std::int32_t>(moment.millis);
  return true;
}

std::string FormatDateValue(DATE_KIND kind, std::int64_t epochDay, double value) {
  std::string text;
  std::int64_t millis = 0;
  MOMENT moment;
  if (IsTime(kind) || kind == DATE_KIND::Duration) {
    if (MillisOf(kind, value, &millis)) {
      text = kind == DATE_KIND::Duration ? DurationText(millis) : TimeText(millis);
    }
  } else if (UnitMillis(kind) != 0) {
    if (MomentOf(kind, epochDay, value, &moment)) text = MomentText(kind, moment);
  } else {
    text = WholeNumberText(kind, value);
  }
  return text.empty() ? FormatShortest(value) : text;
}

bool SerialOfDate(std::int64_t year, std::int64_t month, std::int64_t day, double* serial) {
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31) return false;
  const std::int64_t number = DayOfCivil(year, static_cast<int>(month), static_cast<int>(day));
  if (CivilOfDay(number).day != day) return false;  // such as 30 February
  *serial = SerialOfDay(number);
  return true;
}

double SerialOfDay(std::int64_t day) {
  const std::int64_t days = day - kSerialEpochDay;
  return static_cast<double>(days > kFalseDay ? days : days - 1);
}

}  // namespace statrn32
