// Files that other programs made, in the folder named by VEX_REAL_DATA: their sizes and some of
// their values, as another program read them, and what becomes of them when they are damaged.
#include <cmath>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

// Rows of sheets are counted without those that are blank and the one that holds the names.
struct Sample {
  std::int32_t type;
  const char* file;
  std::size_t records;
  std::size_t variables;
};

constexpr Sample kSamples[] = {
    {6, "dbase/dbase_03.dbf", 14, 31},
    {6, "dbase/dbase_83.dbf", 67, 15},
    {6, "dbase/dbase_30.dbf", 34, 145},
    {6, "dbase/cp1251.dbf", 4, 2},
    {6, "dbase/vfp3.dbf", 3, 13},
    {6, "dbase/people.dbf", 2, 2},
    {6, "dbase/sids.dbf", 100, 14},
    {7, "xls/datasets.xls", 32, 11},
    {7, "xls/type-me.xls", 10, 2},
    {7, "xls/deaths.xls", 18, 6},
    {7, "xls/clippy.xls", 4, 2},
    {7, "xls/dates-1904.xls", 1, 5},
    {7, "xls/biff5-label-records.xls", 16, 4},
    {7, "xls/Formate.xls", 10, 2},
    {7, "xls/MonteCarlo.xls", 8, 4},
    {7, "xls/CRLFX5_2.XLS", 1, 2},
    {7, "xls/CRLFX5_3.XLS", 1, 2},
    {7, "xls/CRLFX5_4.XLS", 1, 2},
    {7, "xls/CRLFX5_5.XLS", 1, 2},
    {7, "xls/write.xls", 4, 4},
    {31, "html/german-numbers.html", 7, 2},
    {31, "html/css-simple.html", 1, 3},
    {31, "html/column_width.htm", 3, 8},
    {39, "sps_text/codefile.sps", 3, 3},
    {900, "xlsx/datasets.xlsx", 32, 11},
    {900, "xlsx/type-me.xlsx", 10, 2},
    {901, "ods/1904.ods", 5, 4},
};

// What one cell shows: a text, a number as text ("12.345"), a date in ISO 8601, "<missing>".
struct Cell {
  std::int32_t type;
  const char* file;
  int record;  // from 0; -1 for the last
  const char* variable;
  const char* text;
};

constexpr Cell kCells[] = {
    {6, "dbase/dbase_03.dbf", 0, "Point_ID", "0507121"},
    {6, "dbase/dbase_03.dbf", -1, "Point_ID", "05071236"},
    {6, "dbase/dbase_83.dbf", 0, "ID", "87"},
    {6, "dbase/dbase_83.dbf", -1, "ID", "94"},
    {6, "dbase/dbase_30.dbf", 0, "ACCESSNO", "1999.1"},
    {6, "dbase/dbase_30.dbf", 0, "CAPTION", "Ear & Ernie Wedding 1942"},
    {6, "dbase/cp1251.dbf", -1, "RN", "4"},
    {6, "dbase/cp1251.dbf", 0, "NAME", "амбулаторно-поликлиническое"},
    {6, "dbase/people.dbf", 0, "NAME", "Alice"},
    {6, "dbase/people.dbf", 0, "BIRTHDATE", "1987-03-01"},
    {6, "dbase/vfp3.dbf", 0, "CHAR10", "test1"},
    {6, "dbase/vfp3.dbf", 0, "NUMERIC6_3", "12.345"},
    {6, "dbase/vfp3.dbf", 0, "DATE8", "1917-02-19"},
    {6, "dbase/vfp3.dbf", 1, "DATE8", "<missing>"},
    {7, "xls/datasets.xls", 0, "mpg", "21"},
    {7, "xls/datasets.xls", -1, "mpg", "21.4"},
    {900, "xlsx/datasets.xlsx", 0, "mpg", "21"},
    {39, "sps_text/codefile.sps", 2, "X2", "6"},
    {39, "sps_text/codefile.sps", 2, "X3", "str_3"},
};

std::string CellText(ST_FILE* file, int var) {
  std::int32_t type = 0;
  std::int32_t display = 0;
  const void* value = nullptr;
  const int status = ST_GetVarDataExt(file, var, &type, &value, &display);
  if (status != ST_STATUS_PRESENT) return status < 0 ? "<error>" : "<missing>";
  if (type == ST_TYPE_STRING) return static_cast<const char*>(value);
  char text[64];
  const double number = *static_cast<const double*>(value);
  if (type == ST_TYPE_DATE) {
    ST_FormatDate(file, var, number, text, sizeof text);
  } else {
    std::snprintf(text, sizeof text, "%.15g", number);
  }
  return text;
}

class Samples : public testing::Test {
 protected:
  void SetUp() override {
    if (RealFile("x").empty()) GTEST_SKIP() << "VEX_REAL_DATA is not set: no files to read";
  }
};

