// Files that other programs made, against values that other programs read from them. They lie in
// the folder named by VEX_REAL_DATA; without it these tests are skipped.
#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

class RealFiles : public testing::Test {
 protected:
  void SetUp() override {
    if (RealFile("x").empty()) GTEST_SKIP() << "VEX_REAL_DATA is not set: no files to read";
  }
  static Table Read(std::int32_t type, const std::string& name) {
    Table table = ReadFile(type, RealFile(name));
    EXPECT_EQ(table.error, "") << name;
    EXPECT_EQ(ST_SniffFile(RealFile(name).c_str()), type) << name;
    return table;
  }
};

int Find(const Table& table, const std::string& name) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (table.columns[i].name == name) return static_cast<int>(i);
  }
  ADD_FAILURE() << "no variable " << name;
  return 0;
}

int CountWith(const Table& table, int var, int status) {
  int count = 0;
  for (const auto& record : table.records) {
    if (record[static_cast<std::size_t>(var)].status == status) ++count;
  }
  return count;
}

double Mean(const Table& table, const std::string& name) {
  const auto var = static_cast<std::size_t>(Find(table, name));
  double sum = 0;
  int count = 0;
  for (const auto& record : table.records) {
    if (record[var].status != ST_STATUS_PRESENT) continue;
    sum += record[var].number;
    ++count;
  }
  return sum / count;
}

std::string LabelOf(const Column& column, double value) {
  for (const Label& label : column.labels) {
    if (label.tag == 0 && label.text.empty() && label.value == value) return label.label;
  }
  return "";
}

std::string LabelOf(const Column& column, const std::string& text) {
  for (const Label& label : column.labels) {
    if (label.text == text) return label.label;
  }
  return "";
}

TEST_F(RealFiles, HaveTheirSizes) {
  const struct {
    std::int32_t type;
    const char* name;
    std::size_t records;
    std::size_t variables;
  } files[] = {
      {22, "spss/bfi.sav", 2800, 28},
      {14, "stata/bfi.dta", 2800, 28},
      {22, "spss/iris.sav", 150, 5},
      {22, "spss/umlauts.sav", 4, 1},
      {22, "spss/datetime.sav", 2, 3},
      {22, "spss/labelled-str.sav", 2, 1},
      {22, "spss/sample.sav", 5, 7},
      {22, "spss/sample.zsav", 5, 7},
      {22, "spss/sample_missing.sav", 7, 7},
      {22, "spss/missing_test.sav", 2, 1},
      {22, "spss/hebrews.sav", 99, 1},
      {22, "spss/test_width.sav", 5, 4},
      {22, "spss/electric.sav", 240, 13},
      {13, "spss/electric.por", 240, 13},
      {22, "spss/testdata.sav", 5, 16},
      {22, "spss/mval_bug.sav", 600, 10},
      {22, "spss/pspp_personnel.sav", 56, 6},
      {13, "spss/sample.por", 5, 7},
      {14, "stata/types.dta", 2, 8},
      {14, "stata/tagged-na-double.dta", 8, 1},
      {14, "stata/notes.dta", 5, 4},
      {14, "stata/sample.dta", 5, 7},
      {14, "stata/missing_test.dta", 1, 9},
      {14, "stata/auto8.dta", 74, 13},
      {14, "stata/stata7se.dta", 7, 2},
      {14, "stata/stata8mac.dta", 7, 2},
      {14, "stata/xxx12.dta", 10, 4},
      {38, "sas/hadley.sas7bdat", 8, 7},
      {38, "sas/datetime.sas7bdat", 4, 5},
      {38, "sas/sample_bincompressed.sas7bdat", 5, 7},
      {38, "sas/missing_test.sas7bdat", 1, 9},
      {38, "sas/airline.sas7bdat", 32, 6},
      {38, "sas/all_rand_normal_with_deleted.sas7bdat", 37, 8},
      {38, "sas/date_format_date.sas7bdat", 19, 8},
      {38, "sas/charset_cyrl.sas7bdat", 150, 5},
      {12, "xport/sample.xpt", 5, 7},
      {12, "xport/dates_v8.xpt", 19, 9},
      {12, "xport/Alfalfa.xpt", 40, 6},
  };
  for (const auto& file : files) {
    const Table table = Read(file.type, file.name);
    EXPECT_EQ(table.columns.size(), file.variables) << file.name;
    EXPECT_EQ(table.records.size(), file.records) << file.name;
    if (table.cases >= 0) {
      EXPECT_EQ(table.cases, static_cast<std::int64_t>(file.records)) << file.name;
    }
  }
}

