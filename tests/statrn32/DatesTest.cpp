#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "statrn32/Dates.h"

using namespace statrn32;  // NOLINT: the tested names

namespace {

using K = DATE_KIND;

TEST(Dates, FormatsTellTheirKind) {
  const struct {
    DATE_KIND (*classify)(std::string_view);
    const char* format;
    DATE_KIND kind;
  } cases[] = {
      {SpssDateKind, "F8.2", K::None},
      {SpssDateKind, "DATE11", K::SecondDate},
      {SpssDateKind, "EDATE10", K::SecondDate},
      {SpssDateKind, "SDATE10", K::SecondDate},
      {SpssDateKind, "DATETIME23.2", K::Seconds},
      {SpssDateKind, "YMDHMS20", K::Seconds},
      {SpssDateKind, "TIME11.2", K::TimeOfDay},
      {SpssDateKind, "DTIME14", K::Duration},
      {SpssDateKind, "QYR6", K::SecondQuarter},
      {SpssDateKind, "MOYR8", K::SecondMonth},
      {SpssDateKind, "WKYR10", K::SecondWeek},
      {SpssDateKind, "WKDAY9", K::WeekdayNumber},
      {SpssDateKind, "MONTH9", K::MonthNumber},
      {StataDateKind, "%9.0g", K::None},
      {StataDateKind, "%12s", K::None},
      {StataDateKind, "%td", K::DayDate},
      {StataDateKind, "%-tdCCYY.NN.DD", K::DayDate},
      {StataDateKind, "%d", K::DayDate},
      {StataDateKind, "%tcHH:MM:SS", K::Millis},
      {StataDateKind, "%tC", K::Millis},
      {StataDateKind, "%tw", K::WeekCount},
      {StataDateKind, "%tm", K::MonthCount},
      {StataDateKind, "%tq", K::QuarterCount},
      {StataDateKind, "%th", K::HalfCount},
      {StataDateKind, "%ty", K::YearNumber},
      {StataDateKind, "%tbcalendar", K::None},
      {StataDateKind, "%t", K::None},
      {StataDateKind, "", K::None},
      {SasDateKind, "BEST12", K::None},
      {SasDateKind, "DATE9", K::DayDate},
      {SasDateKind, "DATE", K::DayDate},
      {SasDateKind, "date9.", K::DayDate},
      {SasDateKind, "YYMMDDD10", K::DayDate},
      {SasDateKind, "DDMMYYP8.", K::DayDate},
      {SasDateKind, "E8601DA10.", K::DayDate},
      {SasDateKind, "E8601DT19.3", K::Seconds},
      {SasDateKind, "E8601DN10.", K::Seconds},
      {SasDateKind, "DATETIME22.3", K::Seconds},
      {SasDateKind, "TIME8", K::TimeOfDay},
      {SasDateKind, "HHMM5", K::TimeOfDay},
      {SasDateKind, "MONYY7", K::DayMonth},
      {SasDateKind, "YYQ6", K::DayQuarter},
      {SasDateKind, "YEAR4", K::DayYear},
      {SasDateKind, "DAYS", K::None},
      {SasDateKind, "TIMELY", K::None},
      {SasDateKind, "DATEFMT", K::None},
  };
  for (const auto& c : cases) EXPECT_EQ(c.classify(c.format), c.kind) << c.format;
}

TEST(Dates, FormatsAreSplit) {
  const struct {
    const char* format;
    const char* name;
    int width;
    int decimals;
  } cases[] = {
      {"F8.2", "F", 8, 2},      {"A255", "A", 255, -1},
      {"%9.0g", "g", 9, 0},     {"%-12s", "s", 12, -1},
      {"%12.3fc", "fc", 12, 3}, {"%9,2f", "f", 9, 2},
      {"BEST", "BEST", -1, -1}, {"E8601DA10.", "E8601DA", 10, -1},
      {"8.2", "", 8, 2},        {"", "", -1, -1},
      {"%td", "td", -1, -1},    {"F99999999999.1", "F", 99999, 1},
  };
  for (const auto& c : cases) {
    const FORMAT_PARTS parts = SplitFormat(c.format);
    EXPECT_EQ(parts.name, c.name) << c.format;
    EXPECT_EQ(parts.width, c.width) << c.format;
    EXPECT_EQ(parts.decimals, c.decimals) << c.format;
  }
}

TEST(Dates, NumbersBecomeCalendarPartsAndText) {
  constexpr double kNotADate = std::numeric_limits<double>::infinity();
  const struct {
    DATE_KIND kind;
    std::int64_t epoch;
    double value;
    bool inCalendar;
    std::int32_t part1;
    std::int32_t part2;
    const char* text;
  } cases[] = {
      {K::SecondDate, kSpssEpochDay, 0, true, 15821014, 0, "1582-10-14"},
      {K::SecondDate, kSpssEpochDay, 13630723200.0, true, 20140922, 0, "2014-09-22"},
      {K::Seconds, kSpssEpochDay, 86399.9995, true, 15821015, 0, "1582-10-15T00:00:00"},
      {K::Seconds, kSpssEpochDay, 43870.09, true, 15821014, 43870090, "1582-10-14T12:11:10.09"},
      {K::TimeOfDay, kSpssEpochDay, 86399.5, true, 0, 86399500, "23:59:59.5"},
      {K::TimeOfDay, kSpssEpochDay, 86400, false, 0, 0, "24:00:00"},
      {K::TimeOfDay, kSpssEpochDay, -61, false, 0, 0, "-00:01:01"},
      {K::Duration, kSpssEpochDay, 93784, false, 0, 0, "P1DT2H3M4S"},
      {K::Duration, kSpssEpochDay, -1.5, false, 0, 0, "-P0DT0H0M1.5S"},
      {K::DayDate, kSasEpochDay, 0, true, 19600101, 0, "1960-01-01"},
      {K::DayDate, kSasEpochDay, -1, true, 19591231, 0, "1959-12-31"},
      {K::DayDate, kSasEpochDay, 14669, true, 20000229, 0, "2000-02-29"},
      {K::DayDate, kSasEpochDay, -715509, true, 10101, 0, "0001-01-01"},
      {K::DayDate, kSasEpochDay, -715510, false, 0, 0, "-715510"},
      {K::DayDate, kSasEpochDay, 2936549, true, 99991231, 0, "9999-12-31"},
      {K::DayDate, kSasEpochDay, 2936550, false, 0, 0, "2936550"},
      {K::Seconds, kSasEpochDay, -0.5, true, 19591231, 86399500, "1959-12-31T23:59:59.5"},
      {K::Millis, kSasEpochDay, 1764549255000.0, true, 20151201, 2055000, "2015-12-01T00:34:15"},
      {K::DayWeek, kSasEpochDay, 7, false, 0, 0, "1960-W02"},
      {K::SecondMonth, kSpssEpochDay, 13630723200.0, false, 0, 0, "2014-09"},
      {K::SecondQuarter, kSpssEpochDay, 13630723200.0, false, 0, 0, "2014-Q3"},
      {K::DayYear, kSasEpochDay, 366, false, 0, 0, "1961"},
      {K::WeekCount, kSasEpochDay, 51, false, 0, 0, "1960-W52"},
      {K::WeekCount, kSasEpochDay, -1, false, 0, 0, "1959-W52"},
      {K::MonthCount, kSasEpochDay, 656, false, 0, 0, "2014-09"},
      {K::QuarterCount, kSasEpochDay, 218, false, 0, 0, "2014-Q3"},
      {K::HalfCount, kSasEpochDay, 109, false, 0, 0, "2014-H2"},
      {K::YearNumber, kSasEpochDay, 2014, false, 0, 0, "2014"},
      {K::YearNumber, kSasEpochDay, 0, false, 0, 0, "0"},
      {K::MonthCount, kSasEpochDay, 0.5, false, 0, 0, "0.5"},
      {K::WeekdayNumber, kSpssEpochDay, 1, false, 0, 0, "Sunday"},
      {K::WeekdayNumber, kSpssEpochDay, 8, false, 0, 0, "8"},
      {K::MonthNumber, kSpssEpochDay, 12, false, 0, 0, "December"},
      {K::SerialDate, kSerialEpochDay, 1, true, 19000101, 0, "1900-01-01"},
      {K::SerialDate, kSerialEpochDay, -2, true, 18991229, 0, "1899-12-29"},
      {K::SerialDate, kSerialEpochDay, 59, true, 19000228, 0, "1900-02-28"},
      {K::SerialDate, kSerialEpochDay, 61, true, 19000301, 0, "1900-03-01"},
      {K::SerialDate, kSerial1904EpochDay, 1, true, 19040102, 0, "1904-01-02"},
      {K::SerialMoment, kSerialEpochDay, 41689.604166666664, true, 20140219, 52200000,
       "2014-02-19T14:30:00"},
      {K::SerialTime, kSerialEpochDay, 0.75, true, 0, 64800000, "18:00:00"},
      {K::DayMoment, kSerialEpochDay, 44532, true, 20211202, 0, "2021-12-02T00:00:00"},
      {K::DayDate, kParadoxEpochDay, 1, true, 10101, 0, "0001-01-01"},
      {K::DayDate, kMatlabEpochDay, 719529, true, 19700101, 0, "1970-01-01"},
      {K::Seconds, kSpssEpochDay, 6306150067200.0, false, 0, 0, "6306150067200"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FormatDateValue(c.kind, c.epoch, c.value), c.text);
    const std::int32_t display = DisplayOf(c.kind);
    if (display != 4 && display != 8 && display != 16) continue;
    std::int32_t part1 = 0;
    std::int32_t part2 = 0;
    EXPECT_EQ(CalendarParts(c.kind, c.epoch, c.value, &part1, &part2), c.inCalendar) << c.text;
    if (!c.inCalendar) continue;
    EXPECT_EQ(part1, c.part1) << c.text;
    EXPECT_EQ(part2, c.part2) << c.text;
  }
  std::int32_t part = 0;
  EXPECT_FALSE(CalendarParts(K::Seconds, kSpssEpochDay, kNotADate, &part, &part));
  EXPECT_FALSE(CalendarParts(K::Seconds, kSpssEpochDay, std::nan(""), &part, &part));
}

TEST(Dates, EveryDayFollowsTheOneBefore) {
  std::int32_t before = 0;
  std::int32_t part1 = 0;
  std::int32_t part2 = 0;
  for (std::int64_t day = -715509; day <= 2936549; ++day) {
    ASSERT_TRUE(CalendarParts(K::DayDate, kSasEpochDay, static_cast<double>(day), &part1, &part2));
    const int step = part1 - before;
    ASSERT_TRUE(before == 0 || step == 1 || part1 % 100 == 1) << before << " " << part1;
    before = part1;
  }
  EXPECT_EQ(before, 99991231);
}

TEST(Dates, TextsOfDatesAreRead) {
  const struct {
    const char* text;
    DATE_KIND kind;
    double serial;
  } cases[] = {
      {"2020-01-31", K::SerialDate, 43861},
      {"1900-03-01", K::SerialDate, 61},
      {"1900-02-28", K::SerialDate, 59},
      {"1899-12-29", K::SerialDate, -2},
      {"2014-02-19T14:30", K::SerialMoment, 41689 + 52200.0 / 86400},
      {"2014-02-19 14:30:00Z", K::SerialMoment, 41689 + 52200.0 / 86400},
      {"06:00:00.5", K::SerialTime, 21600.5 / 86400},
      {"2020-02-30", K::None, 0},
      {"2020-13-01", K::None, 0},
      {"2020-01-31 ", K::None, 0},
      {"2020-01-31T25:00", K::None, 0},
      {"20200131", K::None, 0},
      {"1:2", K::None, 0},
      {"", K::None, 0},
  };
  for (const auto& c : cases) {
    const ISO_MOMENT moment = ParseIsoMoment(c.text);
    EXPECT_EQ(moment.kind, c.kind) << c.text;
    if (c.kind == K::None) continue;
    EXPECT_DOUBLE_EQ(moment.serial, c.serial) << c.text;
  }
}

TEST(Dates, NumberFormatsOfSheetsTellTheirKind) {
  const std::pair<const char*, DATE_KIND> cases[] = {
      {"General", K::None},
      {"0.00", K::None},
      {"#,##0 \"days\"", K::None},
      {"[Red]0", K::None},
      {"0.0E+00", K::None},
      {"@", K::None},
      {"yyyy-mm-dd", K::SerialDate},
      {"[$-407]d. mmmm yyyy;@", K::SerialDate},
      {"mmm", K::SerialDate},
      {"m/d/yy h:mm", K::SerialMoment},
      {"YYYY\\-MM\\-DD\\ HH:MM:SS", K::SerialMoment},
      {"[h]:mm:ss", K::SerialTime},
      {"mm:ss.0", K::SerialTime},
      {"hh:mm AM/PM", K::SerialTime},
  };
  for (const auto& [format, kind] : cases) EXPECT_EQ(SheetDateKind(format), kind) << format;
}

}  // namespace
