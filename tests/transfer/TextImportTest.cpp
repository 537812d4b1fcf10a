// Text files as records: what each type makes of lines and fields, and what it refuses.
#include <fcntl.h>

#include <sys/stat.h>

#include "support/RealData.h"
#include "transfer/ImportedColumns.h"
#include "transfer/TextImportFixture.h"

using STUtils::TextSettings;

TEST_F(TextImportTest, LinesBecomeRecords) {
  const TextSettings semicolons{.delimiter = ';'};
  const struct {
    const char* what;
    int type;
    std::string text;
    rows_t rows;
    TextSettings settings = {};
  } cases[] = {
      {"names", 1003, "a,b\n1,2\n3,4\n", {{1, 2}, {3, 4}}},
      {"no names", 1003, "1,x\n3,4\n", {{1, M}, {3, M}}},
      {"no end of the last line", 1003, "a,b\n1,2\n3,4", {{1, 2}, {3, 4}}},
      {"line ends of all kinds", 1003, "a,b\r1,2\r\n3,4\n5,6\r", {{1, 2}, {3, 4}, {5, 6}}},
      {"blank lines", 1003, "\n  \n1,2\n\n \t\n3,4\n\n", {{1, 2}, {3, 4}}},
      {"blank lines of one variable", 1003, "\n1\n\n3\n\n", {{1}, {M}, {3}, {M}}},
      {"short records", 1003, "a,b,c\n1\n1,2\n,,3\n", {{1, M, M}, {1, 2, M}, {M, M, 3}}},
      {"blank fields too many", 1003, "a,b\n1,2,\n3,4, ,\n", {{1, 2}, {3, 4}}},
      {"blanks around", 1003, "a,b\n 1 ,\t2 \n  3,4\t\n", {{1, 2}, {3, 4}}},
      {"missing strings", 1003, "a,b\nNA,1\n nil ,na\n2,3\n", {{M, 1}, {M, M}, {2, 3}}},
      {"quoted numbers", 1003, "a,b\n\"1\",\" 2 \"\n\"3\",4\n", {{1, 2}, {3, 4}}},
      {"quoted texts", 1003, "a,b\n\"x,\n\"\"y\"\"\",2\n\"\\\"z\\\\\",4\n", {{M, 2}, {M, 4}}},
      {"numbers of many forms",
       1003,
       "a,b\n+1,-2.5e3\n1.5D+03,.5\n007,5.\n-0.1e1,1e-400\n",
       {{1, -2500}, {1500, 0.5}, {7, 5}, {-1, 0}}},
      {"tabs", 1005, "a\tb\n1\t2\n\t4\n", {{1, 2}, {M, 4}}},
      {"tabs and blank lines", 1005, "a\tb\n\n\t\n1\t2\n", {{M, M}, {1, 2}}},
      {"own delimiter", 1004, "a;b\n1;2\n", {{1, 2}}, semicolons},
      {"delimiter instead of the type's", 1003, "a;b\n1.5;2\n", {{1.5, 2}}, semicolons},
      {"commas or blanks",
       1001,
       "a b,c\n1 , 2 3\n4,,6 \n 7\t8  9\n",
       {{1, 2, 3}, {4, M, 6}, {7, 8, 9}}},
      {"free format", 1002, "a b c\n1 2 3 4\n5\n\n6\n", {{1, 2, 3}, {4, 5, 6}}},
      {"free format on one line", 1002, "a b c\n1 2 3 4 5 6", {{1, 2, 3}, {4, 5, 6}}},
      {"free format without names", 1002, "1 2\n3 4 5\t\"6\"\n", {{1, 2}, {3, 4}, {5, 6}}},
      {"free format with an end too early", 1002, "a b c\n1 2 3 4 5", {{1, 2, 3}}},
  };
  for (const auto& c : cases) {
    ASSERT_TRUE(Import(c.text, c.type, c.settings)) << c.what << ": " << Reason();
    EXPECT_EQ(Rows(), c.rows) << c.what;
  }
}

