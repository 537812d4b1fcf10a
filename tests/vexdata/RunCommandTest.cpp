#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempFolder.h"
#include "support/VsfBytes.h"
#include "vexdata/RunVexData.h"

class RunCommand : public testing::Test {
 protected:
  void SetUp() override {
    WriteBytes(data, Bytes()
                         .Add(VsfHead("VEXC16 DATA SYSTEM FILE", ' ', 2, 2))
                         .Add(VsfVariable("alpha", 16))
                         .Add(VsfVariable("beta", 16))
                         .Reals({1, 2, 3, 4})
                         .Get());
    UseEngine("cp \"$1\" \"$2\"");
  }
  void TearDown() override { unsetenv("VEX_ENGINE"); }

  void UseEngine(const std::string& script) {
    const std::string name = folder / "engine";
    WriteBytes(name, "#!/bin/sh\n" + script + "\n");
    chmod(name.c_str(), 0700);
    setenv("VEX_ENGINE", name.c_str(), 1);
  }
  // The syntax that a run of these lines writes.
  std::string Syntax(const std::string& lines) const {
    return "!TORVIK SYNTAX: Can be edited \nSY='" + data + "'\n" + lines;
  }
  TempFolder folder;
  const std::string data = folder / "small.VSF";
};

TEST_F(RunCommand, WritesTheSyntaxRunsAndPrintsTheOutput) {
  const struct {
    std::vector<std::string> arguments;
    const char* lines;
  } cases[] = {
      {{}, "OU XT XM \n"},
      {{"--line", "FA NF=2 MR", "--line", "OU XM"}, "FA NF=2 MR\nOU XM\n"},
      {{"--line", "RG 1 ON 2", "--wide"}, "RG 1 ON 2\nOU WP XT XM \n"},
      {{"--line", " ou"}, " ou\n"},
      {{"--matrix", "km", "--save-matrix", "m.km", "--seed", "7", "--bivariate-tests"},
       "OU MA=KM SM=m.km IX=7 XM \n"},
      {{"--save-data", "d", "--width", "10", "--decimals", "3", "--save-means", "me",
        "--save-deviations", "sd", "--repetitions", "5"},
       "OU RA=d WI=10 ND=3 ME=me SD=sd RP=5 XT XM \n"},
      {{"--save-ac", "a", "--print-ac", "--save-av", "b", "--print-av", "--bivariate-tables",
        "--multivariate-tests"},
       "OU AC=a PA AV=b PV BT XT \n"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"run", data};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome run = RunVexData(arguments);
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, Syntax(c.lines));
    EXPECT_EQ(ReadBytes(folder / "small.TRK"), Syntax(c.lines));
    EXPECT_EQ(ReadBytes(folder / "small.OUT"), Syntax(c.lines));

    std::filesystem::remove(folder / "small.OUT");
    arguments.insert(arguments.begin() + 2, "--syntax");
    EXPECT_EQ(RunVexData(arguments).out, Syntax(c.lines));
    EXPECT_FALSE(std::filesystem::exists(folder / "small.OUT"));
  }
}

