#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/data/CaseSource.h"
#include "engine/data/Census.h"
#include "engine/syntax/Syntax.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class CaseSourceTest : public testing::Test {
 protected:
  void Open(const TORVIKSTRUCT& data, const std::vector<std::vector<double>>& rows,
            const std::string& lines) {
    WriteDataFile(folder / "d.VSF", data, rows);
    Reopen(lines);
  }
  void Reopen(const std::string& lines) {
    job = JOB();
    FAULT fault;
    ASSERT_TRUE(file.Open(folder / "d.VSF", fault)) << fault.cause;
    ASSERT_TRUE(ParseCommands(SplitSyntax(lines + "\nOU"), file.Data(), job, fault)) << fault.cause;
  }
  // The cells of a block, row after row; NaN as 'missing' -1e9 so that they can be compared.
  static std::vector<double> CellsOf(const CASEBLOCK& block) {
    std::vector<double> cells;
    bool complete = true;
    for (std::int64_t i = 0; i < block.cells.cases; ++i) {
      for (int j = 0; j < block.cells.variables; ++j) {
        const double cell = block.cells.cells[i * block.cells.stride + j];
        complete = complete && !std::isnan(cell);
        cells.push_back(std::isnan(cell) ? -1e9 : cell);
      }
    }
    EXPECT_EQ(block.complete, complete);
    return cells;
  }
  // Those of all cases, which are the same by blocks and by pieces.
  std::vector<double> Cells(CCaseSource& source) {
    std::vector<double> byPieces, byBlocks;
    const auto append = [](std::vector<double>& to, const std::vector<double>& cells) {
      to.insert(to.end(), cells.begin(), cells.end());
    };
    FAULT fault;
    EXPECT_TRUE(source.ForEachPiece(
        [&](const CASEBLOCK& block) {
          return [&, cells = CellsOf(block)] { append(byPieces, cells); };
        },
        {}, fault));
    const CASECOUNTS counts = source.Counts();
    EXPECT_TRUE(source.ForEachBlock(
        [&](const CASEBLOCK& block) { append(byBlocks, CellsOf(block)); }, {}, fault));
    EXPECT_EQ(byPieces, byBlocks);
    EXPECT_EQ(counts.used, source.Counts().used);
    EXPECT_EQ(counts.otherValues, source.Counts().otherValues);
    return byBlocks;
  }

  TempFolder folder;
  CDataFile file;
  JOB job;
};

