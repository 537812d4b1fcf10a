#include <map>

#include "datadoc/DocumentFixture.h"
#include "dataview/DataView.h"

namespace {

// Remembers what the view told it.
class TableRecorder final : public CDataTable {
 public:
  struct Column {
    int width = 0;
    int alignment = -1;
    CString pattern;
    CString heading;
  };
  CDataTableClient* client = nullptr;
  std::vector<Column> columns;
  std::int64_t rows = -1;
  int rowHeadingWidth = 0;
  bool editable = false;
  int redraws = 0;

  void SetClient(CDataTableClient* newClient) override { client = newClient; }
  void SetColumnCount(int count) override { columns.assign(static_cast<std::size_t>(count), {}); }
  void SetRowCount(std::int64_t count) override { rows = count; }
  void SetColumnWidth(int column, int width) override { At(column).width = width; }
  void SetColumnAlignment(int column, int alignment) override { At(column).alignment = alignment; }
  void SetColumnPattern(int column, const CString& pattern) override {
    At(column).pattern = pattern;
  }
  void SetColumnHeading(int column, const CString& heading) override {
    At(column).heading = heading;
  }
  void SetRowHeadingWidth(int width) override { rowHeadingWidth = width; }
  void SetRowHeadingAlignment(int) override {}
  void SetEditable(bool on) override { editable = on; }
  TableCell GetCurrentCell() const override { return {}; }
  void SetCurrentCell(const TableCell&) override {}
  std::int64_t GetFirstVisibleRow() const override { return 0; }
  int GetVisibleRowCount() const override { return 0; }
  void ScrollToRow(std::int64_t) override {}
  void ScrollToColumn(int) override {}
  void Redraw() override { ++redraws; }

 private:
  Column& At(int column) { return columns.at(static_cast<std::size_t>(column)); }
};

}  // namespace

using DataView = DocumentTest;

TEST_F(DataView, TellsTheTableItsColumnsAndRows) {
  host.display = {10, 2, 0};
  TableRecorder table;  // outlives the view
  CDataDoc other;
  CDataView otherView(other);
  Fill(other, otherView, {{1, 2}, {3, 4}, {5, 6}});
  other.GetTorvik()->variable[1].name = " spaced  ";
  otherView.AttachTable(&table);
  EXPECT_EQ(table.client, &otherView);
  EXPECT_EQ(table.rows, 3);
  EXPECT_EQ(table.rowHeadingWidth, 40);
  EXPECT_TRUE(table.editable);
  ASSERT_EQ(table.columns.size(), 2U);
  EXPECT_EQ(table.columns[1].heading, "spaced");
  EXPECT_EQ(table.columns[1].width, 60);
  EXPECT_EQ(table.columns[1].alignment, 2);  // at creation, whatever the setting
  EXPECT_EQ(table.columns[1].pattern, "######0.##");
  EXPECT_EQ(otherView.GetHeadingPattern(), "b#######.##");
}

TEST_F(DataView, ShowsWhatLiesBelowTheMissingCodeAsIt) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  Fill({{-9.999e301, -999999, -999998.5, -1e6, kNan}, {1, 2, 3, 4, 5}});
  std::vector<double> row(5);
  ASSERT_TRUE(view.GetRow(0, row));
  EXPECT_EQ(std::vector<double>(row.begin(), row.begin() + 4),
            (std::vector<double>{-999999, -999999, -999998.5, -999999}));
  EXPECT_NE(row[4], row[4]);
  ASSERT_TRUE(view.GetRow(1, row));
  EXPECT_EQ(row, (std::vector<double>{1, 2, 3, 4, 5}));
  EXPECT_FALSE(view.GetRow(2, row));
  EXPECT_FALSE(view.GetRow(-1, row));
}

TEST_F(DataView, HeadsRowsByNumberAndMomentMatricesByName) {
  Fill({{1, 0}, {2, 3}, {4, 5}, {6, 7}, {8, 9}});
  EXPECT_EQ(view.GetRowHeading(4), "5");
  EXTERNDATA matrix;
  matrix.data_type = kDsfFile;
  document.SetExternData(matrix);
  const char* const headings[] = {"A", "B", "Mean", "Std.Dev", "5"};
  for (int row = 0; row < 5; ++row) EXPECT_EQ(view.GetRowHeading(row), headings[row]);
}

TEST_F(DataView, FollowsTheDocumentWhenItOpensAFile) {
  Fill({{1, 2}, {3, 4}});
  ASSERT_EQ(document.SaveVSFFile(folder / "two.VSF", kNewFormat), 1);
  TableRecorder table;
  CDataDoc other;
  CDataView otherView(other);
  otherView.AttachTable(&table);
  EXPECT_EQ(table.rows, 0);
  ASSERT_EQ(other.OnOpenDbmsDocument(folder / "two.VSF"), 1);
  EXPECT_EQ(table.rows, 2);
  EXPECT_EQ(table.columns.size(), 2U);
  otherView.AttachTable(nullptr);
  EXPECT_EQ(table.client, nullptr);
}

TEST_F(DataView, ShowsItsToolBarWhileItIsActive) {
  view.OnActivateView(true);
  EXPECT_TRUE(host.bars.at(CMainFrame::kDataToolBar));
  view.OnActivateView(false);
  EXPECT_FALSE(host.bars.at(CMainFrame::kDataToolBar));
}
