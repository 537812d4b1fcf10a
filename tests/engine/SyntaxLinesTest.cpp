#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/data/DataFile.h"
#include "engine/syntax/Syntax.h"

namespace {

TEST(SyntaxLines, LeaveOutCommentsAndEmptyLines) {
  struct {
    const char* text;
    const char* want;  // "number:text|"
  } const cases[] = {
      {"", ""},
      {"! only a comment\n\n   \n", ""},
      {"SE 1 2 ! these\r\nOU", "1:SE 1 2|2:OU|"},
      {"\n RE\nOU", "2: RE|3:OU|"},
      {"SY='a!b.VSF' ! c\n", "1:SY='a!b.VSF'|"},
      {"SY='it's!.VSF'\n", "1:SY='it's!.VSF'|"},
      {"RP=2 SY='a!b'\n", "1:RP=2 SY='a!b'|"},
      {"!SY='a' \n", ""},
      {"SE 1 !'SY='\n", "1:SE 1|"},
      {"OU SM=wow!.cm ! note\n", "1:OU SM=wow!.cm|"},
      {" REOU SM=wow!.cm\n", "1: REOU SM=wow!.cm|"},
      {"SE 1!2\n", "1:SE 1|"},
  };
  for (const auto& c : cases) {
    std::string found;
    for (const SyntaxLine& line : SplitSyntax(c.text)) {
      found += std::to_string(line.number) + ":" + line.text + "|";
    }
    EXPECT_EQ(found, c.want) << c.text;
  }
}

TEST(Header, TakesRepetitionsFileAndRewind) {
  struct {
    const char* text;
    std::int64_t repetitions;
    bool rewind;
    const char* file;
    const char* firstLine;  // of what is left
  } const cases[] = {
      {"SY='d.VSF'\nOU", 1, false, "d.VSF", "OU"},
      {"sy='d.VSF'\nOU", 1, false, "d.VSF", "OU"},
      {"RP=50 SY='a b.VSF'\n REOU MA=CM", 50, true, "a b.VSF", "OU MA=CM"},
      {"RP=3\nSY='d'\n RE\nOU", 3, true, "d", "OU"},
      {"SY='d'\n RESE 1 2\nOU", 1, true, "d", "SE 1 2"},
      {"SY='d'\n RE\n\nSE 1\nOU", 1, true, "d", "SE 1"},
      {"SY='d'\n\n RESE 1\nOU", 1, false, "d", " RESE 1"},  // not the line behind SY
      {"SY='d'\nRESE 1\nOU", 1, false, "d", "RESE 1"},      // no blank in front
      {"SY='it's'\nOU", 1, false, "it's", "OU"},
  };
  for (const auto& c : cases) {
    auto lines = SplitSyntax(c.text);
    JOBHEADER header;
    FAULT fault;
    ASSERT_TRUE(ParseHeader(lines, header, fault)) << c.text << ": " << fault.cause;
    EXPECT_EQ(header.dataFile, c.file) << c.text;
    EXPECT_EQ(header.rewind, c.rewind) << c.text;
    EXPECT_EQ(header.repetitions, c.repetitions) << c.text;
    ASSERT_FALSE(lines.empty()) << c.text;
    EXPECT_EQ(lines.front().text, c.firstLine) << c.text;
  }
}

TEST(Header, RefusesWhatItDoesNotKnow) {
  struct {
    const char* text;
    int line;
    const char* cause;
  } const cases[] = {
      {"", 0, "names no data file"},
      {"! nothing\n", 0, "names no data file"},
      {"OU\n", 1, "expected SY='FILE' before the first command"},
      {"\nSE 1\nSY='d'\n", 2, "expected SY='FILE' before the first command"},
      {"SY=d.VSF\n", 1, "in quotes after SY="},
      {"SY='d.VSF\n", 1, "in quotes after SY="},
      {"SY=''\n", 1, "between the quotes"},
      {"SY='d' OU\n", 1, "nothing behind the data file's name"},
      {"RP=0 SY='d'\n", 1, "after RP="},
      {"RP=2147483648 SY='d'\n", 1, "after RP="},
      {"RP=99999999999999999999 SY='d'\n", 1, "after RP="},
      {"RP=2x SY='d'\n", 1, "after RP="},
  };
  for (const auto& c : cases) {
    auto lines = SplitSyntax(c.text);
    JOBHEADER header;
    FAULT fault;
    EXPECT_FALSE(ParseHeader(lines, header, fault)) << c.text;
    EXPECT_EQ(fault.line, c.line) << c.text;
    EXPECT_NE(fault.cause.find(c.cause), CString::npos) << c.text << ": " << fault.cause;
  }
}

TEST(DataFileName, TakesTheOneFileWhoseExtensionDiffersInCase) {
  const TempFolder folder;
  WriteBytes(folder / "one.vsf", "");
  WriteBytes(folder / "two.vsf", "");
  WriteBytes(folder / "two.Vsf", "");
  WriteBytes(folder / "both.VSF", "");
  WriteBytes(folder / "both.vsf", "");
  EXPECT_EQ(ExistingDataFile(folder / "one.VSF"), folder / "one.vsf");
  EXPECT_EQ(ExistingDataFile(folder / "ONE.VSF"), folder / "ONE.VSF");  // the name differs
  EXPECT_EQ(ExistingDataFile(folder / "two.VSF"), folder / "two.VSF");  // two could be meant
  EXPECT_EQ(ExistingDataFile(folder / "both.VSF"), folder / "both.VSF");
  EXPECT_EQ(ExistingDataFile(folder / "none.VSF"), folder / "none.VSF");
}

}  // namespace