// More pieces than threads, cases left out of each, and a work that takes longer now and then.
TEST_F(CaseSourceTest, PiecesComeInOrderForAnyNumberOfThreads) {
  std::vector<std::vector<double>> rows;
  for (int i = 0; i < 60'000; ++i) rows.push_back({i + 1.0, i % 7 == 0 ? -999999.0 : i});
  Open(Describe({"x", "y"}), rows, "");
  std::vector<double> first;
  for (const int threads : {1, 2, 5}) {
    CCaseSource source(file, job, 1, 0, threads);
    source.SetColumns({{1, {}}, {0, {}}});
    source.SetListwise(threads != 5);
    std::vector<double> cells = Cells(source);
    EXPECT_EQ(source.Counts().used, threads != 5 ? 51'428 : 60'000);
    if (threads == 1) first = cells;
    if (threads == 2) {
      EXPECT_EQ(cells, first);
    }
  }
}

TEST_F(CaseSourceTest, PiecesStopWhenAskedAndHandOnExceptions) {
  std::vector<std::vector<double>> rows(40'000, {1.0});
  Open(Describe({"x"}), rows, "");
  CCaseSource source(file, job, 1, 0, 3);
  source.SetColumns({{0, {}}});
  FAULT fault;
  int taken = 0;
  EXPECT_FALSE(source.ForEachPiece([&](const CASEBLOCK&) { return [&] { ++taken; }; },
                                   [&](double share) { return share < .3; }, fault));
  EXPECT_FALSE(fault);
  EXPECT_EQ(taken, 3);
  const auto fail = [](const CASEBLOCK&) -> CCaseSource::PieceResult {
    throw std::runtime_error("no");
  };
  EXPECT_THROW(source.ForEachPiece(fail, {}, fault), std::runtime_error);
}

TEST_F(CaseSourceTest, TransformsInTheOrderOfTheLines) {
  Open(Describe({"x", "y"}), {{1, 10}, {2, -999999}, {3, 30}},
       "NE z = x + y\nRC x OLD=1 NEW=100\nNE w = x\nRC y OLD=-999999 NEW=5");
  CCaseSource source(file, job, 1, 0, 1);
  source.SetColumns({{2, {}}, {3, {}}, {1, {}}});
  EXPECT_EQ(Cells(source), (std::vector<double>{11, 100, 10, -1e9, 2, 5, 33, 3, 30}));
}

TEST_F(CaseSourceTest, RepetitionsGoOnFromTheirDataUnlessRewound) {
  Open(Describe({"x"}), {{1}, {2}}, "NE x = x * 2");
  for (const bool rewind : {false, true}) {
    job.header.rewind = rewind;
    CCaseSource third(file, job, 1, 2, 1);
    third.SetColumns({{0, {}}});
    EXPECT_EQ(Cells(third), rewind ? (std::vector<double>{2, 4}) : (std::vector<double>{8, 16}));
  }
}

TEST_F(CaseSourceTest, LeavesOutCasesByRuleAndCountsThem) {
  TORVIKSTRUCT data = Describe({"x", "w"});
  data.weightVariable = 2;
  const double infinity = std::numeric_limits<double>::infinity();
  Open(data,
       {{1, 1},
        {2, 0},
        {3, -1},
        {4, -999999},
        {5, kNaN},
        {6, infinity},
        {7, 0.5},
        {kNaN, 2},
        {infinity, 1},
        {10, 1}},
       "SC x < 10");
  CCaseSource source(file, job, 1, 0, 1);
  source.SetColumns({{0, {}}});
  source.SetListwise(true);
  EXPECT_EQ(Cells(source), (std::vector<double>{1, 7}));
  const CASECOUNTS& counts = source.Counts();
  EXPECT_EQ(counts.read, 10);
  EXPECT_EQ(counts.notSelected, 3);  // 10, infinity and the missing one
  EXPECT_EQ(counts.withoutWeight, 5);
  EXPECT_EQ(counts.used, 2);
}

TEST_F(CaseSourceTest, CodesCategoriesAndCountsOtherValues) {
  Open(Describe({"a", "b"}, kOrdinal), {{5, 1}, {7, 2}, {6, 1}, {-999999, 2}}, "");
  CCaseSource source(file, job, 1, 0, 1);
  source.SetColumns({{1, {}}, {0, {5, 7}}});
  FAULT fault;
  std::vector<int> codes;
  ASSERT_TRUE(source.ForEachBlock(
      [&](const CASEBLOCK& block) {
        ASSERT_EQ(block.codes.variables, 1);
        for (std::int64_t i = 0; i < block.codes.cases; ++i) codes.push_back(block.codes.codes[i]);
      },
      {}, fault));
  EXPECT_EQ(codes, (std::vector<int>{0, 1, 255, 255}));
  EXPECT_EQ(source.Counts().otherValues, (std::vector<std::int64_t>{0, 1}));
}

TEST_F(CaseSourceTest, GivesTheSameBlocksForAnyNumberOfThreads) {
  std::vector<std::vector<double>> rows;
  for (int i = 0; i < 200000; ++i) rows.push_back({i * 0.5, i % 7 == 0 ? -999999.0 : i % 5});
  Open(Describe({"x", "y"}), rows, "SC CASE ODD\nNE z = y + NORMAL()");
  const auto run = [&](int threads) {
    CCaseSource source(file, job, 3, 0, threads);
    source.SetColumns({{0, {}}, {2, {}}});
    source.SetListwise(true);
    return Cells(source);
  };
  const auto one = run(1);
  EXPECT_GT(one.size(), 100000U);
  EXPECT_EQ(one, run(2));
  EXPECT_EQ(one, run(5));
}

TEST_F(CaseSourceTest, ReadsATruncatedFileAsFarAsItGoes) {
  WriteDataFile(folder / "d.VSF", Describe({"x", "y"}), {{1, 2}, {3, 4}, {5, 6}});
  const std::string whole = ReadBytes(folder / "d.VSF");
  for (std::size_t cut = 1; cut <= 48; ++cut) {
    WriteBytes(folder / "d.VSF", whole.substr(0, whole.size() - cut));
    Reopen("");
    CCaseSource source(file, job, 1, 0, 1);
    source.SetColumns({{0, {}}, {1, {}}});
    const std::size_t cells = (48 - cut) / 8;
    const std::vector<double> found = Cells(source);
    ASSERT_EQ(found.size(), (48 - cut + 15) / 16 * 2) << cut;
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_EQ(found[i], i < cells ? static_cast<double>(i) + 1 : -1e9) << cut;
    }
  }
}

TEST(ValueCounts, StopAtFifteenValues) {
  VALUECOUNTS counts;
  for (int i = 0; i < 15; ++i) counts.Add(-i, 1);
  counts.Add(-3, 2);
  EXPECT_FALSE(counts.tooMany);
  EXPECT_EQ(counts.values.front(), -14);
  EXPECT_EQ(counts.counts[11], 3);  // of -3
  VALUECOUNTS more;
  more.Add(-3, 1);
  more.Merge(counts);
  EXPECT_EQ(more.counts[11], 4);
  counts.Add(99, 1);
  EXPECT_TRUE(counts.tooMany);
  more.Merge(counts);
  EXPECT_TRUE(more.tooMany);
}

}  // namespace
