// Damaged files end with an error or with fewer records: never with a crash, without end, or with
// records that are not in the file.
#include <chrono>
#include <random>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

struct Format {
  std::int32_t type;
  const char* file;
  // Neither a count nor a mark at the end tells that records are missing.
  bool openEnd = false;
  bool whole = false;  // is read as a whole before the first record
};

void PrintTo(const Format& format, std::ostream* out) {
  *out << format.file;
}

Table SmallTable() {
  Table table;
  table.columns = {{"AGE", "Age in years", ST_TYPE_NUMERIC, 5, 1, {}},
                   {"SEX", "", ST_TYPE_NUMERIC, 1, 0, {{1, "", 0, "male"}, {2, "", 0, "female"}}},
                   {"TOWN", "Where from", ST_TYPE_STRING, 12, 0, {}}};
  table.records = {{Number(41.5), Number(1), Text("Ulm")},
                   {Missing(), Number(2), Text("Trier")},
                   {Number(-7), Missing(), Text("Bad Saulgau!")}};
  return table;
}

class Damage : public testing::TestWithParam<Format> {
 protected:
  void SetUp() override {
    name_ = folder_.Name(GetParam().file);
    ASSERT_EQ(WriteFile(SmallTable(), GetParam().type, name_).error, "");
    whole_ = BytesOf(name_);
  }
  Table ReadBytes(const std::string& bytes) {
    MakeFile(name_, bytes);
    return ReadFile(GetParam().type, name_);
  }

  TempFolder folder_;
  std::string name_;
  std::string whole_;
};

INSTANTIATE_TEST_SUITE_P(Formats, Damage,
                         testing::Values(Format{22, "t.sav"}, Format{22, "t.zsav"},
                                         Format{13, "t.por"}, Format{14, "t.dta"},
                                         Format{12, "t.xpt", true}, Format{6, "t.dbf"},
                                         Format{10, "t.db"}, Format{16, "t.syd"},
                                         Format{17, "t.ssc", false, true},
                                         Format{32, "t.rec", true}));

// Formats of text or of packages of parts: what their writers make is damaged as well, but a cut
// may still be a shorter file of theirs.
class LooseDamage : public Damage {};
INSTANTIATE_TEST_SUITE_P(Formats, LooseDamage,
                         testing::Values(Format{0, "t.wk1"}, Format{11, "t.wq1"},
                                         Format{29, "t.mat"}, Format{36, "t.dct"},
                                         Format{7, "t.xls"}, Format{28, "t.sql"},
                                         Format{31, "t.html"}, Format{39, "t.sps"},
                                         Format{40, "t.sas"}, Format{41, "t.do"},
                                         Format{900, "t.xlsx"}, Format{901, "t.ods"},
                                         Format{902, "t.sqlite"}, Format{903, "t.jsonl"}));

