// Files of the formats that are text, written by hand: what their readers make of the forms in
// which other programs write them.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/Numbers.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/StFiles.h"
#include "statrn32/TextEncoder.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

constexpr std::int32_t kXls = 7;
constexpr std::int32_t kParadox = 10;
constexpr std::int32_t kDump = 17;
constexpr std::int32_t kSqlScript = 28;
constexpr std::int32_t kStatistica = 30;
constexpr std::int32_t kOsiris = 36;
constexpr std::int32_t kSpssProgram = 39;
constexpr std::int32_t kSasProgram = 40;
constexpr std::int32_t kStataProgram = 41;
constexpr std::int32_t kHtml = 31;
constexpr std::int32_t kJsonLines = 903;

// "name|name" and then "value|value" for each record; "." is a missing value.
std::vector<std::string> Shown(const Table& table) {
  std::vector<std::string> lines(1);
  const auto add = [&lines](const std::string& text) {
    lines.back() += (lines.back().empty() ? "" : "|") + text;
  };
  for (const Column& column : table.columns) add(column.name);
  for (const auto& record : table.records) {
    lines.emplace_back();
    for (std::size_t i = 0; i < record.size(); ++i) {
      const bool text = table.columns[i].type == ST_TYPE_STRING;
      if (record[i].status != ST_STATUS_PRESENT) {
        add(".");
      } else {
        add(text ? '"' + record[i].text + '"' : FormatShortest(record[i].number));
      }
    }
  }
  return lines;
}

class HandmadeFiles : public testing::Test {
 protected:
  Table Read(std::int32_t type, const std::string& bytes) {
    MakeFile(folder_.Name("file"), bytes);
    return ReadFile(type, folder_.Name("file"));
  }

  TempFolder folder_;
};

TEST_F(HandmadeFiles, ReadAsTheirWritersMeantThem) {
  const struct {
    std::int32_t type;
    const char* bytes;
    std::vector<std::string> shown;
  } cases[] = {
      // Numbers without quotes in a column of texts stay as they were written.
      {kSqlScript,
       "CREATE TABLE t (code VARCHAR(8), x REAL);\nINSERT INTO t VALUES (007, 1.5), (TRUE, NULL);",
       {"code|x", R"("007"|1.5)", R"("1"|.)"}},
      // Columns in an order of their own, by names whose case does not matter; one is left out.
      {kSqlScript,
       "CREATE TABLE `t` (`a` INT, `b` INT, `c` INT);\n"
       "INSERT INTO t (C, `A`) VALUES (3, 1);\nINSERT INTO t (b) VALUES (2);",
       {"a|b|c", "1|.|3", ".|2|."}},
      // Nothing need stand between statements, INTO may be left out, a word may stand before it; a
      // value may say its type.
      {kSqlScript,
       "CREATE TABLE [dbo].[t] ([a] [int] NOT NULL, [d] [date] NULL)\nGO\n"
       "INSERT [dbo].[t] ([a], [d]) VALUES (CAST(1.5 AS Decimal(18, 2)), CAST(N'1900-01-01' AS "
       "Date))\n"
       "INSERT IGNORE INTO t VALUES (2, NULL);\nREPLACE INTO t VALUES (3, NULL);\n",
       {"a|d", "1.5|1", "2|.", "3|."}},
      // Names in the order in which they come; lists and objects are no values.
      {kJsonLines,
       "{\"z\":1,\"a\":\"x\",\"list\":[1,{\"z\":5}]}\n\n{\"a\":\"y\",\"z\":true,\"new\":2.5}\n",
       {"z|a|list|new", R"(1|"x"|.|.)", R"(1|"y"|.|2.5)"}},
      // The mark of UTF-8 is no part of a text.
      {kJsonLines, "\xEF\xBB\xBF{\"a\":1}\n", {"a", "1"}},
      {kSqlScript,
       "\xEF\xBB\xBF"
       "CREATE TABLE t (a INT); INSERT INTO t VALUES (1);",
       {"a", "1"}},
      {kStataProgram, "\xEF\xBB\xBFinput a\n1\nend\n", {"a", "1"}},
      // Minutes with a fraction are no time; midnight may stand at the end of a day.
      {kJsonLines, "{\"a\":\"12:30.5\",\"b\":\"24:00\"}\n", {"a|b", R"("12:30.5"|1)"}},
      // A cell that spans rows moves those below it aside.
      {kHtml,
       "<table><tr><th>a<th>b<th>c<tr><td rowspan=2>1<td>2<td>3<tr><td>5<td>6</table>",
       {"a|b|c", "1|2|3", ".|5|6"}},
      {kHtml,
       "<table><tr><th>a<tr><td>\xE2\x88\x92"
       "1.5<tr><td>2</table>",
       {"a", "-1.5", "2"}},
      // Ranges of missing values without an end.
      {kSpssProgram,
       "DATA LIST FREE /a b.\nMISSING VALUES a (LO THRU 0, 9) b (97 THRU HIGHEST).\nBEGIN DATA\n"
       "-5 1\n0 97\n3 1e300\n9 98\n1 2\nEND DATA.\n",
       {"a|b", ".|1", ".|.", "3|.", ".|.", "1|2"}},
      // Commas separate as blanks do; a run of variables shares what it is told.
      {kSpssProgram,
       "DATA LIST LIST /a b c.\nMISSING VALUES a TO c (9).\nBEGIN DATA\n1, 2,,\n9,9 9\nEND DATA.\n",
       {"a|b|c", "1|2|.", ".|.|."}},
      {kStataProgram,
       "input byte a str3 b c:yes\n1,\"x\",2\n3 y ,4\nend\n",
       {"a|b|c", R"(1|"x"|2)", R"(3|"y"|4)"}},
      // Informats without a column follow each other.
      {kSasProgram,
       "data d; input id 3. sex $1. x 4.1;\ncards;\n001m1234\n002f 5.6\n;\n",
       {"id|sex|x", R"(1|"m"|123.4)", R"(2|"f"|5.6)"}},
      // A record goes on in the next line, or begins within one, or ends with the line. Data end
      // with the first semicolon.
      {kSasProgram, "data d; input a b;\ncards;\n1\n2 3\n4 5\nrun;\n", {"a|b", "1|2", "4|5"}},
      {kSasProgram,
       "data d; input a b @@;\ncards;\n1 2 3\n4 5 6\n;\n",
       {"a|b", "1|2", "3|4", "5|6"}},
      {kSasProgram,
       "data d; infile cards missover; input a b;\ncards;\n1\n2 3\n;\n",
       {"a|b", "1|.", "2|3"}},
      {kSasProgram,
       "data d; infile cards dlm='09'x dsd; input a @; input b : 5.;\ncards;\n1\t09\n;\n",
       {"a|b", "1|9"}},
  };
  for (const auto& [type, bytes, shown] : cases) {
    const Table table = Read(type, bytes);
    EXPECT_EQ(table.error, "") << bytes;
    EXPECT_EQ(Shown(table), shown) << bytes;
  }
}