TEST_F(RunCommand, ProceduresWriteTheLinesOfTheirDialogs) {
  const std::string newData = folder / "new.VSF";
  const struct {
    std::vector<std::string> arguments;
    std::string lines;
  } cases[] = {
      {{"fa", "--factors", "2", "--minres", "--scores", "--variables", "alpha-beta"},
       "\nSE 1 2 \nFA NF=2 MR FS\nOU XT XM \n"},
      {{"fa", "--variables", "beta,1", "--wide"}, "\nSE 2 1 \nFA\nOU WP XT XM \n"},
      {{"ofa", "--logistic"}, "OFA POM\nOU XT XM \n"},
      {{"pc", "--components", "1", "--correlations", "--scores"}, "PC NC=1 KM PS\nOU XT XM \n"},
      {{"et", "--variables", "1-2", "--save-thresholds", "t"}, "ET 1 2\nOU XT XM  TH=t \n"},
      {{"ft", "--variables", "2", "--thresholds", data}, "FT 2\nOU XT XM  TH=" + data + " \n"},
      {{"ht", "--variables", "1,2", "--variables", "beta,alpha"}, "HT 1 2\nHT 2 1\nOU XT XM \n"},
      {{"ns", "--variables", "beta"}, "NS 2 \nOU XT XM \n"},
      {{"impute", "--imputed", "1", "--matching", "2", "--variance-ratio", ".5", "--list", "none"},
       "IMPUTE (1 ) (2 )  VR=0.500000 XL \nOU XT XM \n"},
      {{"em", "--variables", "1-2", "--all-missing", "mean"},
       "EM 1 2 IT=200 CC=0.00001 TC=1\nOU XT XM \n"},
      {{"mc", "--variables", "1-2", "--data-sets", "5", "--seed", "3"},
       "MC 1 2 IT=200 CC=0.00001 TC=0 RP=5\nOU IX=3 XT XM \n"},
      {{"bs", "--samples", "9", "--sample-means", "m"}, "OU XT XM  BS=9 SF=100 ME=m \n"},
      {{"rg", "--y", "1", "--x", "2"}, "RG 1 ON 2\nOU XT XM \n"},
      {{"ts", "--y", "1", "--x", "2", "--instruments", "2"}, "TS 1 ON 2 WITH 2\nOU XT XM \n"},
      {{"pr", "--y", "1", "--x", "2", "--alternative", "--marginal", "1"},
       "MT 1 \nPR 1 ON 2 AP\nOU XT XM \n"},
      {{"lo", "--y", "1", "--x", "2"}, "LO 1 ON 2\nOU\n"},
      {{"compute", "x = alpha + 1", "y=2", "--to", newData},
       "NE x = alpha + 1\nNE y = 2\nOU RA=" + newData + " XT XM \n"},
      {{"recode", "1=2", "3 - HI = 4", "--variables", "beta", "--to", newData},
       "RC 2 OLD=1 NEW=2 OLD=3-HI NEW=4\nOU RA=" + newData + " XT XM \n"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"run", data};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome run = RunVexData(arguments);
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, Syntax(c.lines));
  }
}

TEST_F(RunCommand, ListsTheContents) {
  const Outcome run = RunVexData({"run", data, "contents"});
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("!DA NI=2 NO=2 MI= -999999 TR=LI \n!LA\n!alpha beta \n"),
            std::string::npos)
      << run.out;
  EXPECT_EQ(folder.FileCount(), 4U);  // data, engine, syntax, output
}

TEST_F(RunCommand, FindsTheDataFromAnotherFolder) {
  const auto here = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_EQ(RunVexData({"run", "./small.VSF"}).out, Syntax("OU XT XM \n"));
  std::filesystem::current_path(here);
}

TEST_F(RunCommand, FailuresSayWhyOnOneLine) {
  const std::string text = folder / "small.dat";
  WriteBytes(text, ReadBytes(data));
  const std::string none = "Serious errors occured, no output file available!";
  const struct {
    const char* engine;
    std::vector<std::string> arguments;
    int code;
    std::vector<std::string> messages;  // found on standard error
    const char* out;
  } cases[] = {
      {"exit 0", {data}, 1, {none, "wrote no output"}, ""},
      {"echo cannot read >&2; exit 1", {data}, 1, {none, "cannot read"}, ""},
      {"echo 'line 3: error' >\"$2\"; exit 1", {data}, 1, {"code 1"}, "line 3: error\n"},
      {"", {folder / "absent.VSF"}, 1, {"The file does not exist!"}, ""},
      {"", {folder / "engine"}, 1, {"not a correct VEXMOR data system file"}, ""},
      {"", {text}, 1, {"Please save data before performing this operation", "*.VSF"}, ""},
      {"", {data, "screen"}, 2, {}, ""},
      {"", {data, "fa", "--variables", "1-3"}, 1, {"there is no variable 1-3"}, ""},
      {"", {data, "cr", "--y", "1", "--x", "2"}, 1, {"alpha is no censored variable"}, ""},
      {"", {data, "recode", "1=2", "--variables", "1", "--to", data}, 1, {"exists already"}, ""},
      {"", {data, "lo", "--y", "1", "--x", "2", "--wide"}, 2, {}, ""},
      {"", {data, "fa", "--line", "OU"}, 2, {}, ""},
      {"", {data, "fa", "pc"}, 2, {}, ""},
      {"", {data, "compute", "x", "--to", "n.VSF"}, 2, {}, ""},
      {"", {data, "--line", "OU", "--wide"}, 2, {}, ""},
      {"", {data, "contents", "--seed", "1"}, 2, {}, ""},
      {"", {data, "contents", "--line", "OU"}, 2, {}, ""},
      {"", {data, "--width", "10", "--save-data", "d"}, 2, {}, ""},
      {"", {data, "--width", "33", "--decimals", "3", "--save-data", "d"}, 2, {}, ""},
      {"", {data, "--save-matrix", "m"}, 2, {}, ""},
      {"", {data, "--repetitions", "0"}, 2, {}, ""},
      {"", {data, "--seed", "2147483648"}, 2, {"not in range -2147483648 to 2147483647"}, ""},
  };
  for (const auto& c : cases) {
    UseEngine(c.engine);
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), "run");
    const Outcome run = RunVexData(arguments);
    EXPECT_EQ(run.code, c.code) << run.err;
    EXPECT_EQ(run.out, c.out);
    for (const auto& message : c.messages) {
      EXPECT_NE(run.err.find(message), std::string::npos) << message << " in " << run.err;
    }
    if (c.code != 1) continue;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  }
  setenv("VEX_ENGINE", (folder / "no engine").c_str(), 1);
  EXPECT_NE(RunVexData({"run", data}).err.find("no engine cannot be run"), std::string::npos);
}

