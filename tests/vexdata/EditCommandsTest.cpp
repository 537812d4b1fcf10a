// The commands that change a data set.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/VsfBytes.h"
#include "vexdata/RunVexData.h"

class EditCommands : public testing::Test {
 protected:
  void SetUp() override {
    WriteBytes(data, Bytes()
                         .Add(VsfHead("TORVIK DATA SYSTEM FILE", ' ', 4, 3))
                         .Add(VsfVariable("id", 8))
                         .Add(VsfVariable("x", 8))
                         .Add(VsfVariable("w", 8))
                         .Reals({1, 3, 0.5, 2, 1, 0.5, 3, 2, 1, 4, 1, 1})
                         .Get());
    bytes = ReadBytes(data);
  }

  // The cells as one text.
  std::string Cells(const std::string& file) {
    std::string text = RunVexData({"show", file}).out;
    const auto isBlank = [](char a, char b) { return a == ' ' && b == ' '; };
    text.erase(std::unique(text.begin(), text.end(), isBlank), text.end());
    return text;
  }
  nlohmann::json Info(const std::string& file) {
    return nlohmann::json::parse(RunVexData({"info", file, "--json"}).out);
  }

  TempFolder folder;
  const std::string data = folder / "data.VSF";
  std::string bytes;
};

TEST_F(EditCommands, ChangeTheCells) {
  const std::string target = folder / "t.VSF";
  const struct {
    std::vector<std::string> arguments;
    const char* cells;
  } cases[] = {
      {{"sort", data, "--by", "x"}, " 2 1 0.5 \n 4 1 1 \n 3 2 1 \n 1 3 0.5 \n"},
      {{"sort", data, "--by", "2", "--descending"}, " 1 3 0.5 \n 3 2 1 \n 2 1 0.5 \n 4 1 1 \n"},
      {{"insert", data, "--cases", "1", "--before", "2"},
       " 1 3 0.5 \n 0 0 0 \n 2 1 0.5 \n 3 2 1 \n 4 1 1 \n"},
      {{"insert", data, "--cases", "1"}, " 1 3 0.5 \n 2 1 0.5 \n 3 2 1 \n 4 1 1 \n 0 0 0 \n"},
      {{"insert", data, "--variables", "1", "--after", "id"},
       " 1 0 3 0.5 \n 2 0 1 0.5 \n 3 0 2 1 \n 4 0 1 1 \n"},
      {{"delete", data, "--cases", "2-3"}, " 1 3 0.5 \n 4 1 1 \n"},
      {{"delete", data, "--cases", "2-"}, " 1 3 0.5 \n"},
      {{"delete", data, "--variables", "id,w"}, " 3 \n 1 \n 2 \n 1 \n"},
      {{"select", data, "SC CASE ODD", "SC x > 2"}, " 1 3 0.5 \n"},
      {{"select", data, "SD 2 = 1"}, " 1 0.5 \n 3 1 \n"},
  };
  for (auto c : cases) {
    c.arguments.insert(c.arguments.end(), {"-o", target, "--overwrite"});
    const Outcome outcome = RunVexData(c.arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Cells(target), c.cells) << c.arguments[0] << ' ' << c.arguments[3];
    EXPECT_EQ(Info(target)["layout"], "old");
    EXPECT_TRUE(ReadBytes(data) == bytes);
  }
}

TEST_F(EditCommands, DefineTakesListsOfVariables) {
  ASSERT_EQ(RunVexData({"define", data, "id-x", "--type", "continuous", "--missing",
                        "9,-8,90 to 99", "--categories",
                        "1=low,2=h\xC3\xB6"
                        "ch"})
                .code,
            0);
  ASSERT_EQ(RunVexData({"define", data, "w", "--weight", "--rename", "weight"}).code, 0);
  ASSERT_EQ(RunVexData({"define", data, "x", "--group", "--missing", "none"}).code, 0);
  const auto info = Info(data);
  EXPECT_EQ(info["variables"][0]["type"], 1);
  EXPECT_EQ(info["variables"][0]["missing"], nlohmann::json::parse("[9,-8,null,90,99]"));
  EXPECT_EQ(info["variables"][1]["missing"], nlohmann::json::parse("[null,null,null,null,null]"));
  EXPECT_EQ(info["variables"][1]["categories"][1][1],
            "h\xC3\xB6"
            "ch");
  EXPECT_EQ(info["variables"][2]["name"], "weight");
  EXPECT_EQ(info["weight_variable"], 3);
  EXPECT_EQ(info["group_variable"], 2);
  const Outcome deleted = RunVexData({"delete", data, "--variables", "weight"});
  EXPECT_NE(deleted.err.find("weight variable"), std::string::npos);
  EXPECT_EQ(Info(data)["weight_variable"], 0);
  EXPECT_EQ(Info(data)["group_variable"], 2);
}

