// Editing a cell in the grid, labels, zoom and the menu of a right click.
#include <QContextMenuEvent>
#include <QLineEdit>

#include <QtTest/QTest>
#include <gtest/gtest.h>

#include "dataview/table/FakeClient.h"

namespace {

// Remembers what was committed; takes whole numbers only.
class EditClient final : public CDataTableClient {
 public:
  bool GetRow(std::int64_t row, std::span<double> values) override {
    for (std::size_t c = 0; c < values.size(); ++c) values[c] = static_cast<double>(row) + 0.25;
    return true;
  }
  CString GetRowHeading(std::int64_t row) override { return std::to_string(row + 1); }
  CString GetCellText(const TableCell& cell) const override {
    return std::to_string(cell.row) + ".2500000000000001";
  }
  bool CommitCell(const TableCell& cell, const CString& text) override {
    if (text.empty() || text.find_first_not_of("-0123456789") != CString::npos) return false;
    committed += std::to_string(cell.row) + "," + std::to_string(cell.column) + "=" + text + ";";
    return true;
  }
  CString GetValueLabel(int column, double value) const override {
    return column == 1 && value == 2.25 ? "two" : "";
  }
  void OnRightClick(TableArea area) override {
    if (area != TableArea::None) menu = area == TableArea::ColumnHeading ? 2 : 0;
  }
  int OnMessage(std::string_view message) override {
    return message == "msgQueryMenuType" ? menu : -1;
  }

  CString committed;
  int menu = -1;
};

class EditTest : public testing::Test {
 protected:
  EditTest() {
    table.SetClient(&client);
    table.SetColumnCount(4);
    table.SetRowCount(1000);
    table.SetEditable(true);
    table.resize(600, 300);
    table.show();
    QApplication::setActiveWindow(&table);
    table.Grid().setFocus();
    ShownTable::Settle();
    table.SetCurrentCell({2, 1});
  }
  ~EditTest() override { table.SetClient(nullptr); }

  QLineEdit& Editor() { return *table.findChild<QLineEdit*>("cellEditor"); }
  std::string Current() {
    const TableCell cell = table.GetCurrentCell();
    return std::to_string(cell.row) + "," + std::to_string(cell.column);
  }

