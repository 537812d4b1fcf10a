#include <cstring>

#include "datadoc/DocumentFixture.h"
#include "datadoc/VsfLayout.h"
#include "support/VsfBytes.h"

using VsfFormat = DocumentTest;

// Both writers' bytes are told apart from the reader: every byte is compared with a file put
// together here.
TEST_F(VsfFormat, SavesByteForByte) {
  Fill({{1, -999999}, {2.5, 4}});
  TORVIKSTRUCT& data = *document.GetTorvik();
  data.settings = {1, -2, 3};
  data.groupVariable = 2;
  data.settingsBytes[15] = 0xAB;
  data.missing = {9, kUnset, kUnset, 1, 2, -999999};
  data.deletion = kPairwise;
  data.weightVariable = 1;
  data.variable[0] = {"sixteen_letters_",
                      "a description that is longer than its field",
                      kContinuous,
                      {8, kUnset, kUnset, 0, 1},
                      0};
  data.variable[1].categories = 1;
  data.categoryLabels[15] = "exactly8+";
  data.categoryLabels[29] = "spare";
  data.categoryValues[15] = -3;

  const struct {
    int kind;
    const char* word;
    const char* name;
    std::size_t width;
  } layouts[] = {{kOldFormat, "VEXMOR DATA SYSTEM FILE", "sixteen_", 8},
                 {kNewFormat, "VEXC16 DATA SYSTEM FILE", "sixteen_letters_", 16}};
  for (const auto& layout : layouts) {
    Bytes expected;
    expected.Text(layout.word, 32, ' ')
        .Int(1)
        .Int(-2)
        .Int(3)
        .Int(2)
        .Zeros(15)
        .Text("\xAB", 1)
        .Int(2)
        .Int(2);
    expected.Reals({9, kUnset, kUnset, 1, 2, -999999}).Int(1).Int(1);
    expected.Text(layout.name, layout.width).Text("a description that is longer tha", 32).Int(1);
    expected.Reals({8, kUnset, kUnset, 0, 1}).Int(0).Zeros(120 + 60);
    expected.Text("B", layout.width)
        .Zeros(32)
        .Int(0)
        .Reals({kUnset, kUnset, kUnset, kUnset, kUnset})
        .Int(1);
    expected.Text("exactly8", 8).Zeros(13 * 8).Text("spare", 8).Int(-3).Zeros(56);
    expected.Reals({1, -999999, 2.5, 4});

    ASSERT_EQ(document.SaveVSFFile(folder / "saved.VSF", layout.kind), 1);
    EXPECT_EQ(ReadBytes(folder / "saved.VSF"), expected.Get()) << layout.word;
    EXPECT_EQ(expected.Get().size(), 128 + 2 * (layout.width + 260) + 8 * 2 * 2);
  }
}

TEST_F(VsfFormat, OpensEveryHeaderWordWithEitherFiller) {
  const struct {
    const char* word;
    char filler;
    std::size_t width;
    int kind;
  } cases[] = {{"VEXMOR DATA SYSTEM FILE", ' ', 8, kOldFormat},
               {"TORVIK DATA SYSTEM FILE", ' ', 8, kOldFormat},
               {"VEXC16 DATA SYSTEM FILE", ' ', 16, kNewFormat},
               {"VEXC16 DATA SYSTEM FILE", '\0', 16, kNewFormat},
               {"VEXC16 DATA SYSTEM FILE", 'x', 16, kNewFormat}};
  for (const auto& c : cases) {
    WriteBytes(folder / "in.VSF", Bytes()
                                      .Add(VsfHead(c.word, c.filler, 2, 2))
                                      .Add(VsfVariable(std::string(c.width, 'n'), c.width))
                                      .Add(VsfVariable("b", c.width, ' '))
                                      .Reals({1, 2, 3, 4})
                                      .Get());
    ASSERT_EQ(document.OnOpenDbmsDocument(folder / "in.VSF"), 1) << c.word;
    EXPECT_EQ(document.GetTorvik()->format, c.kind);
    EXPECT_EQ(document.GetTorvik()->variable[0].name, std::string(c.width, 'n'));
    EXPECT_EQ(Rows(), (std::vector<std::vector<double>>{{1, 2}, {3, 4}}));
  }
}

TEST_F(VsfFormat, KeepsEverythingInARoundTripOfBothLayouts) {
  Fill({{1, 2}, {3, 4}, {5, 6}});
  TORVIKSTRUCT& data = *document.GetTorvik();
  data.settings = {7, 8, 9};
  data.settingsBytes.fill(3);
  data.groupVariable = 99;  // beyond the variables: kept all the same
  data.variable[0].description = "\xE4 description";
  data.variable[1].missing = {1, 2, 3, 4, 5};
  data.variable[1].categories = 15;
  for (int i = 0; i < 15; ++i) {
    data.categoryLabels[static_cast<std::size_t>(15 + i)] =
        std::string(static_cast<std::size_t>(i % 9), 'x');
    data.categoryValues[static_cast<std::size_t>(15 + i)] = i * i;
  }
  const TORVIKSTRUCT before = data;
  for (const int kind : {kOldFormat, kNewFormat}) {
    ASSERT_EQ(document.SaveVSFFile(folder / "trip.VSF", kind), 1);
    CDataDoc other;
    CDataView otherView(other);
    ASSERT_EQ(other.OnOpenDbmsDocument(folder / "trip.VSF"), 1);
    const TORVIKSTRUCT& after = *other.GetTorvik();
    EXPECT_EQ(after.settings, before.settings);
    EXPECT_EQ(after.settingsBytes, before.settingsBytes);
    EXPECT_EQ(after.groupVariable, 99);
    EXPECT_EQ(after.missing, before.missing);
    EXPECT_EQ(after.variable[0].description, before.variable[0].description);
    EXPECT_EQ(after.variable[1].missing, before.variable[1].missing);
    EXPECT_EQ(after.categoryLabels, before.categoryLabels);
    EXPECT_EQ(after.categoryValues, before.categoryValues);
    EXPECT_EQ(Rows(other, otherView), Rows());
  }
}

TEST_F(VsfFormat, AsksForTheLayoutUntilTheNewOneIsTaken) {
  Fill({{1}});
  host.answers = {MessageAnswer::No, MessageAnswer::Yes};
  const CString name = folder / "asked.VSF";
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(document.GetTorvik()->format, kOldFormat);
  EXPECT_EQ(host.messages[0].title, "Save VSF File");
  EXPECT_EQ(host.messages[0].text, "Do you want to save '" + name +
                                       "' in new format?\n\nNew format supports 16 character field "
                                       "data,\nbut not compatible to older "
                                       "version of VexWin.\n\nClick [Yes] to save in new "
                                       "format.\nClick [No] to save in old format.");
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(document.GetTorvik()->format, kNewFormat);
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  EXPECT_EQ(host.messages.size(), 2U);
  EXPECT_EQ(ReadBytes(name).substr(0, 24), "VEXC16 DATA SYSTEM FILE ");
}
