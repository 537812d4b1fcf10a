// What is written comes back: everything that each format can hold.
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/RoundTripFormats.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip, testing::ValuesIn(kFormats));

Table SmallTable() {
  Table table;
  table.columns = {{"AGE", "Age in years", ST_TYPE_NUMERIC, 5, 1, {}},
                   {"SEX", "", ST_TYPE_NUMERIC, 1, 0, {{1, "", 0, "male"}, {2, "", 0, "female"}}},
                   {"TOWN", "Where from", ST_TYPE_STRING, 12, 0, {}}};
  table.records = {{Number(41.5), Number(1), Text("Ulm")},
                   {Missing(), Number(2), Text("")},
                   {Number(-7), Missing(), Text("Bad Saulgau!")}};
  return table;
}

TEST_P(RoundTrip, KeepsDictionaryAndValues) {
  const Table table = SmallTable();
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.columns.size(), 3U);
  EXPECT_EQ(back.columns[0].name, "AGE");
  EXPECT_EQ(back.columns[0].label, GetParam().labels ? "Age in years" : "");
  EXPECT_EQ(back.columns[0].type, ST_TYPE_NUMERIC);
  if (GetParam().widths) {
    EXPECT_EQ(back.columns[0].width, 5);
    EXPECT_EQ(back.columns[0].decimals, 1);
  }
  EXPECT_EQ(back.columns[2].type, ST_TYPE_STRING);
  EXPECT_EQ(back.columns[2].label, GetParam().labels ? "Where from" : "");
  ASSERT_EQ(back.columns[1].labels.size(), GetParam().valueLabels ? 2U : 0U);
  if (GetParam().valueLabels) {
    EXPECT_EQ(back.columns[1].labels[1].value, 2);
    EXPECT_EQ(back.columns[1].labels[1].label, "female");
  }
  ASSERT_EQ(back.records.size(), 3U);
  EXPECT_EQ(back.records[0][0].number, 41.5);
  EXPECT_EQ(back.records[0][2].text, "Ulm");
  EXPECT_EQ(back.records[1][0].status, ST_STATUS_MISSING);
  EXPECT_EQ(back.records[1][0].number, 0);
  EXPECT_EQ(back.records[1][2].text, "");
  EXPECT_EQ(back.records[2][0].number, -7);
  EXPECT_EQ(back.records[2][1].status, ST_STATUS_MISSING);
  EXPECT_EQ(back.records[2][2].text, "Bad Saulgau!");
}

TEST_P(RoundTrip, KeepsNumbersExactly) {
  const Format& format = GetParam();
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 12, 3, {}}};
  for (const double x : {0.0, 1.0, -1.0, 0.1, 1.0 / 3, 99.0, 151.0, 152.0, -99.0, -100.0, -101.0,
                         2147483647.0, 2147483621.0, 9007199254740991.0, -999999.0, 1e-30,
                         3.14159265358979, format.largest, -format.largest}) {
    table.records.push_back({Number(x)});
  }
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), table.records.size());
  for (std::size_t i = 0; i < back.records.size(); ++i) {
    const double want = table.records[i][0].number;
    EXPECT_EQ(back.records[i][0].status, ST_STATUS_PRESENT) << want;
    EXPECT_LE(std::fabs(back.records[i][0].number - want), format.tolerance * std::fabs(want))
        << "record " << i << ": " << want;
  }
}

TEST_P(RoundTrip, KeepsOtherLettersAsFarAsTheFormatGoes) {
  Table table;
  table.columns = {{"A", "Größe in Ångström", ST_TYPE_STRING, 12, 0, {}}};
  table.records = {{Text("Köln")}};
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  EXPECT_EQ(back.records[0][0].text, GetParam().utf8 ? "Köln" : "Koln");
  if (!GetParam().labels) return;
  EXPECT_EQ(back.columns[0].label, GetParam().utf8 ? "Größe in Ångström" : "Grose in Angstrom");
}

