#include "datadoc/DocumentFixture.h"

using CheckDeletion = DocumentTest;

TEST_F(CheckDeletion, DeletesWhatTheLinesName) {
  const struct {
    CStringList lines;
    int deleted;
    CString left;
  } cases[] = {
      {{}, 0, "ABCDE"},
      {{"SC 1 = 2", "sd 1", " SD 1"}, 0, "ABCDE"},
      {{"SD 2 4 x 5"}, 2, "ACE"},
      {{"SD 2 5 = 9"}, 2, "ACD"},
      {{"SD 1", "SD   3  1"}, 2, "BDE"},
      {{"SDX 1"}, 1, "BCDE"},
      {{"SD 0 6 99999999999999999999 3"}, 1, "ABDE"},
      {{"SD 5"}, 1, "ABCD"},
      {{"SD -1 2"}, 0, "ABCDE"},
      {{"SD 1 2 3 4 5"}, 5, ""},
  };
  for (const auto& c : cases) {
    Fill({{1, 2, 3, 4, 5}});
    document.GetTorvik()->variable[4].type = kContinuous;
    EXPECT_EQ(document.CheckDeletion(c.lines), c.deleted);
    CString left;
    for (int i = 0; i < document.GetVarnum(); ++i)
      left += document.GetTorvik()->variable[static_cast<std::size_t>(i)].name;
    EXPECT_EQ(left, c.left);
  }
}

TEST_F(CheckDeletion, LeavesCategorySlotsWhereTheyAre) {
  Fill({{1, 2, 3}});
  TORVIKSTRUCT& data = *document.GetTorvik();
  data.variable[1].categories = 2;
  data.categoryLabels[0] = "first";
  data.categoryLabels[15] = "second";
  ASSERT_EQ(document.CheckDeletion({"SD 1"}), 1);
  EXPECT_EQ(data.variable[0].categories, 2);
  EXPECT_EQ(data.categoryLabels[0], "first");
}