TEST_F(RealFiles, SurveyHasItsMissingCellsMeansAndLabels) {
  for (const auto& [type, name] : {std::pair(22, "spss/bfi.sav"), std::pair(14, "stata/bfi.dta")}) {
    const Table table = Read(type, name);
    int missing = 0;
    for (int var = 0; var < 28; ++var) missing += CountWith(table, var, ST_STATUS_MISSING);
    EXPECT_EQ(missing, 731);
    EXPECT_EQ(CountWith(table, Find(table, "education"), ST_STATUS_MISSING), 223);
    EXPECT_NEAR(Mean(table, "age"), 28.78214, 5e-6);
    EXPECT_NEAR(Mean(table, "A1"), 2.413434, 5e-7);
    EXPECT_EQ(LabelOf(table.columns[0], 1), "Very Inaccurate");
    EXPECT_EQ(table.columns[0].label, "Am indifferent to the feelings of others.");
  }
}

TEST_F(RealFiles, TextsAndLabelsAreUtf8) {
  const Table umlauts = Read(22, "spss/umlauts.sav");
  EXPECT_EQ(umlauts.columns[0].label, "This is an ä-umlaut");
  EXPECT_EQ(LabelOf(umlauts.columns[0], 1), "the ä umlaut");
  const Table labelled = Read(22, "spss/labelled-str.sav");
  EXPECT_EQ(labelled.records[0][0].text, "M");
  EXPECT_EQ(LabelOf(labelled.columns[0], std::string("F")), "Female");
  const Table hebrew = Read(22, "spss/hebrews.sav");
  EXPECT_EQ(hebrew.columns[0].name, "ותק_ב");
  EXPECT_NEAR(Mean(hebrew, "ותק_ב"), 18.53535, 5e-6);
  EXPECT_EQ(hebrew.records[98][0].number, 26);
  EXPECT_EQ(Read(22, "spss/test_width.sav").records[0][1].text, "2020-07-13 23:19:55");
  EXPECT_EQ(Read(22, "spss/testdata.sav").columns[9].width, 500);
  EXPECT_EQ(Read(38, "sas/charset_cyrl.sas7bdat").records[149][4].text, "Iris-virginica");
  EXPECT_EQ(Read(12, "xport/Alfalfa.xpt").records[39][0].text, "MAX");
}

TEST_F(RealFiles, WidthsAndDecimalsComeFromTheFormats) {
  const Table iris = Read(22, "spss/iris.sav");
  EXPECT_EQ(iris.columns[0].width, 8);
  EXPECT_EQ(iris.columns[0].decimals, 2);
  const Table electric = Read(13, "spss/electric.por");
  EXPECT_EQ(electric.columns[7].width, 5);
  EXPECT_EQ(electric.columns[7].decimals, 1);
  const Table automobiles = Read(14, "stata/auto8.dta");
  EXPECT_EQ(automobiles.columns[4].width, 6);
  EXPECT_EQ(automobiles.columns[4].decimals, 1);
}

TEST_F(RealFiles, UserMissingValuesAreToldApart) {
  const Table ranges = Read(22, "spss/mval_bug.sav");
  const int expected[] = {0, 5, 13, 30, 30, 30, 30, 33, 33, 33};
  for (int var = 0; var < 10; ++var) {
    EXPECT_EQ(CountWith(ranges, var, ST_STATUS_USER_MISSING), expected[var]) << var;
  }
  const Table sample = Read(22, "spss/sample_missing.sav");
  EXPECT_EQ(sample.records[5][1].status, ST_STATUS_USER_MISSING);
  EXPECT_EQ(sample.records[5][1].number, -1);
  EXPECT_EQ(sample.records[6][1].status, ST_STATUS_USER_MISSING);
  EXPECT_EQ(sample.records[6][4].status, ST_STATUS_MISSING);
  EXPECT_EQ(Read(22, "spss/missing_test.sav").records[0][0].status, ST_STATUS_USER_MISSING);
  const Table text = Read(22, "spss/missing_char.sav");
  EXPECT_EQ(text.records[0][0].status, ST_STATUS_USER_MISSING);
  EXPECT_EQ(text.records[0][0].text, "Z");
  EXPECT_EQ(text.records[1][0].status, ST_STATUS_PRESENT);
  const Table electric = Read(13, "spss/electric.por");
  EXPECT_EQ(
      CountWith(electric, 4, ST_STATUS_MISSING) + CountWith(electric, 4, ST_STATUS_USER_MISSING),
      28);
  EXPECT_NEAR(Mean(Read(22, "spss/electric.sav"), "AGE"), 47.8, 0.05);
  EXPECT_NEAR(Mean(Read(22, "spss/electric.sav"), "CHOL58"), 264.0875, 5e-5);
}