// A cell far below the others does not make millions of records.
TEST_F(HandmadeFiles, RowsThatHoldNothingAreRecordsWithinReason) {
  const auto sheet = [](unsigned columns, unsigned lastRow) {
    statrn32::CByteWriter out;
    out.U16(0x0009).U16(4).U16(2).U16(0x10);
    for (unsigned i = 0; i <= columns; ++i) {
      out.U16(0x0003).U16(15).U16(i < columns ? 0 : lastRow).U16(i % columns).Zeros(3).F64(7);
    }
    return out.U16(0x000A).U16(0).Data();
  };
  const Table near = Read(kXls, sheet(2, 3));
  EXPECT_EQ(Shown(near), (std::vector<std::string>{"VAR001|VAR002", "7|7", ".|.", ".|.", "7|."}));
  const Table far = Read(kXls, sheet(100, 65535));
  EXPECT_EQ(far.records.size(), 2U);
}

// What would be read as something else is refused by the line and the word.
TEST_F(HandmadeFiles, ProgramsThatAreNotUnderstoodAreRefusedByName) {
  const struct {
    std::int32_t type;
    const char* bytes;
    const char* message;
  } cases[] = {
      {kStataProgram, "infile a b:c using file, automatic\n", "line 1: \"automatic\""},
      {kStataProgram, "clear\ninfix dictionary using file\n", "line 2: \"dictionary\""},
      {kStataProgram, "infix 2 lines 1: a 1-4 using file\n", "line 1: \"2\""},
      {kStataProgram, "input v1-v3\nend\n", "line 1: \"-\""},
      {kSasProgram, "data d;\ninfile in1;\ninput a;\n", "line 2: INFILE in1"},
      {kSasProgram, "data d; infile cards obs=2;\ninput a;\ncards;\n1\n;\n", "line 1: \"obs\""},
      {kSasProgram, "data d;\ninput a;\ninput b;\ncards;\n1\n2\n;\n", "line 3: a second INPUT"},
      {kSasProgram, "data d;\ninput a date.;\ncards;\n1\n;\n", "line 2: date.: an informat"},
      {kSasProgram, "data d;\ninput a;\nrun;\n", "holds no data"},
      {kSpssProgram, "DATA LIST FREE /a.\n", "holds no data"},
      {kSpssProgram,
       "\xFF\xFE"
       "D",
       "UTF-16"},
      {kJsonLines, "[{\"a\":1}]\n", "an object on a line of its own"},
      {kSqlScript, "CREATE TABLE t (a INT);\nCOPY t FROM stdin;\n1\n", "line 2: rows behind COPY"},
      {kDump, "x <-\nstructure(list(a = 1))\n", "oldStyle = T"},
  };
  for (const auto& [type, bytes, message] : cases) {
    const std::string error = Read(type, bytes).error;
    EXPECT_NE(error.find(message), std::string::npos) << bytes << error;
  }
}

