// What the importer writes, through its writing operations alone.
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "host/Recorder.h"
#include "support/TempFolder.h"
#include "support/VsfBytes.h"
#include "transfer/DataPort.h"

using STUtils::variable_data_t;
using STUtils::variable_info_t;

namespace {

variable_info_t Variable(const std::string& name, std::int32_t type, bool selected = true) {
  variable_info_t info;
  info.name = name;
  info.type = type;
  info.selected = selected;
  return info;
}

variable_data_t Value(double number, bool missing = false, const std::string& text = "") {
  variable_data_t value;
  value.value = number;
  value.missing = missing;
  value.text = text;
  return value;
}

}  // namespace

class DataPort : public testing::Test {
 protected:
  void Open() { stream.open(folder / "out.bin", std::ios::binary); }
  std::string Written() {
    stream.close();
    return ReadBytes(folder / "out.bin");
  }
  CRecorder host;
  TempFolder folder;
  CDataPort port{&host};
  std::ofstream stream;
  std::streampos position;
};

TEST_F(DataPort, WritesItsHeaderAndRecordsByteForByte) {
  const std::vector<variable_info_t> variables = {Variable("a_name_of_20_bytes__", 1),
                                                  Variable("unselected", 1, false),
                                                  Variable("text", 2), Variable("date", 64)};
  Open();
  ASSERT_TRUE(port.WriteAppDataHeader(stream, variables, position));
  EXPECT_EQ(position, std::streampos(64));
  ASSERT_TRUE(port.WriteAppDataRecord(22, stream, 0, variables,
                                      {Value(1.5), Value(9), Value(0, false, "txt"), Value(7)}));
  ASSERT_TRUE(port.WriteAppDataRecord(22, stream, 1, variables,
                                      {Value(3, true), Value(9), Value(0), Value(0, false, "NA")}));
  ASSERT_TRUE(port.UpdateAppDataRecordCount(stream, position, 2));

  const std::string expected = Bytes()
                                   .Add(VsfHead("VEXC16 DATA SYSTEM FILE", '\0', 2, 3))
                                   .Add(VsfVariable("a_name_of_20_byt", 16, ' '))
                                   .Add(VsfVariable("text", 16, ' '))
                                   .Add(VsfVariable("date", 16, ' '))
                                   .Reals({1.5, -999999, 7})
                                   .Reals({-999999, -999999, 0})
                                   .Get();
  EXPECT_EQ(Written(), expected);
}

TEST_F(DataPort, StandsAtMinusOneUntilTheCountIsWritten) {
  Open();
  ASSERT_TRUE(port.WriteAppDataHeader(stream, {Variable("a", 1)}, position));
  EXPECT_EQ(Written(), Bytes()
                           .Add(VsfHead("VEXC16 DATA SYSTEM FILE", '\0', -1, 1))
                           .Add(VsfVariable("a", 16, ' '))
                           .Get());
}

TEST_F(DataPort, RefusesVariablesOfAnotherKindAndMemoryTargets) {
  Open();
  const std::vector<variable_info_t> variables = {Variable("a", 3)};
  EXPECT_FALSE(port.WriteAppDataRecord(22, stream, 0, variables, {Value(1)}));
  EXPECT_FALSE(port.WriteAppDataHeader(variables));
  EXPECT_FALSE(port.WriteAppDataRecord(22, 0, variables, {Value(1)}));
  EXPECT_FALSE(port.UpdateAppDataRecordCount(1));
  EXPECT_FALSE(port.WriteAppDataHeader(false, stream, variables, position));
}

TEST_F(DataPort, KnowsTheTextsThatMeanMissing) {
  port.SetMissingStrings({"NA", " nil ", "99", "1e2"});
  const struct {
    int type;
    double number;
    const char* text;
    bool missing;
  } cases[] = {{1003, 0, "NA", true},    {1003, 0, " na ", true},  {1005, 0, "NIL", true},
               {1003, 99, "99.0", true}, {1003, 100, "100", true}, {1003, 0, "0", false},
               {1003, 0, "", false},     {1003, 5, "NA", false},   {1003, 98, "98", false},
               {22, 0, "NA", false},     {22, 99, "99", false},    {1001, 0, "na", true},
               {1002, 0, "Nil", true},   {1004, 100, "", true},    {1003, -99, "-99", false},
               {1006, 0, "NA", false},   {0, 0, "NA", false},      {1003, 0, "NANIL", false}};
  for (const auto& c : cases) {
    EXPECT_EQ(port.SameAsMissing(c.type, Value(c.number, false, c.text)), c.missing)
        << c.type << ' ' << c.text;
  }
}

TEST_F(DataPort, ShowsProgressAtMostOnceASecondAndAnewAtRecord0) {
  const std::vector<variable_info_t> variables = {Variable("a", 1)};
  const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(1050)); };
  Open();
  ASSERT_TRUE(port.WriteAppDataHeader(stream, variables, position));
  pause();
  ASSERT_TRUE(port.WriteAppDataRecord(22, stream, 0, variables, {Value(1)}));
  EXPECT_TRUE(host.statusTexts.empty());  // record 0 only starts the timer
  pause();
  ASSERT_TRUE(port.WriteAppDataRecord(22, stream, 41, variables, {Value(1)}));
  ASSERT_TRUE(port.WriteAppDataRecord(22, stream, 42, variables, {Value(1)}));
  EXPECT_EQ(host.statusTexts, std::vector<CString>{"Importing 42 record(s)"});
  ASSERT_TRUE(port.UpdateAppDataRecordCount(stream, position, 43));
  EXPECT_EQ(host.statusTexts.back(), "");
}