TEST_F(RealFiles, TaggedMissingValuesKeepTheirLabels) {
  const Table tagged = Read(14, "stata/tagged-na-double.dta");
  EXPECT_EQ(CountWith(tagged, 0, ST_STATUS_TAGGED), 3);
  ASSERT_EQ(tagged.columns[0].labels.size(), 2U);
  EXPECT_EQ(tagged.columns[0].labels[0].tag, 'a');
  EXPECT_EQ(tagged.columns[0].labels[1].tag, 'z');
  for (const auto& [type, name, count] : {std::tuple(14, "stata/missing_test.dta", 6),
                                          std::tuple(38, "sas/missing_test.sas7bdat", 7)}) {
    const Table table = Read(type, name);
    int found = 0;
    for (int var = 0; var < 9; ++var) found += CountWith(table, var, ST_STATUS_TAGGED);
    EXPECT_EQ(found, count) << name;
    EXPECT_EQ(table.records[0][7].status, ST_STATUS_MISSING) << name;
  }
  EXPECT_EQ(CountWith(Read(14, "stata/auto8.dta"), 3, ST_STATUS_MISSING) +
                CountWith(Read(14, "stata/auto8.dta"), 3, ST_STATUS_TAGGED),
            5);
  EXPECT_NEAR(Mean(Read(14, "stata/auto8.dta"), "price"), 6165.257, 5e-4);
}

TEST_F(RealFiles, BothByteOrdersOfStataReadTheSame) {
  for (const char* const name : {"stata/stata7se.dta", "stata/stata8mac.dta"}) {
    const Table table = Read(14, name);
    EXPECT_EQ(table.records[0][0].number, 1) << name;
    EXPECT_EQ(table.records[6][1].number, 7) << name;
    EXPECT_EQ(LabelOf(table.columns[0], 4), "asian") << name;
  }
}

// The text and the calendar parts of one value.
struct Moment {
  std::int32_t type;
  const char* file;
  int record;
  int var;
  std::int32_t display;
  const char* text;
  std::int32_t part1;
  std::int32_t part2;
};

void CheckMoment(const Moment& moment) {
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = ST_OpenInputFile(env, moment.type, RealFile(moment.file).c_str());
  ASSERT_NE(file, nullptr) << ST_GetErrorMsg(env);
  ASSERT_GT(ST_ReadDict(file), moment.var);
  for (int i = 0; i <= moment.record; ++i) ASSERT_EQ(ST_ReadRecord(file), 1);
  std::int32_t type = 0;
  std::int32_t display = 0;
  const void* value = nullptr;
  ASSERT_EQ(ST_GetVarDataExt(file, moment.var, &type, &value, &display), ST_STATUS_PRESENT);
  EXPECT_EQ(type, ST_TYPE_DATE) << moment.file;
  EXPECT_EQ(display, moment.display) << moment.file;
  char text[64];
  const double number = *static_cast<const double*>(value);
  ST_FormatDate(file, moment.var, number, text, sizeof text);
  EXPECT_STREQ(text, moment.text) << moment.file;
  EXPECT_EQ(ST_FormatDate(file, moment.var, number, text, 5), 4);
  EXPECT_EQ(std::string(text), std::string(moment.text).substr(0, 4));
  std::int32_t part1 = 0;
  std::int32_t part2 = 0;
  EXPECT_EQ(ST_FromIDate(file, number, display, &part1, &part2), 0) << moment.file;
  EXPECT_EQ(part1, moment.part1) << moment.file;
  EXPECT_EQ(part2, moment.part2) << moment.file;
  ST_CloseEnvironment(env);
}

