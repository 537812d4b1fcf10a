#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "vexutils/FileSort.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kNoMemory = 0;  // forces runs of one record and merges of two runs

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Stream FileOf(const std::vector<double>& cells) {
  Stream file(std::tmpfile(), &std::fclose);
  if (!cells.empty()) std::fwrite(cells.data(), sizeof(double), cells.size(), file.get());
  return file;
}

std::vector<double> CellsOf(std::FILE* file) {
  std::vector<double> cells;
  std::rewind(file);
  for (double cell; std::fread(&cell, sizeof cell, 1, file) == 1;) cells.push_back(cell);
  return cells;
}

bool SameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool SameBits(const std::vector<double>& a, const std::vector<double>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](double x, double y) { return SameBits(x, y); });
}

// The rule in its plainest form.
bool ComesBefore(double a, double b, int order) {
  if (std::isnan(a) || std::isnan(b)) return !std::isnan(a) && std::isnan(b);
  return order == kSortAscending ? a < b : a > b;
}

std::vector<double> Expected(const std::vector<double>& cells, std::size_t width, int key,
                             int order) {
  std::vector<std::size_t> rows(cells.size() / width);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = i;
  std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
    return ComesBefore(cells[a * width + key], cells[b * width + key], order);
  });
  std::vector<double> sorted;
  for (const std::size_t row : rows)
    sorted.insert(sorted.end(), &cells[row * width], &cells[row * width] + width);
  return sorted;
}

// Values as data sets have them: few different ones, signed zeros, specials, and now and then
// anything at all.
double RandomValue(std::mt19937_64& random) {
  constexpr double kSpecial[] = {0.0,   -0.0,   kInf,    -kInf,     kNaN,
                                 -kNaN, 5e-324, -5e-324, -999999.0, 1.7e308};
  switch (random() % 4) {
    case 0:
      return kSpecial[random() % std::size(kSpecial)];
    case 1:
      return std::ldexp(static_cast<double>(random()) - 9e18,
                        static_cast<int>(random() % 600) - 300);
    default:
      return static_cast<double>(random() % 7);
  }
}

std::vector<double> RandomCells(std::mt19937_64& random, std::size_t records, std::size_t width) {
  std::vector<double> cells(records * width);
  for (double& cell : cells) cell = RandomValue(random);
  return cells;
}

int SortCells(std::size_t memory, std::FILE* file, std::size_t records, std::size_t width, int key,
              int order, const SortProgress& progress = {}) {
  return fqsortWithin(memory, file, static_cast<std::int64_t>(records), width * sizeof(double), key,
                      order, progress);
}

}  // namespace

TEST(FileSort, PutsKeysInOrder) {
  struct {
    const char* what;
    std::vector<double> keys;
    int order;
    std::vector<int> rows;  // the rows in the order wanted
  } const cases[] = {
      {"nothing", {}, kSortAscending, {}},
      {"one record", {3}, kSortAscending, {0}},
      {"ascending", {3, 1, 2}, kSortAscending, {1, 2, 0}},
      {"descending", {3, 1, 2}, kSortDescending, {0, 2, 1}},
      {"signs", {1, -1, -2, 2, -0.5, 0.5}, kSortAscending, {2, 1, 4, 5, 0, 3}},
      {"equal keys stay", {2, 1, 2, 1, 2}, kSortAscending, {1, 3, 0, 2, 4}},
      {"equal keys stay, descending", {2, 1, 2, 1, 2}, kSortDescending, {0, 2, 4, 1, 3}},
      {"zeros are equal", {0.0, -0.0, -1, 0.0}, kSortAscending, {2, 0, 1, 3}},
      {"zeros are equal, descending", {-0.0, 0.0, 1, -0.0}, kSortDescending, {2, 0, 1, 3}},
      {"NaN last", {kNaN, kInf, -kNaN, -kInf, 0}, kSortAscending, {3, 4, 1, 0, 2}},
      {"NaN last, descending", {kNaN, -kInf, -kNaN, kInf, 0}, kSortDescending, {3, 4, 1, 0, 2}},
      {"all NaN", {kNaN, -kNaN, kNaN}, kSortDescending, {0, 1, 2}},
      {"tiny and huge", {1e308, 5e-324, -5e-324, -1e308, 0}, kSortAscending, {3, 2, 4, 1, 0}},
  };
  for (const auto& c : cases) {
    for (const std::size_t memory : {kSortMemoryBytes, kNoMemory}) {
      SCOPED_TRACE(std::string(c.what) + (memory == 0 ? ", in runs" : ", by keys"));
      std::vector<double> cells;
      for (std::size_t row = 0; row < c.keys.size(); ++row) {
        cells.push_back(static_cast<double>(row));
        cells.push_back(c.keys[row]);
      }
      const Stream file = FileOf(cells);
      ASSERT_EQ(SortCells(memory, file.get(), c.keys.size(), 2, 1, c.order), 1);
      const std::vector<double> sorted = CellsOf(file.get());
      ASSERT_EQ(sorted.size(), cells.size());
      for (std::size_t i = 0; i < c.rows.size(); ++i) {
        EXPECT_EQ(sorted[2 * i], c.rows[i]) << "place " << i;
        EXPECT_TRUE(SameBits(sorted[2 * i + 1], c.keys[c.rows[i]])) << "place " << i;
      }
    }
  }
}