  EditClient client;
  CDataViewTbl table;
};

TEST_F(EditTest, OpensOnTheExactValueAndMovesOnAsItIsLeft) {
  const struct {
    Qt::Key open;
    const char* typed;
    Qt::Key leave;
    const char* committed;
    const char* current;
  } cases[] = {
      {Qt::Key_F2, "7", Qt::Key_Return, "2,1=7;", "3,1"},
      {Qt::Key_F2, "7", Qt::Key_Tab, "2,1=7;", "2,2"},
      {Qt::Key_F2, "7", Qt::Key_Backtab, "2,1=7;", "2,0"},
      {Qt::Key_F2, "7", Qt::Key_Up, "2,1=7;", "1,1"},
      {Qt::Key_F2, "7", Qt::Key_Escape, "", "2,1"},
      {Qt::Key_F2, "", Qt::Key_Return, "", "3,1"},  // left alone: nothing is written
      {Qt::Key_8, "9", Qt::Key_Right, "2,1=89;", "2,2"},
      {Qt::Key_Backspace, "5", Qt::Key_Down, "2,1=5;", "3,1"},
  };
  for (const auto& c : cases) {
    client.committed.clear();
    table.SetCurrentCell({2, 1});
    QTest::keyClick(&table.Grid(), c.open);
    ASSERT_TRUE(Editor().isVisible());
    if (c.open == Qt::Key_F2) {
      EXPECT_EQ(Editor().text(), "2.2500000000000001");
      EXPECT_EQ(Editor().selectedText(), Editor().text());
    }
    QTest::keyClicks(&Editor(), c.typed);
    QTest::keyClick(&Editor(), c.leave);
    EXPECT_FALSE(Editor().isVisible());
    EXPECT_EQ(client.committed, c.committed) << c.open << ' ' << c.leave;
    EXPECT_EQ(Current(), c.current) << c.open << ' ' << c.leave;
  }
}

TEST_F(EditTest, StaysOpenOnWhatIsNoValue) {
  int refused = 0;
  QObject::connect(&table, &CDataViewTbl::EditRefused, [&] { ++refused; });
  QTest::keyClick(&table.Grid(), Qt::Key_X);
  QTest::keyClick(&Editor(), Qt::Key_Return);
  EXPECT_TRUE(Editor().isVisible());
  EXPECT_EQ(refused, 1);
  QTest::keyClicks(&Editor(), "12");  // what was wrong is selected
  QTest::keyClick(&Editor(), Qt::Key_Return);
  EXPECT_EQ(client.committed, "2,1=12;");
}

TEST_F(EditTest, CommitsOnceWhenAnythingElseIsDone) {
  const std::function<void()> leave[] = {
      [&] { table.EndEdit(); },
      [&] {
        table.SetCurrentCell({9, 3});
      },
      [&] { table.Grid().SetFirstRow(500); },
      [&] { table.SetZoom(150); },
      [&] { table.ShowLabels(true); },
  };
  for (std::size_t i = 0; i < std::size(leave); ++i) {
    client.committed.clear();
    table.SetCurrentCell({2, 1});
    QTest::keyClick(&table.Grid(), Qt::Key_4);
    leave[i]();
    EXPECT_EQ(client.committed, "2,1=4;") << i;
    EXPECT_FALSE(Editor().isVisible()) << i;
  }
}

TEST_F(EditTest, OpensNothingWhereCellsCannotBeEdited) {
  table.SetEditable(false);
  QTest::keyClick(&table.Grid(), Qt::Key_F2);
  QTest::keyClick(&table.Grid(), Qt::Key_4);
  EXPECT_FALSE(Editor().isVisible());
}

TEST_F(EditTest, ShowsLabelsOnDemand) {
  CDataTableModel& model = table.Grid().Model();
  EXPECT_EQ(model.ShownText(2, 1), "2.25");
  table.ShowLabels(true);
  EXPECT_EQ(model.ShownText(2, 1), "two");
  EXPECT_EQ(model.ShownText(3, 1), "3.25") << "a value without a label";
}

TEST_F(EditTest, ZoomsWidthsAndRowsAndBackAgain) {
  table.Grid().horizontalHeader()->resizeSection(2, 131);
  const int row = table.Grid().verticalHeader()->defaultSectionSize();
  for (int i = 0; i < 5; ++i) table.SetZoom(table.Zoom() + 10);
  EXPECT_GT(table.Grid().verticalHeader()->defaultSectionSize(), row);
  EXPECT_NEAR(table.Grid().columnWidth(2), 131 * 3 / 2, 1);
  table.SetZoom(100);
  EXPECT_EQ(table.Grid().columnWidth(2), 131);
  EXPECT_EQ(table.Grid().columnWidth(0), 78);
  table.SetZoom(100000);
  EXPECT_EQ(table.Zoom(), 300);
}

TEST_F(EditTest, AsksForTheMenuThatTheClientAnswers) {
  std::vector<int> asked;
  QObject::connect(&table, &CDataViewTbl::ContextMenuAsked,
                   [&](int type, QPoint) { asked.push_back(type); });
  const auto click = [&](QPoint at) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, table.mapToGlobal(at));
    QApplication::sendEvent(&table, &event);
  };
  const QPoint outside(table.Grid().width() - 30, 280);
  click(outside);
  EXPECT_TRUE(asked.empty()) << "nothing was hit yet";
  const QPoint heading(table.Grid().verticalHeader()->width() + 100, 5);
  click(heading);
  click(outside);
  EXPECT_EQ(asked, (std::vector<int>{2, 2})) << "the last menu type is kept";
  EXPECT_TRUE(table.Grid().Cursor().IsSelected(900, 1)) << "the clicked column";
}

}  // namespace
