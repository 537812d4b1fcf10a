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
  DayMoment,      // days since the epoch with a fraction, shown as date and time
  SerialDate,     // the same two in a spreadsheet, which may count 1900-02-29 as a day
  SerialMoment,
  SerialTime,  // a fraction of a day, shown as a time
};

// Days from 1970-01-01 back to the epochs of the families.
inline constexpr std::int64_t kSpssEpochDay = -141428;       // 1582-10-14
inline constexpr std::int64_t kSasEpochDay = -3653;          // 1960-01-01; Stata's too
inline constexpr std::int64_t kSerialEpochDay = -25569;      // 1899-12-30: spreadsheets, Access
inline constexpr std::int64_t kSerial1904EpochDay = -24107;  // 1904-01-01: JMP and spreadsheets
inline constexpr std::int64_t kParadoxEpochDay = -719163;    // 0000-12-31
inline constexpr std::int64_t kMatlabEpochDay = -719529;     // the day before 0000-01-01

// Formats that write dates as text or as calendar numbers (dBASE, HTML, SQL) give them as serial
// numbers from kSerialEpochDay: whole days, the time of day as a fraction.
//
// The serial number of a day; false when there is no such day or the year is not 1 to 9999.
bool SerialOfDate(std::int64_t year, std::int64_t month, std::int64_t day, double* serial);
// The serial number of a day counted from 1970-01-01. Before 1900-03-01 it is one less than the
// days since the epoch, as in spreadsheets.
double SerialOfDay(std::int64_t day);

// A date, a time or both as ISO 8601 writes them ("2020-01-31", "13:45:10.5",
// "2020-01-31 13:45" with a blank or a T; a closing Z is left out of account). None when `text` is
// anything else.
struct ISO_MOMENT {
  DATE_KIND kind = DATE_KIND::None;  // SerialDate, SerialMoment or SerialTime
  double serial = 0;
};
ISO_MOMENT ParseIsoMoment(std::string_view text);

// What a spreadsheet's number format shows ("dd.mm.yyyy", "[h]:mm:ss", "0.00"): SerialDate,
// SerialMoment, SerialTime or None. Texts in quotes, in brackets and behind a backslash do not
// count.
DATE_KIND SheetDateKind(std::string_view format);

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
