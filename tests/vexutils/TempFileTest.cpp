#include <fcntl.h>
#include <optional>
#include <set>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempFolder.h"
#include "vexutils/BlockIo.h"
#include "vexutils/TempFile.h"

namespace {

// Sets TMPDIR, or removes it, until the end of the scope.
class CTempSetting {
 public:
  explicit CTempSetting(const char* value) {
    if (const char* const before = std::getenv("TMPDIR")) before_ = before;
    Set(value);
  }
  ~CTempSetting() { Set(before_ ? before_->c_str() : nullptr); }
  CTempSetting(const CTempSetting&) = delete;
  CTempSetting& operator=(const CTempSetting&) = delete;

 private:
  static void Set(const char* value) {
    value != nullptr ? setenv("TMPDIR", value, 1) : unsetenv("TMPDIR");
  }
  std::optional<std::string> before_;
};

}  // namespace

TEST(TempFile, MakesFilesOfOurOwn) {
  const TempFolder folder;
  const CTempSetting setting(folder.Path().c_str());
  std::set<std::string> names;
  for (int i = 0; i < 20; ++i) {
    const std::string name = GetTempName("vex");
    EXPECT_TRUE(names.insert(name).second);
    EXPECT_EQ(std::filesystem::path(name).parent_path(), folder.Path());
    struct stat info {};
    ASSERT_EQ(stat(name.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_EQ(info.st_size, 0);
  }
  EXPECT_EQ(folder.FileCount(), names.size());
}

TEST(TempFile, HasNoNameWithoutAFolderToWriteTo) {
  const TempFolder folder;
  const CTempSetting setting(folder.Path().c_str());
  EXPECT_EQ(GetTempName("missing/vex"), "");
}

TEST(TempFile, IgnoresASettingThatIsNoFolder) {
  const TempFolder folder;
  WriteBytes(folder / "file", "");
  for (const std::string& value : {folder / "file", folder / "missing", std::string()}) {
    const CTempSetting setting(value.c_str());
    EXPECT_TRUE(FolderOfTempFiles() == "/tmp" || FolderOfTempFiles() == "/var/tmp") << value;
  }
}

TEST(TempFile, OpensUnnamedFilesOnTheSameFileSystem) {
  for (const char* const parent : {"/tmp", "/dev/shm"}) {
    if (!std::filesystem::is_directory(parent)) continue;
    const TempFolder folder(parent);
    const CDescriptor named(open((folder / "named").c_str(), O_RDWR | O_CREAT, 0600));
    const CDescriptor unnamed(OpenUnnamedBeside(named.Get()));
    ASSERT_TRUE(unnamed.IsOpen());
    EXPECT_EQ(folder.FileCount(), 1u);
    struct stat first {};
    struct stat second {};
    ASSERT_EQ(fstat(named.Get(), &first), 0);
    ASSERT_EQ(fstat(unnamed.Get(), &second), 0);
    EXPECT_EQ(first.st_dev, second.st_dev);
    EXPECT_EQ(second.st_nlink, 0u);
    EXPECT_TRUE(WriteAt(unnamed.Get(), 0, "x", 1));
  }
}

TEST(TempFile, OpensUnnamedFilesForFilesWhoseFolderIsGone) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "gone");
  const CDescriptor orphan(open((folder / "gone/file").c_str(), O_RDWR | O_CREAT, 0600));
  std::filesystem::remove_all(folder / "gone");
  const CDescriptor unnamed(OpenUnnamedBeside(orphan.Get()));
  EXPECT_TRUE(unnamed.IsOpen());
}
