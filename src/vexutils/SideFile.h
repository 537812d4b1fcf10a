// A file written beside its target that takes the target's place at once or not at all.
#pragma once

#include <cstdint>
#include <string>

// Use: Create, write through Descriptor() (or by Path()), Commit. What was not committed is removed
// at the end, and the target stands as it was. Every failure leaves its reason in Error() (an errno
// value).
class CSideFile {
 public:
  CSideFile() = default;
  ~CSideFile() { Discard(); }
  CSideFile(const CSideFile&) = delete;
  CSideFile& operator=(const CSideFile&) = delete;

  // Creates the side file in the target's folder, links in the target's name resolved, with the
  // mode and owner of an existing target. Fails where the target is a folder or special file, or is
  // marked read-only.
  bool Create(const std::string& target);

  // Has the disk take the first `written` bytes while more is being made, a good piece at a time,
  // so that Commit has less to wait for. Only a hint: what fails here fails at the Commit.
  void WriteBehind(std::int64_t written);

  // Syncs the side file, renames it over the target and syncs the folder.
  bool Commit();
  // The same in steps, for files that go in place together: all are synced first, and a folder once
  // for all of its files.
  bool Sync();
  bool PutInPlace();
  static void SyncFolderOf(const std::string& target);

  // Closes and removes the side file.
  void Discard();

  // Keeps the part that was written: under the target's name if nothing stands there, else beside
  // it. Returns the name it has now; empty when nothing was written.
  std::string KeepPart();

  int Descriptor() const { return descriptor_; }
  const std::string& Path() const { return path_; }
  const std::string& Target() const { return target_; }
  int Error() const { return error_; }
  std::string ErrorText() const;

 private:
  bool Fail();
  void Close();

  std::string target_;
  std::string path_;
  int descriptor_ = -1;
  std::int64_t behind_ = 0;  // bytes that the disk was told to take
  int error_ = 0;
};
