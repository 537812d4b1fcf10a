#include <cstdio>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/TempFolder.h"
#include "support/TestData.h"
#include "support/VsfBytes.h"
#include "vexdata/RunVexData.h"

namespace {

const std::string kSurvey = TestData("survey.sav");

}  // namespace

class CommandLine : public testing::Test {
 protected:
  // Two variables, three cases, the last of them cut in the middle; the old layout.
  void WriteSmallFile() {
    WriteBytes(small, Bytes()
                          .Add(VsfHead("TORVIK DATA SYSTEM FILE", ' ', 3, 2))
                          .Add(VsfVariable("alpha", 8))
                          .Add(VsfVariable("\xE4", 8))
                          .Reals({1, 2.5, 3, -999999, 5})
                          .Get());
  }
  TempFolder folder;
  const std::string small = folder / "small.VSF";
};

TEST_F(CommandLine, ExitCodesAndMessages) {
  WriteSmallFile();
  WriteBytes(folder / "text.sav", "plain text");
  const std::string target = folder / "t.VSF";
  const struct {
    std::vector<std::string> arguments;
    int code;
    const char* message;  // found on standard error, which then has one line
  } cases[] = {
      {{}, 2, nullptr},
      {{"unknown"}, 2, nullptr},
      {{"info"}, 2, nullptr},
      {{"convert", small, target, "--layout", "ancient"}, 2, nullptr},
      {{"--help"}, 0, nullptr},
      {{"--version"}, 0, nullptr},
      {{"info", folder / "absent.VSF"}, 1, "The file does not exist!"},
      {{"info", folder / ""}, 1, "Is a directory"},
      {{"info", folder / "text.sav"}, 1, "The file is not a correct VEXMOR data system file!"},
      {{"import", folder / "absent.sav"}, 1, "The file does not exist!"},
      {{"import", folder / "text.sav"}, 1, "text.sav"},
      {{"import", folder / "text.sav", folder / "x.VSF", "--type", "33"}, 1, "LIMDEP"},
      {{"import", kSurvey, small}, 1, "--overwrite"},
      {{"show", small, "--cases", "x"}, 2, "--cases"},
      {{"show", small, "--variables", "beta"}, 1, "beta"},
      {{"show", small, "--cases", "3-2"}, 2, "--cases"},
      {{"import", kSurvey, target, "--type", "-7"}, 2, nullptr},
      {{"export", small, "-", "--type", "22"}, 2, "standard output"},
      {{"export", small, folder / "x.what"}, 1, "--type"},
      {{"convert", folder / "absent.VSF", target, "--layout", "new"},
       1,
       "The file does not exist!"},
      {{"convert", small, folder / "no/t.VSF", "--layout", "new"}, 1, "Cannot write to file!"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = RunVexData(c.arguments);
    const std::string what = c.arguments.empty() ? "nothing" : c.arguments.front();
    EXPECT_EQ(outcome.code, c.code) << what << ": " << outcome.err;
    if (c.message == nullptr) continue;
    EXPECT_NE(outcome.err.find(c.message), std::string::npos) << what << ": " << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(CommandLine, ImportsWithTheTypeOfTheNameOrTheOneAskedFor) {
  const std::string target = folder / "survey.VSF";
  EXPECT_EQ(RunVexData({"import", kSurvey, target}).code, 0);
  const std::string bytes = ReadBytes(target);
  EXPECT_FALSE(bytes.empty());

  const std::string belied = folder / "survey.dta";
  WriteBytes(belied, ReadBytes(kSurvey));
  const Outcome stopped = RunVexData({"import", belied, folder / "b.VSF"});
  EXPECT_EQ(stopped.code, 1);
  EXPECT_NE(stopped.err.find("Stata"), std::string::npos) << stopped.err;
  EXPECT_NE(stopped.err.find("SPSS Data File"), std::string::npos) << stopped.err;
  EXPECT_EQ(RunVexData({"import", belied, folder / "b.VSF", "--type", "22"}).code, 0);
  EXPECT_EQ(ReadBytes(folder / "b.VSF"), bytes);

  // A name that says nothing leaves it to the content.
  WriteBytes(folder / "survey.odd", ReadBytes(kSurvey));
  EXPECT_EQ(RunVexData({"import", folder / "survey.odd", folder / "c.VSF"}).code, 0);
  EXPECT_EQ(ReadBytes(folder / "c.VSF"), bytes);
  WriteBytes(folder / "none.odd", "what is this");
  EXPECT_EQ(RunVexData({"import", folder / "none.odd", folder / "d.VSF"}).code, 1);
}

TEST_F(CommandLine, ShowsCellsAndReadsDamagedFilesAsFarAsTheyGo) {
  WriteSmallFile();
  EXPECT_EQ(RunVexData({"show", small}).out,
            "              1             2.5  \n"
            "              3         -999999  \n"
            "              5         -999999  \n");
  EXPECT_EQ(RunVexData({"show", small, "--cases", "2-", "--variables", "2,alpha"}).out,
            "        -999999               3  \n"
            "        -999999               5  \n");
}

TEST_F(CommandLine, ExportsToAFile) {
  WriteSmallFile();
  const std::string target = folder / "out.csv";
  const Outcome told = RunVexData({"export", small, target, "--names"});
  ASSERT_EQ(told.code, 0);
  EXPECT_NE(told.err.find("its last 1 value(s) are missing"), std::string::npos) << told.err;
  EXPECT_EQ(ReadBytes(target), "\"alpha\",\"\xC3\xA4\"\n1,2.5\n3,\n5,\n");
  const Outcome warned = RunVexData({"export", small, folder / "out.raw"});
  EXPECT_EQ(warned.code, 0);
  EXPECT_TRUE(warned.err.starts_with("note: ")) << warned.err;
  EXPECT_EQ(RunVexData({"export", small, folder / "quiet.raw", "--quiet"}).err, "");
}

TEST_F(CommandLine, ExportsBehindWhatStandardOutputHolds) {
  WriteSmallFile();
  const char* const arguments[] = {"vexdata", "export", small.c_str(), "-", "--quiet"};
  testing::internal::CaptureStdout();
  std::puts("before");
  std::fflush(stdout);
  EXPECT_EQ(RunCommandLine(5, arguments), 0);
  std::puts("after");
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\n1,2.5\n3,\n5,\nafter\n");
}

TEST_F(CommandLine, InfoAsJsonSaysEverything) {
  WriteSmallFile();
  const auto info = nlohmann::json::parse(RunVexData({"info", small, "--json"}).out);
  EXPECT_EQ(info["header"], "TORVIK DATA SYSTEM FILE");
  EXPECT_EQ(info["layout"], "old");
  EXPECT_EQ(info["cases"], 3);
  EXPECT_EQ(info["settings"].size(), 3U);
  EXPECT_EQ(info["settings_bytes"].size(), 16U);
  EXPECT_EQ(info["deletion"], "listwise");
  EXPECT_TRUE(info["missing"][0].is_null());
  EXPECT_EQ(info["missing"][5], -999999.0);
  EXPECT_EQ(info["variables"][1]["name"], "\xC3\xA4");
  EXPECT_EQ(info["variables"][1]["missing"].size(), 5U);
  EXPECT_TRUE(info["variables"][1]["categories"].empty());
}

TEST_F(CommandLine, FormatsAsJsonListsEveryRow) {
  const auto formats = nlohmann::json::parse(RunVexData({"formats", "--json"}).out);
  EXPECT_EQ(formats.size(), 3U + 34U + 8U);
  for (const auto& format : formats) {
    if (format["code"] == 38) {
      EXPECT_TRUE(format["read"]);
      EXPECT_FALSE(format["write"]);
    }
  }
}

TEST_F(CommandLine, ConvertsBetweenTheLayouts) {
  WriteSmallFile();
  const std::string wide = folder / "wide.VSF";
  const std::string narrow = folder / "narrow.VSF";
  ASSERT_EQ(RunVexData({"convert", small, wide, "--layout", "new"}).code, 0);
  EXPECT_EQ(ReadBytes(wide).size(), 128U + 2 * 276 + 3 * 16);
  ASSERT_EQ(RunVexData({"convert", wide, narrow, "--layout", "old"}).code, 0);
  EXPECT_EQ(ReadBytes(narrow).substr(0, 32), "VEXMOR DATA SYSTEM FILE         ");
  EXPECT_EQ(ReadBytes(narrow).substr(32, 32 + 4), ReadBytes(small).substr(32, 32 + 4));

  ASSERT_EQ(RunVexData({"import", kSurvey, folder / "s.VSF"}).code, 0);
  EXPECT_EQ(RunVexData({"convert", folder / "s.VSF", folder / "s.VSF", "--layout", "old"}).code, 1);
  EXPECT_EQ(
      RunVexData({"convert", folder / "s.VSF", folder / "s.VSF", "--layout", "old", "--overwrite"})
          .code,
      0);
}
