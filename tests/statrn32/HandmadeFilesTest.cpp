// Files of the formats that are text, written by hand: what their readers make of the forms in
// which other programs write them.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/Numbers.h"
#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

constexpr std::int32_t kSqlScript = 28;
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

 private:
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
      // Names in the order in which they come; lists and objects are no values.
      {kJsonLines,
       "{\"z\":1,\"a\":\"x\",\"list\":[1,{\"z\":5}]}\n\n{\"a\":\"y\",\"z\":true,\"new\":2.5}\n",
       {"z|a|list|new", R"(1|"x"|.|.)", R"(1|"y"|.|2.5)"}},
      // A cell that spans rows moves those below it aside.
      {kHtml,
       "<table><tr><th>a<th>b<th>c<tr><td rowspan=2>1<td>2<td>3<tr><td>5<td>6</table>",
       {"a|b|c", "1|2|3", ".|5|6"}},
  };
  for (const auto& [type, bytes, shown] : cases) {
    const Table table = Read(type, bytes);
    EXPECT_EQ(table.error, "") << bytes;
    EXPECT_EQ(Shown(table), shown) << bytes;
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
}

}  // namespace
