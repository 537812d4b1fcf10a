// A file whose content is not what its name says is not imported: both types are named, and --type
// chooses one of them.
#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/statrn32.h"
#include "support/TempFolder.h"
#include "transfer/FileTypes.h"
#include "vexdata/RunVexData.h"

using testing::HasSubstr;

namespace {

struct Sample {
  int type;
  const char* file;  // of the collection that VEX_REAL_DATA names, or the name of one written here
};

void PrintTo(const Sample& sample, std::ostream* out) {
  *out << sample.file;
}

std::string NameOf(int type) {
  ST_FORMAT format{};
  for (int i = 0; ST_GetFormat(i, &format) == 0; ++i) {
    if (format.code == type) return format.name;
  }
  return STUtils::NameOfType(type);  // text
}

class WrongExtension : public testing::TestWithParam<Sample> {
 protected:
  // The file under each of these names.
  void ExpectBothTypes(const std::string& file) {
    for (const auto& [extension, byName] : {std::pair("sav", 22), std::pair("dta", 14),
                                            std::pair("csv", 1003), std::pair("sql", 28)}) {
      if (byName == GetParam().type) continue;
      const std::string wrong = folder_ / (std::string("wrong.") + extension);
      std::filesystem::copy_file(file, wrong);
      const std::string target = folder_ / "target.VSF";
      const Outcome stopped = RunVexData({"import", wrong, target});
      EXPECT_NE(stopped.code, 0) << wrong;
      EXPECT_FALSE(std::filesystem::exists(target));
      for (const int type : {byName, GetParam().type}) {
        EXPECT_THAT(stopped.err, HasSubstr(NameOf(type)));
        EXPECT_THAT(stopped.err, HasSubstr("(" + std::to_string(type) + ")"));
      }
      EXPECT_THAT(stopped.err, HasSubstr("--type"));
      const Outcome chosen =
          RunVexData({"import", wrong, target, "--type", std::to_string(GetParam().type)});
      EXPECT_EQ(chosen.code, 0) << chosen.err;
      EXPECT_TRUE(std::filesystem::exists(target));
      std::filesystem::remove(target);
    }
  }

  TempFolder folder_;
};

class WrittenHere : public WrongExtension {};
INSTANTIATE_TEST_SUITE_P(
    Formats, WrittenHere,
    testing::Values(Sample{0, "t.wk1"}, Sample{6, "t.dbf"}, Sample{7, "t.xls"}, Sample{10, "t.db"},
                    Sample{11, "t.wq1"}, Sample{12, "t.xpt"}, Sample{13, "t.por"},
                    Sample{14, "t.dta"}, Sample{16, "t.syd"}, Sample{17, "t.ssc"},
                    Sample{22, "t.zsav"}, Sample{29, "t.mat"}, Sample{31, "t.html"},
                    Sample{32, "t.rec"}, Sample{900, "t.xlsx"}, Sample{901, "t.ods"},
                    Sample{902, "t.sqlite"}, Sample{903, "t.jsonl"}));

TEST_P(WrittenHere, IsTold) {
  const std::string source = folder_ / "source.csv";
  const std::string data = folder_ / "source.VSF";
  const std::string file = folder_ / GetParam().file;
  WriteBytes(source, "AGE,SIZE\n41,1.8\n7,1.2\n");
  ASSERT_EQ(RunVexData({"import", source, data}).code, 0);
  ASSERT_EQ(RunVexData({"export", data, file}).code, 0);
  ExpectBothTypes(file);
}

class OfOtherPrograms : public WrongExtension {};
INSTANTIATE_TEST_SUITE_P(
    Formats, OfOtherPrograms,
    testing::Values(Sample{21, "sigmaplot/Confusion_Matrix.jnb"}, Sample{23, "access/reviews.mdb"},
                    Sample{30, "statistica/KSBASE.STA"}, Sample{35, "jmp/example1.jmp"},
                    Sample{37, "minitab/ex1-51.mtp"}, Sample{38, "sas/airline.sas7bdat"},
                    Sample{0, "lotus/testLotus123.123"}, Sample{7, "xls/CRLFX5_2.XLS"},
                    Sample{11, "quattro/q9test.qpw"}, Sample{29, "matlab/test_file_v73.mat"},
                    Sample{10, "paradox/STATES.DB"}, Sample{6, "dbase/dbase_30.dbf"}));

TEST_P(OfOtherPrograms, IsTold) {
  const char* const collection = std::getenv("VEX_REAL_DATA");
  if (collection == nullptr) GTEST_SKIP() << "VEX_REAL_DATA is not set: no files to read";
  ExpectBothTypes(std::string(collection) + "/" + GetParam().file);
}

}  // namespace
