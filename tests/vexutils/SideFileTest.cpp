#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempFolder.h"
#include "vexutils/BlockIo.h"
#include "vexutils/SideFile.h"

namespace {

namespace fs = std::filesystem;

bool Put(const CSideFile& side, const std::string& text) {
  return WriteAt(side.Descriptor(), 0, text.data(), text.size());
}

mode_t ModeOf(const std::string& name) {
  struct stat info {};
  return stat(name.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

}  // namespace

TEST(SideFile, TakesTheTargetsPlaceOnlyOnCommit) {
  const TempFolder folder;
  WriteBytes(folder / "data", "old");
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "data"));
  ASSERT_TRUE(Put(side, "new"));
  EXPECT_EQ(ReadBytes(folder / "data"), "old");
  EXPECT_EQ(fs::path(side.Path()).parent_path(), fs::path(side.Target()).parent_path());
  ASSERT_TRUE(side.Commit());
  EXPECT_EQ(ReadBytes(folder / "data"), "new");
  EXPECT_EQ(folder.FileCount(), 1u);
  EXPECT_FALSE(side.Commit()) << "nothing left to commit";
}

TEST(SideFile, IsGoneWhenNotCommitted) {
  const TempFolder folder;
  WriteBytes(folder / "data", "old");
  {
    CSideFile side;
    ASSERT_TRUE(side.Create(folder / "data"));
    ASSERT_TRUE(Put(side, "new"));
    ASSERT_TRUE(side.Create(folder / "other")) << "a second use discards the first";
  }
  EXPECT_EQ(ReadBytes(folder / "data"), "old");
  EXPECT_EQ(folder.FileCount(), 1u);
}

TEST(SideFile, KeepsTheModeOfTheTarget) {
  const TempFolder folder;
  const mode_t mask = umask(027);
  for (const mode_t mode : {0600, 0644, 0664, 0755, 0200}) {
    WriteBytes(folder / "data", "old");
    ASSERT_EQ(chmod((folder / "data").c_str(), mode), 0);
    CSideFile side;
    ASSERT_TRUE(side.Create(folder / "data"));
    ASSERT_TRUE(side.Commit());
    EXPECT_EQ(ModeOf(folder / "data"), mode);
  }
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "new"));
  ASSERT_TRUE(side.Commit());
  EXPECT_EQ(ModeOf(folder / "new"), 0640u) << "as the process's mask says";
  umask(mask);
}

TEST(SideFile, KeepsTheOwnerOfTheTarget) {
  const TempFolder folder;
  WriteBytes(folder / "data", "old");
  constexpr uid_t kSomebody = 12345;
  if (chown((folder / "data").c_str(), kSomebody, kSomebody) != 0)
    GTEST_SKIP() << "needs the right to give files away";
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "data"));
  ASSERT_TRUE(side.Commit());
  struct stat info {};
  ASSERT_EQ(stat((folder / "data").c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, kSomebody);
  EXPECT_EQ(info.st_gid, kSomebody);
}

TEST(SideFile, FollowsLinks) {
  const TempFolder folder;
  fs::create_directory(folder / "far");
  struct {
    const char* link;
    const char* to;
    const char* file;  // what the link leads to
  } const cases[] = {
      {"plain", "far/data", "far/data"},
      {"chain", "plain", "far/data"},
      {"dangling", "far/new", "far/new"},
      {"dangling-chain", "dangling2", "far/newer"},
  };
  fs::create_symlink("far/newer", folder / "dangling2");
  WriteBytes(folder / "far/data", "old");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.link);
    fs::create_symlink(c.to, folder / c.link);
    CSideFile side;
    ASSERT_TRUE(side.Create(folder / c.link));
    ASSERT_TRUE(Put(side, c.link));
    ASSERT_TRUE(side.Commit());
    EXPECT_TRUE(fs::is_symlink(folder / c.link));
    EXPECT_FALSE(fs::is_symlink(folder / c.file));
    EXPECT_EQ(ReadBytes(folder / c.file), c.link);
  }
}

