#include <csignal>
#include <fcntl.h>
#include <filesystem>

#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "datadoc/DocumentFixture.h"
#include "dataview/ScratchFile.h"

// The folder of temporary files is one of the test's own, so that other tests' scratch files are
// not seen.
class ScratchFile : public testing::Test {
 protected:
  ScratchFile() { setenv("TMPDIR", (folder / "").c_str(), 1); }
  ~ScratchFile() override { unsetenv("TMPDIR"); }

  // A process that fills a data set and dies without cleaning up.
  void CrashWithData() {
    const pid_t child = fork();
    if (child == 0) {
      CDataDoc document;
      CDataView view(document);
      document.SetExtern(EXTERNDATA(), {{"age", "in years"}}, 3, 1, true);
      document.GetTorvik()->format = kOldFormat;
      document.SetPathName("/data/lost.VSF", false);
      const double cells[] = {1, 2, 3};
      std::fwrite(cells, sizeof(double), 3, view.OpenScratchFile("w+b"));
      view.ReopenFile();
      kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
  }
  CRecorder host;
  TempFolder folder;
};

TEST_F(ScratchFile, IsOursAloneAndGoneAtTheEnd) {
  {
    CScratchFile scratch;
    struct stat info {};
    ASSERT_EQ(stat(scratch.Name().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    EXPECT_TRUE(std::filesystem::path(scratch.Name()).filename().string().starts_with("VS"));
    scratch.Describe(TORVIKSTRUCT(), "/some/path");
    stat((scratch.Name() + ".vsd").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    EXPECT_TRUE(FindLeftOverScratch().empty());  // locked: somebody works with it
  }
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(ScratchFile, ACrashLeavesWhatCanBeRecovered) {
  CrashWithData();
  const auto left = FindLeftOverScratch();
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(left[0].pathName, "/data/lost.VSF");
  EXPECT_EQ(left[0].data.records, 3);
  EXPECT_EQ(left[0].data.format, kOldFormat);

  CDataDoc document;
  CDataView view(document);
  ASSERT_TRUE(view.Recover(left[0]));
  EXPECT_TRUE(document.IsModified());
  EXPECT_EQ(document.GetPathName(), "/data/lost.VSF");
  EXPECT_EQ(document.GetTorvik()->variable[0].description, "in years");
  double value = 0;
  ASSERT_TRUE(view.GetRow(2, {&value, 1}));
  EXPECT_EQ(value, 3);
  RemoveScratch(left[0].name);
  EXPECT_TRUE(FindLeftOverScratch().empty());
}

TEST_F(ScratchFile, CellsThatAreWrittenAnewHaveNoDescriptionYet) {
  CScratchFile scratch;
  scratch.Describe(TORVIKSTRUCT(), "/some/path");
  ASSERT_TRUE(std::filesystem::exists(scratch.Name() + ".vsd"));
  ASSERT_NE(scratch.Open("r+b"), nullptr);
  EXPECT_TRUE(std::filesystem::exists(scratch.Name() + ".vsd"));
  ASSERT_NE(scratch.Open("w+b"), nullptr);
  EXPECT_FALSE(std::filesystem::exists(scratch.Name() + ".vsd"));
}

TEST_F(ScratchFile, ADescriptionThatPromisesTooMuchIsCutToTheCells) {
  CrashWithData();
  const auto left = FindLeftOverScratch();
  ASSERT_EQ(left.size(), 1U);
  std::filesystem::resize_file(left[0].name, 2 * sizeof(double) + 3);
  CDataDoc document;
  CDataView view(document);
  ASSERT_TRUE(view.Recover(left[0]));
  EXPECT_EQ(document.GetRecnum(), 2);
}

TEST_F(ScratchFile, OtherFilesAreNotTakenForScratch) {
  WriteBytes(folder / "VSgarbage.tmp", "x");
  WriteBytes(folder / "VSgarbage.tmp.vsd", "no description");
  WriteBytes(folder / "other.tmp.vsd", "no description");
  WriteBytes(folder / "VSlonely.tmp.vsd", "no description");
  EXPECT_TRUE(FindLeftOverScratch().empty());
}

TEST_F(ScratchFile, WithoutATemporaryNameTheViewStaysUsable) {
  setenv("TMPDIR", "/proc", 1);  // a folder in which no file can be made
  CDataDoc document;
  CDataView view(document);
  EXPECT_EQ(host.LastMessage(), "Unable to produce a temporary file!");
  EXPECT_EQ(view.OpenScratchFile("w+b"), nullptr);
  document.SetExtern(EXTERNDATA(), {}, 1, 1, true);
  EXPECT_EQ(host.LastMessage(), "Unable to create temporary work file");
  double value = 0;
  EXPECT_FALSE(view.GetRow(0, {&value, 1}));
}
