// What the program remembers, and how it fills file dialogs.
#include <QSettings>

#include <gtest/gtest.h>

#include "vexapp/AppUtil.h"
#include "vexapp/FileDialogs.h"
#include "vexapp/RecentFiles.h"

namespace {

TEST(RecentFiles, KeepTheLastNineInOrder) {
  CRecentFiles files;
  files.Clear();
  for (int i = 1; i <= 12; ++i) files.Add(QString("/data/%1.VSF").arg(i), {});
  ASSERT_EQ(files.Files().size(), 9U);
  EXPECT_EQ(files.Files().front().path, "/data/12.VSF");
  EXPECT_EQ(files.Files().back().path, "/data/4.VSF");
  files.Add("/data/7.VSF", {});
  EXPECT_EQ(files.Files().size(), 9U) << "a file stands once";
  EXPECT_EQ(files.Files().front().path, "/data/7.VSF");
  files.Remove("/data/12.VSF");
  EXPECT_EQ(files.Find("/data/12.VSF"), nullptr);
}

TEST(RecentFiles, RememberTheKindUntilTheNextStart) {
  EXTERNDATA kind;
  kind.data_type = kTextFile;
  kind.ma_type = 2;
  kind.matrixPosition = 1;
  kind.secondVectorPosition = 3;
  kind.fixedFormat = 1;
  kind.fullMatrix = 1;
  kind.group = 4;
  kind.formatStatement = "(2F8.3,5X,\xe9)";
  {
    CRecentFiles files;
    files.Clear();
    files.Add("/data/a, b;c.dat", kind);
  }
  const CRecentFiles again;
  const RECENTFILE* file = again.Find("/data/a, b;c.dat");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->kind.data_type, kTextFile);
  EXPECT_EQ(file->kind.ma_type, 2);
  EXPECT_EQ(file->kind.matrixPosition, 1);
  EXPECT_EQ(file->kind.firstVectorPosition, 0);
  EXPECT_EQ(file->kind.secondVectorPosition, 3);
  EXPECT_EQ(file->kind.fixedFormat, 1);
  EXPECT_EQ(file->kind.fullMatrix, 1);
  EXPECT_EQ(file->kind.group, 4);
  EXPECT_EQ(file->kind.formatStatement, "(2F8.3,5X,\xe9)");
}

TEST(DisplaySettings, ComeBackAndAreKeptWithinBounds) {
  CAppUtil util;
  util.SetDisplaySettings({9, 2, 0});
  EXPECT_EQ(CAppUtil().GetDisplaySettings().width, 9);
  EXPECT_EQ(CAppUtil().GetDisplaySettings().decimals, 2);
  EXPECT_EQ(CAppUtil().GetDisplaySettings().alignment, 0);
  util.SetDisplaySettings({1 << 30, -5, 77});
  EXPECT_LE(util.GetDisplaySettings().width, 1000);
  EXPECT_GE(util.GetDisplaySettings().decimals, 0);
  EXPECT_LE(util.GetDisplaySettings().alignment, 2);
  QSettings().remove("display");
  EXPECT_EQ(util.GetDisplaySettings().width, 13);
}

TEST(FileDialogs, OfferPatternsInBothCases) {
  const std::vector<FileDialogRow> rows = {
      {"SPSS Data File (*.sav)", "*.sav", "sav"},
      {"VEXMOR Data (*.VSF)", "*.VSF", "VSF"},
      {"Lotus 1-2-3 (*.wk*;*.wr*)", "*.wk*;*.wr*", ".wk3"},
      {"S-Plus (*.ssc )", "*.ssc ", "ssc "},
      {"All Files (*.*)", "*.*", ""},
  };
  const QStringList wanted = {
      "SPSS Data File (*.sav) (*.sav *.SAV)",
      "VEXMOR Data (*.VSF) (*.VSF *.vsf)",
      "Lotus 1-2-3 (*.wk*;*.wr*) (*.wk* *.WK* *.wr* *.WR*)",
      "S-Plus (*.ssc ) (*.ssc *.SSC)",
      "All Files (*.*) (*)",
  };
  EXPECT_EQ(NameFilters(rows), wanted);
}

TEST(FileDialogs, FollowTheRequest) {
  FileDialogRequest request;
  request.rows = {{"A (*.a)", "*.a", "a"}, {"B (*.b)", "*.b", "b"}};
  request.selectedRow = 1;
  request.folder = "/";
  const auto open = MakeFileDialog(request, nullptr);
  EXPECT_EQ(open->fileMode(), QFileDialog::ExistingFile);
  EXPECT_EQ(open->acceptMode(), QFileDialog::AcceptOpen);
  EXPECT_EQ(RowOfFilter(request.rows, open->selectedNameFilter()), 1);
  EXPECT_EQ(RowOfFilter(request.rows, open->nameFilters().at(1)), 1);
  EXPECT_EQ(open->directory().path(), "/");

  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.fileName = "survey.VSF";
  const auto save = MakeFileDialog(request, nullptr);
  EXPECT_EQ(save->fileMode(), QFileDialog::AnyFile);
  EXPECT_EQ(save->selectedFiles().value(0), "/survey.b");
}

}  // namespace
