// The file that holds the cells of an open data set: no header, doubles, record after record.
//
// It is ours alone: created exclusively with mode 0600, locked while it lives, removed at the end.
// Beside it stands a description (the data set without its cells, and the path it came from), so
// that after a crash the next start can offer to recover it: a file that is not locked belongs to
// nobody any more.
#pragma once

#include <cstdio>
#include <vector>

#include "datadoc/DataSet.h"

// A new file in the making that is to take the scratch file's place. Removed at the end if it did
// not.
class CWorkFile {
 public:
  CWorkFile();
  ~CWorkFile();
  CWorkFile(const CWorkFile&) = delete;
  CWorkFile& operator=(const CWorkFile&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }
  int Descriptor() const { return descriptor_; }

 private:
  friend class CScratchFile;
  bool TakeName();

  CString name_;  // empty: it has none yet
  int descriptor_ = -1;
};

class CScratchFile {
 public:
  CScratchFile();   // Name() is empty when no file could be made
  ~CScratchFile();  // removes the file and its description
  CScratchFile(const CScratchFile&) = delete;
  CScratchFile& operator=(const CScratchFile&) = delete;

  const CString& Name() const { return name_; }
  // Closes the stream and opens it anew with a C mode ("w+b", "rb", "r+b", "a+b"). Null on failure.
  // The stream stays the scratch file's. A file that somebody removed is opened all the same: its
  // cells are there as long as it is locked.
  std::FILE* Open(const char* mode);
  // Does the file still stand under its name?
  bool IsInPlace() const;
  // Puts `work` in the file's place, at once or not at all; the stream is closed then. Describe
  // must follow.
  bool Replace(CWorkFile& work);
  std::FILE* Stream() const { return stream_; }
  // Writes the description beside the file. What goes wrong here only costs the recovery.
  void Describe(const TORVIKSTRUCT& data, const CString& pathName) const;

 private:
  CString OpenName() const;

  CString name_;
  int lock_ = -1;
  std::FILE* stream_ = nullptr;
};

// A scratch file that a program which ended badly has left behind.
struct LeftOverScratch {
  CString name;
  CString pathName;  // of the document, as it was; may be empty
  TORVIKSTRUCT data;
};

// Those in the folder of temporary files that are ours and not locked.
std::vector<LeftOverScratch> FindLeftOverScratch();
void RemoveScratch(const CString& name);
