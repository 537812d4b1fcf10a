// Files that other programs made, in the folder named by VEX_REAL_DATA: their sizes and some of
// their values, as another program read them, and what becomes of them when they are damaged.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/ChildProcess.h"
#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

// Rows of sheets are counted without the one that holds the names.
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
    {7, "xls/MonteCarlo.xls", 10, 4},
    {7, "xls/CRLFX5_2.XLS", 1, 2},
    {7, "xls/CRLFX5_3.XLS", 1, 2},
    {7, "xls/CRLFX5_4.XLS", 1, 2},
    {7, "xls/CRLFX5_5.XLS", 1, 2},
    {7, "xls/write.xls", 4, 4},
    {10, "paradox/CUSTOMER.DB", 20, 10},
    {10, "paradox/ORDERS.DB", 224, 11},
    {10, "paradox/tblAC.DB", 220, 4},
    {10, "paradox/STATES.DB", 53, 4},
    {10, "paradox/date5.db", 3, 2},
    {10, "paradox/logical.db", 4, 1},
    {10, "paradox/bcd.db", 3, 3},
    {10, "paradox/timestamp.db", 2, 1},
    {21, "sigmaplot/Confusion_Matrix.jnb", 11, 5},
    {23, "access/reviews.mdb", 297, 10},
    {23, "access/testV1997.mdb", 2, 9},
    {23, "access/fixedNumericTestV2000.mdb", 1, 7},
    {23, "access/overflowTestV2000.mdb", 7, 9},
    {23, "access/DateTestDatabase.mdb", 6, 6},
    {23, "access/acc95.mdb", 1, 1},
    {30, "statistica/KSBASE.STA", 84, 14},
    {0, "lotus/KSBASE.WK1", 83, 15},
    {0, "lotus/PEYTREND.WK3", 222, 5},
    {0, "lotus/testLotus123.wk4", 10, 6},
    {0, "lotus/testLotus123.123", 47, 20},
    {0, "lotus/write_L1.wks", 4, 4},
    {0, "lotus/write_L2.wk1", 4, 4},
    {11, "quattro/KSBASE.WQ1", 83, 14},
    {11, "quattro/KS4000.WQ2", 38, 10},
    {11, "quattro/testQuattro.wb1", 10, 3},
    {11, "quattro/testQuattro.wb2", 10, 3},
    {11, "quattro/write_8.wb3", 4, 4},
    {11, "quattro/q9test.qpw", 18, 2},
    {16, "systat/Iris.syd", 150, 5},
    {17, "splus/dumpdata.S", 3, 4},
    {29, "matlab/test_file_v5.mat", 5, 10},
    {29, "matlab/test_file_v73.mat", 5, 10},
    {29, "matlab/testmatrix_v4.mat", 3, 5},
    {29, "matlab/testmulti_v7.mat", 3, 5},
    {29, "matlab/testcell_v7.mat", 4, 1},
    {29, "matlab/teststringarray_v7.mat", 3, 1},
    {29, "matlab/testsparse_v7.mat", 3, 5},
    {31, "html/german-numbers.html", 7, 2},
    {31, "html/css-simple.html", 1, 3},
    {31, "html/column_width.htm", 3, 8},
    {35, "jmp/example1.jmp", 4, 12},
    {35, "jmp/compressed.jmp", 10000, 7},
    {35, "jmp/byteintegers.jmp", 5, 4},
    {35, "jmp/date.jmp", 4, 14},
    {37, "minitab/ex1-51.mtp", 26, 2},
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
    {10, "paradox/CUSTOMER.DB", 0, "FirstName", "Luke"},
    {10, "paradox/CUSTOMER.DB", 0, "DateEntered", "1996-02-02"},
    {10, "paradox/ORDERS.DB", 0, "Sale Date", "1988-04-03"},
    {10, "paradox/ORDERS.DB", 0, "Total Invoice", "7320"},
    {10, "paradox/tblAC.DB", 0, "AreaCode", "201"},
    {10, "paradox/tblAC.DB", 0, "Effective", "<missing>"},
    {10, "paradox/STATES.DB", 0, "State", "Alaska"},
    {10, "paradox/date5.db", 0, "DATE", "2018-01-01"},
    {10, "paradox/date5.db", 0, "TIME", "10:00:00"},
    {10, "paradox/logical.db", 0, "BOOL", "1"},
    {10, "paradox/logical.db", 1, "BOOL", "0"},
    {10, "paradox/bcd.db", 0, "A", "1.23"},
    {10, "paradox/bcd.db", 1, "A", "-1.23"},
    {10, "paradox/timestamp.db", 0, "Timestamp", "<missing>"},
    {21, "sigmaplot/Confusion_Matrix.jnb", 0, "x", "setosa"},
    {21, "sigmaplot/Confusion_Matrix.jnb", 4, "z", "0.62"},
    {21, "sigmaplot/Confusion_Matrix.jnb", -1, "z", "3"},
    {23, "access/reviews.mdb", 0, "Composer", "Bernstein"},
    {23, "access/reviews.mdb", 0, "Issue", "2004-03-01T00:00:00"},
    {23, "access/reviews.mdb", 1, "Budget", "£££"},
    {23, "access/reviews.mdb", 1, "Reference", "Bernstein, DG"},
    {23, "access/reviews.mdb", 2, "Reference", "<missing>"},
    {23, "access/testV1997.mdb", 1, "B", "hijklmnop"},
    {23, "access/testV1997.mdb", 1, "E", "333333333"},
    {23, "access/testV1997.mdb", 1, "F", "444.555"},
    {23, "access/testV1997.mdb", 1, "G", "1974-09-21T00:00:00"},
    {23, "access/testV1997.mdb", 1, "H", "3.5"},
    {23, "access/testV1997.mdb", 1, "I", "1"},
    {23, "access/fixedNumericTestV2000.mdb", 0, "col1", "some data"},
    {23, "access/fixedNumericTestV2000.mdb", 0, "col5", "4"},
    {23, "access/fixedNumericTestV2000.mdb", 0, "col6", "-1"},
    {23, "access/overflowTestV2000.mdb", 0, "data1", "row1col1"},
    {23, "access/overflowTestV2000.mdb", 2, "data3", "row3col3"},
    {23, "access/DateTestDatabase.mdb", 1, "DateTimeCol", "9999-01-01T00:00:00"},
    {23, "access/DateTestDatabase.mdb", 2, "DateTimeCol", "1898-01-01T00:00:00"},
    {23, "access/DateTestDatabase.mdb", -1, "LongTextCol", "New line\r\nin field"},
    {23, "access/acc95.mdb", 0, "Field1", "data"},
    {30, "statistica/KSBASE.STA", 2, "A", "4001"},
    {30, "statistica/KSBASE.STA", 2, "J", "0.14963475091262"},
    {30, "statistica/KSBASE.STA", 2, "E", "101"},
    {30, "statistica/KSBASE.STA", 2, "N", "<missing>"},
    {35, "jmp/example1.jmp", 3, "floats", "44.4"},
    {35, "jmp/example1.jmp", 0, "time", "1976-04-01T21:12:00"},
    {35, "jmp/example1.jmp", -1, "time", "<missing>"},
    {35, "jmp/example1.jmp", 0, "date", "2024-01-13"},
    {35, "jmp/example1.jmp", 0, "duration", "P0DT0H38M42S"},
    {35, "jmp/example1.jmp", 2, "charvariable16", "cccccccc"},
    {35, "jmp/example1.jmp", 3, "formula", "8"},
    {35, "jmp/example1.jmp", 1, "pressures", "<missing>"},
    {35, "jmp/example1.jmp", 1, "char utf8", "🚴💨"},
    {35, "jmp/example1.jmp", -1, "charconstwidth2", "dddd"},
    {35, "jmp/compressed.jmp", 9999, "character11", "abcdefghijk"},
    {35, "jmp/compressed.jmp", 9999, "yyyy-mm-dd", "2024-01-20"},
    {35, "jmp/compressed.jmp", 0, "numeric", "1"},
    {35, "jmp/byteintegers.jmp", 0, "2-byte integer", "-187"},
    {35, "jmp/byteintegers.jmp", -1, "4-byte integer", "-44761"},
    {35, "jmp/date.jmp", 1, "ddmmyyyy", "1973-05-24"},
    {37, "minitab/ex1-51.mtp", 0, "control", "1202.599976"},
    {37, "minitab/ex1-51.mtp", -1, "seeded", "4.099999905"},
    {0, "lotus/KSBASE.WK1", 1, "OBSERV", "4001"},
    {0, "lotus/KSBASE.WK1", 1, "DATE", "1996-07-03"},
    {0, "lotus/KSBASE.WK1", 1, "X", "683.38"},
    {0, "lotus/KSBASE.WK1", 1, "KS", "0.14963475091262"},
    {0, "lotus/testLotus123.wk4", 0, "EMPID", "67543"},
    {0, "lotus/testLotus123.wk4", 0, "DOH", "1988-08-13"},
    {11, "quattro/KSBASE.WQ1", 1, "Y", "3133.59"},
    {11, "quattro/KSBASE.WQ1", 1, "KS", "0.14963475091262"},
    {16, "systat/Iris.syd", 0, "SEPALLEN", "5.1"},
    {16, "systat/Iris.syd", -1, "PETALWID", "1.8"},
    {17, "splus/dumpdata.S", 0, "ints", "<missing>"},
    {17, "splus/dumpdata.S", 2, "floats", "1.3"},
    {17, "splus/dumpdata.S", 0, "logs", "1"},
    {29, "matlab/test_file_v5.mat", 0, "V2", "6"},
    {29, "matlab/test_file_v5.mat", -1, "V10", "50"},
    {29, "matlab/test_file_v73.mat", -1, "V10", "50"},
    {29, "matlab/testsparse_v7.mat", 0, "V5", "5"},
    {29, "matlab/teststringarray_v7.mat", 2, "teststringarray", "three"},
    {0, "lotus/testLotus123.123", -1, "POP90", "1222398"},
    {0, "lotus/PEYTREND.WK3", -1, "NO", "216"},
    {11, "quattro/testQuattro.wb1", -1, "Z", "10"},
    {11, "quattro/testQuattro.wb2", 0, "Z", "10"},
    {11, "quattro/q9test.qpw", 2, "VAR002", "131082"},
    {11, "quattro/write_8.wb3", 0, "VAR003", "3"},
    {29, "matlab/testmatrix_v4.mat", 1, "V1", "2"},
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