// A column of texts holds missing values only, so these ask for numbers.
TEST_F(TextImportTest, UnreadableFieldsAreCountedAndTold) {
  port.SetTextConfirmer([](CTextConfirmation& confirmation) {
    for (std::size_t i = 0; i < confirmation.Variables().size(); ++i) {
      confirmation.SetNumeric(i, true);
    }
    return true;
  });
  const struct {
    int type;
    std::string text;
    rows_t rows;
    std::vector<const char*> told;
    TextSettings settings = {};
  } cases[] = {
      {1003,
       "a,b\n1,2\n12abc,1e\nnan,inf\n0x10,1 2\n,1e400\n",
       {{1, 2}, {12, M}, {M, M}, {0, 1}, {M, M}},
       {"a: 3 (first in line 3)", "b: 4 (first in line 3)"}},
      {1003, std::string("a,b\n1,2\n3\0,4\n", 13), {{1, 2}, {3, 4}}, {"a: 1 (first in line 3)"}},
      {1003,
       "a;b\n1,5;2\n-3,25e1;1.5\n",
       {{1.5, 2}, {-32.5, 1}},
       {"b: 1 (first in line 3)"},
       {.decimalMark = ',', .delimiter = ';'}},
      {1002, "a b\n1 2 3,5 NA", {{1, 2}, {3, M}}, {"a: 1 (first in line 2)"}},
      {1002, "a b c\n1 2 3\n4 5", {{1, 2, 3}}, {"last 2 field(s)"}},
      {1003,
       "a,b\n\"1\n2\",x\n\"\n\",y\n",
       {{1, M}, {M, M}},
       {"a: 1 (first in line 2)", "b: 2 (first in line 2)"}},
  };
  for (const auto& c : cases) {
    ASSERT_TRUE(Import(c.text, c.type, c.settings)) << c.text;
    EXPECT_EQ(Rows(), c.rows) << c.text;
    ASSERT_EQ(host.messages.size(), 1U) << c.text;
    for (const char* const part : c.told) {
      EXPECT_NE(host.LastMessage().find(part), CString::npos) << host.LastMessage();
    }
  }
}

TEST_F(TextImportTest, TextsThatMeanMissingMayBeginWithANumber) {
  port.SetMissingStrings({"-1.#IND", "9x"});
  ASSERT_TRUE(Import("a,b\n-1.#IND,1\n2, 9X\n3,-1\n", 1003));
  EXPECT_EQ(Rows(), (rows_t{{M, 1}, {2, M}, {3, -1}}));
  EXPECT_TRUE(host.messages.empty()) << host.LastMessage();
}

TEST_F(TextImportTest, NumbersThatMeanMissingHaveTheFilesDecimalMark) {
  port.SetMissingStrings({"9,5", "1.5", "-8"});
  const TextSettings commas{.decimalMark = ',', .delimiter = ';'};
  ASSERT_TRUE(Import("a;b\n9,50;2\n1,5;-8,0\n", 1003, commas)) << Reason();
  EXPECT_EQ(Rows(), (rows_t{{M, 2}, {1.5, M}}));
  ASSERT_TRUE(Import("a;b\n9.5;2\n1.50;-8\n", 1003, {.delimiter = ';'})) << Reason();
  EXPECT_EQ(Rows(), (rows_t{{9.5, 2}, {M, M}}));
}