TEST_P(LooseDamage, CutsAndChangedBytesNeverCrash) {
  std::mt19937 random(11);
  for (int round = 0; round < 200; ++round) {
    std::string bytes = whole_;
    if (round % 4 == 0) bytes.resize(random() % bytes.size());
    for (unsigned changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    ASSERT_LT(ReadBytes(bytes).records.size(), 100000U);
  }
}

TEST_P(Damage, EveryTruncationGivesAnErrorOrFewerRecords) {
  for (std::size_t size = 0; size < whole_.size(); ++size) {
    const Table table = ReadBytes(whole_.substr(0, size));
    ASSERT_LE(table.records.size(), 3U) << size << " of " << whole_.size() << " bytes";
    for (std::size_t i = 0; i < table.records.size(); ++i) {
      ASSERT_EQ(table.records[i][0].number, SmallTable().records[i][0].number) << size;
    }
    if (!table.error.empty()) {
      ASSERT_THAT(table.error, HasSubstr(name_)) << size;
    }
    // What a file ends with may be padding; what is missing of its records may not.
    if (table.error.empty() && !GetParam().openEnd) {
      ASSERT_EQ(table.records.size(), 3U) << size;
    }
  }
}

TEST_P(Damage, ChangedBytesNeverCrash) {
  std::mt19937 random(11);
  for (int round = 0; round < 1000; ++round) {
    std::string bytes = whole_;
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    const Table table = ReadBytes(bytes);
    ASSERT_LT(table.records.size(), 100000U);
  }
}

TEST_P(Damage, AbsurdCountsAreRefusedQuickly) {
  const auto begin = std::chrono::steady_clock::now();
  for (std::size_t at = 4; at + 4 <= whole_.size(); at += 2) {
    std::string bytes = whole_;
    bytes.replace(at, 4,
                  GetParam().type == 12 || GetParam().type == 13 ? "9999" : "\xff\xff\xff\x7f");
    ReadBytes(bytes);
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(120));
}

TEST_P(Damage, ClosingAfterTheFirstRecordIsPrompt) {
  Table table;
  for (int i = 0; i < 20; ++i) {
    table.columns.push_back(
        {std::string("X").append(std::to_string(i)), "", ST_TYPE_NUMERIC, 8, 2, {}});
  }
  table.records.assign(40000, std::vector<Value>(20, Number(3.25)));
  ASSERT_EQ(WriteFile(table, GetParam().type, name_).error, "");
  ST_ENV* const env = ST_OpenEnvironment();
  for (int round = 0; round < 20; ++round) {
    ST_FILE* const file = ST_OpenInputFile(env, GetParam().type, name_.c_str());
    ASSERT_EQ(ST_ReadDict(file), 20);
    for (int i = 0; i < round; ++i) ASSERT_EQ(ST_ReadRecord(file), 1);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ST_CloseFiles(env), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
  }
  ST_CloseEnvironment(env);
}

TEST_P(Damage, AFileThatShrinksWhileItIsReadEndsWithAnError) {
  if (GetParam().whole) return;
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  std::mt19937 random(3);
  for (int i = 0; i < 400000; ++i) table.records.push_back({Number(random() / 7.0)});
  ASSERT_EQ(WriteFile(table, GetParam().type, name_).error, "");
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = ST_OpenInputFile(env, GetParam().type, name_.c_str());
  ASSERT_EQ(ST_ReadDict(file), 1);
  ASSERT_EQ(ST_ReadRecord(file), 1);
  ASSERT_EQ(truncate(name_.c_str(), 2000), 0);
  int records = 1;
  int got = 1;
  while ((got = ST_ReadRecord(file)) == 1) ++records;
  EXPECT_LT(records, 400000);
  if (!GetParam().openEnd) {
    EXPECT_EQ(got, -1);
  }
  ST_CloseEnvironment(env);
}

TEST(Transport, OneOfSeveralDataSetsIsChosen) {
  TempFolder folder;
  const std::string name = folder.Name("two.xpt");
  ASSERT_EQ(WriteFile(SmallTable(), 12, name).error, "");
  const std::string whole = BytesOf(name);
  std::string second = whole.substr(240);
  second.replace(2 * 80 + 8, 8, "SECOND  ");
  MakeFile(name, whole + second);
  ST_ENV* const env = ST_OpenEnvironment();
  for (const char* const table : {"", "second", "third"}) {
    ST_SetInputTable(env, table);
    ST_FILE* const file = ST_OpenInputFile(env, 12, name.c_str());
    ASSERT_EQ(ST_GetNTables(file), 2);
    EXPECT_STREQ(ST_GetTableName(file, 1), "SECOND");
    const bool there = std::string(table) != "third";
    EXPECT_EQ(ST_ReadDict(file), there ? 3 : -1);
    int records = 0;
    while (there && ST_ReadRecord(file) == 1) ++records;
    EXPECT_EQ(records, there ? 3 : 0);
    EXPECT_THAT(ST_GetErrorMsg(env), HasSubstr(there ? "" : "third"));
    EXPECT_THAT(ST_GetNote(env, 0), HasSubstr(*table == '\0' ? "SECOND" : ""));
  }
  ST_CloseEnvironment(env);
}

}  // namespace
