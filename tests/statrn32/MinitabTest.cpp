// Minitab portable worksheets as they are written: the layout, what comes back, what is refused.
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

constexpr std::int32_t kMinitab = 37;

Table NumbersTable(const std::vector<std::string>& names,
                   const std::vector<std::vector<Value>>& records) {
  Table table;
  for (const std::string& name : names) {
    table.columns.push_back({name, "", ST_TYPE_NUMERIC, 12, 4, {}});
  }
  table.records = records;
  return table;
}

// As release 9 wrote the same numbers, but for the first line.
TEST(MinitabWriter, LaysLinesOutAsTheProgramDoes) {
  TempFolder folder;
  const std::string name = folder.Name("t.mtp");
  const Table table = NumbersTable({"control", "x"}, {{Number(1202.599976), Number(-1.5)},
                                                      {Number(830.0999756), Missing()},
                                                      {Number(94.99999237), Number(2e-120)},
                                                      {Number(0.99999994), Number(0)},
                                                      {Number(4.9), Number(-1e-200)},
                                                      {Number(15), Number(7)}});
  ASSERT_EQ(WriteFile(table, kMinitab, name).error, "");
  const std::string bytes = BytesOf(name);
  const std::string dot = ".\n";
  EXPECT_EQ(bytes.substr(81),
            "%      3      1      6      0 control" + std::string(42, ' ') + dot +
                " 1.202599976E+03 8.300999756E+02 9.499999237E+01 9.999999400E-01 4.900000000E+00\n"
                " 1.500000000E+01" +
                std::string(63, ' ') + dot + "%      3      2      6      0 x" +
                std::string(48, ' ') + dot +
                "-1.500000000E+00 1.234560000E+30 2.00000000E-120 0.000000000E+00-1.00000000E-200\n"
                " 7.000000000E+00" +
                std::string(63, ' ') + dot);
  EXPECT_EQ(bytes.find('\n'), 80U);
  EXPECT_TRUE(bytes.starts_with("Minitab Portable Worksheet P1.1 "));
}

TEST(MinitabWriter, BlocksOfManyRecordsJoin) {
  TempFolder folder;
  const std::string name = folder.Name("t.mtp");
  Table table = NumbersTable({"A", "B"}, {});
  for (int i = 0; i < 300007; ++i) {
    table.records.push_back({Number(i), i % 3 == 0 ? Missing() : Number(-i / 8.0)});
  }
  ASSERT_EQ(WriteFile(table, kMinitab, name).error, "");
  const Table back = ReadFile(kMinitab, name);
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), table.records.size());
  for (std::size_t i = 0; i < back.records.size(); ++i) {
    ASSERT_EQ(back.records[i][0].number, table.records[i][0].number);
    ASSERT_EQ(back.records[i][1].status, table.records[i][1].status);
    ASSERT_EQ(back.records[i][1].number, table.records[i][1].number);
  }
}

TEST(MinitabWriter, KeepsTenDigits) {
  TempFolder folder;
  const std::string name = folder.Name("t.mtp");
  Table table = NumbersTable({"A"}, {});
  const std::vector<double> numbers = {1.0 / 3, -2.0 / 3, 9999999999, 1.19e30, -1e-300, 0.1};
  for (const double x : numbers) table.records.push_back({Number(x)});
  ASSERT_EQ(WriteFile(table, kMinitab, name).error, "");
  const Table back = ReadFile(kMinitab, name);
  ASSERT_EQ(back.records.size(), numbers.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const double tolerance = i < 2 ? 5e-10 : 0;
    EXPECT_NEAR(back.records[i][0].number, numbers[i], tolerance) << numbers[i];
  }
}

TEST(MinitabWriter, RefusesWhatItCannotHold) {
  TempFolder folder;
  const std::string name = folder.Name("t.mtp");
  EXPECT_THAT(
      WriteFile(NumbersTable({"A"}, {{Number(1)}, {Number(1.23456e30)}}), kMinitab, name).error,
      HasSubstr("the variable A in record 2 is too large"));
  Table texts = NumbersTable({"A"}, {});
  texts.columns[0].type = ST_TYPE_STRING;
  EXPECT_THAT(WriteFile(texts, kMinitab, name).error, HasSubstr("only numbers"));
}

TEST(MinitabWriter, AFileWithoutRecordsKeepsItsNames) {
  TempFolder folder;
  const std::string name = folder.Name("t.mtp");
  ASSERT_EQ(WriteFile(NumbersTable({"A", "a long name"}, {}), kMinitab, name).error, "");
  const Table back = ReadFile(kMinitab, name);
  EXPECT_EQ(back.error, "");
  ASSERT_EQ(back.columns.size(), 2U);
  EXPECT_EQ(back.columns[1].name, "a_long_n");
  EXPECT_TRUE(back.records.empty());
}

}  // namespace
