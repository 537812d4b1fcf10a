// What is written comes back at the ends of what each format can hold: dates, extreme numbers,
// values that are missing, long texts and names, one record, as many records and variables as
// there may be.
#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/RoundTripFormats.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

class RoundTripLimits : public RoundTrip {
 protected:
  static ST_FORMAT Limits() {
    ST_FORMAT format{};
    for (int i = 0; i < ST_GetNFormats(); ++i) {
      if (ST_GetFormat(i, &format) == 0 && format.code == GetParam().type) break;
    }
    return format;
  }
  void ExpectSame(double number, double wanted) {
    EXPECT_LE(std::fabs(number - wanted), GetParam().tolerance * std::fabs(wanted))
        << number << " instead of " << wanted;
  }
};
INSTANTIATE_TEST_SUITE_P(Formats, RoundTripLimits, testing::ValuesIn(kFormats));

// A date is the number that its source counts: serial days, days and seconds since 1960, seconds
// since 1582, milliseconds.
TEST_P(RoundTripLimits, DatesKeepTheirNumbers) {
  constexpr double kDates[] = {44532,           0.5,          -0.25, 22280, -21915, 13846204800.0,
                               1956528000000.0, 44532.640625, 1};
  Table table;
  table.columns = {{"WHEN", "", ST_TYPE_DATE, 20, 3, {}}, {"N", "", ST_TYPE_NUMERIC, 8, 0, {}}};
  for (const double date : kDates) table.records.push_back({Number(date), Number(1)});
  table.records.push_back({Missing(), Number(1)});
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), std::size(kDates) + 1);
  for (std::size_t i = 0; i < std::size(kDates); ++i) {
    EXPECT_EQ(back.records[i][0].status, ST_STATUS_PRESENT);
    ExpectSame(back.records[i][0].number, kDates[i]);
  }
  EXPECT_EQ(back.records.back()[0].status, ST_STATUS_MISSING);
}

TEST_P(RoundTripLimits, SmallAndLargeNumbersHaveTheirPlace) {
  const double largest = GetParam().largest;
  const double smallest = GetParam().smallest;
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 12, 3, {}}};
  for (const double x : {largest, -largest, smallest, -smallest, smallest * 1.5, -0.0, 1e-12,
                         123456789012.0, 1e22, 4503599627370497.5}) {
    if (std::fabs(x) <= largest) table.records.push_back({Number(x)});
  }
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), table.records.size());
  for (std::size_t i = 0; i < back.records.size(); ++i) {
    EXPECT_EQ(back.records[i][0].status, ST_STATUS_PRESENT) << table.records[i][0].number;
    ExpectSame(back.records[i][0].number, table.records[i][0].number);
  }
}

// Missing by a call, as no number, in the whole of a variable and at both ends of a file.
TEST_P(RoundTripLimits, MissingValuesStayMissing) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  Table table;
  table.columns = {{"SOME", "", ST_TYPE_NUMERIC, 8, 2, {}},
                   {"ALL", "", ST_TYPE_NUMERIC, 8, 2, {}},
                   {"TEXT", "", ST_TYPE_STRING, 4, 0, {}},
                   {"N", "", ST_TYPE_NUMERIC, 8, 0, {}}};
  table.records = {{Missing(), Missing(), Missing(), Number(1)},
                   {Number(-1), Missing(), Text("a"), Number(2)},
                   {Number(kNone), Number(kNone), Text("b"), Number(3)},
                   {Number(-999999), Missing(), Missing(), Number(4)},
                   {Missing(), Missing(), Missing(), Number(5)}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), 5U);
  // A sheet or page has no place for a variable without values but the name.
  const std::size_t count = back.columns.size();
  ASSERT_EQ(count, 4U);
  for (std::size_t i = 0; i < 5; ++i) {
    const bool present = i == 1 || i == 3;
    EXPECT_EQ(back.records[i][0].status == ST_STATUS_PRESENT, present) << i;
    if (back.columns[1].type != ST_TYPE_STRING) {
      EXPECT_EQ(back.records[i][1].status, ST_STATUS_MISSING) << i;
    } else {
      EXPECT_EQ(back.records[i][1].text, "") << i;
    }
    EXPECT_EQ(back.records[i][2].text, i == 1 ? "a" : i == 2 ? "b" : "") << i;
    EXPECT_EQ(back.records[i][3].number, static_cast<double>(i + 1));
  }
}

