// Files that do not name their encoding: that is told, and what the user chooses holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

struct Case {
  std::int32_t type;
  const char* file;
  const char* guessed;          // the text with the byte 0x94, where nobody chose an encoding
  const char* holds = "";       // the file that holds the text, where it is another one
  const char* names = nullptr;  // the encoding that the file names, removed for the test
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.file;
}

void Replace(const std::string& name, const std::string& old, const std::string& other) {
  std::string bytes = BytesOf(name);
  const std::size_t at = bytes.find(old);
  ASSERT_NE(at, std::string::npos) << name << " without " << old;
  MakeFile(name, bytes.replace(at, old.size(), other));
}

struct Reading {
  std::string text;
  bool guessed = false;
};

// The first text of the file's first record.
Reading ReadText(const Case& c, const std::string& name, const char* encoding) {
  Reading out;
  ST_ENV* const env = ST_OpenEnvironment();
  ST_SetInputEncoding(env, encoding);
  ST_FILE* const file = ST_OpenInputFile(env, c.type, name.c_str());
  if (ST_ReadDict(file) > 0 && ST_ReadRecord(file) == 1) {
    std::int32_t type = 0;
    std::int32_t display = 0;
    const void* value = nullptr;
    if (ST_GetVarDataExt(file, 0, &type, &value, &display) == ST_STATUS_PRESENT) {
      out.text = static_cast<const char*>(value);
    }
    out.guessed = ST_EncodingGuessed(file);
  }
  EXPECT_STREQ(ST_GetErrorMsg(env), "");
  ST_CloseEnvironment(env);
  return out;
}

class Encodings : public testing::TestWithParam<Case> {};

INSTANTIATE_TEST_SUITE_P(Formats, Encodings,
                         testing::Values(Case{0, "t.wk1", "Köln"}, Case{11, "t.wq1", "Köln"},
                                         Case{16, "t.syd", "Köln"}, Case{17, "t.ssc", "K”ln"},
                                         Case{25, "t.syb", "K”ln"}, Case{28, "t.sql", "K”ln"},
                                         Case{32, "t.rec", "Köln"},
                                         Case{36, "t.dct", "K”ln", "t.dat"},
                                         Case{39, "t.sps", "K”ln"}, Case{40, "t.sas", "K”ln"},
                                         Case{41, "t.do", "K”ln"}, Case{12, "t.xpt", "K”ln"},
                                         Case{31, "t.html", "K”ln", "", "charset=\"utf-8\""}));

TEST_P(Encodings, AreAskedForWhereTheFileHasNone) {
  const Case& c = GetParam();
  TempFolder folder;
  const std::string name = folder.Name(c.file);
  Table table;
  table.columns = {{"TOWN", "", ST_TYPE_STRING, 8, 0, {}}};
  table.records = {{Text("KXln")}};
  ASSERT_EQ(WriteFile(table, c.type, name).error, "");
  const Reading ascii = ReadText(c, name, "");
  EXPECT_EQ(ascii.text, "KXln");
  EXPECT_FALSE(ascii.guessed);
  Replace(folder.Name(*c.holds == '\0' ? c.file : c.holds), "KXln", "K\x94ln");
  if (c.names != nullptr) Replace(name, c.names, "");
  const Reading asked = ReadText(c, name, "");
  EXPECT_EQ(asked.text, c.guessed);
  EXPECT_TRUE(asked.guessed);
  for (const auto& [encoding, text] :
       {std::pair("CP850", "Köln"), std::pair("CP1251", "K”ln"), std::pair("CP866", "KФln")}) {
    const Reading chosen = ReadText(c, name, encoding);
    EXPECT_EQ(chosen.text, text) << encoding;
    EXPECT_FALSE(chosen.guessed) << encoding;
  }
}

TEST(Encodings, OfAPageAreThoseThatItNamesUnlessItIsWrong) {
  TempFolder folder;
  const std::string name = folder.Name("t.html");
  const struct {
    const char* head;
    const char* text;
    const char* shown;
    bool guessed;
  } cases[] = {
      {"<meta charset=utf-8>", "K\xC3\xB6ln", "Köln", false},
      {"<meta charset=\"utf-8\">", "K\xF6ln", "Köln", true},  // is not UTF-8
      {"<META http-equiv=Content-Type content='text/html; charset=IBM850'>", "K\x94ln", "Köln",
       false},
      // A byte that the encoding does not have costs nothing but itself.
      {"<meta charset=\"windows-1252\">", "K\x81ln", "K\xEF\xBF\xBDln", false},
      {"", "K\xC3\xB6ln", "Köln", false},
  };
  for (const auto& c : cases) {
    MakeFile(name, std::string("<html>") + c.head + "<table><tr><th>TOWN<tr><td>" + c.text +
                       "<tr><td>Ulm</table>");
    const Reading read = ReadText({31, "", ""}, name, "");
    EXPECT_EQ(read.text, c.shown) << c.head;
    EXPECT_EQ(read.guessed, c.guessed) << c.head;
    EXPECT_EQ(ReadFile(31, name).records.size(), 2U);
  }
}

}  // namespace
