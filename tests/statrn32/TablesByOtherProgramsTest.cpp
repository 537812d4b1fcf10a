// Tables that are written here as gnumeric reads them, and databases that are read here as mdbtools
// reads them, where these programs are installed.
#include <algorithm>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

bool Runs(const std::string& command) {
  return std::system((command + " 2>/dev/null").c_str()) == 0;
}

std::vector<std::string> LinesOf(const std::string& name) {
  std::vector<std::string> lines;
  std::ifstream in(name);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST(TablesByOtherPrograms, ParadoxTablesHoldTheSameNumbersAndTexts) {
  TempFolder folder;
  const std::string name = folder.Name("t.db");
  const std::string csv = folder.Name("t.csv");
  Table table;
  table.columns = {{"AGE", "", ST_TYPE_NUMERIC, 8, 2, {}},
                   {"TOWN", "", ST_TYPE_STRING, 20, 0, {}},
                   {"SCORE", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  for (int i = 0; i < 300; ++i) {
    table.records.push_back({i % 7 == 0 ? Missing() : Number(i * 1.5 - 100),
                             Text(i % 2 == 0 ? "Ulm" : "Köln"), Number(-i / 3.0)});
  }
  ASSERT_EQ(WriteFile(table, 10, name).error, "");
  if (!Runs("ssconvert --version >/dev/null")) GTEST_SKIP() << "ssconvert is not installed";
  // It fails at every third table, whoever made it, and reads it when asked again.
  constexpr int kTries = 20;
  bool read = false;
  for (int i = 0; i < kTries && !read; ++i) read = Runs("ssconvert " + name + " " + csv);
  ASSERT_TRUE(read);
  const std::vector<std::string> lines = LinesOf(csv);
  ASSERT_EQ(lines.size(), table.records.size() + 1);
  for (std::size_t i = 0; i < table.records.size(); ++i) {
    const std::string& line = lines[i + 1];
    const auto& record = table.records[i];
    const std::size_t first = line.find(',');
    const std::size_t second = line.find(',', first + 1);
    ASSERT_NE(second, std::string::npos) << line;
    const bool missing = record[0].status != ST_STATUS_PRESENT;
    EXPECT_EQ(line.substr(0, first).empty(), missing) << line;
    if (!missing) {
      EXPECT_EQ(std::strtod(line.c_str(), nullptr), record[0].number) << line;
    }
    EXPECT_EQ(line.substr(first + 1, second - first - 1), record[1].text);
    EXPECT_EQ(std::strtod(line.c_str() + second + 1, nullptr), record[2].number) << line;
  }
}

// The rows of a page that moved elsewhere come in another order there.
TEST(TablesByOtherPrograms, AccessTablesHoldTheSameRows) {
  const std::string name = RealFile("access/reviews.mdb");
  if (name.empty()) GTEST_SKIP() << "VEX_REAL_DATA is not set: no files to read";
  TempFolder folder;
  const std::string csv = folder.Name("t.csv");
  if (!Runs("mdb-export -Q -d '|' " + name + " Reviews > " + csv)) {
    GTEST_SKIP() << "mdb-export is not installed";
  }
  std::vector<std::string> theirs = LinesOf(csv);
  ASSERT_FALSE(theirs.empty());
  theirs.erase(theirs.begin());
  const Table table = ReadFile(23, name);
  std::vector<std::string> ours;
  for (const auto& record : table.records) {
    std::string line;
    for (std::size_t i = 0; i < 5; ++i) line += record[i].text + "|";
    ours.push_back(line);
  }
  for (std::string& line : theirs) {
    std::size_t end = 0;
    for (int i = 0; i < 5; ++i) end = line.find('|', end) + 1;
    line.resize(end);
  }
  std::sort(ours.begin(), ours.end());
  std::sort(theirs.begin(), theirs.end());
  EXPECT_EQ(ours, theirs);
}

}  // namespace