// VEX_DAMAGE in the environment chooses samples by a part of their names ("/": all). They are cut
// at every byte and changed many times, which takes hours under the sanitizers.
const char* FullDamage() {
  return std::getenv("VEX_DAMAGE");
}

std::vector<Sample> SamplesToDamage() {
  std::vector<Sample> samples(std::begin(kSamples), std::end(kSamples));
  const char* const part = FullDamage();
  if (part == nullptr) return samples;
  std::erase_if(samples, [&](const Sample& s) { return std::strstr(s.file, part) == nullptr; });
  return samples;
}

// Their libraries read in a process of their own, which may take all the time that it is given.
bool IsReadApart(const Sample& sample) {
  return sample.type == 0 || sample.type == 11 || sample.type == 29;
}

using Damaging = std::function<std::string(const std::string& whole, std::size_t round)>;

// The numbers of records that are read of many damaged versions of a sample whose library wants a
// process of its own: hundreds of them in one process, which is many times faster than one each.
// The one that ends the process is read again as it always is.
void ReadManyApart(const DamagedSample& damaged, std::size_t rounds, const Damaging& damage,
                   const std::function<void(std::size_t, std::size_t)>& check) {
  constexpr std::size_t kRoundsAtOnce = 500;
  constexpr std::int64_t kMemory = std::int64_t{1} << 30;
  constexpr int kSeconds = 20;
  for (std::size_t round = 0; round < rounds;) {
    const std::size_t end = std::min(rounds, round + kRoundsAtOnce);
    statrn32::CChildProcess child;
    ASSERT_TRUE(child.Start(
        [&](statrn32::CPipeWriter* out) {
          for (std::size_t i = round; i < end; ++i) {
            const std::uint64_t records = damaged.Read(damage(damaged.Whole(), i)).records.size();
            if (!out->Write(&records, sizeof records)) return;
          }
        },
        kMemory, kSeconds));
    std::uint64_t records = 0;
    for (; round < end && child.Read(&records, sizeof records); ++round) check(round, records);
    child.End();
    if (round == end) continue;
    check(round, damaged.Read(damage(damaged.Whole(), round)).records.size());
    ++round;
  }
}

