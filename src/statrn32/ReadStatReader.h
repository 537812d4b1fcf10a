// Reads the formats that ReadStat knows.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "statrn32/BlockRing.h"
#include "statrn32/ReadStatFormat.h"
#include "statrn32/ReadStatRecords.h"
#include "statrn32/Reader.h"

namespace statrn32 {

// The dictionary is read on the caller's thread; the first NextBlock starts a thread that parses
// the records into a ring. Destroying the reader stops that thread.
class CReadStatReader : public CReader {
 public:
  explicit CReadStatReader(const READSTAT_FORMAT& format) : format_(format) {}
  ~CReadStatReader() override;

  bool Open(const std::string& name) override;
  bool ReadDictionary(DICTIONARY* out) override;
  const RECORD_BLOCK* NextBlock() override;
  std::string GuessedEncoding() const override;
  double Progress() const override { return input_.Progress(); }
  std::int64_t EpochDay() const override { return format_.epochDay; }
  DATE_KIND DateKindOf(std::int32_t display) const override;

 private:
  bool Start();

  const READSTAT_FORMAT& format_;
  std::string name_;
  CInputFile input_;
  DICTIONARY dictionary_;  // only what the parsing thread needs of it
  std::string encoding_;
  std::string guessedEncoding_;  // by the dictionary
  CBlockRing ring_;
  std::optional<CRecordPass> pass_;
  std::thread thread_;
  bool ended_ = false;
};

}  // namespace statrn32