TEST(SideFile, RefusesTargetsThatCannotBeReplaced) {
  const TempFolder folder;
  WriteBytes(folder / "read-only", "old");
  chmod((folder / "read-only").c_str(), 0444);
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  fs::create_symlink("loop", folder / "loop");
  const std::size_t before = folder.FileCount();
  struct {
    std::string target;
    int error;
  } const cases[] = {
      {folder.Path(), EISDIR},
      {folder / "read-only", EACCES},
      {folder / "pipe", EINVAL},
      {folder / "missing/data", ENOENT},
      {folder / "read-only/data", ENOTDIR},
      {folder / std::string(300, 'n'), ENAMETOOLONG},
  };
  for (const auto& c : cases) {
    CSideFile side;
    EXPECT_FALSE(side.Create(c.target)) << c.target;
    EXPECT_EQ(side.Error(), c.error) << c.target << ": " << side.ErrorText();
  }
  CSideFile loop;
  EXPECT_FALSE(loop.Create(folder / "loop"));
  EXPECT_EQ(folder.FileCount(), before);
}

TEST(SideFile, TakesNamesOfTheGreatestLength) {
  const TempFolder folder;
  const std::string target = folder / std::string(255, 'n');
  CSideFile side;
  ASSERT_TRUE(side.Create(target)) << side.ErrorText();
  ASSERT_TRUE(Put(side, "new"));
  ASSERT_TRUE(side.Commit()) << side.ErrorText();
  EXPECT_EQ(ReadBytes(target), "new");
}

TEST(SideFile, KeepsAPartUnderTheTargetsNameIfThatIsFree) {
  const TempFolder folder;
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "data"));
  ASSERT_TRUE(Put(side, "part"));
  EXPECT_EQ(side.KeepPart(), side.Target());
  EXPECT_EQ(ReadBytes(folder / "data"), "part");
  EXPECT_EQ(folder.FileCount(), 1u);
}

TEST(SideFile, KeepsAPartBesideAFileThatStands) {
  const TempFolder folder;
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "data"));
  ASSERT_TRUE(Put(side, "part"));
  WriteBytes(folder / "data", "came meanwhile");
  const std::string kept = side.KeepPart();
  side.Discard();
  EXPECT_NE(kept, side.Target());
  EXPECT_EQ(ReadBytes(kept), "part");
  EXPECT_EQ(ReadBytes(folder / "data"), "came meanwhile");
}

TEST(SideFile, KeepsNoEmptyPart) {
  const TempFolder folder;
  CSideFile side;
  EXPECT_EQ(side.KeepPart(), "");
  ASSERT_TRUE(side.Create(folder / "data"));
  EXPECT_EQ(side.KeepPart(), "");
  EXPECT_EQ(folder.FileCount(), 0u);
}

TEST(SideFile, HoldsAllThatWasWrittenWhateverTheDiskWasTold) {
  const TempFolder folder;
  const std::string piece(std::size_t{3} << 20, 'x');
  CSideFile side;
  ASSERT_TRUE(side.Create(folder / "data"));
  std::int64_t written = 0;
  for (int i = 0; i < 7; ++i) {
    ASSERT_TRUE(WriteAt(side.Descriptor(), written, piece.data(), piece.size()));
    written += static_cast<std::int64_t>(piece.size());
    errno = 0;
    side.WriteBehind(written + i * 100);
    EXPECT_EQ(errno, 0);
  }
  ASSERT_TRUE(WriteAt(side.Descriptor(), 0, "head", 4)) << "behind what the disk has taken";
  ASSERT_TRUE(side.Commit());
  const std::string bytes = ReadBytes(folder / "data");
  EXPECT_EQ(bytes.size(), 7 * piece.size());
  EXPECT_EQ(bytes.substr(0, 5), "headx");
}
