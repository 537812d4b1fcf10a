// Base of the writers of formats that this program writes by itself.
#pragma once

#include <cstdint>
#include <string>

#include "statrn32/OutputFile.h"
#include "statrn32/Writer.h"

namespace statrn32 {

struct LIMITS;

// Checks counts, numbers and texts against the limits of the format; a derived class puts the
// bytes. Numbers that are not finite are missing values.
class CFileWriter : public CWriter {
 public:
  bool Begin(const std::string& name, const DICTIONARY& dictionary, std::int64_t cases) final;
  bool WriteRecord(const std::vector<OUT_CELL>& cells) final;
  bool Finish() final;

 protected:
  // `code` is the format's row in the registry.
  explicit CFileWriter(std::int32_t code);

  // Creates what is written to; the base creates File().
  virtual bool Create();
  // What stands before the records.
  virtual bool PutHeader() = 0;
  // The cells are within the limits; numbers that are not missing are finite.
  virtual bool PutRecord(const std::vector<OUT_CELL>& cells) = 0;
  // What stands behind the records.
  virtual bool PutEnd() { return true; }
  // Completes the target; the base closes File().
  virtual bool Close();

  // Writes to File().
  bool Put(std::string_view bytes);
  bool FailFile(const std::string& what) { return Fail(name_ + ": " + what); }
  // "the variable AGE in record 7", of the record being written.
  std::string Place(std::size_t variable) const;

  const std::string& Name() const { return name_; }
  const std::vector<VARIABLE>& Variables() const { return dictionary_.variables; }
  const DICTIONARY& Dictionary() const { return dictionary_; }
  std::int64_t Cases() const { return cases_; }
  // Records put so far.
  std::int64_t Written() const { return written_; }
  COutputFile& File() { return file_; }

 private:
  void CutLabels();
  bool CheckLimits();
  bool CheckCell(const OUT_CELL& cell, std::size_t variable);

  const LIMITS* limits_;
  std::string name_;
  DICTIONARY dictionary_;
  std::int64_t cases_ = 0;
  std::int64_t written_ = 0;
  COutputFile file_;
};

}  // namespace statrn32