// Where a sheet ends is what its cells tell.
TEST_P(RoundTripLimits, RecordsWithoutValuesKeepTheirPlaces) {
  Table table;
  table.columns = {{"A", "", ST_TYPE_NUMERIC, 8, 2, {}}, {"B", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  const std::vector<Value> nothing = {Missing(), Missing()};
  table.records = {nothing, {Number(1), Missing()}, nothing, nothing, {Number(2), Number(3)}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.records.size(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    for (std::size_t k = 0; k < 2; ++k) {
      EXPECT_EQ(back.records[i][k].status, table.records[i][k].status) << i << " " << k;
    }
  }
  constexpr std::int32_t kSheets[] = {0, 7, 11, 31, 900, 901};
  const bool sheet = std::count(std::begin(kSheets), std::end(kSheets), GetParam().type) > 0;
  table.records.push_back(nothing);
  ASSERT_EQ(There(table).error, "");
  EXPECT_EQ(Back().records.size(), sheet ? 5U : 6U);
}

TEST_P(RoundTripLimits, OneRecordIsATable) {
  Table table;
  table.columns = {{"A", "", ST_TYPE_NUMERIC, 8, 2, {}}, {"B", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Number(1.25), Number(-2)}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), 1U);
  EXPECT_EQ(back.records[0][0].number, 1.25);
  EXPECT_EQ(back.records[0][1].number, -2);
}

TEST_P(RoundTripLimits, TheLongestTextIsWhole) {
  const ST_FORMAT limits = Limits();
  const auto bytes = static_cast<std::size_t>(std::min<std::int64_t>(limits.textBytes, 4000));
  std::string text;
  while (text.size() < bytes) text += static_cast<char>('a' + text.size() % 26);
  Table table;
  table.columns = {{"T", "", ST_TYPE_STRING, static_cast<int>(bytes), 0, {}}};
  table.records = {{Text(text)}, {Text("x")}, {Text(text)}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), 3U);
  EXPECT_EQ(back.records[0][0].text, text);
  EXPECT_EQ(back.records[1][0].text, "x");
  EXPECT_EQ(back.records[2][0].text, text);
  if (limits.textBytes >= std::numeric_limits<std::int32_t>::max()) return;
  table.columns[0].width = static_cast<int>(limits.textBytes) + 1;
  EXPECT_THAT(There(table).error, HasSubstr("room for " + std::to_string(limits.textBytes)));
}

// Letters of two bytes, as many as fit, up to the end of the field.
TEST_P(RoundTripLimits, TheLongestTextMayBeForeign) {
  if (!GetParam().utf8) return;
  const auto bytes = static_cast<std::size_t>(std::min<std::int64_t>(Limits().textBytes, 4000));
  std::string text;
  while (text.size() + 2 <= bytes) text += "ö";
  Table table;
  table.columns = {{"T", "", ST_TYPE_STRING, static_cast<int>(bytes), 0, {}},
                   {"N", "", ST_TYPE_NUMERIC, 8, 0, {}}};
  table.records = {{Text(text), Number(1)}, {Text("Ä"), Number(2)}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), 2U);
  EXPECT_EQ(back.records[0][0].text, text);
  EXPECT_EQ(back.records[1][0].text, "Ä");
  EXPECT_EQ(back.records[1][1].number, 2);
}

TEST_P(RoundTripLimits, LongAndForeignNamesStayApart) {
  Table table;
  for (const char* const name :
       {"Größe des Vaters in Zentimetern", "Größe des Vaters in Zentimetern, barfuß", "Größe",
        "Grösse", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "\xCE\xB1", "\xCE\xB2"}) {
    table.columns.push_back({name, "", ST_TYPE_NUMERIC, 8, 2, {}});
  }
  table.records = {{Number(1), Number(2), Number(3), Number(4), Number(5), Number(6), Number(7)}};
  const Table written = There(table);
  ASSERT_EQ(written.error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.columns.size(), 7U);
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(back.records[0][i].number, static_cast<double>(i + 1));
    EXPECT_LE(back.columns[i].name.size(), static_cast<std::size_t>(Limits().nameBytes));
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(back.columns[i].name, back.columns[j].name);
  }
}

// As many as there may be come back, one more is refused with the number. Where that would take
// long, only the refusal is looked at.
TEST_P(RoundTripLimits, NoMoreRecordsThanTheFormatHolds) {
  constexpr std::int64_t kFew = 100'000;
  const std::int64_t most = Limits().records;
  Table table;
  table.columns = {{"N", "", ST_TYPE_NUMERIC, 8, 0, {}}};
  if (most <= kFew) {
    for (std::int64_t i = 0; i < most; ++i) table.records.push_back({Number(1)});
    ASSERT_EQ(There(table).error, "");
    EXPECT_EQ(static_cast<std::int64_t>(Back().records.size()), most);
  }
  if (most == std::numeric_limits<std::int64_t>::max()) return;
  EXPECT_THAT(WriteFile(table, GetParam().type, Name(), most + 1).error,
              testing::AnyOf(HasSubstr("at most " + std::to_string(most)),
                             HasSubstr("more than 2,147,483,647")));
}

TEST_P(RoundTripLimits, NoMoreVariablesThanTheFormatHolds) {
  constexpr std::int64_t kFew = 2000;
  const std::int64_t most = Limits().variables;
  if (most > 40'000) return;
  Table table;
  for (std::int64_t i = 0; i < std::min(most, kFew); ++i) {
    table.columns.push_back({"V" + std::to_string(i), "", ST_TYPE_NUMERIC, 8, 0, {}});
  }
  table.records = {std::vector<Value>(table.columns.size(), Number(1))};
  ASSERT_EQ(There(table).error, "");
  EXPECT_EQ(Back().columns.size(), table.columns.size());
  while (static_cast<std::int64_t>(table.columns.size()) <= most) {
    table.columns.push_back(
        {"V" + std::to_string(table.columns.size()), "", ST_TYPE_NUMERIC, 8, 0, {}});
  }
  table.records.clear();
  EXPECT_THAT(There(table).error, HasSubstr(std::to_string(most)));
}

}  // namespace