// With the engine itself, on the shipped example.
TEST_F(RunCommand, TheEngineNamesCauseAndRemedyOfBadRequests) {
  setenv("VEX_ENGINE", VEX_TORVIK, 1);
  const std::string survey = folder / "survey.VSF";
  ASSERT_EQ(RunVexData({"--quiet", "import", VEX_EXAMPLE, survey}).code, 0);
  const std::string thresholds = folder / "n1.th";
  WriteBytes(thresholds, "-1 0 ! N1\n");
  const struct {
    std::vector<std::string> arguments;
    const char* cause;
  } cases[] = {
      {{"--line", "RG ON A1", "--line", "OU"}, "expected y variables"},
      {{"--line", "RG age ON", "--line", "OU"}, "expected x variables"},
      {{"--line", "RG age ON age", "--line", "OU"}, "both sides of ON"},
      {{"--line", "NE k = 3", "--line", "RG age ON k"}, "the x variable k has one value only"},
      {{"--line", "NE s = A1+A2", "--line", "RG age ON A1 A2 s"}, "s is collinear"},
      {{"--line", "NE s = A1+A2", "--line", "LO gender ON A1 A2 s"}, "s is collinear"},
      {{"--line", "NE z = gender", "--line", "LO gender ON z"}, "z separates the categories"},
      {{"--line", "NE z = gender", "--line", "PR gender ON z"}, "z separates the categories"},
      {{"--line", "NE z = A1", "--line", "PR A1 ON z"}, "z separates the categories"},
      {{"--line", "NE z = A1", "--line", "MT A1", "--line", "PR A1 ON z"},
       "z separates the categories"},
      {{"--line", "MT A1", "--line", "NS A1", "--line", "PR A1 ON age"},
       "the thresholds of A1 are fixed for other categories"},
      {{"--line", "RG age ON A1 A1"}, "named twice (x variables): \"A1\""},
      {{"ts", "--y", "age", "--x", "A1,A2", "--instruments", "A3"}, "age is not identified"},
      {{"ts", "--y", "age", "--x", "A1", "--instruments", "age"},
       "instruments of its own equation"},
      {{"--line", "NE s = A3", "--line", "TS age ON A1 A2 WITH A3 s"}, "age is not identified"},
      {{"ft", "--variables", "O1", "--thresholds", thresholds}, "no thresholds of variable O1"},
      {{"ft", "--variables", "N1", "--thresholds", thresholds}, "the file holds 2 thresholds"},
      {{"ht", "--variables", "A1,gender"}, "the variables have different categories"},
      {{"et", "--variables", "A1,gender"}, "the variables have different categories"},
      {{"fa", "--variables", "A1-A5", "--factors", "3"},
       "3 factors cannot be estimated from 5 variables"},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"run", survey};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const Outcome run = RunVexData(arguments);
    EXPECT_EQ(run.code, 1) << c.cause;
    EXPECT_NE(run.out.find("Remedy:"), std::string::npos) << run.out;
    std::string text;  // whatever the line breaks
    for (const char letter : run.out) {
      const bool blank = letter == ' ' || letter == '\n';
      if (!blank || !text.ends_with(' ')) text += blank ? ' ' : letter;
    }
    EXPECT_NE(text.find(c.cause), std::string::npos) << run.out;
  }
}

TEST_F(RunCommand, AnInterruptCancelsTheEngine) {
  UseEngine(
      "trap 'echo interrupted >\"$2\"; exit 1' INT; echo >\"$1.ready\"; "
      "while :; do sleep 0.05; done");
  const std::string ready = folder / "small.TRK.ready";
  std::thread interrupter([&] {
    for (int i = 0; i < 400 && !std::filesystem::exists(ready); ++i) usleep(50000);
    kill(getpid(), SIGINT);
  });
  const Outcome run = RunVexData({"run", data});
  interrupter.join();
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.out, "interrupted\n");
}
