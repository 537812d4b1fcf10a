#include "datadoc/DocumentFixture.h"

using TextDump = DocumentTest;

TEST_F(TextDump, WritesSixteenCharactersACell) {
  Fill({{1234.5, -999999}, {1e-7, 123456789}});
  ASSERT_EQ(document.CopyDataToAscii(folder / "dump.txt"), 1);
  EXPECT_EQ(ReadBytes(folder / "dump.txt"),
            "         1234.5         -999999  \n"
            "          1E-07     1.23457E+08  \n");
}

TEST_F(TextDump, IsTheSameAcrossItsBlocks) {
  constexpr int kRecords = 150000;  // more than one block of cells, several of text
  std::vector<std::vector<double>> rows;
  for (int i = 0; i < kRecords; ++i) rows.push_back({static_cast<double>(i)});
  Fill(rows);
  ASSERT_EQ(document.CopyDataToAscii(folder / "dump.txt"), 1);
  const std::string text = ReadBytes(folder / "dump.txt");
  ASSERT_EQ(text.size(), kRecords * 18U);
  for (const int record : {0, 58253, 131071, 131072, kRecords - 1}) {
    char expected[32];
    std::snprintf(expected, sizeof expected, "%15.6G  \n", static_cast<double>(record));
    EXPECT_EQ(text.substr(static_cast<std::size_t>(record) * 18, 18), expected);
  }
}

TEST_F(TextDump, AFailureLeavesTheOldFile) {
  Fill({{1, 2}});
  WriteBytes(folder / "dump.txt", "old");
  host.cancelAtStep = host.progressSteps;
  EXPECT_EQ(document.CopyDataToAscii(folder / "dump.txt"), 0);
  EXPECT_TRUE(host.messages.empty());  // stopped by the user
  EXPECT_EQ(document.CopyDataToAscii(folder / "absent/dump.txt"), 0);
  EXPECT_EQ(host.LastMessage(), "Cannot write to file!");
  EXPECT_EQ(ReadBytes(folder / "dump.txt"), "old");
}