// Widths and counts around the borders of blocks and runs, budgets from nothing to plenty: one run
// or hundreds, one pass or many, and the sort by keys.
TEST(FileSort, AgreesWithAStableSortInMemory) {
  struct {
    std::size_t records;
    std::size_t width;
    std::vector<std::size_t> memory;
  } const cases[] = {
      {2, 1, {0, 40, kSortMemoryBytes}},
      {1000, 1, {0, 1, 64, 1000, 31999, 32000, 32001, 100000, kSortMemoryBytes}},
      {6553, 20, {2000, 100000, kSortMemoryBytes}},  // one record less than a block
      {6554, 20, {100000, std::size_t{1} << 20, kSortMemoryBytes}},
      {50001, 3, {9999, 300000, std::size_t{4} << 20, kSortMemoryBytes}},
      {400000,
       4,
       {std::size_t{5} << 20, std::size_t{9} << 20, kSortMemoryBytes}},  // merges of 4 and more
      {37, 32767, {0, 1000000, std::size_t{3} << 20, kSortMemoryBytes}},
  };
  std::mt19937_64 random(11);
  for (const auto& c : cases) {
    const std::vector<double> cells = RandomCells(random, c.records, c.width);
    for (const std::size_t memory : c.memory) {
      const int key = static_cast<int>(random() % c.width);
      const int order = static_cast<int>(random() % 2);
      const Stream file = FileOf(cells);
      ASSERT_EQ(SortCells(memory, file.get(), c.records, c.width, key, order), 1);
      EXPECT_TRUE(SameBits(CellsOf(file.get()), Expected(cells, c.width, key, order)))
          << c.records << " x " << c.width << ", key " << key << ", order " << order << ", memory "
          << memory;
    }
  }
}

TEST(FileSort, LeavesBytesBehindTheRecordsAlone) {
  for (const std::size_t memory : {kSortMemoryBytes, kNoMemory}) {
    const Stream file = FileOf({3, 2, 1, 0, -1});
    ASSERT_EQ(SortCells(memory, file.get(), 3, 1, 0, kSortAscending), 1);
    EXPECT_EQ(CellsOf(file.get()), (std::vector<double>{1, 2, 3, 0, -1}));
  }
}

// What the stream holds in its buffer, written or read ahead, must neither be missed nor come back
// afterwards.
TEST(FileSort, LeavesTheStreamUsable) {
  const Stream file = FileOf({3, 1, 2});  // still in the buffer
  ASSERT_EQ(SortCells(kSortMemoryBytes, file.get(), 3, 1, 0, kSortAscending), 1);
  double first = 0;
  ASSERT_EQ(std::fread(&first, sizeof first, 1, file.get()), 1u);
  EXPECT_EQ(first, 1);
  ASSERT_EQ(SortCells(kSortMemoryBytes, file.get(), 3, 1, 0, kSortDescending), 1);
  EXPECT_EQ(CellsOf(file.get()), (std::vector<double>{3, 2, 1}));
  const double added = 9;
  ASSERT_EQ(std::fwrite(&added, sizeof added, 1, file.get()), 1u);
  EXPECT_EQ(CellsOf(file.get()), (std::vector<double>{3, 2, 1, 9}));
}

TEST(FileSort, RefusesWhatCannotBeSorted) {
  const std::vector<double> cells = {3, 1, 2, 0};
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  struct {
    const char* what;
    std::int64_t records;
    std::size_t recordBytes;
    int key;
    int order;
  } const cases[] = {
      {"negative key", 2, 16, -1, 0},
      {"key behind the record", 2, 16, 2, 0},
      {"key cut by the record", 2, 15, 1, 0},
      {"no record length", 2, 0, 0, 0},
      {"unknown order", 2, 16, 0, 2},
      {"negative order", 2, 16, 0, -1},
      {"negative count", -1, 16, 0, 0},
      {"one record too many", 3, 16, 0, 0},
      {"overflow", kMost / 8, 16, 0, 0},
      {"overflow to a small product", std::int64_t{1} << 60, 16, 0, 0},
      {"record beyond any file", 2, SIZE_MAX - 7, 0, 0},
  };
  const Stream file = FileOf(cells);
  for (const auto& c : cases) {
    errno = 0;
    EXPECT_EQ(
        fqsort(file.get(), c.records, nullptr, nullptr, nullptr, c.recordBytes, c.key, c.order), 0)
        << c.what;
    EXPECT_EQ(errno, EINVAL) << c.what;
  }
  EXPECT_EQ(CellsOf(file.get()), cells);
}

TEST(FileSort, RefusesFilesThatAreNotOpenForUpdate) {
  const TempFolder folder;
  for (const char* const mode : {"rb", "ab+"}) {
    const std::string content(64, 'x');
    WriteBytes(folder / "cases", content);
    const Stream file(std::fopen((folder / "cases").c_str(), mode), &std::fclose);
    EXPECT_EQ(SortCells(kSortMemoryBytes, file.get(), 8, 1, 0, kSortAscending), 0) << mode;
    EXPECT_EQ(errno, EBADF) << mode;
    EXPECT_EQ(ReadBytes(folder / "cases"), content) << mode;
  }
}
