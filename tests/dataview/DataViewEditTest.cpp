#include <cmath>
#include <cstring>

#include "datadoc/DocumentFixture.h"
#include "dataview/CommandRules.h"
#include "dataview/TableRecorder.h"
#include "support/FileSizeLimit.h"

namespace {

using Cells = std::vector<std::vector<double>>;
constexpr const char* kNoWorkFile = "Unable to create temporary work file";

// Temporary files cannot be made while it lives.
class NoTempFolder {
 public:
  NoTempFolder() { setenv("TMPDIR", "/proc", 1); }
  ~NoTempFolder() { old_.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", old_.c_str(), 1); }

 private:
  CString old_ = getenv("TMPDIR") == nullptr ? "" : getenv("TMPDIR");
};

}  // namespace

class DataViewEdit : public DocumentTest {
 protected:
  void SetUp() override {
    Fill({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    view.AttachTable(&table);
    document.SetModifiedFlag(false);
  }
  void TearDown() override { view.AttachTable(nullptr); }

  TableRecorder table;
};

TEST_F(DataViewEdit, CommitsTheExactValue) {
  const struct {
    const char* text;
    bool good;
    double value;
    const char* again;  // what the editor opens on next
  } cases[] = {{"0.1", true, 0.1, "0.1"},
               {" -2e3 ", true, -2000, "-2000"},
               {"-1000000", true, -1000000, "-1000000"},
               {"", true, kMissingCode, "-999999"},
               {"-9.999e301", true, kNotSet, "-9.999e+301"},
               {"1,5", false, 0, ""},
               {"abc", false, 0, ""},
               {"0x10", false, 0, ""}};
  const TableCell cell{1, 2};
  for (const auto& c : cases) {
    const CString before = view.GetCellText(cell);
    document.SetModifiedFlag(false);
    EXPECT_EQ(view.CommitCell(cell, c.text), c.good) << c.text;
    EXPECT_EQ(view.GetCellText(cell), c.good ? c.again : before);
    EXPECT_EQ(document.IsModified(), c.good);
    if (!c.good) continue;
    EXPECT_EQ(Rows()[1][2], c.value);
  }
  EXPECT_EQ(view.GetCommittedCell().row, 1);
  EXPECT_EQ(table.current.column, 2);
  // A payload of a not-a-number survives an editor that was only opened.
  double odd = std::nan("0x123");
  ASSERT_TRUE(view.CommitValue(cell, odd));
  ASSERT_TRUE(view.CommitCell(cell, view.GetCellText(cell)));
  const double now = Rows()[1][2];
  EXPECT_EQ(std::memcmp(&now, &odd, sizeof now), 0);
}

TEST_F(DataViewEdit, CopiesAndPastesOneValue) {
  table.current = {0, 1};
  view.OnEditCopy();
  table.current = {2, 2};
  view.OnEditPaste();
  EXPECT_EQ(Rows(), (Cells{{1, 2, 3}, {4, 5, 6}, {7, 8, 2}}));
  document.SetModifiedFlag(false);
  table.current = {3, 0};
  view.OnEditPaste();
  EXPECT_FALSE(document.IsModified());
}

TEST_F(DataViewEdit, ChangesNothingInAMomentMatrixButTheMark) {
  EXTERNDATA matrix;
  matrix.data_type = kDsfFile;
  document.SetExternData(matrix);
  const Cells before = Rows();
  table.current = {0, 0};
  view.OnEditPaste();
  EXPECT_TRUE(document.IsModified());
  document.SetModifiedFlag(false);
  EXPECT_TRUE(view.CommitCell({1, 1}, "77"));
  EXPECT_TRUE(document.IsModified());
  EXPECT_TRUE(view.PasteBlock({0, 0}, "5").IsEmpty());
  EXPECT_FALSE(view.InsertCases(0, 1) || view.InsertVariables(0, 1) || view.DeleteCases(0, 1));
  EXPECT_FALSE(view.DeleteVariables({0}) || view.OnSortCases({0, 0}) ||
               view.ClearCells({0, 1, 0, 1}));
  EXPECT_EQ(Rows(), before);
}

TEST_F(DataViewEdit, PastesBlocksClippedToTheTable) {
  const struct {
    TableCell at;
    const char* text;
    Cells result;
  } cases[] = {
      {{0, 0}, "10\t11\n12\t13\n", {{10, 11, 3}, {12, 13, 6}, {7, 8, 9}}},
      {{1, 1}, "1\t2\t3\r\n\t-0.5\r\n9\t9", {{1, 2, 3}, {4, 1, 2}, {7, kMissingCode, -0.5}}},
      {{2, 0}, "1\r2\r3", {{1, 2, 3}, {4, 5, 6}, {1, 8, 9}}},
      {{0, 0}, "1\n2\t3", {{1, kMissingCode, 3}, {2, 3, 6}, {7, 8, 9}}},
      {{0, 0}, "", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
      {{3, 0}, "1", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
  };
  for (const auto& c : cases) {
    const bool changes = !view.PasteBlock(c.at, c.text).IsEmpty();
    EXPECT_EQ(Rows(), c.result) << c.text;
    EXPECT_EQ(view.Undo(), changes);
    EXPECT_EQ(Rows(), (Cells{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}));
  }
  EXPECT_TRUE(host.messages.empty());
  // Texts that are no numbers: asked about, and No is the answer here.
  EXPECT_TRUE(view.PasteBlock({0, 0}, "name\t1").IsEmpty());
  EXPECT_TRUE(host.LastMessage().starts_with("1 of 2 cells"));
  EXPECT_EQ(view.CopyBlock({1, 9, 1, 9}), "5\t6\n8\t9\n");
}

TEST_F(DataViewEdit, CopiedBlocksReadBackAsTheyWere) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Fill(
      {{0.1, 1e-300, kNotSet}, {-0.0, kInfinity, -kInfinity}, {1.0 / 3, 4503599627370497.5, 1e22}});
  const auto text = view.CopyBlock({0, 3, 0, 3});
  const Cells before = Rows();
  ASSERT_TRUE(text);
  ASSERT_TRUE(view.ClearCells({0, 3, 0, 3}));
  EXPECT_EQ(view.PasteBlock({0, 0}, *text).Cells(), 9);
  EXPECT_EQ(Rows(), before);
}

TEST_F(DataViewEdit, NamesInsertedVariablesFromTheOldNumberOn) {
  document.GetTorvik()->weightVariable = 1;
  document.GetTorvik()->groupVariable = 2;
  document.GetTorvik()->missing[kGlobalValue] = 99;
  ASSERT_TRUE(view.OnInsertVariables({2, false, false, 1}));
  CString names;
  for (const auto& column : table.columns) names += column.heading + " ";
  EXPECT_EQ(names, "A var4 var5 B C ");
  EXPECT_EQ(table.scrolledColumn, 1);
  EXPECT_EQ(Rows()[1], (std::vector<double>{4, 0, 0, 5, 6}));
  EXPECT_EQ(document.GetTorvik()->weightVariable, 1);
  EXPECT_EQ(document.GetTorvik()->groupVariable, 4);
  EXPECT_EQ(document.GetTorvik()->missing[kGlobalValue], kMissingCode);
  EXPECT_TRUE(document.IsModified());
  ASSERT_TRUE(view.Undo());
  EXPECT_EQ(document.GetTorvik()->missing[kGlobalValue], 99);
}

TEST_F(DataViewEdit, SavesWeightAndGroupAtOnce) {
  const CString name = folder / "choice.VSF";
  ASSERT_EQ(document.SaveVSFFile(name, kNewFormat), 1);
  document.GetTorvik()->format = kNewFormat;
  document.SetPathName(name);
  EXPECT_TRUE(view.ChooseWeightVariable(2));
  EXPECT_TRUE(view.ChooseGroupVariable(3));
  EXPECT_FALSE(document.IsModified());
  EXPECT_FALSE(view.ChooseGroupVariable(4));
  CDataDoc other;
  CDataView otherView(other);
  ASSERT_EQ(other.OnOpenDbmsDocument(name), 1);
  EXPECT_EQ(other.GetTorvik()->weightVariable, 2);
  EXPECT_EQ(other.GetTorvik()->groupVariable, 3);
  EXPECT_TRUE(view.Undo());
  EXPECT_TRUE(document.IsModified());  // the file has the choice, the data set no longer
  EXPECT_TRUE(view.Redo());
  EXPECT_FALSE(document.IsModified());
}

TEST_F(DataViewEdit, NeverSavesAChoiceOverATextFile) {
  const CString text = folder / "data.txt";
  WriteBytes(text, "1 2 3");
  EXTERNDATA kind;
  kind.data_type = kTextFile;
  document.SetExternData(kind);
  document.SetPathName(text);
  EXPECT_FALSE(view.ChooseWeightVariable(1));  // the dialog is cancelled
  EXPECT_EQ(document.GetTorvik()->weightVariable, 1);
  EXPECT_EQ(document.GetExternType(), kTextFile);
  EXPECT_TRUE(document.IsModified());
  host.choices.push_back(FileDialogChoice{folder / "new.VSF", 0});
  host.answers.push_back(MessageAnswer::Yes);
  EXPECT_TRUE(view.ChooseGroupVariable(1));
  EXPECT_EQ(document.GetPathName(), folder / "new.VSF");
  EXPECT_EQ(document.GetExternType(), kSystemDataFile);
  EXPECT_EQ(ReadBytes(text), "1 2 3");
}

TEST_F(DataViewEdit, TellsWhatASelectionWouldDo) {
  const auto effect = view.PreviewSelection({"SC CASE > 1", "SD 2 = 5", "OU XM"});
  ASSERT_TRUE(effect);
  EXPECT_EQ(effect->cases, 3);
  EXPECT_EQ(effect->removedCases, 2);
  EXPECT_EQ(effect->variables, (std::vector<std::int32_t>{1}));
  EXPECT_FALSE(view.PreviewSelection({"SD 1 2 3 = 5"}));
  EXPECT_FALSE(view.ApplySelection({"SC 1 ! 5"}));
  EXPECT_TRUE(host.LastMessage().starts_with("SC 1 ! 5: "));
  EXPECT_FALSE(document.IsModified());
  EXPECT_TRUE(view.ApplySelection({"SC CASE > 1", "SD 2 = 5"}));
  EXPECT_EQ(Rows(), (Cells{{7, 9}}));
}

TEST_F(DataViewEdit, FormatsEveryColumn) {
  view.ApplyFormat({3, 4, 1});
  EXPECT_EQ(host.display.width, 5);
  EXPECT_EQ(view.GetCellPattern(), "0.####");
  EXPECT_EQ(view.GetHeadingPattern(), "#.####");  // without the letter that it begins with at first
  for (const auto& column : table.columns) {
    EXPECT_EQ(column.width, 30);
    EXPECT_EQ(column.alignment, 1);
    EXPECT_EQ(column.pattern, "0.####");
  }
}

TEST_F(DataViewEdit, KnowsWhenItIsAsItWasSaved) {
  document.SetPathName(folder / "saved.VSF");
  host.answers.push_back(MessageAnswer::Yes);
  ASSERT_TRUE(view.CommitCell({0, 0}, "5"));
  ASSERT_EQ(document.OnFileSave(), 1);
  ASSERT_TRUE(view.CommitCell({0, 0}, "6"));
  ASSERT_TRUE(view.Undo());
  EXPECT_FALSE(document.IsModified());
  ASSERT_TRUE(view.Undo());
  EXPECT_TRUE(document.IsModified());
  // The saved state lies on a branch that is gone.
  ASSERT_TRUE(view.CommitCell({0, 0}, "7"));
  EXPECT_TRUE(view.Undo() && document.IsModified());
  EXPECT_TRUE(view.Redo() && document.IsModified());
}

TEST_F(DataViewEdit, FindsRoundTheTable) {
  Fill({{1, 2, 3}, {2, -999999, 2}, {7, 8, 2}});
  const auto find = [&](FindRequest request) {
    TableCell cell;
    const FindResult result = view.FindValue(request, cell);
    return result == FindResult::Found ? cell.row * 10 + cell.column : -1;
  };
  const struct {
    FindRequest request;
    std::int64_t found;  // row and column as digits
  } cases[] = {{{2, 2, false, false, -1, {}}, 1},        {{2, 2, false, false, -1, {0, 1}}, 10},
               {{2, 2, false, false, -1, {2, 2}}, 1},    {{2, 2, false, true, -1, {}}, 22},
               {{2, 2, false, true, -1, {0, 1}}, 22},    {{2, 2, false, true, -1, {1, 0}}, 1},
               {{2, 2, false, false, 2, {0, 1}}, 12},    {{2, 2, false, true, 2, {1, 2}}, 22},
               {{3, 3, false, false, -1, {0, 2}}, 2},  // the only one is where it starts
               {{6.5, 7.5, false, false, -1, {}}, 20},   {{0, 0, true, false, -1, {}}, 11},
               {{99, 99, false, false, -1, {1, 1}}, -1}, {{2, 2, false, false, 5, {}}, -1}};
  for (const auto& c : cases) EXPECT_EQ(find(c.request), c.found) << &c - cases;
}

TEST_F(DataViewEdit, FindsAndCountsAcrossBlocks) {
  Cells rows;
  for (int i = 0; i < 20000; ++i) rows.push_back({double(i), 1.0, i % 10 == 0 ? -999999.0 : 2.0});
  Fill(rows);
  for (const double value : {0.0, 5461.0, 5462.0, 19999.0}) {
    for (const bool backward : {false, true}) {
      TableCell cell;
      ASSERT_EQ(view.FindValue({value, value, false, backward, -1, {10000, 1}}, cell),
                FindResult::Found);
      EXPECT_EQ(cell.row, value);
      EXPECT_EQ(cell.column, 0);
    }
  }
  const auto whole = view.GetStatistics({0, 20000, 0, 3});
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->values, 58000);
  EXPECT_EQ(whole->missing, 2000);
  EXPECT_DOUBLE_EQ(whole->mean, (19999.0 * 10000 + 20000 + 36000) / 58000);
  EXPECT_EQ(whole->minimum, 0);
  EXPECT_EQ(whole->maximum, 19999);
  EXPECT_EQ(view.GetStatistics({10, 11, 2, 3})->values, 0);
  EXPECT_FALSE(view.GetStatistics({0, 20000, 0, 3}, [] { return false; }));
}

TEST_F(DataViewEdit, CommandsFollowWhatTheDocumentHolds) {
  using namespace datacommands;
  const DataWindowState full{3, 5, true, true, true, false, false};
  DataWindowState empty{0, 0, true, false, false, false, false};
  DataWindowState matrix = full;
  matrix.rawData = false;
  DataWindowState continuous = full;
  continuous.hasOrdinal = false;
  DataWindowState noCases = full;
  noCases.cases = 0;
  constexpr int kRegression = 9242;
  const struct {
    int command;
    bool full, empty, matrix, continuous, noCases;
  } rules[] = {{kDefineVariables, true, true, false, true, true},
               {kInsertVariable, true, true, false, true, true},
               {kInsertCase, true, false, false, true, true},
               {kDeleteCase, true, false, false, true, false},
               {kSort, true, false, false, true, false},
               {kWeight, true, false, false, true, true},
               {kRegression, true, false, false, true, true},
               {kHomogeneityTest, true, false, false, false, true},
               {kEqualThresholds, true, false, false, false, true},
               {kFixThresholds, true, false, false, false, true},
               {kCopy, true, false, true, true, true},
               {kPaste, true, false, false, true, true}};
  for (const auto& rule : rules) {
    EXPECT_EQ(IsCommandEnabled(rule.command, full), rule.full) << rule.command;
    EXPECT_EQ(IsCommandEnabled(rule.command, empty), rule.empty) << rule.command;
    EXPECT_EQ(IsCommandEnabled(rule.command, matrix), rule.matrix) << rule.command;
    EXPECT_EQ(IsCommandEnabled(rule.command, continuous), rule.continuous) << rule.command;
    EXPECT_EQ(IsCommandEnabled(rule.command, noCases), rule.noCases) << rule.command;
  }
}

// The operations that need room, each refused or stopped in its middle.
class DataViewFault : public DataViewEdit {
 protected:
  using Operation = std::function<bool()>;
  struct Named {
    const char* name;
    Operation run;
  };

  void SetUp() override {
    DataViewEdit::SetUp();
    Cells rows;
    for (int i = 0; i < 4000; ++i) rows.push_back({double(i % 7), double(i), 3});
    Fill(rows);
    document.GetTorvik()->weightVariable = 3;
    ASSERT_TRUE(view.CommitCell({0, 0}, "5"));
    document.SetModifiedFlag(false);
    before_ = Rows();
  }

  std::vector<Named> Operations() {
    return {{"insert cases", [&] { return view.InsertCases(10, 3000); }},
            {"append cases", [&] { return view.AppendCases(3000); }},
            {"insert variables", [&] { return view.InsertVariables(1, 2); }},
            {"define", [&] { return DefineMore(); }},
            {"delete cases", [&] { return view.DeleteCases(10, 20); }},
            {"delete variables", [&] { return view.DeleteVariables({0}); }},
            {"sort",
             [&] {
               return view.OnSortCases({0, kSortDescending});
             }},
            {"select", [&] { return view.ApplySelection({"SD 2 < 10"}); }}};
  }

  bool DefineMore() {
    std::int32_t capacity = 0;
    const auto copy = document.GetTorvikCopy(capacity, 5);
    copy->variable[0].name = "renamed";
    return view.UpdateDefinition(*copy);
  }

  void ExpectUnchanged(const char* what) {
    EXPECT_EQ(document.GetVarnum(), 3) << what;
    EXPECT_EQ(document.GetRecnum(), 4000) << what;
    EXPECT_EQ(document.GetTorvik()->variable[0].name, "A") << what;
    EXPECT_EQ(document.GetTorvik()->weightVariable, 3) << what;
    EXPECT_FALSE(document.IsModified()) << what;
    EXPECT_TRUE(Rows() == before_) << what;
    EXPECT_EQ(view.UndoText(), "Change Cells") << what;
  }

  Cells before_;
};

TEST_F(DataViewFault, NoRoomForATemporaryFileLeavesAllAsItWas) {
  for (const Named& operation : Operations()) {
    if (CString(operation.name) == "append cases") continue;  // needs none
    if (CString(operation.name) == "sort") continue;          // sorts beside the file
    {
      const NoTempFolder none;
      EXPECT_FALSE(operation.run()) << operation.name;
    }
    EXPECT_EQ(host.LastMessage(), kNoWorkFile) << operation.name;
    ExpectUnchanged(operation.name);
    host.messages.clear();
  }
}

TEST_F(DataViewFault, AFullDiskInTheMiddleLeavesAllAsItWas) {
  for (const Named& operation : Operations()) {
    {
      const FileSizeLimit full(50000);
      EXPECT_FALSE(operation.run()) << operation.name;
    }
    EXPECT_EQ(host.LastMessage(), kNoWorkFile) << operation.name;
    ExpectUnchanged(operation.name);
    host.messages.clear();
  }
}

TEST_F(DataViewFault, AStopLeavesAllAsItWas) {
  for (const Named& operation : Operations()) {
    if (CString(operation.name) == "append cases") continue;  // takes no time
    host.cancelAtStep = host.progressSteps;
    EXPECT_FALSE(operation.run()) << operation.name;
    ExpectUnchanged(operation.name);
  }
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(DataViewFault, ARemovedScratchFileCanStillBeReadAndSaved) {
  std::filesystem::remove(view.GetScratchFileName());
  for (const Named& operation : Operations()) {
    EXPECT_FALSE(operation.run()) << operation.name;
    EXPECT_EQ(host.LastMessage(), kNoWorkFile) << operation.name;
    ExpectUnchanged(operation.name);
    host.messages.clear();
  }
  EXPECT_TRUE(view.CommitCell({1, 1}, "42"));
  EXPECT_TRUE(view.Undo());
  ASSERT_EQ(document.SaveVSFFile(folder / "rescued.VSF", kNewFormat), 1);
  EXPECT_EQ(ReadBytes(folder / "rescued.VSF").size(), 128U + 3 * 276 + 4000 * 24);
}

TEST_F(DataViewFault, WithoutRoomToKeepItAChangeIsMadeAndToldToBeFinal) {
  const FileSizeLimit full(50000);
  EXPECT_TRUE(view.DeleteCases(0, 3900));
  EXPECT_EQ(document.GetRecnum(), 100);
  EXPECT_FALSE(view.CanUndo());
  EXPECT_TRUE(host.statusTexts.back().ends_with("cannot be undone."));
}

TEST_F(DataViewFault, AFailedUndoCanBeTriedAgain) {
  ASSERT_TRUE(view.DeleteVariables({1}));
  {
    const NoTempFolder none;
    EXPECT_FALSE(view.Undo());
  }
  EXPECT_EQ(host.LastMessage(), kNoWorkFile);
  EXPECT_EQ(document.GetVarnum(), 2);
  ASSERT_TRUE(view.Undo());
  EXPECT_TRUE(Rows() == before_);
}
