// Keys, mouse, wheel and scroll bar: all on absolute rows.
#include <QScrollBar>
#include <QWheelEvent>

#include <QtTest/QTest>
#include <gtest/gtest.h>

#include "dataview/table/FakeClient.h"

namespace {

constexpr std::int64_t kRows = 50'000'000;
constexpr int kColumns = 30;

struct Press {
  Qt::Key key;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

std::string CellOf(const CDataViewTbl& table) {
  const TableCell cell = table.GetCurrentCell();
  return std::to_string(cell.row) + "," + std::to_string(cell.column);
}

TEST(DataTableInput, MovesByKeysOverAllRows) {
  const struct {
    TableCell from;
    Press press;
    const char* want;
  } cases[] = {
      {{0, 0}, {Qt::Key_Down}, "1,0"},
      {{0, 0}, {Qt::Key_Up}, "0,0"},
      {{5, 5}, {Qt::Key_Left}, "5,4"},
      {{5, 29}, {Qt::Key_Right}, "5,29"},
      {{5, 5}, {Qt::Key_Home}, "5,0"},
      {{5, 5}, {Qt::Key_End}, "5,29"},
      {{5, 5}, {Qt::Key_End, Qt::ControlModifier}, "49999999,29"},
      {{40'000'000, 5}, {Qt::Key_Home, Qt::ControlModifier}, "0,0"},
      {{5, 5}, {Qt::Key_Down, Qt::ControlModifier}, "49999999,5"},
      {{5, 5}, {Qt::Key_Tab}, "5,6"},
      {{5, 5}, {Qt::Key_Return}, "6,5"},
      {{kRows - 1, 5}, {Qt::Key_Down}, "49999999,5"},
      {{kRows - 1, 5}, {Qt::Key_PageDown}, "49999999,5"},
  };
  ShownTable shown(kRows, kColumns);
  for (const auto& c : cases) {
    shown.table.SetCurrentCell(c.from);
    QTest::keyClick(&shown.Grid(), c.press.key, c.press.modifiers);
    EXPECT_EQ(CellOf(shown.table), c.want) << "key " << c.press.key << " from " << c.from.row;
    const std::int64_t first = shown.table.GetFirstVisibleRow();
    const std::int64_t row = shown.table.GetCurrentCell().row;
    EXPECT_TRUE(row >= first && row < first + shown.table.GetVisibleRowCount()) << row;
  }
}

TEST(DataTableInput, SlidesTheWindowARowAtATime) {
  ShownTable shown(kRows, kColumns);
  const int visible = shown.table.GetVisibleRowCount();
  shown.table.SetCurrentCell({visible - 1, 0});
  ASSERT_EQ(shown.table.GetFirstVisibleRow(), 0);
  for (int step = 1; step <= 5000; ++step) QTest::keyClick(&shown.Grid(), Qt::Key_Down);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 5000);
  EXPECT_EQ(shown.RowHeading(0), "5001");
  EXPECT_EQ(shown.Shown(0, 2), "50002");
  for (int step = 1; step < visible; ++step) QTest::keyClick(&shown.Grid(), Qt::Key_Up);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 5000);
  QTest::keyClick(&shown.Grid(), Qt::Key_Up);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 4999);
}

TEST(DataTableInput, TurnsPagesWithTheCellInItsPlace) {
  ShownTable shown(kRows, kColumns);
  const int visible = shown.table.GetVisibleRowCount();
  shown.table.SetCurrentCell({3, 1});
  QTest::keyClick(&shown.Grid(), Qt::Key_PageDown);
  QTest::keyClick(&shown.Grid(), Qt::Key_PageDown);
  EXPECT_EQ(shown.table.GetCurrentCell().row, 3 + 2 * visible);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 2 * visible);
  QTest::keyClick(&shown.Grid(), Qt::Key_PageUp);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), visible);
}

