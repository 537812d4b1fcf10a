#include <cerrno>
#include <fcntl.h>
#include <random>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TempFolder.h"
#include "vexutils/BlockIo.h"

namespace {

std::string RandomBytes(std::size_t size) {
  std::mt19937_64 random(size);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

int OpenNew(const std::string& name) {
  return open(name.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
}

bool OnDifferentDevices(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
         first.st_dev != second.st_dev;
}

// Copies ranges of several sizes and offsets from one folder to the other and compares every byte.
void CopyRanges(const TempFolder& from, const TempFolder& to) {
  const std::string content = RandomBytes(2 * kBlockBytes + 4099);
  WriteBytes(from / "source", content);
  CDescriptor source;
  ASSERT_TRUE(source.OpenForReading((from / "source").c_str()));
  const auto total = static_cast<std::int64_t>(content.size());
  struct {
    std::int64_t fromOffset;
    std::int64_t toOffset;
    std::int64_t size;
  } const cases[] = {
      {0, 0, total},     {0, 0, 0},
      {0, 0, 1},         {total - 1, 3, 1},
      {17, 5, 4096},     {4096, 0, 99},
      {1, 7, total - 1}, {33, 0, static_cast<std::int64_t>(kBlockBytes)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.fromOffset << " to " << c.toOffset << ", " << c.size);
    const CDescriptor target(OpenNew(to / "target"));
    ASSERT_TRUE(target.IsOpen());
    ASSERT_TRUE(CopyRange(source.Get(), c.fromOffset, target.Get(), c.toOffset, c.size));
    const std::string wanted =
        (c.size > 0 ? std::string(static_cast<std::size_t>(c.toOffset), '\0') : "") +
        content.substr(static_cast<std::size_t>(c.fromOffset), static_cast<std::size_t>(c.size));
    EXPECT_TRUE(ReadBytes(to / "target") == wanted);
  }
}

}  // namespace

TEST(CopyRange, CopiesWithinAFileSystem) {
  const TempFolder folder;
  CopyRanges(folder, folder);
}

TEST(CopyRange, CopiesAcrossFileSystems) {
  const TempFolder disk;
  if (!OnDifferentDevices(disk.Path(), "/dev/shm"))
    GTEST_SKIP() << "needs /dev/shm and another file system";
  const TempFolder memory("/dev/shm");
  CopyRanges(memory, disk);
  CopyRanges(disk, memory);
}

TEST(CopyRange, ReadsFilesThatLookEmpty) {
  CDescriptor source;
  if (!source.OpenForReading("/proc/self/environ")) GTEST_SKIP() << "needs /proc";
  char first = 0;
  if (ReadAt(source.Get(), 0, &first, 1) != 1) GTEST_SKIP() << "needs an environment";
  const TempFolder folder;
  const CDescriptor target(OpenNew(folder / "target"));
  ASSERT_TRUE(CopyRange(source.Get(), 0, target.Get(), 0, 1));
  EXPECT_EQ(ReadBytes(folder / "target"), std::string(1, first));
}

TEST(CopyRange, SaysThatTheSourceIsTooShort) {
  const TempFolder folder;
  WriteBytes(folder / "source", "abc");
  CDescriptor source;
  ASSERT_TRUE(source.OpenForReading((folder / "source").c_str()));
  for (const std::int64_t offset : {0, 2, 3, 4}) {
    const CDescriptor target(OpenNew(folder / "target"));
    errno = 0;
    EXPECT_FALSE(CopyRange(source.Get(), offset, target.Get(), 0, 4 - (offset > 3 ? 3 : offset)))
        << offset;
    EXPECT_EQ(errno, EIO) << offset;
  }
}

TEST(CopyRange, CopiesBehindTheEndOfAFileForAppending) {
  const TempFolder folder;
  WriteBytes(folder / "source", "abc");
  WriteBytes(folder / "target", "xyz");
  CDescriptor source;
  ASSERT_TRUE(source.OpenForReading((folder / "source").c_str()));
  const CDescriptor target(open((folder / "target").c_str(), O_WRONLY | O_APPEND));
  ASSERT_TRUE(CopyRange(source.Get(), 0, target.Get(), 3, 3));
  EXPECT_EQ(ReadBytes(folder / "target"), "xyzabc");
}

TEST(CopyRange, StopsWhenToldTo) {
  const TempFolder disk;
  constexpr std::int64_t kSize = std::int64_t{100} << 20;
  const CDescriptor source(OpenNew(disk / "source"));
  ASSERT_EQ(ftruncate(source.Get(), kSize), 0);
  std::vector<std::string> parents = {disk.Path()};
  if (OnDifferentDevices(disk.Path(), "/dev/shm")) parents.push_back("/dev/shm");
  for (const std::string& parent : parents) {
    const TempFolder folder(parent);
    const CDescriptor target(OpenNew(folder / "target"));
    std::int64_t told = 0;
    errno = 0;
    EXPECT_FALSE(CopyRange(source.Get(), 0, target.Get(), 0, kSize, [&](std::int64_t done) {
      told = done;
      return false;
    }));
    EXPECT_EQ(errno, ECANCELED);
    EXPECT_GT(told, 0);
    EXPECT_LT(told, kSize);
    EXPECT_EQ(FileBytes(target.Get()), told);
  }
}

TEST(ReadAt, EndsAtTheEndOfTheFile) {
  const TempFolder folder;
  WriteBytes(folder / "file", "abcdef");
  CDescriptor file;
  ASSERT_TRUE(file.OpenForReading((folder / "file").c_str()));
  char bytes[8] = {};
  EXPECT_EQ(ReadAt(file.Get(), 4, bytes, sizeof bytes), 2);
  EXPECT_EQ(std::string(bytes), "ef");
  EXPECT_EQ(ReadAt(file.Get(), 6, bytes, sizeof bytes), 0);
  EXPECT_FALSE(WriteAt(file.Get(), 0, "x", 1)) << "open for reading only";
  EXPECT_EQ(ReadAt(-1, 0, bytes, 1), -1);
}

TEST(Descriptor, RefusesFoldersAndMissingFiles) {
  const TempFolder folder;
  CDescriptor file;
  EXPECT_FALSE(file.OpenForReading(folder.Path().c_str()));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_FALSE(file.OpenForReading((folder / "missing").c_str()));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(file.IsOpen());
}
