// A sort that does not come to its end: the file stands as it was, and nothing is left beside it.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <stdexcept>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "support/TempFolder.h"
#include "vexutils/FileSort.h"

namespace {

constexpr std::int64_t kRecords = 100000;
constexpr std::size_t kRecordBytes = 24;
constexpr std::size_t kBudgets[] = {kSortMemoryBytes, 500000};  // by keys, in runs

using Stream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string Unsorted() {
  std::string content;
  for (std::int64_t i = 0; i < kRecords; ++i) {
    const double record[] = {static_cast<double>(i * 7919 % 1000), static_cast<double>(i), 0};
    static_assert(sizeof record == kRecordBytes);
    content.append(reinterpret_cast<const char*>(record), sizeof record);
  }
  return content;
}

int Sort(const std::string& name, std::size_t memory, const SortProgress& progress = {}) {
  const Stream file(std::fopen(name.c_str(), "r+b"), &std::fclose);
  return fqsortWithin(memory, file.get(), kRecords, kRecordBytes, 0, kSortAscending, progress);
}

class FileSortFaults : public testing::TestWithParam<std::size_t> {
 protected:
  void Make(const std::string& name) const { WriteBytes(name, content_); }
  // Compared without printing megabytes.
  bool IsAsItWas(const std::string& name) const { return ReadBytes(name) == content_; }

  const std::string content_ = Unsorted();
  const TempFolder folder_;
  const std::string name_ = folder_ / "cases";
};

// A limit on the size of files, which a write meets like a full disk.
class CFileSizeLimit {
 public:
  explicit CFileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~CFileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  CFileSizeLimit(const CFileSizeLimit&) = delete;
  CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

class CSmallDisk {
 public:
  CSmallDisk(const std::string& folder, const char* options)
      : folder_(folder), mounted_(mount("tmpfs", folder.c_str(), "tmpfs", 0, options) == 0) {}
  ~CSmallDisk() {
    if (mounted_) umount(folder_.c_str());
  }
  CSmallDisk(const CSmallDisk&) = delete;
  CSmallDisk& operator=(const CSmallDisk&) = delete;
  bool IsMounted() const { return mounted_; }

 private:
  std::string folder_;
  bool mounted_;
};

}  // namespace

// Stops at each place where progress is told, from the first on, until a sort gets through.
TEST_P(FileSortFaults, StopLeavesTheFileAsItWas) {
  std::vector<double> told;
  Make(name_);
  ASSERT_EQ(Sort(name_, GetParam(),
                 [&](double fraction) {
                   told.push_back(fraction);
                   return true;
                 }),
            1);
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_GT(told.front(), 0);
  EXPECT_EQ(told.back(), 1);
  Make(name_);
  int stops = 0;
  for (const double at : told) {
    const int sorted = Sort(name_, GetParam(), [at](double fraction) { return fraction < at; });
    if (sorted == 1) break;
    ASSERT_EQ(errno, ECANCELED);
    ASSERT_TRUE(IsAsItWas(name_)) << "stopped at " << at;
    ++stops;
  }
  EXPECT_GE(stops, 3);
  EXPECT_FALSE(IsAsItWas(name_)) << "a stop during the last step comes too late";
  EXPECT_EQ(folder_.FileCount(), 1u);
}

TEST_P(FileSortFaults, ExceptionOfTheProgressStops) {
  Make(name_);
  EXPECT_EQ(Sort(name_, GetParam(), [](double) -> bool { throw std::runtime_error("no"); }), 0);
  EXPECT_EQ(errno, ECANCELED);
  EXPECT_EQ(Sort(name_, GetParam(), [](double) -> bool { throw std::bad_alloc(); }), 0);
  EXPECT_EQ(errno, ENOMEM);
  EXPECT_TRUE(IsAsItWas(name_));
}

TEST_P(FileSortFaults, FileSizeLimitLeavesTheFileAsItWas) {
  Make(name_);
  for (const std::size_t limit : {std::size_t{0}, content_.size() / 2, content_.size() - 1}) {
    int sorted = 1;
    int error = 0;
    {
      const CFileSizeLimit limited(limit);
      sorted = Sort(name_, GetParam());
      error = errno;
    }
    EXPECT_EQ(sorted, 0) << limit;
    EXPECT_EQ(error, EFBIG) << limit;
    EXPECT_TRUE(IsAsItWas(name_)) << limit;
  }
  EXPECT_EQ(folder_.FileCount(), 1u);
}

TEST_P(FileSortFaults, FullDiskLeavesTheFileAsItWas) {
  const CSmallDisk disk(folder_.Path(), "size=4m");
  if (!disk.IsMounted()) GTEST_SKIP() << "needs the right to mount a file system";
  Make(name_);
  EXPECT_EQ(Sort(name_, GetParam()), 0);
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_TRUE(IsAsItWas(name_));
}

// The file has no blocks yet where its zeros stand: they must be there before the first record is
// replaced.
TEST_P(FileSortFaults, SparseFileOnAFullDiskStaysAsItWas) {
  const CSmallDisk disk(folder_.Path(), "size=4m");
  if (!disk.IsMounted()) GTEST_SKIP() << "needs the right to mount a file system";
  const double first = 1;
  WriteBytes(name_, std::string(reinterpret_cast<const char*>(&first), sizeof first));
  ASSERT_EQ(truncate(name_.c_str(), static_cast<off_t>(content_.size())), 0);
  const std::string sparse = ReadBytes(name_);
  EXPECT_EQ(Sort(name_, GetParam()), 0);
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_TRUE(ReadBytes(name_) == sparse);
}

INSTANTIATE_TEST_SUITE_P(BothPlans, FileSortFaults, testing::ValuesIn(kBudgets),
                         [](const auto& plan) { return plan.index == 0 ? "Keys" : "Runs"; });