TEST_F(TextImportTest, NamesComeFromTheFirstLineOrTheTemplate) {
  const struct {
    const char* text;
    std::vector<CString> names;
    std::optional<bool> hasNames = std::nullopt;
  } cases[] = {
      {"a,,b c\n1,2,3\n", {"a", "VAR002", "b c"}},
      {",,\n1,2,3\n", {"VAR001", "VAR002", "VAR003"}},
      {"a,1,b\n1,2,3\n", {"VAR001", "VAR002", "VAR003"}},
      {"1,2,3\n4,5,6\n", {"1", "2", "3"}, true},
      {"a,b\nc,d\n", {"VAR001", "VAR002"}, false},
      {"\"q\"\"1\",\"two\nlines\"\n1,2\n", {"q\"1", "two lines"}},
      {"a,a\n1,2\n", {"a", "a"}},
      {"\xEF\xBB\xBF\xC3\xA4,b\n1,2\n", {"\xE4", "b"}},
      {"\xE4,b\n1,2\n", {"\xE4", "b"}},
      {"a_name_that_is_longer_than_16,b\n1,2\n", {"a_name_that_is_l", "b"}},
  };
  for (const auto& c : cases) {
    ASSERT_TRUE(Import(c.text, 1003, {.hasNames = c.hasNames})) << c.text;
    EXPECT_EQ(Names(), c.names) << c.text;
  }
  ASSERT_TRUE(Import("a,b\n", 1003));
  EXPECT_EQ(document.GetRecnum(), 0) << "a line of names alone";
}

TEST_F(TextImportTest, WhatCannotBeReadIsRefusedWithItsLine) {
  const struct {
    const char* what;
    int type;
    std::string text;
    const char* reason;
    TextSettings settings = {};
  } cases[] = {
      {"nothing", 1003, "", "no line with content"},
      {"a mark alone", 1003, "\xEF\xBB\xBF", "no line with content"},
      {"blank lines", 1002, "\n \n\t\n", "no line with content"},
      {"an open quote in the names", 1005, "\"a\tb\n1\t2\n", "line 1: a quote opens here"},
      {"no delimiter", 1004, "a,b\n", "delimiter"},
      {"mark and delimiter", 1003, "a,b\n", "decimal mark", {.decimalMark = ','}},
      {"a delimiter of numbers", 1003, "a,b\n", "cannot be delimited", {.delimiter = '-'}},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(Import(c.text, c.type, c.settings)) << c.what;
    EXPECT_EQ(host.LastMessage(), "Error in attempting to read file") << c.what;
    EXPECT_NE(Reason().find(c.reason), CString::npos) << c.what << ": " << Reason();
    EXPECT_EQ(folder.FileCount(), 1U) << c.what;
  }
  std::filesystem::remove(source);
  CString name = source, systemFile = target;
  int type = 1003;
  EXPECT_EQ(port.Import(name, type, false, true, systemFile), STUtils::eFAILED);
  EXPECT_NE(Reason().find("No such file"), CString::npos) << Reason();
}

