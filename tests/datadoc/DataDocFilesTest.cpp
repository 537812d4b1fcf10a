#include "datadoc/DocumentFixture.h"

using DataDocFiles = DocumentTest;

TEST_F(DataDocFiles, WithoutAViewNothingOpensOrSaves) {
  CDataDoc lone;
  EXPECT_EQ(lone.OnOpenDocument(folder / "any.VSF"), 0);
  EXPECT_EQ(lone.OnOpenDbmsDocument(folder / "any.VSF"), 0);
  EXPECT_EQ(lone.OnNewExternFile(), 0);
  lone.SetExtern(EXTERNDATA(), {}, 1, 1, false);
  EXPECT_EQ(lone.OnSaveDocument(folder / "any.VSF"), 0);
  EXPECT_TRUE(host.messages.empty());
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(DataDocFiles, OpeningTakesTheNameAndForgetsTheOldKind) {
  Fill({{1, 2}});
  document.GetTorvik()->format = kNewFormat;
  const CString name = folder / "data.VSF";
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_FALSE(document.IsModified());

  CDataDoc other;
  CDataView otherView(other);
  EXTERNDATA kind;
  kind.group = 7;
  kind.fullMatrix = 1;
  other.SetExternData(kind);
  ASSERT_EQ(other.OnOpenDocument(name), 1);
  EXPECT_EQ(other.GetExtern().group, 0);
  EXPECT_EQ(other.GetExtern().fullMatrix, 0);
  EXPECT_EQ(other.GetPathName(), name);
  EXPECT_FALSE(other.IsModified());
  EXPECT_EQ(host.recentFiles.back(), name);
}

TEST_F(DataDocFiles, AnUnknownKindReadsNothingAndShowsWhatWasThere) {
  Fill({{1, 2}});
  EXTERNDATA kind;
  kind.data_type = 3;
  document.SetExternData(kind);
  EXPECT_EQ(document.OnOpenDocument(folder / "absent"), 1);
  EXPECT_EQ(document.GetVarnum(), 2);
  EXPECT_EQ(Rows(), (std::vector<std::vector<double>>{{1, 2}}));
  document.SetModifiedFlag();
  EXPECT_EQ(document.OnSaveDocument(folder / "absent"), 0);
  EXPECT_TRUE(document.IsModified());
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(DataDocFiles, ANewDataSetIsFilledWithZeros) {
  EXTERNDATA source;
  source.formatStatement = "(2F4.1)";
  document.SetExtern(source, {{"a name that is too long", CString(40, 'd')}, {"b", ""}}, 3, 3,
                     true);
  EXPECT_EQ(Rows(), (std::vector<std::vector<double>>(3, {0, 0, 0})));
  const TORVIKSTRUCT& data = *document.GetTorvik();
  EXPECT_EQ(data.variable[0].name, "a name that is t");
  EXPECT_EQ(data.variable[0].description, CString(32, 'd'));
  EXPECT_EQ(data.variable[2].name, "VAR003");
  EXPECT_EQ(document.GetExtern().formatStatement, "");  // only a fixed format brings its statement
  EXPECT_TRUE(document.IsModified());

  source.fixedFormat = 1;
  document.SetExtern(source, {}, -3, -2, true);
  EXPECT_EQ(document.GetExtern().formatStatement, "(2F4.1)");
  EXPECT_EQ(document.GetRecnum(), 0);
  EXPECT_EQ(document.GetVarnum(), 0);
  EXPECT_TRUE(Rows().empty());
}

TEST_F(DataDocFiles, ANewDataSetLargerThanABlockIsFilledWhole) {
  document.SetExtern(EXTERNDATA(), {}, 70001, 3, true);
  std::FILE* const scratch = view.OpenScratchFile("rb");
  std::fseek(scratch, 0, SEEK_END);
  EXPECT_EQ(std::ftell(scratch), 70001L * 3 * 8);
}

TEST_F(DataDocFiles, ClosingRestoresTheFrameLayout) {
  document.OnCloseDocument();
  EXPECT_EQ(host.layoutsRestored, 1);
}

TEST_F(DataDocFiles, AStoppedOpenLeavesAnEmptyDocument) {
  Fill({{1, 2}});
  document.GetTorvik()->format = kNewFormat;
  ASSERT_EQ(document.OnSaveDocument(folder / "data.VSF"), 1);
  host.cancelAtStep = host.progressSteps;
  EXPECT_EQ(document.OnOpenDbmsDocument(folder / "data.VSF"), 0);
  EXPECT_TRUE(host.messages.empty());
  EXPECT_EQ(document.GetVarnum(), 0);
  EXPECT_EQ(document.GetRecnum(), 0);
}
