#include <gtest/gtest.h>

#include "dataview/table/RowWindow.h"
#include "dataview/table/TableCursor.h"

namespace {

CRowWindow Window(std::int64_t total, int visible, std::int64_t first) {
  CRowWindow window;
  window.SetVisible(visible);
  window.SetTotal(total);
  window.SetFirst(first);
  return window;
}

TEST(RowWindow, RevealsWithTheSmallestMove) {
  const struct {
    std::int64_t total, first, row, want;
  } cases[] = {
      {100, 0, 0, 0},    {100, 0, 9, 0},    {100, 0, 10, 1},
      {100, 50, 49, 49}, {100, 50, 99, 90}, {100, 90, 0, 0},
      {5, 0, 4, 0},      {0, 0, 0, 0},      {6'000'000'000, 0, 5'999'999'999, 5'999'999'990},
  };
  for (const auto& c : cases) {
    CRowWindow window = Window(c.total, 10, c.first);
    window.Reveal(c.row);
    EXPECT_EQ(window.First(), c.want) << c.total << " rows, from " << c.first << " to " << c.row;
  }
}

TEST(RowWindow, StaysInsideTheRowsWhateverIsAsked) {
  CRowWindow window = Window(100, 10, 40);
  window.ScrollBy(INT64_MAX);
  EXPECT_EQ(window.First(), 90);
  window.ScrollBy(INT64_MIN + 1);
  EXPECT_EQ(window.First(), 0);
  window.SetFirst(95);
  EXPECT_EQ(window.First(), 90);
  window.SetTotal(20);
  EXPECT_EQ(window.First(), 10);
  EXPECT_EQ(window.Drawn(), 10);
  window.SetVisible(50);
  EXPECT_EQ(window.First(), 0);
  EXPECT_EQ(window.Drawn(), 20);
}

TEST(RowWindow, DrawsOneRowMoreThanFits) {
  EXPECT_EQ(Window(100, 10, 0).Drawn(), 11);
  EXPECT_EQ(Window(100, 10, 90).Drawn(), 10);
  EXPECT_EQ(Window(0, 10, 0).Drawn(), 0);
}

TEST(RowWindow, MapsTheScrollBarExactlyWhileItsStepsSuffice) {
  const CRowWindow window = Window(50'000'000, 20, 0);
  for (const std::int64_t row : {0LL, 1LL, 24'999'999LL, 49'999'980LL}) {
    EXPECT_EQ(window.FromBar(window.ToBar(row)), row);
  }
}

TEST(RowWindow, ReachesBothEndsOfMoreRowsThanTheScrollBarCounts) {
  const CRowWindow window = Window(6'000'000'000'000, 20, 0);
  EXPECT_EQ(window.FromBar(0), 0);
  EXPECT_EQ(window.FromBar(window.BarMaximum()), window.LastFirst());
  EXPECT_EQ(window.ToBar(window.LastFirst()), window.BarMaximum());
  std::int64_t before = -1;
  for (int value = 0; value < window.BarMaximum() - 1'000'000; value += 999'999) {
    ASSERT_GT(window.FromBar(value), before);
    before = window.FromBar(value);
  }
}

TEST(TableCursor, KeepsToTheTable) {
  CTableCursor cursor;
  cursor.MoveTo({3, 3});
  EXPECT_FALSE(cursor.Current().IsValid()) << "a table without cells";
  cursor.SetSize(6'000'000'000, 4);
  cursor.MoveTo({7'000'000'000, 9});
  EXPECT_EQ(cursor.Current().row, 5'999'999'999);
  EXPECT_EQ(cursor.Current().column, 3);
  cursor.MoveBy(INT64_MAX, INT32_MAX, false);
  EXPECT_EQ(cursor.Current().row, 5'999'999'999);
  cursor.MoveBy(INT64_MIN + 1, -INT32_MAX, false);
  EXPECT_EQ(cursor.Current().row, 0);
  EXPECT_EQ(cursor.Current().column, 0);
  cursor.SetSize(0, 4);
  EXPECT_FALSE(cursor.Current().IsValid());
  EXPECT_TRUE(cursor.Selected().IsEmpty());
}

TEST(TableCursor, ExtendsFromWhereTheSelectionBegan) {
  CTableCursor cursor;
  cursor.SetSize(100, 10);
  cursor.MoveTo({50, 5});
  cursor.MoveBy(3, 2, true);
  cursor.MoveBy(-6, -4, true);
  const TableRange range = cursor.Selected();
  EXPECT_EQ(range.rowBegin, 47);
  EXPECT_EQ(range.rowEnd, 51);
  EXPECT_EQ(range.columnBegin, 3);
  EXPECT_EQ(range.columnEnd, 6);
  EXPECT_TRUE(cursor.IsSelected(50, 5));
  EXPECT_FALSE(cursor.IsSelected(51, 5));
  cursor.MoveBy(0, 1, false);
  EXPECT_EQ(cursor.Selected().rowEnd - cursor.Selected().rowBegin, 1);
}

TEST(TableCursor, WidensToWholeRowsAndColumns) {
  CTableCursor cursor;
  cursor.SetSize(6'000'000'000, 10);
  cursor.MoveTo({10, 2}, false, CTableCursor::Shape::Rows);
  cursor.MoveTo({12, 2}, true, CTableCursor::Shape::Rows);
  EXPECT_TRUE(cursor.IsSelected(11, 9));
  EXPECT_FALSE(cursor.IsSelected(13, 0));
  cursor.MoveTo({10, 2}, false, CTableCursor::Shape::Columns);
  EXPECT_TRUE(cursor.IsSelected(5'999'999'999, 2));
  EXPECT_FALSE(cursor.IsSelected(10, 3));
  cursor.SelectAll();
  EXPECT_TRUE(cursor.IsSelected(5'999'999'999, 9));
  EXPECT_EQ(cursor.Current().row, 10) << "the current cell stays";
}

}  // namespace
