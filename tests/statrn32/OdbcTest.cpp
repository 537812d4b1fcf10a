// Connection files: tables of a database by way of its ODBC driver.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

constexpr std::int32_t kMsSql = 28;
constexpr std::int32_t kSqlite = 902;

Table People() {
  Table table;
  table.columns = {{"NAME", "", ST_TYPE_STRING, 20, 0, {}}, {"AGE", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Text("Käthe"), Number(41.5)}, {Text("O'Hara"), Missing()}};
  return table;
}

class Odbc : public testing::Test {
 protected:
  void SetUp() override {
    MakeFile(database_, "");
    MakeFile(file_, Connection("people"));
    const std::string error = WriteFile(People(), kMsSql, file_).error;
    const bool absent = error.find("not installed") != std::string::npos ||
                        error.find("SQLite3") != std::string::npos;
    if (absent) GTEST_SKIP() << "no ODBC driver for SQLite: " << error;
    ASSERT_EQ(error, "");
  }
  std::string Connection(const std::string& table) const {
    const std::string keys = "[ODBC]\nDRIVER=SQLite3\nDATABASE=" + database_ + "\n";
    return table.empty() ? keys : keys + "\n[TABLE]\nNAME=" + table + "\n";
  }

  TempFolder folder_;
  std::string database_ = folder_.Name("people.sqlite");
  std::string file_ = folder_.Name("people.sql");
};

void ExpectPeople(const Table& table, std::size_t from) {
  ASSERT_EQ(table.error, "");
  ASSERT_EQ(table.columns.size(), 2U);
  EXPECT_EQ(table.columns[0].type, ST_TYPE_STRING);
  EXPECT_EQ(table.columns[1].name, "AGE");
  ASSERT_GE(table.records.size(), from + 2);
  EXPECT_EQ(table.records[from][0].text, "Käthe");
  EXPECT_EQ(table.records[from][1].number, 41.5);
  EXPECT_EQ(table.records[from + 1][0].text, "O'Hara");
  EXPECT_EQ(table.records[from + 1][1].status, ST_STATUS_MISSING);
}

TEST_F(Odbc, WhatIsWrittenStandsInTheDatabase) {
  EXPECT_EQ(BytesOf(file_), Connection("people"));
  ExpectPeople(ReadFile(kSqlite, database_), 0);
  ExpectPeople(ReadFile(kMsSql, file_), 0);
}

TEST_F(Odbc, ATableThatIsThereGetsFurtherRows) {
  ASSERT_EQ(WriteFile(People(), kMsSql, file_).error, "");
  const Table table = ReadFile(kMsSql, file_);
  EXPECT_EQ(table.records.size(), 4U);
  ExpectPeople(table, 2);
}

TEST_F(Odbc, AFailureLeavesTheTableAsItWas) {
  EXPECT_THAT(WriteFile(People(), kMsSql, file_, 1).error, HasSubstr("more records"));
  EXPECT_EQ(ReadFile(kMsSql, file_).records.size(), 2U);
  Table other = People();
  other.columns[0].name = "NOWHERE";
  EXPECT_THAT(WriteFile(other, kMsSql, file_).error, HasSubstr("NOWHERE"));
  EXPECT_EQ(ReadFile(kMsSql, file_).records.size(), 2U);
}

TEST_F(Odbc, WithoutANameTheTablesAreListed) {
  MakeFile(file_, Connection(""));
  ExpectPeople(ReadFile(kMsSql, file_), 0);
  MakeFile(file_, Connection("nobody"));
  EXPECT_THAT(ReadFile(kMsSql, file_).error, HasSubstr("nobody"));
}

TEST(OdbcFile, NamesNoLibraryOfItsOwn) {
  TempFolder folder;
  const std::string name = folder.Name("t.sql");
  for (const char* const key : {"DRIVER=/tmp/evil.so", "LoadExt=evil", "Setup=x"}) {
    MakeFile(name, std::string("[ODBC]\n") + key + "\n");
    EXPECT_THAT(ReadFile(kMsSql, name).error, HasSubstr("installed ODBC driver")) << key;
  }
  MakeFile(name, "[ODBC]\n[TABLE]\nNAME=x\n");
  EXPECT_THAT(ReadFile(kMsSql, name).error, HasSubstr("no keys"));
}

}  // namespace
