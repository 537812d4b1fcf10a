// Text and DSF files from the command line: look, show, convert, export.
#include <algorithm>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TempFolder.h"
#include "support/VsfBytes.h"
#include "vexdata/RunVexData.h"

namespace {

class OtherKinds : public testing::Test {
 protected:
  OtherKinds() {
    WriteBytes(free, "age size\n1 2\n3 4.5\n");
    WriteBytes(fixed, " 12.50\n  3 75\n");
    WriteBytes(matrix, "1\n2 3\n4 5\n");
    WriteBytes(dsf, Bytes()
                        .Text("VEXMOR SYSTEM DATA FILE", 64, ' ')
                        .Int(0)
                        .Int(2)
                        .Text("x", 16)
                        .Text("y", 16)
                        .Reals({1, 2, 3, 4, 5})
                        .Get());
  }
  TempFolder folder;
  const std::string free = folder / "free.dat";
  const std::string fixed = folder / "fixed.dat";
  const std::string matrix = folder / "matrix.dat";
  const std::string dsf = folder / "group.DSF";
  const std::string target = folder / "target";
};

std::string Row(const std::vector<std::string>& cells) {
  std::string row;
  for (const auto& cell : cells) row += std::string(15 - cell.size(), ' ') + cell + ' ';
  return row + " \n";
}

TEST_F(OtherKinds, Shows) {
  const std::string zero = Row({"1", "0"}) + Row({"2", "3"}) + Row({"4", "5"});
  const struct {
    std::vector<std::string> arguments;
    std::string out;
  } cases[] = {
      {{free, "--kind", "text", "--names-on-top"}, Row({"1", "2"}) + Row({"3", "4.5"})},
      {{free, "--names-on-top", "--variables", "size", "--cases", "2"}, Row({"4.5"})},
      {{fixed, "--format", "(F3,F3.2)"}, Row({"12", "0.5"}) + Row({"3", "0.75"})},
      {{matrix, "--parts", "matrix,means", "--variable-count", "2"}, zero},
      {{matrix, "--parts", "means, matrix", "--full", "--variable-count", "1"},
       Row({"2"}) + Row({"1"})},
      {{dsf}, zero},
  };
  for (const auto& test : cases) {
    std::vector<std::string> arguments = {"show"};
    arguments.insert(arguments.end(), test.arguments.begin(), test.arguments.end());
    const Outcome outcome = RunVexData(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, test.out) << outcome.err;
  }
}

TEST_F(OtherKinds, InfoNamesTheKind) {
  const Outcome outcome = RunVexData({"info", dsf});
  EXPECT_NE(outcome.out.find("Kind       DSF file, group 1"), std::string::npos) << outcome.out;
  const auto info =
      nlohmann::json::parse(RunVexData({"info", fixed, "--format", "(F3,F3.2)", "--json"}).out);
  EXPECT_EQ(info["header"], "text, fixed columns (F3,F3.2)");
  EXPECT_TRUE(info["layout"].is_null());
  EXPECT_EQ(info["cases"], 2);
  EXPECT_EQ(info["variables"][1]["name"], "VAR002");
}

TEST_F(OtherKinds, Converts) {
  const std::string vsf = folder / "data.VSF";
  ASSERT_EQ(RunVexData({"convert", free, vsf, "--names-on-top", "--variable-count", "2"}).code, 0);
  EXPECT_EQ(RunVexData({"show", vsf, "--variables", "age,size"}).out,
            Row({"1", "2"}) + Row({"3", "4.5"}));
  const struct {
    std::vector<std::string> arguments;
    const char* text;
  } cases[] = {{{vsf, target + ".dat"}, "1.000000 2.000000 \n3.000000 4.500000 \n"},
               {{vsf, target, "--to-format", "(F2,F5.1)"}, "(F2,F5.1)\n 12.000\n 34.500\n"},
               {{dsf, target, "--to", "text"},
                "1.000000 \n2.000000 3.000000 \n"
                "4.000000 5.000000 \n"}};
  for (const auto& test : cases) {
    std::vector<std::string> arguments = {"convert"};
    arguments.insert(arguments.end(), test.arguments.begin(), test.arguments.end());
    EXPECT_EQ(RunVexData(arguments).code, 0) << test.text;
    EXPECT_EQ(ReadBytes(test.arguments[1]), test.text);
    std::filesystem::remove(target);
  }
  // A matrix goes into a DSF file that is there.
  WriteBytes(target, ReadBytes(dsf));
  EXPECT_EQ(RunVexData({"convert", matrix, target, "--parts", "matrix,means", "--variable-count",
                        "2", "--to", "dsf", "--overwrite"})
                .code,
            0);
  EXPECT_EQ(ReadBytes(target).substr(104), ReadBytes(dsf).substr(104));
}

TEST_F(OtherKinds, ExportsCases) {
  const std::string csv = folder / "out.csv";
  ASSERT_EQ(RunVexData({"export", fixed, csv, "--names", "--format", "(F3,F3.2)"}).code, 0);
  EXPECT_EQ(ReadBytes(csv), "\"VAR001\",\"VAR002\"\n12,0.5\n3,0.75\n");
}

TEST_F(OtherKinds, RefusesInOneLine) {
  const struct {
    std::vector<std::string> arguments;
    int code;
    const char* message;
  } cases[] = {
      {{"show", folder / "absent.DSF"}, 1, "The file does not exist!"},
      {{"show", folder / "absent", "--kind", "text"}, 1, "The file does not exist!"},
      {{"show", dsf, "--group", "2"}, 1, "no group 2"},
      {{"show", free, "--kind", "dsf"}, 1, "no DSF file"},
      {{"show", matrix, "--parts", "matrix"}, 1, "--variable-count"},
      {{"show", matrix, "--parts", "matrix,matrix"}, 1, "--parts"},
      {{"show", fixed, "--format", "(F0)"}, 1, "F0"},
      {{"convert", dsf, target + ".VSF"}, 1, "moment matrix"},
      {{"convert", fixed, target + ".DSF", "--format", "(2F3)"}, 1, "can hold"},
      {{"convert", fixed, target, "--format", "(2F3)", "--to-format", "(2F1)"}, 1, "case 1"},
  };
  for (const auto& test : cases) {
    const Outcome outcome = RunVexData(test.arguments);
    EXPECT_EQ(outcome.code, test.code) << test.message;
    EXPECT_NE(outcome.err.find(test.message), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  }
  EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
