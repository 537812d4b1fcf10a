// Dates as the statistical packages store them: a number that counts days, seconds or longer units
// from an epoch.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace statrn32 {

// What the number of a date variable counts. The value itself is never converted.
enum class DATE_KIND : std::uint8_t {
  None,        // not a date
  DayDate,     // days since the epoch
  SecondDate,  // seconds since the epoch, shown as a date
  Seconds,     // seconds since the epoch, shown as date and time
  Millis,      // milliseconds since the epoch, shown as date and time
  TimeOfDay,   // seconds since midnight
  Duration,    // seconds, shown as days and a time
  DayWeek,     // days since the epoch, shown as a week
  DayMonth,    // days since the epoch, shown as a month
  DayQuarter,  // days since the epoch, shown as a quarter
  DayYear,     // days since the epoch, shown as a year
  SecondWeek,  // the same four, counted in seconds
  SecondMonth,
  SecondQuarter,
  SecondYear,
  WeekCount,      // weeks since the epoch's year, 52 to a year
  MonthCount,     // months since the epoch's year
  QuarterCount,   // quarters since the epoch's year
  HalfCount,      // half years since the epoch's year
  YearNumber,     // the year itself
  WeekdayNumber,  // 1 (Sunday) to 7
  MonthNumber,    // 1 to 12
};

// Days from 1970-01-01 back to the epochs of the families.
inline constexpr std::int64_t kSpssEpochDay = -141428;  // 1582-10-14
inline constexpr std::int64_t kSasEpochDay = -3653;     // 1960-01-01; Stata's too

// ST_DISPLAY_... of a kind; 0 for None.
std::int32_t DisplayOf(DATE_KIND kind);

// The parts of ST_FromIDate. False when the number lies outside the calendar (years 1 to 9999, a
// day of 24 hours).
bool CalendarParts(DATE_KIND kind, std::int64_t epochDay, double value, std::int32_t* part1,
                   std::int32_t* part2);

// The number as text, in ISO 8601 where it is a date, a time or a duration; the plain number when
// it is none.
std::string FormatDateValue(DATE_KIND kind, std::int64_t epochDay, double value);

// What a display format says, by the rules of each family: "DATETIME20" (SPSS), "%tcHH:MM" (Stata),
// "E8601DT19.3" (SAS).
DATE_KIND SpssDateKind(std::string_view format);
DATE_KIND StataDateKind(std::string_view format);
DATE_KIND SasDateKind(std::string_view format);

// Name, width and decimals of a format such as "F8.2", "%-9.0g" or "$CHAR20.": -1 where it has
// none.
struct FORMAT_PARTS {
  std::string_view name;  // without "%", "-" and the numbers
  int width = -1;
  int decimals = -1;
};
FORMAT_PARTS SplitFormat(std::string_view format);

}  // namespace statrn32