// The same in this process where the sample's reader needs no other, or the rounds are few.
void ReadMany(const Sample& sample, std::size_t rounds, const Damaging& damage, std::size_t most) {
  const DamagedSample damaged(sample);
  const auto check = [&](std::size_t round, std::size_t records) {
    EXPECT_LE(records, most) << sample.file << " damaged " << round;
  };
  if (IsReadApart(sample) && FullDamage() != nullptr) {
    ReadManyApart(damaged, rounds, damage, check);
    return;
  }
  const std::size_t step = IsReadApart(sample) ? 8 : 1;
  for (std::size_t round = 0; round < rounds && !testing::Test::HasFailure(); round += step) {
    check(round, damaged.Read(damage(damaged.Whole(), round)).records.size());
  }
}

TEST_F(Samples, CutOffEndWithAnErrorOrNoMoreRecords) {
  for (const Sample& sample : SamplesToDamage()) {
    const std::size_t bytes = BytesOf(RealFile(sample.file)).size();
    const std::size_t cuts = FullDamage() != nullptr ? bytes : 40;
    // A page that ends within a tag has the rest of the tag as a text.
    const std::size_t most = sample.records + (sample.type == 31 ? 1 : 0);
    const auto cut = [cuts](const std::string& whole, std::size_t round) {
      return whole.substr(0, whole.size() * round / cuts);
    };
    ReadMany(sample, cuts, cut, most);
  }
}

std::string WithChangedBytes(std::string bytes, std::size_t round) {
  constexpr std::size_t kHeader = 600;
  std::mt19937 random(static_cast<std::uint_fast32_t>(7 + round));
  // Half of the changes hit the beginning, where the sizes stand.
  const std::size_t reach = round % 2 == 0 ? std::min(kHeader, bytes.size()) : bytes.size();
  for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
    bytes[random() % reach] = static_cast<char>(random());
  }
  return bytes;
}

TEST_F(Samples, WithChangedBytesNeverCrash) {
  const std::size_t rounds = FullDamage() != nullptr ? 10000 : 60;
  for (const Sample& sample : SamplesToDamage()) {
    ReadMany(sample, rounds, WithChangedBytes, 1'000'000);
  }
}

}  // namespace
