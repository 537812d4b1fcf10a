// What goes wrong in a save must not cost the file that it was to replace.
#include <csignal>
#include <filesystem>

#include <sys/stat.h>
#include <sys/wait.h>

#include "datadoc/DocumentFixture.h"
#include "support/FileSizeLimit.h"

class DurableSave : public DocumentTest {
 protected:
  void SetUp() override {
    Fill({{1, 2}, {3, 4}});
    document.GetTorvik()->format = kNewFormat;
    WriteBytes(name, "the old file");
    document.SetModifiedFlag();
  }
  void ExpectTheOldFile() {
    EXPECT_EQ(ReadBytes(name), "the old file");
    EXPECT_EQ(folder.FileCount(), 1U);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(Rows(), (std::vector<std::vector<double>>{{1, 2}, {3, 4}}));
  }
  const CString name = folder / "data.VSF";
};

TEST_F(DurableSave, AFullDiskLeavesTheOldFile) {
  int saved = 1;
  {
    const FileSizeLimit limit(200);
    saved = document.OnSaveDocument(name);
  }
  EXPECT_EQ(saved, 0);
  EXPECT_EQ(host.LastMessage(), "Cannot write to file!");
  ExpectTheOldFile();
}

TEST_F(DurableSave, AReadOnlyFileIsRefused) {
  chmod(name.c_str(), 0444);
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  EXPECT_EQ(host.LastMessage(), "Cannot write to file!");
  ExpectTheOldFile();
}

TEST_F(DurableSave, AFolderAndAnAbsentFolderAreRefused) {
  std::filesystem::create_directory(folder / "sub");
  EXPECT_EQ(document.OnSaveDocument(folder / "sub"), 0);
  EXPECT_EQ(document.OnSaveDocument(folder / "absent/data.VSF"), 0);
  EXPECT_EQ(host.messages.size(), 2U);
  EXPECT_TRUE(document.IsModified());
}

TEST_F(DurableSave, AStopLeavesTheOldFileWithoutAMessage) {
  host.cancelAtStep = host.progressSteps;
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  EXPECT_TRUE(host.messages.empty());
  ExpectTheOldFile();
}

TEST_F(DurableSave, KeepsLinksAndModes) {
  chmod(name.c_str(), 0640);
  std::filesystem::create_symlink(name, folder / "link.VSF");
  ASSERT_EQ(document.OnSaveDocument(folder / "link.VSF"), 1);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.VSF"));
  struct stat info {};
  stat(name.c_str(), &info);
  EXPECT_EQ(info.st_mode & 07777, 0640U);
  EXPECT_EQ(info.st_size, 128 + 2 * 276 + 32);
}

// A process that is killed at any moment of a save leaves either file whole.
TEST_F(DurableSave, AKilledProcessLeavesAWholeFile) {
  ASSERT_EQ(document.OnSaveDocument(name), 1);
  const std::string before = ReadBytes(name);
  Fill({{5, 6}, {7, 8}});
  document.GetTorvik()->format = kNewFormat;
  ASSERT_EQ(document.SaveVSFFile(folder / "after.VSF", kNewFormat), 1);
  const std::string after = ReadBytes(folder / "after.VSF");

  for (int delay = 0; delay < 40; ++delay) {
    const pid_t child = fork();
    if (child == 0) {
      for (;;) document.SaveVSFFile(name, kNewFormat);
    }
    usleep(static_cast<useconds_t>(200 * delay));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    const std::string found = ReadBytes(name);
    ASSERT_TRUE(found == before || found == after) << "after " << delay;
  }
}

TEST_F(DurableSave, NothingToSaveIsAFailureWithoutAMessage) {
  document.SetExtern(EXTERNDATA(), {}, 0, 2, true);
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  document.SetExtern(EXTERNDATA(), {}, 2, 0, true);
  EXPECT_EQ(document.OnSaveDocument(name), 0);
  EXPECT_TRUE(host.messages.empty());
  EXPECT_EQ(ReadBytes(name), "the old file");
}
