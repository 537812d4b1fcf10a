// DSF files written by hand from their layout.
#include "datadoc/DocumentFixture.h"
#include "support/VsfBytes.h"

namespace {

using Table = std::vector<std::vector<double>>;

std::string Group(const std::vector<std::string>& names, const std::vector<double>& numbers,
                  std::size_t nameBytes = 16) {
  Bytes bytes;
  for (const auto& name : names) bytes.Text(name, nameBytes);
  return bytes.Reals(numbers).Get();
}

std::string Head(std::int32_t variables) {
  return Bytes().Text("VEXMOR SYSTEM DATA FILE", 64, ' ').Int(77).Int(variables).Get();
}

class DsfFile : public DocumentTest {
 protected:
  int Open(const std::string& bytes, int group = 0) {
    WriteBytes(name, bytes);
    EXTERNDATA kind;
    kind.data_type = kDsfFile;
    kind.group = group;
    document.SetExternData(kind);
    return document.OnOpenDocument(name);
  }
  void SetCell(int row, int column, double value) {
    std::FILE* const scratch = view.OpenScratchFile("r+b");
    std::fseek(scratch, (row * document.GetVarnum() + column) * 8, SEEK_SET);
    std::fwrite(&value, 8, 1, scratch);
    view.ReopenFile();
  }
  const CString name = folder / "data.DSF";
  const std::string three =
      Head(3) + Group({"x", "y", "sixteen letters!"}, {1, 2, 3, 4, 5, 6, 7, 8, 9});
};

TEST_F(DsfFile, ReadsTheTriangleAndTheLastRow) {
  ASSERT_EQ(Open(three), 1);
  EXPECT_EQ(Rows(), (Table{{1, 0, 0}, {2, 3, 0}, {4, 5, 6}, {7, 8, 9}}));
  EXPECT_EQ(document.GetRecnum(), 4);
  EXPECT_EQ(document.GetTorvik()->variable[2].name, "sixteen letters!");
  EXPECT_EQ(view.GetRowHeading(1), "y");
  EXPECT_EQ(view.GetRowHeading(3), "Mean");
  EXPECT_FALSE(document.HoldsRawData());

  // The old layout has names of 8 bytes.
  document.GetTorvik()->format = kOldFormat;
  ASSERT_EQ(Open(Head(2) + Group({"x", "eight ch"}, {1, 2, 3, 4, 5}, 8)), 1);
  EXPECT_EQ(Rows(), (Table{{1, 0}, {2, 3}, {4, 5}}));
  EXPECT_EQ(document.GetTorvik()->variable[1].name, "eight ch");
}

TEST_F(DsfFile, SavesInPlaceAndLeavesTheCountField) {
  ASSERT_EQ(Open("SOME OTHER HEADER" + three.substr(17)), 1);
  SetCell(1, 0, 2.5);
  SetCell(0, 2, 99);  // above the diagonal: not part of the file
  document.GetTorvik()->variable[0].name = "new";
  document.SetModifiedFlag();
  ASSERT_EQ(document.OnSaveDocument(name), 1) << host.LastMessage();
  EXPECT_FALSE(document.IsModified());
  EXPECT_EQ(ReadBytes(name),
            Head(3) + Group({"new", "y", "sixteen letters!"}, {1, 2.5, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(folder.FileCount(), 1U);
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(DsfFile, AMatrixLargerThanABlock) {
  constexpr int kVariables = 600;
  std::vector<double> numbers(kVariables * (kVariables + 1) / 2 + kVariables);
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<double>(i);
  const std::string bytes =
      Head(kVariables) + Group(std::vector<std::string>(kVariables, "v"), numbers);
  ASSERT_EQ(Open(bytes), 1);
  const Table rows = Rows();
  EXPECT_EQ(rows[599][599], 600 * 601 / 2 - 1);
  EXPECT_EQ(rows[599][598], rows[599][599] - 1);
  EXPECT_EQ(rows[300][301], 0);
  EXPECT_EQ(rows[600][0], 600 * 601 / 2);
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(ReadBytes(name), bytes);
}

// Groups are read and written with strides of their own: the second is written 64 bytes before the
// place where it is read.
TEST_F(DsfFile, KeepsTheOldFileWhereASaveChangesOtherGroups) {
  constexpr std::size_t kStride = (3 + 4) * 8;
  std::string bytes = Head(2) + Group({"a", "b"}, {1, 2, 3, 4, 5});
  bytes.resize(72 + kStride + 140, '-');
  bytes += Group({"c", "d"}, {6, 7, 8, 9, 10}) + std::string(200, '-');
  ASSERT_EQ(Open(bytes, 1), 1) << host.LastMessage();
  EXPECT_EQ(Rows(), (Table{{6, 0}, {7, 8}, {9, 10}}));
  WriteBytes(name + "~", "an older one");
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(ReadBytes(name + "~"), "an older one");
  EXPECT_EQ(ReadBytes(name + "~1"), bytes);
  EXPECT_NE(host.LastMessage().find("data.DSF~1"), CString::npos);
  const std::string saved = ReadBytes(name);
  EXPECT_EQ(saved.size(), bytes.size());
  EXPECT_EQ(saved.substr(kStride + 76, 23), "VEXMOR SYSTEM DATA FILE");
  EXPECT_EQ(saved.substr(kStride + 76 + 72, 72), Group({"c", "d"}, {6, 7, 8, 9, 10}));
  EXPECT_EQ(saved.substr(0, kStride + 76), bytes.substr(0, kStride + 76));
}

TEST_F(DsfFile, RefusesWhatIsNone) {
  const struct {
    const char* what;
    std::string bytes;
    int group;
    const char* message;
  } cases[] = {
      {"no variables", Head(0) + std::string(500, 'x'), 0, "0 variable(s)"},
      {"fewer than none", Head(-3) + std::string(500, 'x'), 0, "-3 variable(s)"},
      {"more than fit", Head(2147483647) + std::string(500, 'x'), 0, "2147483647 variable(s)"},
      {"a text", "not a DSF file at all", 0, "no DSF file"},
      {"nothing", "", 0, "no DSF file"},
      {"cut short", three.substr(0, three.size() - 1), 0, "no group 1"},
      {"a group too far", three, 1, "no group 2"},
      {"a group much too far", three, 2147483647, "no group 2147483648"},
      {"a group before the first", three, -1, "no group 0"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(Open(test.bytes, test.group), 0) << test.what;
    EXPECT_NE(host.LastMessage().find(test.message), CString::npos)
        << test.what << ": " << host.LastMessage();
  }
  EXTERNDATA kind;
  kind.data_type = kDsfFile;
  document.SetExternData(kind);
  EXPECT_EQ(document.OnOpenDocument(folder / "absent.DSF"), 0);
  EXPECT_EQ(host.LastMessage(), "The file does not exist!");
}

TEST_F(DsfFile, SavesOnlyIntoAFileOfItsKind) {
  ASSERT_EQ(Open(three), 1);
  EXPECT_EQ(document.OnSaveDocument(folder / "new.DSF"), 0);
  EXPECT_EQ(host.LastMessage(), "The file does not exist!");
  const std::string two = Head(2) + Group({"a", "b"}, {1, 2, 3, 4, 5});
  WriteBytes(folder / "two.DSF", two);
  EXPECT_EQ(document.OnSaveDocument(folder / "two.DSF"), 0);
  EXPECT_NE(host.LastMessage().find("2 variable(s), the data set has 3"), CString::npos);
  EXPECT_EQ(ReadBytes(folder / "two.DSF"), two);
  host.cancelAtStep = host.progressSteps;
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  EXPECT_EQ(ReadBytes(name), three);
  EXPECT_EQ(folder.FileCount(), 2U);

  // A matrix document goes into text, and from there into a DSF file.
  host.cancelAtStep = -1;
  host.choices.push_back(FileDialogChoice{folder / "m", 1});
  ASSERT_EQ(document.OnFileSaveAs(), 1) << host.LastMessage();
  EXPECT_EQ(ReadBytes(folder / "m.DAT").substr(0, 28), "1.000000 \n2.000000 3.000000 ");
  SetCell(0, 0, 11);
  host.choices.push_back(FileDialogChoice{name, 1});
  ASSERT_EQ(document.OnFileSaveAs(), 1) << host.LastMessage();
  EXPECT_EQ(ReadBytes(name),
            Head(3) + Group({"x", "y", "sixteen letters!"}, {11, 2, 3, 4, 5, 6, 7, 8, 9}));
}

}  // namespace
