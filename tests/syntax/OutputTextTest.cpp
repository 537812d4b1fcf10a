#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "syntax/OutputText.h"

namespace {

TEST(OutputText, CutsLinesWhateverEndsThem) {
  const struct {
    const char* text;
    std::vector<std::string> lines;
  } cases[] = {
      {"", {""}},
      {"\n", {""}},
      {"a", {"a"}},
      {"a\n", {"a"}},
      {"a\n\nbc", {"a", "", "bc"}},
      {"a\r\nb\r\n", {"a", "b"}},
  };
  for (const auto& c : cases) {
    COutputText text;
    text.Set(c.text);
    std::vector<std::string> lines;
    for (std::int64_t i = 0; i < text.LineCount(); ++i) lines.emplace_back(text.Line(i));
    EXPECT_EQ(lines, c.lines) << c.text;
    for (std::int64_t at = 0; at < static_cast<std::int64_t>(text.Bytes().size()); ++at) {
      EXPECT_EQ(text.OffsetOf(text.PlaceOf(at)), at) << c.text;
    }
  }
}

TEST(OutputText, FindsForwardAndBackward) {
  COutputText text;
  text.Set("Mean 1\nmean 2\nMEAN 3 mean\n");
  const struct {
    const char* wanted;
    bool matchCase;
    std::int64_t from;
    std::int64_t next, before;  // -1: none
  } cases[] = {
      {"mean", false, 0, 0, -1},    {"mean", false, 1, 7, -1},   {"mean", true, 0, 7, -1},
      {"mean", true, 8, 21, -1},    {"mean", true, 22, -1, 7},   {"mean", false, 25, -1, 21},
      {"MEAN", true, 0, 14, -1},    {"1\nmean", true, 0, 5, -1}, {"", false, 0, -1, -1},
      {"absent", false, 0, -1, -1}, {"n", false, 26, -1, 24},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(text.Find(c.wanted, c.matchCase, c.from).value_or(-1), c.next)
        << c.wanted << ' ' << c.from;
    EXPECT_EQ(text.FindBefore(c.wanted, c.matchCase, c.from).value_or(-1), c.before)
        << c.wanted << ' ' << c.from;
  }
}

TEST(OutputText, KnowsHeadingsWarningsAndErrors) {
  COutputText text;
  text.Set(
      "=====\n  Title\n=====\nCases\n-----\n\n  - 1\n  WARNING: few\n           more\n"
      "ERROR in line 3\n-----\n           no warning");
  using Kind = COutputText::Kind;
  const Kind wanted[] = {Kind::Rule,    Kind::Plain, Kind::Rule,  Kind::Heading,
                         Kind::Rule,    Kind::Plain, Kind::Plain, Kind::Warning,
                         Kind::Warning, Kind::Error, Kind::Rule,  Kind::Plain};
  ASSERT_EQ(text.LineCount(), 12);
  for (int i = 0; i < 12; ++i) EXPECT_EQ(text.KindOf(i), wanted[i]) << i;
}

TEST(OutputText, KeepsWhatItHadWhenAFileCannotBeRead) {
  const TempFolder folder;
  WriteBytes(folder / "a.OUT", "one\ntwo");
  COutputText text;
  CString reason;
  ASSERT_TRUE(text.Read(folder / "a.OUT", reason));
  EXPECT_FALSE(text.Read(folder / "none.OUT", reason));
  EXPECT_EQ(reason, (folder / "none.OUT") + ": No such file or directory");
  EXPECT_FALSE(text.Read(folder.Path(), reason));
  EXPECT_EQ(text.LineCount(), 2);
}

TEST(OutputText, TellsTheLineThatARunFailedAt) {
  const std::pair<const char*, int> cases[] = {
      {"\nERROR in line 12 of the syntax\n  FA X\n", 12},
      {"ERROR in line 12 of the syntax", 0},  // an output begins with its title
      {"\nERROR\n", 0},
      {"\nERROR in line x of the syntax", 0},
      {"\nERROR in line 12", 0},
      {"\nERROR in line 99999999999999999999 of the syntax", 0},
      {"\nERROR in line -3 of the syntax", 0},
      {"", 0},
  };
  for (const auto& [output, line] : cases) EXPECT_EQ(ErrorLineIn(output), line) << output;
}

}  // namespace
