// What every format's writer gives.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "statrn32/Dictionary.h"

namespace statrn32 {

// One value of a record to be written; of a text variable `text` counts, else `number`.
struct OUT_CELL {
  double number = 0;
  std::string text;
  bool missing = true;
};

// Used from one thread. A failure is told by Error(), and every later call fails too.
class CWriter {
 public:
  CWriter() = default;
  virtual ~CWriter() = default;
  CWriter(const CWriter&) = delete;
  CWriter& operator=(const CWriter&) = delete;

  // The name that the file will have in the end, where Begin is told another one: files that belong
  // to it are named for it.
  void SetFinalName(std::string name) { finalName_ = std::move(name); }

  // Creates the file (an existing one is emptied) for exactly `cases` records. The names of the
  // dictionary are already legal for the format.
  virtual bool Begin(const std::string& name, const DICTIONARY& dictionary, std::int64_t cases) = 0;
  // One cell per variable.
  virtual bool WriteRecord(const std::vector<OUT_CELL>& cells) = 0;
  // Completes the file. Fails too when the number of records is not the one announced.
  virtual bool Finish() = 0;

  // What could not be held as it was, one sentence a fact; complete after Finish.
  virtual std::vector<std::string> Notes() const { return {}; }

  const std::string& Error() const { return error_; }

 protected:
  // Empty where it is that of Begin.
  const std::string& FinalName() const { return finalName_; }
  bool Fail(std::string error) {
    if (error_.empty()) error_ = std::move(error);
    return false;
  }

 private:
  std::string finalName_;
  std::string error_;
};

}  // namespace statrn32