TEST_P(RoundTrip, AFileWithoutRecordsIsWhole) {
  Table table = SmallTable();
  table.records.clear();
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  if (!GetParam().emptyFile) {
    EXPECT_THAT(back.error, HasSubstr("the file is empty"));
    return;
  }
  EXPECT_EQ(back.error, "");
  EXPECT_EQ(back.columns.size(), 3U);
  EXPECT_TRUE(back.records.empty());
}

TEST_P(RoundTrip, ManyRecordsFillManyBlocks) {
  Table table;
  table.columns = {{"N", "", ST_TYPE_NUMERIC, 8, 0, {}}, {"S", "", ST_TYPE_STRING, 12, 0, {}}};
  for (int i = 0; i < GetParam().records; ++i) {
    table.records.push_back({Number(i), Text("record " + std::to_string(i))});
  }
  ASSERT_EQ(There(table).error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.records.size(), table.records.size());
  for (std::size_t i = 0; i < back.records.size(); ++i) {
    ASSERT_EQ(back.records[i][0].number, static_cast<double>(i));
    ASSERT_EQ(back.records[i][1].text, table.records[i][1].text);
  }
}

TEST_P(RoundTrip, NamesAreMadeLegalAndTold) {
  Table table;
  for (const char* const name : {"", "1st answer", "a very long name of a variable", "OK", "ok",
                                 "with", "a very long name of a variables"}) {
    table.columns.push_back({name, "", ST_TYPE_NUMERIC, 8, 2, {}});
  }
  table.records = {std::vector<Value>(table.columns.size(), Number(1))};
  const Table written = There(table);
  ASSERT_EQ(written.error, "");
  const Table back = Back();
  ASSERT_EQ(back.error, "");
  ASSERT_EQ(back.columns.size(), table.columns.size());
  std::size_t changed = 0;
  for (std::size_t i = 0; i < back.columns.size(); ++i) {
    const std::string& name = back.columns[i].name;
    if (name == table.columns[i].name) continue;
    ++changed;
    EXPECT_THAT(written.renamed, testing::Contains(table.columns[i].name + ">" + name));
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(name, back.columns[j].name);
  }
  EXPECT_EQ(changed, written.renamed.size());
}

TEST_P(RoundTrip, TheNumberOfRecordsMustBeTheOneAnnounced) {
  const Table table = SmallTable();
  EXPECT_THAT(WriteFile(table, GetParam().type, Name(), 4).error, HasSubstr("4 were announced"));
  EXPECT_THAT(WriteFile(table, GetParam().type, Name(), 2).error, HasSubstr("more records than"));
}

TEST_P(RoundTrip, TooLargeANumberIsRefusedByName) {
  if (GetParam().infinite) return;
  Table table;
  table.columns = {{"BIG", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Number(1)}, {Number(std::numeric_limits<double>::max())}};
  EXPECT_THAT(There(table).error, testing::AllOf(HasSubstr("BIG"), HasSubstr("record 2")));
}

TEST_P(RoundTrip, TextLongerThanAnnouncedIsRefusedByName) {
  Table table;
  table.columns = {{"S", "", ST_TYPE_STRING, 3, 0, {}}};
  table.records = {{Text("four")}};
  EXPECT_THAT(There(table).error, testing::AllOf(HasSubstr("variable S"), HasSubstr("3 bytes")));
}

TEST_P(RoundTrip, AFullDiskIsToldAtTheEnd) {
  if (GetParam().seeks) return;
  Table table = SmallTable();
  const Table written = WriteFile(table, GetParam().type, "/dev/full");
  EXPECT_THAT(written.error, HasSubstr("No space left"));
}

TEST_P(RoundTrip, ATargetThatCannotBeCreatedIsNamed) {
  const Table written = WriteFile(SmallTable(), GetParam().type, "/nowhere/to/be/found");
  EXPECT_THAT(written.error,
              testing::AllOf(HasSubstr("/nowhere/to/be/found"), HasSubstr("No such file")));
}

}  // namespace