TEST_F(Samples, AreRecognisedAndHaveTheirSizes) {
  for (const Sample& sample : kSamples) {
    const std::string name = RealFile(sample.file);
    const bool text = sample.type == 39;  // has no signature
    EXPECT_EQ(ST_SniffFile(name.c_str()), text ? -1 : sample.type) << sample.file;
    const Table table = ReadFile(sample.type, name);
    EXPECT_EQ(table.error, "");
    EXPECT_EQ(table.columns.size(), sample.variables) << sample.file;
    EXPECT_EQ(table.records.size(), sample.records) << sample.file;
  }
}

TEST_F(Samples, ShowWhatOtherProgramsRead) {
  for (const Cell& cell : kCells) {
    SCOPED_TRACE(std::string(cell.file) + " " + cell.variable);
    ST_ENV* const env = ST_OpenEnvironment();
    ST_FILE* const file = ST_OpenInputFile(env, cell.type, RealFile(cell.file).c_str());
    const int variables = file != nullptr ? ST_ReadDict(file) : -1;
    int var = 0;
    while (var < variables && std::string(ST_GetVarName(file, var)) != cell.variable) ++var;
    std::string text = var < variables ? "no such record" : "no such variable";
    for (int i = 0; var < variables && ST_ReadRecord(file) == 1; ++i) {
      if (cell.record < 0 || cell.record == i) text = CellText(file, var);
    }
    EXPECT_EQ(text, cell.text);
    ST_CloseEnvironment(env);
  }
}

double SumOf(const Table& table, const std::string& name) {
  double sum = 0;
  for (std::size_t var = 0; var < table.columns.size(); ++var) {
    if (table.columns[var].name != name) continue;
    for (const auto& record : table.records) {
      if (record[var].status == ST_STATUS_PRESENT) sum += record[var].number;
    }
  }
  return sum;
}

TEST_F(Samples, HaveTheSumsThatOtherProgramsFind) {
  const struct {
    std::int32_t type;
    const char* file;
    const char* variable;
    double sum;
    double within;
  } sums[] = {
      {6, "dbase/dbase_83.dbf", "PRICE", 1883.47, 1e-8},
      {6, "dbase/sids.dbf", "SID74", 667, 0},
      {6, "dbase/sids.dbf", "BIR74", 329962, 1e-6},
  };
  for (const auto& sum : sums) {
    const Table table = ReadFile(sum.type, RealFile(sum.file));
    EXPECT_NEAR(SumOf(table, sum.variable), sum.sum, sum.within) << sum.file;
  }
}

// Where a sample has files beside it, they come along undamaged.
class DamagedSample {
 public:
  explicit DamagedSample(const Sample& sample) : type_(sample.type) {
    const std::filesystem::path path(RealFile(sample.file));
    for (const auto& entry : std::filesystem::directory_iterator(path.parent_path())) {
      if (entry.path().stem() != path.stem() || entry.path() == path) continue;
      std::filesystem::copy(entry.path(), folder_.Name(entry.path().filename().string()));
    }
    name_ = folder_.Name(path.filename().string());
    whole_ = BytesOf(path.string());
  }
  const std::string& Whole() const { return whole_; }
  Table Read(const std::string& bytes) const {
    MakeFile(name_, bytes);
    return ReadFile(type_, name_);
  }

 private:
  std::int32_t type_;
  TempFolder folder_;
  std::string name_;
  std::string whole_;
};

TEST_F(Samples, CutOffEndWithAnErrorOrNoMoreRecords) {
  constexpr std::size_t kCuts = 40;
  for (const Sample& sample : kSamples) {
    const DamagedSample damaged(sample);
    for (std::size_t i = 0; i < kCuts; ++i) {
      const Table table =
          damaged.Read(damaged.Whole().substr(0, damaged.Whole().size() * i / kCuts));
      ASSERT_LE(table.records.size(), sample.records) << sample.file << " cut " << i;
    }
  }
}

TEST_F(Samples, WithChangedBytesNeverCrash) {
  constexpr std::size_t kRounds = 60;
  constexpr std::size_t kHeader = 600;
  std::mt19937 random(7);
  for (const Sample& sample : kSamples) {
    const DamagedSample damaged(sample);
    for (std::size_t round = 0; round < kRounds; ++round) {
      std::string bytes = damaged.Whole();
      // Half of the changes hit the beginning, where the sizes stand.
      const std::size_t reach = round % 2 == 0 ? std::min(kHeader, bytes.size()) : bytes.size();
      for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
        bytes[random() % reach] = static_cast<char>(random());
      }
      const Table table = damaged.Read(bytes);
      ASSERT_LT(table.records.size(), 1'000'000U) << sample.file;
    }
  }
}

}  // namespace