TEST_F(HandmadeFiles, MadeToTakeForeverAreRefusedSoon) {
  std::string json = "{";
  for (int i = 0; i < 1'000'000; ++i) json += "\"n" + std::to_string(i) + "\":0,";
  json.back() = '}';
  EXPECT_NE(Read(kJsonLines, json).error.find("32767 names"), std::string::npos);
  EXPECT_NE(Read(kJsonLines, "{\"a\":1}\n[1]\n").error.find("line 2"), std::string::npos);

  std::string page = "<table><tr>";
  for (int i = 0; i < 10'000; ++i) page += "<td rowspan=16000>1";
  for (int i = 0; i < 1'500; ++i) page += "<tr><td>2";
  EXPECT_NE(Read(kHtml, page).error.find("span too many rows"), std::string::npos);

  const Table matrix =
      Read(kDump, "m\nstructure\n2\n.Data\nnumeric\n0\n.Dim\nnumeric\n2\n0\n1e15\n");
  EXPECT_NE(matrix.error.find("holds no values"), std::string::npos);
  const Table blanks =
      Read(kSasProgram, std::string(400'000, '\n') + "data d;\ninput a;\ndatalines;\n7\n;\nrun;\n");
  EXPECT_EQ(Shown(blanks), (std::vector<std::string>{"a", "7"}));
}

// A block that names itself as the next one, and four billion rows.
TEST_F(HandmadeFiles, ACircleOfBlocksEndsWithTheBlocks) {
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Number(1)}, {Number(2)}};
  const std::string name = folder_.Name("t.db");
  ASSERT_EQ(WriteFile(table, kParadox, name).error, "");
  std::string bytes = BytesOf(name);
  bytes.replace(6, 4, "\xFF\xFF\xFF\xFF");
  bytes[2048] = 1;  // the header has 2048 bytes
  const Table read = Read(kParadox, bytes);
  EXPECT_EQ(read.records.size(), 2U);
  EXPECT_NE(read.error.find("the blocks end after 2"), std::string::npos) << read.error;
}

// Variables that all point to the same labels, each to as many as a count can tell.
TEST_F(HandmadeFiles, SharedLabelsAreNotMultipliedWithoutBounds) {
  constexpr std::size_t kVariables = 2000;
  constexpr std::size_t kLabels = 20'000;
  statrn32::CByteWriter out;
  out.Bytes("CSS ").Zeros(4).U32(0).U32(kVariables).Zeros(8).U16(20).U16(80);
  for (const std::size_t unit : {8, 2, 8, 2, 4}) out.U16(unit * kVariables);
  out.Zeros(138 - out.Size()).Zeros(18 * kVariables, 'A');
  out.Zeros(2 * kVariables, '\xFF').Zeros(4 * kVariables).Zeros(14 * kLabels, 'b');
  const Table table = Read(kStatistica, out.Data());
  EXPECT_EQ(table.error, "");
  std::size_t labels = 0;
  for (const Column& column : table.columns) labels += column.labels.size();
  EXPECT_GE(labels, kLabels);
  EXPECT_LE(labels, 10 * kLabels);
}

// Cards without line ends; the data as well, with whole numbers in two bytes.
TEST_F(HandmadeFiles, ADictionaryInEbcdicReads) {
  const auto card = [](const char* start) {
    std::string text = start;
    text.resize(80, ' ');
    return text;
  };
  statrn32::CTextEncoder ebcdic("CP037");
  const std::string cards = card("1       1    3") +
                            card("T    1 0   AGE                         1     3 1     1    99.9") +
                            card("T    2 1   TOWN                        4     6       1") +
                            card("T    3 2   N                          10     2       1");
  MakeFile(folder_.Name("t.dct"), ebcdic.Encode(cards));
  MakeFile(folder_.Name("t.dat"), ebcdic.Encode("415Ulm   ") + std::string("\x01\x02", 2) +
                                      ebcdic.Encode("999Lindau") + std::string("\xFF\xFE", 2));
  const Table table = ReadFile(kOsiris, folder_.Name("t.dct"));
  EXPECT_EQ(table.error, "");
  EXPECT_EQ(Shown(table),
            (std::vector<std::string>{"AGE|TOWN|N", "41.5|\"Ulm\"|258", ".|\"Lindau\"|-2"}));
}

// Records longer than what the dictionary speaks of.
TEST_F(HandmadeFiles, LineEndsBehindTheLastVariableCount) {
  std::string cards = "1       1    1";
  cards.resize(80, ' ');
  cards += "\nT    1 0   AGE                         1     3";
  cards.resize(161, ' ');
  MakeFile(folder_.Name("t.dct"), cards + "\n");
  MakeFile(folder_.Name("t.dat"), " 41 and more\n  7 and more\n");
  const Table table = ReadFile(kOsiris, folder_.Name("t.dct"));
  EXPECT_EQ(Shown(table), (std::vector<std::string>{"AGE", "41", "7"}));
}

}  // namespace
