#include <filesystem>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "engine/run/OutputFiles.h"
#include "support/TempFolder.h"

namespace {

class OutputFilesTest : public testing::Test {
 protected:
  void SetUp() override {
    WriteBytes(folder / "data", "data");
    std::filesystem::create_symlink(folder / "data", folder / "link");
    std::filesystem::create_hard_link(folder / "data", folder / "hard");
    std::filesystem::create_symlink(folder / "new", folder / "dangling");
    std::filesystem::create_directory(folder / "sub");
  }
  TempFolder folder;
};

TEST_F(OutputFilesTest, RefuseTwoNamesOfOneFile) {
  struct {
    const char* first;  // an input when it is "data"
    const char* second;
    bool allowed;
  } const cases[] = {
      {"data", "data", false},        {"data", "link", false},    {"data", "hard", false},
      {"data", "sub/../data", false}, {"new", "new", false},      {"new", "./new", false},
      {"new", "sub/../new", false},   {"dangling", "new", false}, {"new", "new2", true},
      {"new", "sub/new", true},       {"data", "new", true},
  };
  for (const auto& c : cases) {
    COutputFiles files;
    if (std::string(c.first) == "data") {
      files.AddInput("the data file", folder / c.first);
    } else {
      files.AddOutput("SM", folder / c.first);
    }
    files.AddOutput("ME", folder / c.second);
    FAULT fault;
    EXPECT_EQ(files.Create(fault), c.allowed) << c.first << ' ' << c.second;
    if (!c.allowed) {
      EXPECT_THAT(fault.cause, testing::HasSubstr("is the same as")) << fault.cause;
    }
  }
  EXPECT_EQ(ReadBytes(folder / "data"), "data");
  EXPECT_FALSE(std::filesystem::exists(folder / "new"));
}

TEST_F(OutputFilesTest, LeaveNothingBehindWithoutCommit) {
  const std::size_t before = folder.FileCount();
  WriteBytes(folder / "old", "old");
  {
    COutputFiles files;
    files.AddOutput("SM", folder / "new");
    files.AddOutput("ME", folder / "old");
    FAULT fault;
    ASSERT_TRUE(files.Create(fault));
    files.Find("SM")->Write(std::string(3 << 20, 'x'));
    files.Find("ME")->Write("new");
  }
  EXPECT_EQ(folder.FileCount(), before + 1);
  EXPECT_EQ(ReadBytes(folder / "old"), "old");
}

TEST_F(OutputFilesTest, PutEverythingInPlaceOnCommit) {
  COutputFiles files;
  files.AddOutput("SM", folder / "new");
  files.AddOutput("RA", folder / "large");
  files.AddOutput("ME", "");
  FAULT fault;
  ASSERT_TRUE(files.Create(fault));
  EXPECT_EQ(files.Find("ME"), nullptr);
  files.Find("SM")->Write("abc");
  files.Find("SM")->Write("def");
  const std::string large(5 << 20, 'x');
  files.Find("RA")->Write(large);
  files.Find("RA")->WriteAtStart("y", 1);
  ASSERT_TRUE(files.Commit(fault)) << fault.cause;
  EXPECT_EQ(ReadBytes(folder / "new"), "abcdef");
  EXPECT_EQ(ReadBytes(folder / "large"), "y" + large.substr(1));
}

TEST_F(OutputFilesTest, SayWhichFileCannotBeWritten) {
  WriteBytes(folder / "locked", "");
  chmod((folder / "locked").c_str(), 0444);
  for (const char* name : {"none/new", "sub", "locked"}) {
    COutputFiles files;
    files.AddOutput("SM", folder / "new");
    files.AddOutput("ME", folder / name);
    FAULT fault;
    EXPECT_FALSE(files.Create(fault)) << name;
    EXPECT_THAT(fault.cause, testing::HasSubstr("ME= (" + (folder / name))) << name;
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
  }
}

}  // namespace
