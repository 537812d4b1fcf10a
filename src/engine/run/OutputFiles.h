// The files that a run leaves beside its output: checked before anything is written, put in place
// at the end or not at all.
#pragma once

#include <list>
#include <string_view>
#include <vector>

#include "engine/Fault.h"
#include "vexutils/SideFile.h"

// One output file, written from its start to its end.
class COutputFile {
 public:
  COutputFile(std::string keyword, std::string name)
      : keyword_(std::move(keyword)), name_(std::move(name)) {}

  const std::string& Keyword() const { return keyword_; }  // of the output line: "SM"
  const std::string& Name() const { return name_; }

  // Appends. After a failure nothing more is written; the end of the run reports it.
  void Write(const void* data, std::size_t size);
  void Write(std::string_view text) { Write(text.data(), text.size()); }
  // From now on nothing is written; the bytes are kept, or thrown away.
  void Divert(bool keep) { diverted_ = keep ? EDiverted::Kept : EDiverted::Lost; }
  const std::string& KeptBytes() const { return buffer_; }
  // Replaces bytes that were written before.
  void WriteAtStart(const void* data, std::size_t size);
  // Hands to the disk what was written so far.
  void Flush();

 private:
  friend class COutputFiles;

  enum class EDiverted { No, Kept, Lost };
  EDiverted diverted_ = EDiverted::No;
  std::string keyword_;
  std::string name_;
  CSideFile file_;
  std::string buffer_;
  std::int64_t offset_ = 0;
  int error_ = 0;
};

class COutputFiles {
 public:
  // A file that is read: no output may be the same.
  void AddInput(std::string_view what, const std::string& name);
  // A file to write; nothing for an empty name.
  void AddOutput(std::string_view keyword, const std::string& name);

  // The files of another process, which writes them; this one only computes what they hold.
  void BelongToAnother() { another_ = true; }
  // Fills `kept` with files of the same names that keep what is written to them.
  void MakeKept(COutputFiles& kept) const;
  // All of their bytes, and those of such files put at the end of these.
  std::vector<std::string> KeptBytes() const;
  void Append(const std::vector<std::string>& bytes);

  // Checks all names against each other and creates the side files. Nothing is written when it
  // fails; the fault names the two that collide, or the file that cannot be created.
  bool Create(FAULT& fault);

  // The file of this keyword, or null when it was not asked for. Owned by this object. Where a
  // keyword has several files, `which` counts them from 0.
  COutputFile* Find(std::string_view keyword);
  COutputFile* Find(std::string_view keyword, std::size_t which);

  // False with the reason in `fault` when something could not be written so far.
  bool CheckWritten(FAULT& fault) const;
  // Puts all files in place. After a failure the fault names the file, and says which ones are in
  // place already.
  bool Commit(FAULT& fault);
  // Removes what was written.
  void Discard();

 private:
  bool SyncFiles(FAULT& fault);
  bool PutInPlace(FAULT& fault);
  bool FailToPut(const COutputFile& output, const std::string& inPlace, FAULT& fault);

  struct Input {
    std::string what;
    std::string name;
  };
  std::vector<Input> inputs_;
  std::list<COutputFile> outputs_;
  bool another_ = false;
};
