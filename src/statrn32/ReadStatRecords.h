// The pass of ReadStat over a file's records, on a thread of its own.
#pragma once

#include <string>
#include <vector>

#include "statrn32/BlockRing.h"
#include "statrn32/ReadStatFormat.h"
#include "statrn32/ReadStatIo.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {

// ReadStat calls back for each value; this packs the values into blocks of the ring.
class CRecordPass {
 public:
  // `dictionary` and the others outlive the pass.
  CRecordPass(const READSTAT_FORMAT& format, CInputFile* input, const DICTIONARY& dictionary,
              const std::string& encoding, CBlockRing* ring);

  // Parses to the end, a failure, or until the ring stops. The result stands when the ring has
  // finished.
  void Run();
  const PARSE_RESULT& Result() const { return result_; }
  std::string GuessedEncoding() const { return decoder_.GuessedEncoding(); }

 private:
  struct COLUMN {
    const MISSING_RANGE* ranges;
    std::size_t rangeCount;
    bool isText;
  };

  static int OnValue(int record, readstat_variable_t* variable, readstat_value_t value,
                     void* context);
  static int OnVariable(int index, readstat_variable_t* variable, const char* labels,
                        void* context);
  static void OnError(const char* message, void* context);

  bool TakeNumber(const COLUMN& column, const readstat_value_t& value);
  bool TakeText(const COLUMN& column, const readstat_value_t& value);
  bool NextBlock();
  bool EndRecord();
  bool Refuse(const char* reason);

  const READSTAT_FORMAT& format_;
  CInputFile* input_;
  CBlockRing* ring_;
  CTextDecoder decoder_;
  std::vector<COLUMN> columns_;
  std::size_t recordsPerBlock_;
  RECORD_BLOCK* block_ = nullptr;
  CELL* cells_ = nullptr;  // of the current record
  std::uint8_t* status_ = nullptr;
  int next_ = 0;  // the variable whose value comes next
  std::size_t textBegin_ = 0;
  std::int64_t records_ = 0;
  PARSE_RESULT result_;
};

}  // namespace statrn32