TEST_F(EditCommands, NewVariablesCanBeNamed) {
  ASSERT_EQ(
      RunVexData({"insert", data, "--variables", "2", "--before", "x", "--names", "a,b"}).code, 0);
  ASSERT_EQ(RunVexData({"insert", data, "--variables", "1"}).code, 0);
  const auto info = Info(data);
  std::string names;
  for (const auto& variable : info["variables"]) {
    names += variable["name"].get<std::string>() + ' ';
  }
  EXPECT_EQ(names, "id a b x w var6 ");
}

TEST_F(EditCommands, WhatCannotBeDoneLeavesTheFile) {
  WriteBytes(folder / "damaged.VSF", bytes.substr(0, bytes.size() - 8));
  const struct {
    std::vector<std::string> arguments;
    int code;
    const char* message;
  } cases[] = {
      {{"sort", data}, 2, "--by"},
      {{"sort", data, "--by", "y"}, 1, "--by: there is no variable y"},
      {{"sort", data, "--by", "id-x"}, 1, "--by: expected one variable"},
      {{"sort", folder / "absent.VSF", "--by", "x"}, 1, "The file does not exist!"},
      {{"sort", folder / "damaged.VSF", "--by", "x"}, 1, "damaged"},
      {{"sort", data, "--by", "x", "-o", data}, 1, "--overwrite"},
      {{"insert", data}, 2, ""},
      {{"insert", data, "--cases", "1", "--variables", "1"}, 2, ""},
      {{"insert", data, "--cases", "0"}, 2, "--cases"},
      {{"insert", data, "--cases", "2147483645"}, 1, "2,147,483,647"},
      {{"insert", data, "--cases", "1", "--before", "5"}, 1, "--before: expected a case"},
      {{"insert", data, "--cases", "1", "--names", "a"}, 2, "--names"},
      {{"insert", data, "--variables", "2", "--names", "a"}, 1, "expected 2 names"},
      {{"delete", data, "--cases", "x"}, 1, "--cases"},
      {{"delete", data, "--cases", "9-"}, 1, "there are no cases"},
      {{"delete", data, "--variables", "1-3"}, 1, "At least one variable must stay."},
      {{"define", data, "x"}, 2, ""},
      {{"define", data, "x", "--type", "odd"}, 2, "--type"},
      {{"define", data, "1-2", "--rename", "y"}, 1, "one variable"},
      {{"define", data, "x", "--rename", "ninecharsx"}, 1, "--layout"},
      {{"define", data, "x", "--missing", "1,2,3,4"}, 1, "at most three"},
      {{"define", data, "x", "--missing", "a"}, 1, "not a"},
      {{"define", data, "x", "--categories", "1"}, 1, "not 1"},
      {{"define", data, "x", "--categories", "1=much too long"}, 1, "8 characters"},
      {{"define", data, "x", "--categories",
        "1=,2=,3=,4=,5=,6=,7=,8=,9=,10=,11=,12=,13=,14=,15=,16="},
       1,
       "An ordinal variable cannot have more than 15 categories!"},
      {{"select", data, "SC 1"}, 1, "SC 1: "},
      {{"select", data, "OU XM"}, 1, "SC or SD"},
      {{"select", data, "SD 1 2 3 = 1"}, 1, "At least one variable must stay."},
      {{"select", data, "SD 1 = 1", "--dry-run"}, 0, ""},
  };
  for (const auto& c : cases) {
    const Outcome outcome = RunVexData(c.arguments);
    EXPECT_EQ(outcome.code, c.code) << c.message << ": " << outcome.err;
    EXPECT_NE(outcome.err.find(c.message), std::string::npos) << c.message << ": " << outcome.err;
    EXPECT_TRUE(ReadBytes(data) == bytes) << c.message;
  }
  {
    const FileSizeLimit full(700);
    EXPECT_EQ(RunVexData({"insert", data, "--cases", "100"}).code, 1);
  }
  EXPECT_TRUE(ReadBytes(data) == bytes);
  EXPECT_EQ(folder.FileCount(), 2U);
  EXPECT_EQ(RunVexData({"select", data, "SD 1 = 1", "--dry-run"}).out,
            "1 of 4 cases go, and the variables id\n");
  EXPECT_EQ(RunVexData({"define", data, "x", "--rename", "ninecharsx", "--layout", "new"}).code, 0);
  EXPECT_EQ(Info(data)["variables"][1]["name"], "ninecharsx");
}
