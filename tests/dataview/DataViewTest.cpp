#include "datadoc/DocumentFixture.h"
#include "dataview/DataView.h"
#include "dataview/TableRecorder.h"

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
