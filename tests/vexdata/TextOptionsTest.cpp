// What each option of text files does, from file to file.
#include <algorithm>

#include <gtest/gtest.h>

#include "support/RealData.h"
#include "support/TempFolder.h"
#include "support/TestData.h"
#include "support/VsfBytes.h"
#include "vexdata/RunVexData.h"

namespace {

using Arguments = std::vector<std::string>;

class TextOptions : public testing::Test {
 protected:
  Outcome Import(const std::string& file, const Arguments& options) {
    Arguments arguments = {"import", file, imported, "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return RunVexData(arguments);
  }
  // The imported file as comma delimited text with its names.
  std::string Imported() { return RunVexData({"export", imported, "-", "--names", "-q"}).out; }

  TempFolder folder;
  const std::string imported = folder / "imported.VSF";
};

TEST_F(TextOptions, EachHasItsEffectOnAnImport) {
  const std::string wide("\xFF\xFE\x61\0,\0\xE4\0\n\0\x31\0,\0\x32\0\n\0", 18);
  const struct {
    const char* extension;
    std::string text;
    Arguments options;
    std::string imported;
  } cases[] = {
      {".csv", "a,b\n1,NA\n", {}, "\"a\",\"b\"\n1,\n"},
      {".csv", "1,2\n3,4\n", {}, "\"VAR001\",\"VAR002\"\n1,2\n3,4\n"},
      {".csv", "1,2\n3,4\n", {"--names"}, "\"1\",\"2\"\n3,4\n"},
      {".csv", "a,b\nc,4\n", {"--no-names"}, "\"VAR001\",\"VAR002\"\n,\n,\n"},
      {".csv", "a,b\n1,4\n", {"--no-names", "--all-numeric"}, "\"VAR001\",\"VAR002\"\n,\n1,4\n"},
      {".csv", "a,b\nx,2\n12abc,3\n", {"--all-numeric"}, "\"a\",\"b\"\n,2\n12,3\n"},
      {".csv", "a,b\n1,9\n - ,9.0\n2,NA\n", {"--missing", "9,-,na"}, "\"a\",\"b\"\n1,\n,\n2,\n"},
      {".csv", "a,b\n1,NA\n2,3\n", {"--missing", ""}, "\"a\",\"b\"\n1,\n2,\n"},
      {".csv", "a,b\n1,2\n3,\"4,5\"\n", {"--missing", "1;4,5"}, "\"a\",\"b\"\n,2\n3,\n"},
      {".csv",
       "a;b\n1,5;9,5\n2,25;x\n",
       {"--delimiter", ";", "--decimal-mark", ",", "--missing", "x;9,5"},
       "\"a\",\"b\"\n1.5,\n2.25,\n"},
      {".csv", "a|b\n1|2\n", {"--delimiter", "|"}, "\"a\",\"b\"\n1,2\n"},
      {".csv", "a\tb\n1\t2\n", {"--delimiter", "tab"}, "\"a\",\"b\"\n1,2\n"},
      {".dat", "a:b\n1:2\n", {"--type", "1004", "--delimiter", ":"}, "\"a\",\"b\"\n1,2\n"},
      {".dat", "a b,c\n1 2, 3\n", {"--type", "1001"}, "\"a\",\"b\",\"c\"\n1,2,3\n"},
      {".raw", "a b\n1,5 2 3\n4,25", {"--decimal-mark", ","}, "\"a\",\"b\"\n1.5,2\n3,4.25\n"},
      {".csv", "a,b,c\n1,2,3\n", {"--select", "c,a"}, "\"a\",\"c\"\n1,3\n"},
      {".csv", "a,\x80\n1,2\n", {}, "\"a\",\"\xE2\x82\xAC\"\n1,2\n"},
      {".csv",
       "a,\xC3\xA4\n1,2\n",
       {"--encoding", "windows-1252"},
       "\"a\",\"\xC3\x83\xC2\xA4\"\n1,2\n"},
      {".csv", wide, {}, "\"a\",\"\xC3\xA4\"\n1,2\n"},
      {".csv", wide.substr(2), {"--encoding", "utf-16le"}, "\"a\",\"\xC3\xA4\"\n1,2\n"},
  };
  for (const auto& c : cases) {
    const std::string file = folder / (std::string("source") + c.extension);
    WriteBytes(file, c.text);
    const Outcome outcome = Import(file, c.options);
    ASSERT_EQ(outcome.code, 0) << c.text << outcome.err;
    EXPECT_EQ(Imported(), c.imported) << c.text << outcome.err;
  }
}

TEST_F(TextOptions, AnEncodingThatWasGuessedIsTold) {
  constexpr const char* kTold = "names no encoding";
  const std::string sql = "CREATE TABLE t (a VARCHAR(9));\nINSERT INTO t VALUES ('K\x94ln');\n";
  const struct {
    const char* extension;
    std::string text;
    Arguments options;
    const char* told;
  } cases[] = {
      {".csv", "a,b\n1,2\n", {}, ""},
      {".csv", "a,\xC3\xA4\n1,2\n", {}, ""},
      {".csv", "a,\xE4\n1,2\n", {}, "Windows-1252"},
      {".csv", "a,\xE4\n1,2\n", {"--encoding", "windows-1252"}, ""},
      {".sql", "CREATE TABLE t (a VARCHAR(9));\nINSERT INTO t VALUES ('Ulm');\n", {}, ""},
      {".sql", sql, {}, "CP1252"},
      {".sql", sql, {"--encoding", "CP850"}, ""},
  };
  for (const auto& c : cases) {
    const std::string file = folder / (std::string("source") + c.extension);
    WriteBytes(file, c.text);
    const Outcome outcome = Import(file, c.options);
    ASSERT_EQ(outcome.code, 0) << c.text << outcome.err;
    const bool told = outcome.err.find(kTold) != std::string::npos;
    EXPECT_EQ(told, *c.told != '\0') << c.text << outcome.err;
    EXPECT_NE(outcome.err.find(c.told), std::string::npos) << c.text << outcome.err;
  }
}

TEST_F(TextOptions, ThoseThatCannotBeFollowedAreRefusedInOneLine) {
  const std::string csv = folder / "source.csv";
  const std::string raw = folder / "source.raw";
  WriteBytes(csv, "a,b\n1,2\n");
  WriteBytes(raw, "a b\n1 2\n");
  ASSERT_EQ(Import(csv, {}).code, 0);
  const std::string before = ReadBytes(imported);
  const std::string survey = TestData("survey.sav");
  const std::string target = folder / "out.txt";
  const struct {
    Arguments arguments;
    int code;
    const char* message;
  } cases[] = {
      {{"import", csv, imported, "--type", "1004"}, 2, "--delimiter needs one character"},
      {{"import", csv, imported, "--delimiter", "ab"}, 2, "--delimiter needs one character"},
      {{"import", csv, imported, "--delimiter", "7"}, 2, "cannot be delimited by \"7\""},
      {{"import", csv, imported, "--delimiter", ";", "--table", "x"}, 2, "--table has no effect"},
      {{"import", raw, imported, "--delimiter", ";"}, 2, "--delimiter has no effect"},
      {{"import", survey, imported, "--delimiter", ";"}, 2, "--delimiter has no effect"},
      {{"import", survey, imported, "--names"}, 2, "--names has no effect"},
      {{"import", survey, imported, "--no-names"}, 2, "--no-names has no effect"},
      {{"import", survey, imported, "--missing", "9"}, 2, "--missing has no effect"},
      {{"import", survey, imported, "--all-numeric"}, 2, "--all-numeric has no effect"},
      {{"import", survey, imported, "--decimal-mark", ","}, 2, "--decimal-mark has no effect"},
      {{"import", csv, imported, "--encoding", "CP850"}, 2, "--encoding is one of"},
      {{"import", survey, imported, "--encoding", "CP0"}, 1, "CP0: this encoding is not known"},
      {{"import", csv, imported, "--select", "c"}, 1, "no variable of this name: c"},
      {{"export", imported, target, "--type", "1004"}, 2, "--delimiter needs one character"},
      {{"export", imported, target, "--type", "1004", "--delimiter", "."}, 2, "delimited by \".\""},
      {{"export", imported, target, "--delimiter", ";"}, 2, "--type 1004"},
  };
  for (const auto& c : cases) {
    Arguments arguments = c.arguments;
    arguments.push_back("--overwrite");
    const Outcome outcome = RunVexData(arguments);
    EXPECT_EQ(outcome.code, c.code) << c.message << outcome.err;
    EXPECT_NE(outcome.err.find(c.message), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(ReadBytes(imported), before) << c.message;
  }
  EXPECT_FALSE(std::filesystem::exists(target));
}

TEST_F(TextOptions, MessagesHoldNothingThatATerminalObeys) {
  WriteBytes(folder / "source.csv", "a,b\n1,2,\"x\x1B[31m\n\x7Fy\"\n");
  const Outcome outcome = Import(folder / "source.csv", {});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.err.find("line 3: there are more than the 2 fields"), std::string::npos);
  EXPECT_NE(outcome.err.find("\"x [31m  y\""), std::string::npos) << outcome.err;
}

TEST_F(TextOptions, TheDelimiterOfAnExportIsReadBack) {
  const std::string text = folder / "out.txt";
  WriteBytes(folder / "source.csv", "a,b\n1,\n-2.5,3\n");
  ASSERT_EQ(Import(folder / "source.csv", {}).code, 0);
  for (const auto& [delimiter, line] :
       {std::pair{"tab", "\n-2.5\t3\n"}, {";", "\n-2.5;3\n"}, {" ", "\n-2.5 3\n"}}) {
    ASSERT_EQ(RunVexData({"export", imported, text, "--type", "1004", "--delimiter", delimiter,
                          "--names", "--overwrite"})
                  .code,
              0);
    EXPECT_TRUE(ReadBytes(text).ends_with(line)) << ReadBytes(text);
    ASSERT_EQ(Import(text, {"--type", "1004", "--delimiter", delimiter}).code, 0);
    EXPECT_EQ(Imported(), "\"a\",\"b\"\n1,\n-2.5,3\n");
  }
}

class TextOptionsOnRealFiles : public RealDataTest {};

TEST_F(TextOptionsOnRealFiles, ChangeWhatASurveyGives) {
  const TempFolder folder;
  const std::string target = folder / "survey.VSF";
  const auto lines = [&](const Arguments& options) {
    Arguments arguments = {"import", RealFile("text/bfi.csv"), target, "--overwrite"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(RunVexData(arguments).code, 0);
    return RunVexData({"export", target, "-", "-q"}).out;
  };
  const auto count = [](const std::string& text, const std::string& line) {
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find('\n' + line + '\n', at)) != std::string::npos; ++at) {
      ++found;
    }
    return found;
  };
  const std::string plain = lines({"--select", "age"});
  EXPECT_EQ(std::count(plain.begin(), plain.end(), '\n'), 2800);
  const std::size_t young = count(plain, "17");
  EXPECT_GT(young, 0U);
  EXPECT_EQ(count(lines({"--select", "age", "--missing", "NA,17"}), ""), young);
  const std::string withNames = lines({"--no-names", "--all-numeric"});
  EXPECT_EQ(std::count(withNames.begin(), withNames.end(), '\n'), 2801);
}

}  // namespace
