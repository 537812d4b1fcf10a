// What the syntax window colours is what the engine understands.
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/syntax/Commands.h"
#include "engine/syntax/Syntax.h"
#include "engine/syntax/SyntaxTokens.h"
#include "syntax/OutputText.h"

namespace {

// "C:FA K:NF= N:2": kinds by their first letters, with the text.
std::string Described(std::string_view line) {
  std::string text;
  for (const SYNTAXTOKEN& token : SyntaxTokens(line)) {
    constexpr std::string_view kLetters = "!CKFNU";  // comment, command, keyword, file, number, ...
    if (!text.empty()) text += ' ';
    text += kLetters[static_cast<std::size_t>(token.kind)];
    text += ':';
    text += line.substr(token.begin, token.size);
  }
  return text;
}

TEST(SyntaxTokens, OfEveryKindOfLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"   ", ""},
      {"! a comment", "!:! a comment"},
      {"FA NF=2 MR ! two", "C:FA K:NF= N:2 K:MR !:! two"},
      {"fa mr XX", "C:fa K:mr"},
      {"SY='a b!c.VSF'", "K:SY= F:'a b!c.VSF'"},
      {"RP=50 SY='a.VSF'", "K:RP= N:50 K:SY= F:'a.VSF'"},
      {" REOU RP=50 ", "K:RE C:OU K:RP= N:50"},
      {" REFA MR", "K:RE C:FA K:MR"},
      {" RE", "K:RE"},
      {"REFA MR", "U:REFA"},  // RE stands behind a blank
      {" RC A1 OLD=1,2-3 NEW=4", "C:RC K:OLD= N:1 N:2-3 K:NEW= N:4"},
      {"SC CASE < 100", "C:SC K:CASE N:100"},
      {"RG A1 A2 ON B1-B3", "C:RG K:ON"},
      {"IMPUTE (A1,A2)(3) VR=0.5 XN", "C:IMPUTE N:3 K:VR= N:0.5 K:XN"},
      {"NE Y = LOG(x1)**2+NORMAL()", "C:NE K:LOG N:2 K:NORMAL"},
      {"OU MA=KM SM=my file.km XM", "C:OU K:MA= F:KM K:SM= F:my file.km K:XM"},
      {"OU SM=a WI=8 nonsense", "C:OU K:SM= F:a K:WI= N:8 U:nonsense"},
      {"OU SM=a!b ! c", "C:OU K:SM= F:a!b !:! c"},
      {"WHAT is this", "U:WHAT"},
      {"OU", "C:OU"},
  };
  for (const auto& [line, wanted] : cases) EXPECT_EQ(Described(line), wanted) << line;
}

// An option in the table that the command does not read would be coloured and then refused.
TEST(SyntaxTokens, EveryOptionOfTheTablesIsRead) {
  TORVIKSTRUCT data;
  data.variables = 6;
  data.ResizeArrays(8);
  // Lines that hold every option of their commands.
  const char* const lines[] = {"SC CASE ODD",
                               "SC CASE EVEN",
                               "RC 1 OLD=1 NEW=2",
                               "FA NF=2 MR FS",
                               "OFA NOR NF=2",
                               "OFA POM",
                               "PC NC=2 KM PS",
                               "EM 1 IT=5 CC=0.001 TC=1",
                               "RG 1 ON 2",
                               "MC 1 IT=5 CC=0.001 TC=1 RP=3",
                               "TS 1 ON 2 WITH 3 4",
                               "PR 1 ON 2 AP",
                               "LO 1 ON 2 AP",
                               "CR 1 ON 2",
                               "IMPUTE (1) (2) VR=0.5 XL",
                               "IMPUTE (1) (2) XN"};
  std::string all;
  for (const char* const line : lines) {
    JOB job;
    FAULT fault;
    EXPECT_TRUE(ParseCommands(SplitSyntax(std::string(line) + "\nOU"), data, job, fault))
        << line << ": " << fault.cause;
    all += Described(line) + '\n';
  }
  for (const auto table : {DataCommands(), ProcedureCommandTable()}) {
    for (const COMMAND& command : table) {
      std::string_view options = command.options;
      while (!options.empty()) {
        const std::size_t size = std::min(options.find(' '), options.size());
        const std::string keyword = "K:" + std::string(options.substr(0, size));
        const std::string begin = "C:" + std::string(command.word) + ' ';
        bool shown = false;
        for (std::size_t at = all.find(begin); at != std::string::npos;
             at = all.find(begin, at + 1)) {
          shown =
              shown || all.substr(at, all.find('\n', at) - at).find(keyword) != std::string::npos;
        }
        EXPECT_TRUE(shown) << command.word << ' ' << keyword;
        options.remove_prefix(std::min(size + 1, options.size()));
      }
    }
  }
}

// The window marks the line by what the engine writes.
class FailedLineTest : public EngineTest {};
TEST_F(FailedLineTest, IsFoundInTheOutput) {
  WriteDataFile(folder / "DATA.VSF", Describe({"x"}), {{1}, {2}, {4}});
  const std::pair<const char*, int> cases[] = {
      {"\n! c\nNONSENSE\nOU\n", 4}, {"\nSE y\nOU\n", 3}, {"\nOU\n", 0}, {"\nOU MA=XX\n", 3}};
  for (const auto& [lines, wanted] : cases) {
    WriteBytes(folder / "DATA.TRK", "!t\nSY='" + (folder / "DATA.VSF") + "'" + lines);
    RunEngine(folder / "DATA.TRK", folder / "DATA.OUT", {});
    EXPECT_EQ(ErrorLineIn(ReadBytes(folder / "DATA.OUT")), wanted) << lines;
  }
}

}  // namespace
