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
  const char* assumed;          // the encoding that it then has
  const char* holds = "";       // the file that holds the text, where it is another one
  const char* names = nullptr;  // the encoding that the file names, removed for the test
};

void PrintTo(const Case& c, std::ostream* out) {
  *out << c.file;
}

void Replace(const std::string& name, const std::string& old, const std::string& other) {
  std::string bytes = BytesOf(name);
  std::size_t at = bytes.find(old);
  ASSERT_NE(at, std::string::npos) << name << " without " << old;
  for (; at != std::string::npos; at = bytes.find(old, at + other.size())) {
    bytes.replace(at, old.size(), other);
  }
  MakeFile(name, bytes);
}

struct Reading {
  std::string text;
  std::string guessed;
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
    out.guessed = ST_GetGuessedEncoding(file);
  }
  EXPECT_STREQ(ST_GetErrorMsg(env), "");
  ST_CloseEnvironment(env);
  return out;
}

std::vector<std::string> NamesIn(std::int32_t type, const std::string& name, const char* encoding) {
  std::vector<std::string> names;
  ST_ENV* const env = ST_OpenEnvironment();
  ST_SetInputEncoding(env, encoding);
  ST_FILE* const file = ST_OpenInputFile(env, type, name.c_str());
  const int variables = ST_ReadDict(file);
  for (int var = 0; var < variables; ++var) names.emplace_back(ST_GetVarName(file, var));
  EXPECT_STREQ(ST_GetErrorMsg(env), "");
  ST_CloseEnvironment(env);
  return names;
}

class Encodings : public testing::TestWithParam<Case> {};

INSTANTIATE_TEST_SUITE_P(
    Formats, Encodings,
    testing::Values(Case{0, "t.wk1", "Köln", "CP850"}, Case{11, "t.wq1", "Köln", "CP850"},
                    Case{16, "t.syd", "Köln", "CP437"}, Case{17, "t.ssc", "K”ln", "CP1252"},
                    Case{25, "t.syb", "K”ln", "CP1252"}, Case{28, "t.sql", "K”ln", "CP1252"},
                    Case{32, "t.rec", "Köln", "CP850"},
                    Case{36, "t.dct", "K”ln", "CP1252", "t.dat"},
                    Case{39, "t.sps", "K”ln", "CP1252"}, Case{40, "t.sas", "K”ln", "CP1252"},
                    Case{41, "t.do", "K”ln", "CP1252"}, Case{12, "t.xpt", "K”ln", "CP1252"},
                    Case{31, "t.html", "K”ln", "CP1252", "", "charset=\"utf-8\""}));

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
  EXPECT_EQ(ascii.guessed, "");
  Replace(folder.Name(*c.holds == '\0' ? c.file : c.holds), "KXln", "K\x94ln");
  if (c.names != nullptr) Replace(name, c.names, "");
  const Reading asked = ReadText(c, name, "");
  EXPECT_EQ(asked.text, c.guessed);
  EXPECT_EQ(asked.guessed, c.assumed);
  for (const auto& [encoding, text] :
       {std::pair("CP850", "Köln"), std::pair("CP1251", "K”ln"), std::pair("CP866", "KФln"),
        std::pair("KOI8-R", "K■ln"), std::pair("UTF-8", "K\xEF\xBF\xBDln")}) {
    const Reading chosen = ReadText(c, name, encoding);
    EXPECT_EQ(chosen.text, text) << encoding;
    EXPECT_EQ(chosen.guessed, "") << encoding;
  }
}

TEST(Encodings, OfAPageAreThoseThatItNamesUnlessItIsWrong) {
  TempFolder folder;
  const std::string name = folder.Name("t.html");
  const struct {
    const char* head;
    const char* text;
    const char* shown;
    const char* guessed;
  } cases[] = {
      {"<meta charset=utf-8>", "K\xC3\xB6ln", "Köln", ""},
      {"<meta charset=\"utf-8\">", "K\xF6ln", "Köln", "CP1252"},  // is not UTF-8
      {"<META http-equiv=Content-Type content='text/html; charset=IBM850'>", "K\x94ln", "Köln", ""},
      // A byte that the encoding does not have costs nothing but itself.
      {"<meta charset=\"windows-1252\">", "K\x81ln", "K\xEF\xBF\xBDln", ""},
      {"", "K\xC3\xB6ln", "Köln", ""},
  };
  for (const auto& c : cases) {
    MakeFile(name, std::string("<html>") + c.head + "<table><tr><th>TOWN<tr><td>" + c.text +
                       "<tr><td>Ulm</table>");
    const Reading read = ReadText({31, "", "", ""}, name, "");
    EXPECT_EQ(read.text, c.shown) << c.head;
    EXPECT_EQ(read.guessed, c.guessed) << c.head;
    EXPECT_EQ(ReadFile(31, name).records.size(), 2U);
  }
}

// The texts of one file of each generation, in bytes that were put in place of a name in it.
TEST(Encodings, OfWorksheetsAreAlsoThoseThatTheirLibraryDoesNotKnow) {
  if (RealFile("x").empty()) GTEST_SKIP() << "VEX_REAL_DATA is not set: no files to read";
  const struct {
    std::int32_t type;
    const char* file;
    std::string name;
    const char* assumed;
    bool shown;  // as the name of a variable
  } files[] = {{0, "lotus/KSBASE.WK1", "OBSERV", "CP850", true},
               {0, "lotus/PEYTREND.WK3", "VMC5_10", "CP850", true},
               {0, "lotus/testLotus123.wk4", "EMPID", "CP850", true},
               {0, "lotus/testLotus123.123", "PREF_ID", "CP850", true},
               {11, "quattro/KSBASE.WQ1", "OBSERV", "CP850", true},
               {11, "quattro/write_8.wb3", "sheetjs", "CP1252", false},
               {11, "quattro/q9test.qpw", "SheetJS", "CP1252", false}};
  const struct {
    const char* encoding;
    std::string bytes;
    std::string text;
  } texts[] = {{"ISO-8859-15", "\xA4\xE4xyz", "€äxyz"},
               {"KOI8-R", "\xEB\xC9\xC5\xD7\xA3", "Киевё"},
               {"UTF-8", "\xC3\xA4\xE2\x82\xAC", "ä€"},
               {"CP932", "\x83\x5C\x83\x5Cz", "ソソz"},
               {"CP1252", "\x80\x81\x8Exy", "€\xEF\xBF\xBDŽxy"}};
  TempFolder folder;
  const std::string name = folder.Name("t.sheet");
  for (const auto& file : files) {
    for (const auto& c : texts) {
      SCOPED_TRACE(std::string(file.file) + " " + c.encoding);
      MakeFile(name, BytesOf(RealFile(file.file)));
      Replace(name, file.name, c.bytes + file.name.substr(c.bytes.size()));
      const std::string wanted = c.text + file.name.substr(c.bytes.size());
      if (file.shown) {
        EXPECT_THAT(NamesIn(file.type, name, c.encoding), testing::Contains(wanted));
      }
      EXPECT_EQ(ReadText({file.type, "", "", ""}, name, "").guessed, file.assumed);
    }
  }
}

TEST(Encodings, ThatNobodyKnowsAreRefused) {
  ST_ENV* const env = ST_OpenEnvironment();
  EXPECT_EQ(ST_SetInputEncoding(env, "KOI8-R"), 0);
  EXPECT_NE(ST_SetInputEncoding(env, "no such one"), 0);
  EXPECT_THAT(ST_GetErrorMsg(env), testing::HasSubstr("no such one"));
  ST_CloseEnvironment(env);
}

}  // namespace