void TurnWheel(ShownTable& shown, int delta) {
  const QPointF at(50, 50);
  QWheelEvent event(at, shown.Grid().viewport()->mapToGlobal(at), {}, {0, delta}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(shown.Grid().viewport(), &event);
}

TEST(DataTableInput, KeepsTheCurrentCellWhileTheWheelScrolls) {
  ShownTable shown(kRows, kColumns);
  shown.table.SetCurrentCell({2, 3});
  TurnWheel(shown, -120 * 10);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 30);
  EXPECT_EQ(CellOf(shown.table), "2,3");
  TurnWheel(shown, -40);  // a third of a step, as a fine wheel sends
  TurnWheel(shown, -40);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 32);
  QTest::keyClick(&shown.Grid(), Qt::Key_Down);
  EXPECT_EQ(CellOf(shown.table), "3,3");
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 3) << "a key brings the cell back into sight";
}

TEST(DataTableInput, ScrollsByTheBarBeyondItsOwnCount) {
  constexpr std::int64_t kVeryMany = 6'000'000'000;
  ShownTable shown(kVeryMany, 2);
  auto* bar = shown.table.findChild<QScrollBar*>("caseScrollBar");
  bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), 1);
  bar->setSliderPosition(bar->maximum());
  const std::int64_t last = kVeryMany - shown.table.GetVisibleRowCount();
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), last);
  bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), last - 1);
}

TEST(DataTableInput, SelectsWithMouseAndHeadings) {
  ShownTable shown(kRows, kColumns);
  shown.table.ScrollToRow(1'000'000);
  const std::int64_t first = shown.table.GetFirstVisibleRow();
  CDataGrid& grid = shown.Grid();
  const auto center = [&](int row, int column) {
    return grid.visualRect(grid.model()->index(row, column)).center();
  };
  QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, center(2, 1));
  EXPECT_EQ(shown.table.GetCurrentCell().row, first + 2);
  QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::ShiftModifier, center(4, 3));
  EXPECT_TRUE(grid.Cursor().IsSelected(first + 3, 2));
  EXPECT_FALSE(grid.Cursor().IsSelected(first + 5, 2));

  QWidget* const side = grid.verticalHeader()->viewport();
  QTest::mouseClick(side, Qt::LeftButton, {}, {10, center(6, 0).y()});
  EXPECT_TRUE(grid.Cursor().IsSelected(first + 6, kColumns - 1));
  EXPECT_FALSE(grid.Cursor().IsSelected(first + 5, 0));

  QWidget* const top = grid.horizontalHeader()->viewport();
  QTest::mouseClick(top, Qt::LeftButton, {}, {center(0, 2).x(), 5});
  EXPECT_TRUE(grid.Cursor().IsSelected(kRows - 1, 2));
  EXPECT_EQ(shown.table.GetFirstVisibleRow(), first) << "choosing a column scrolls nothing";
}

TEST(DataTableInput, TellsWhichAreaAPointHits) {
  ShownTable shown(5, 2);
  TableCell cell;
  const QPoint corner(shown.Grid().verticalHeader()->width(),
                      shown.Grid().horizontalHeader()->height());
  EXPECT_EQ(shown.Grid().AreaAt(corner + QPoint(5, 5), cell), TableArea::Cell);
  EXPECT_EQ(cell.row, 0);
  EXPECT_EQ(shown.Grid().AreaAt({5, corner.y() + 5}, cell), TableArea::RowHeading);
  EXPECT_EQ(shown.Grid().AreaAt({corner.x() + 85, 5}, cell), TableArea::ColumnHeading);
  EXPECT_EQ(cell.column, 1);
  EXPECT_EQ(shown.Grid().AreaAt({5, 5}, cell), TableArea::None);
  EXPECT_EQ(shown.Grid().AreaAt({corner.x() + 5, 350}, cell), TableArea::None);
}

TEST(DataTableInput, ShowsAColumnThatIsMovedTo) {
  ShownTable shown(10, kColumns);
  for (const int column : {29, 0, 15}) {
    shown.table.SetCurrentCell({0, column});
    const QRect cell = shown.Grid().visualRect(shown.Grid().model()->index(0, column));
    EXPECT_GE(cell.left(), 0) << column;
    EXPECT_LE(cell.right(), shown.Grid().viewport()->width()) << column;
  }
}

}  // namespace