TEST_F(TextImportTest, AFaultAmongTheRecordsLeavesAGoodFileAlone) {
  std::string text = "a,b\n";
  for (int i = 0; i < 50'000; ++i) text += "1,2\n";
  const std::pair<std::string, const char*> small[] = {
      {"a,b\n1,2\n\n1,2,3\n", "line 4: there are more than the 2"},
      {"a,b\n1,\"2\n3,4\n", "line 2: a quote opens here"},
      {"a,b\n\"1\n2\",2\n1,\"2", "line 4: a quote opens here"}};
  for (const auto& [file, reason] : small) {
    WriteBytes(target, "old");
    EXPECT_FALSE(Import(file, 1003));
    EXPECT_NE(host.LastMessage().find(reason), CString::npos) << host.LastMessage();
    EXPECT_EQ(ReadBytes(target), "old");
  }
  const std::pair<std::string, const char*> faults[] = {
      {"1,2,3\n", "line 50002: there are more than"}, {"1,\"2\n3,4\n", "line 50002: a quote"}};
  for (const auto& [fault, reason] : faults) {
    WriteBytes(target, "old");
    EXPECT_FALSE(Import(text + fault, 1003));
    EXPECT_NE(host.LastMessage().find(reason), CString::npos) << host.LastMessage();
    EXPECT_EQ(ReadBytes(target), "old");
  }
}

TEST_F(TextImportTest, AFileThatChangesIsNotTaken) {
  const std::string text = "a,b\n1,2\n3,4\n";
  port.SetTextConfirmer([&](CTextConfirmation&) {
    WriteBytes(source, text + "5,6\n");
    return true;
  });
  EXPECT_FALSE(Import(text, 1003));
  EXPECT_NE(host.LastMessage().find("changed while it was read"), CString::npos);
  port.SetTextConfirmer([&](CTextConfirmation&) { return std::filesystem::remove(source); });
  EXPECT_TRUE(Import(text, 1003)) << "what is open is still there: " << host.LastMessage();
  EXPECT_EQ(Rows(), (rows_t{{1, 2}, {3, 4}}));
}

// Whatever falls on the border between two blocks: fields of all kinds, moved along byte by byte.
TEST_F(TextImportTest, BlocksEndAnywhere) {
  const std::string record = "\"a\"\"\r\nb\",-12345.678e-2,NA\r\n";
  constexpr std::size_t kBlock = std::size_t{128} << 10;
  for (std::size_t shift = 0; shift < record.size(); ++shift) {
    std::string text = "n" + std::string(shift, 'x') + ",b,c\r\n";
    std::size_t records = 0;
    for (; text.size() < kBlock + 2 * record.size(); ++records) text += record;
    ASSERT_TRUE(Import(text, 1003)) << shift << Reason();
    const rows_t rows = Rows();
    ASSERT_EQ(rows.size(), records) << shift;
    for (const auto& row : rows) ASSERT_EQ(row, (std::vector<double>{M, -123.45678, M})) << shift;
  }
}

TEST_F(TextImportTest, LongFieldsAndManyColumns) {
  ASSERT_TRUE(Import(
      "a,b\n1," + std::string(1 << 20, 'x') + "\n\"" + std::string(1 << 20, '\n') + "\",4\n", 1003))
      << Reason();
  EXPECT_EQ(Rows(), (rows_t{{1, M}, {M, M}}));
  std::string wide;
  for (int i = 0; i < 100'000; ++i) wide += "1\t";
  ASSERT_TRUE(Import(wide + "1\n", 1005)) << Reason();
  EXPECT_EQ(document.GetVarnum(), 100'001);
  EXPECT_EQ(Rows(), rows_t(1, std::vector<double>(100'001, 1.0)));
}

TEST_F(TextImportTest, UnselectedVariablesAreLeftOutAndAStopLeavesNothing) {
  port.SetSelection({"c", "a"});
  ASSERT_TRUE(Import("a,b,c\n1,x,3\n", 1003));
  EXPECT_EQ(Rows(), (rows_t{{1, 3}}));
  port.SetSelection({"d"});
  EXPECT_FALSE(Import("a,b,c\n1,x,3\n", 1003));
  EXPECT_NE(host.LastMessage().find("d"), CString::npos);
  port.SetSelection({});
  std::filesystem::remove(target);
  port.SetTextConfirmer([](CTextConfirmation&) { return false; });
  EXPECT_FALSE(Import("a,b,c\n1,x,3\n", 1003));
  EXPECT_TRUE(host.messages.empty());
  port.SetTextConfirmer({});
  host.cancelAtStep = host.progressSteps;
  EXPECT_FALSE(Import("a,b,c\n1,x,3\n", 1003));
  EXPECT_EQ(folder.FileCount(), 1U);
}

class TextRealFiles : public RealDataTest {};

TEST_F(TextRealFiles, TheSurveyOfTheExampleIsTheSameAsText) {
  ImportedColumns text;
  ImportedColumns binary;
  const auto columns = text.Import(RealFile("text/bfi.csv"));
  EXPECT_EQ(text.cases, 2800);
  ASSERT_EQ(columns.size(), 28U);
  EXPECT_EQ(text.names[0], "A1");
  EXPECT_EQ(columns, binary.Import(VEX_EXAMPLE));
}
