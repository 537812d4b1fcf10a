// What the grid shows, and what it asks for.
#include <QElapsedTimer>
#include <cmath>
#include <fstream>
#include <limits>
#include <unistd.h>

#include <gtest/gtest.h>

#include "dataview/table/FakeClient.h"

namespace {

constexpr std::int64_t kFiftyMillion = 50'000'000;

std::int64_t ResidentBytes() {
  std::int64_t pages = 0;
  std::int64_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

int MostAsked(const FakeClient& client) {
  int most = 0;
  for (const auto& [row, times] : client.asked) most = std::max(most, times);
  return most;
}

TEST(DataTable, ShowsFiftyMillionRowsWithoutMemoryPerRow) {
  { ShownTable warmUp(1000, 4); }
  const std::int64_t before = ResidentBytes();
  ShownTable shown(kFiftyMillion, 4);
  shown.Draw();
  EXPECT_LT(shown.client.asked.size(), 100U);
  EXPECT_EQ(shown.client.asked.rbegin()->first, shown.Grid().model()->rowCount() - 1);

  shown.table.SetCurrentCell({kFiftyMillion - 1, 3});
  shown.Draw();
  EXPECT_LT(shown.client.asked.size(), 200U);
  EXPECT_EQ(shown.client.asked.rbegin()->first, kFiftyMillion - 1);
  EXPECT_LT(shown.Grid().model()->rowCount(), 100);
  const int last = shown.Grid().model()->rowCount() - 1;
  EXPECT_EQ(shown.RowHeading(last), "50000000");
  EXPECT_EQ(shown.Shown(last, 3), "499999993");
  EXPECT_LT(ResidentBytes() - before, std::int64_t{16} << 20);
}

TEST(DataTable, AsksOncePerRowUntilItIsToldToForget) {
  ShownTable shown(100, 4);
  for (int i = 0; i < 3; ++i) shown.Draw();
  EXPECT_EQ(MostAsked(shown.client), 1);
  shown.table.Redraw();
  shown.Draw();
  EXPECT_EQ(MostAsked(shown.client), 2);
}

TEST(DataTable, LeavesRowsEmptyThatTheClientDoesNotHave) {
  ShownTable shown(100, 4);
  shown.client.rowsPresent = 3;
  shown.client.asked.clear();
  shown.table.Redraw();
  shown.Draw();
  EXPECT_EQ(shown.Shown(2, 1), "21");
  EXPECT_EQ(shown.Shown(3, 1), "");
  EXPECT_EQ(shown.client.asked[3], 1);
}

TEST(DataTable, ShowsMissingCellsAsTheyAreHandedOver) {
  ShownTable shown(10, 2);
  shown.client.special = -999999.0;
  shown.table.Redraw();
  EXPECT_EQ(shown.Shown(4, 0), "-999999");
  EXPECT_EQ(shown.Shown(4, 1), "41");
}

TEST(DataTable, FollowsPatterns) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double value;
    const char* pattern;
    const char* want;
  } cases[] = {
      {1, "########0.###", "1"},
      {1.5, "########0.###", "1.5"},
      {1.0625, "########0.##", "1.06"},
      {2.0004, "########0.###", "2"},
      {-0.0001, "########0.###", "0"},
      {-2.25, "########0.###", "-2.25"},
      {0.5, "###.#", ".5"},
      {3.25, "0.000", "3.250"},
      {3.0, "0.0##", "3.0"},
      {12, "###0.", "12"},
      {123456789.125, "#0.###", "123456789.125"},  // wider than the pattern
      {1e300, "########0.###", "1e+300"},
      {9007199254740993.0, "########0.###", "9007199254740992"},
      {0.1, "", "0.1"},
      {nan, "########0.###", "NaN"},
      {nan, "", "NaN"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CellText(c.value, c.pattern), c.want) << c.value << " under " << c.pattern;
  }
}

TEST(DataTable, TellsTheValueInFullBesideARoundedOne) {
  ShownTable shown(10, 1);
  shown.client.special = 1.0 / 3;
  shown.table.Redraw();
  const QModelIndex cell = shown.Grid().model()->index(2, 0);
  EXPECT_EQ(cell.data().toString(), "0.333");
  EXPECT_EQ(cell.data(Qt::ToolTipRole).toString(), "0.3333333333333333");
  EXPECT_EQ(shown.table.ValueText({2, 0}), "0.3333333333333333");
}

TEST(DataTable, ShowsNamesAsPeopleReadThem) {
  ShownTable shown(10, 3);
  shown.table.SetColumnHeading(0,
                               "gr\xf6\xdf"
                               "e");  // Windows-1252
  shown.table.SetColumnHeading(1,
                               "gr\xc3\xb6\xc3\x9f"
                               "e");  // UTF-8
  EXPECT_EQ(shown.table.ColumnHeading(0), QString::fromUtf8("größe"));
  EXPECT_EQ(shown.table.ColumnHeading(1), QString::fromUtf8("größe"));
  EXPECT_EQ(shown.table.ColumnHeading(3), "");
}

TEST(DataTable, KeepsColumnWidthsAndTellsOddOnesApart) {
  ShownTable shown(10, 5);
  shown.table.SetColumnWidth(3, 140);
  shown.table.Redraw();
  for (const int column : {0, 1, 2, 4}) EXPECT_EQ(shown.Grid().columnWidth(column), 78);
  EXPECT_EQ(shown.Grid().columnWidth(3), 140);
  shown.table.SetColumnCount(2);
  shown.table.SetColumnWidth(0, 30);
  shown.table.SetColumnWidth(1, 30);
  shown.table.Redraw();
  EXPECT_EQ(shown.Grid().columnWidth(1), 30);
}

TEST(DataTable, WidensRowHeadingsForLongNumbers) {
  ShownTable few(10, 1);
  EXPECT_EQ(few.Grid().verticalHeader()->width(), 40);
  ShownTable many(2'147'483'647, 1);
  QHeaderView* const side = many.Grid().verticalHeader();
  EXPECT_GE(side->width(), QFontMetrics(side->font()).horizontalAdvance("2147483647"));
}

TEST(DataTable, UsesTheStatedFaceAndWeights) {
  ShownTable shown(10, 1);
  EXPECT_EQ(shown.Grid().font().families().value(0), "MS Sans Serif");
  EXPECT_EQ(shown.Grid().font().pointSize(), 10);
  EXPECT_EQ(shown.Grid().font().weight(), QFont::Normal);
  EXPECT_EQ(shown.Grid().verticalHeader()->font().weight(), QFont::Bold);
  EXPECT_EQ(shown.Grid().horizontalHeader()->font().weight(), QFont::Bold);
}

// Work that grows with the square of the columns takes minutes here.
TEST(DataTable, TakesAsManyColumnsAsADataSetMayHave) {
  QElapsedTimer clock;
  clock.start();
  ShownTable shown(1000, 32767);
  shown.table.SetCurrentCell({999, 32766});
  shown.Draw();
  EXPECT_EQ(shown.Shown(shown.Grid().model()->rowCount() - 1, 32766), "42756");
  EXPECT_LT(clock.elapsed(), 10000);
}

}  // namespace