TEST_F(RealFiles, DatesAreThoseThatOthersRead) {
  const Moment moments[] = {
      {22, "spss/datetime.sav", 0, 0, 4, "2014-09-22", 20140922, 0},
      {22, "spss/datetime.sav", 0, 2, 8, "12:11:10.09", 0, 43870090},
      {22, "spss/datetime.sav", 1, 1, 16, "2014-09-23T15:59:20", 20140923, 57560000},
      {22, "spss/sample.zsav", 0, 3, 16, "2018-05-06T10:10:10", 20180506, 36610000},
      {13, "spss/sample.por", 1, 2, 4, "1880-05-06", 18800506, 0},
      {14, "stata/types.dta", 1, 6, 4, "2015-12-01", 20151201, 0},
      {14, "stata/sample.dta", 0, 6, 16, "1960-01-01T10:10:10", 19600101, 36610000},
      {14, "stata/xxx12.dta", 0, 1, 16, "2014-01-23T20:07:16", 20140123, 72436000},
      {14, "stata/xxx12.dta", 0, 3, 4, "2014-01-23", 20140123, 0},
      {38, "sas/datetime.sas7bdat", 0, 0, 16, "2015-02-02T14:42:12", 20150202, 52932000},
      {38, "sas/datetime.sas7bdat", 0, 4, 8, "14:42:12", 0, 52932000},
      {38, "sas/date_format_date.sas7bdat", 0, 0, 4, "1582-01-01", 15820101, 0},
      {38, "sas/date_format_date.sas7bdat", 18, 7, 4, "2019-02-01", 20190201, 0},
      {38, "sas/sample_bincompressed.sas7bdat", 3, 2, 4, "1583-01-01", 15830101, 0},
      {12, "xport/sample.xpt", 0, 2, 4, "2018-05-06", 20180506, 0},
      {12, "xport/dates_v8.xpt", 0, 0, 16, "1959-12-30T23:59:59", 19591230, 86399000},
      {12, "xport/dates_v8.xpt", 0, 3, 4, "1959-12-30", 19591230, 0},
  };
  for (const Moment& moment : moments) CheckMoment(moment);
}

TEST_F(RealFiles, SasLabelsComeFromTheCatalogueBesideTheFile) {
  const Table table = Read(38, "sas/hadley.sas7bdat");
  EXPECT_EQ(LabelOf(table.columns[1], 1), "R");
  EXPECT_EQ(LabelOf(table.columns[1], 2), "SAS");
  EXPECT_EQ(LabelOf(table.columns[2], std::string("f")), "Female");
  EXPECT_EQ(table.cases, 8);
  TempFolder folder;
  MakeFile(folder.Name("alone.sas7bdat"), BytesOf(RealFile("sas/hadley.sas7bdat")));
  EXPECT_TRUE(ReadFile(38, folder.Name("alone.sas7bdat")).columns[1].labels.empty());
  MakeFile(folder.Name("ALONE.SAS7BCAT"), BytesOf(RealFile("sas/hadley_formats.sas7bcat")));
  EXPECT_EQ(ReadFile(38, folder.Name("alone.sas7bdat")).columns[1].labels.size(), 2U);
  MakeFile(folder.Name("ALONE.SAS7BCAT"), "rubbish");
  const Table rubbish = ReadFile(38, folder.Name("alone.sas7bdat"));
  EXPECT_EQ(rubbish.error, "");
  EXPECT_EQ(rubbish.records.size(), 8U);
}

TEST_F(RealFiles, ADamagedCatalogueNeverCostsTheData) {
  const std::string catalogue = BytesOf(RealFile("sas/hadley_formats.sas7bcat"));
  TempFolder folder;
  MakeFile(folder.Name("a.sas7bdat"), BytesOf(RealFile("sas/hadley.sas7bdat")));
  std::mt19937 random(5);
  for (int round = 0; round < 400; ++round) {
    std::string bytes =
        catalogue.substr(0, round % 2 == 0 ? catalogue.size() : random() % catalogue.size());
    for (int i = 0; i < 8 && !bytes.empty(); ++i) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    MakeFile(folder.Name("a.sas7bcat"), bytes);
    const Table table = ReadFile(38, folder.Name("a.sas7bdat"));
    ASSERT_EQ(table.error, "");
    ASSERT_EQ(table.records.size(), 8U);
  }
}

TEST_F(RealFiles, NumbersOfSasFilesAreRight) {
  EXPECT_NEAR(Mean(Read(38, "sas/airline.sas7bdat"), "Y"), 10.05019, 5e-6);
  const Table deleted = Read(38, "sas/all_rand_normal_with_deleted.sas7bdat");
  EXPECT_EQ(deleted.records.back()[0].number, 9000);
  EXPECT_NEAR(Mean(Read(12, "xport/Alfalfa.xpt"), "SEEDWT"), 56.075, 5e-4);
}

TEST_F(RealFiles, EveryTruncationOfASasFileEndsWithAnErrorOrFewerRecords) {
  const std::string whole = BytesOf(RealFile("sas/airline.sas7bdat"));
  TempFolder folder;
  const std::string name = folder.Name("cut.sas7bdat");
  for (std::size_t size = 0; size < whole.size(); size += size < 2048 ? 1 : 7) {
    MakeFile(name, whole.substr(0, size));
    const Table table = ReadFile(38, name);
    ASSERT_FALSE(table.error.empty()) << size;
    ASSERT_LT(table.records.size(), 32U) << size;
  }
}

}  // namespace
