// The pass of ReadStat over a file's dictionary and value labels; records are skipped.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "statrn32/ReadStatFormat.h"
#include "statrn32/ReadStatIo.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {

class CDictionaryPass {
 public:
  // `encoding` is the one to take where the file names none.
  CDictionaryPass(const READSTAT_FORMAT& format, CInputFile* input, std::string encoding = {})
      : format_(format), input_(input), chosen_(std::move(encoding)) {}

  // Fills `out`; false with how it ended in Result().
  bool Run(DICTIONARY* out);
  // Only the value labels of a file that has nothing else, by name. A file that cannot be read
  // gives none.
  void RunLabels(DICTIONARY* out);
  const PARSE_RESULT& Result() const { return result_; }
  // The encoding of the texts: what the file names, else what was chosen; may be empty.
  const std::string& Encoding() const { return encoding_; }
  std::string GuessedEncoding() const { return decoder_.GuessedEncoding(); }
  // The label set that each variable asks for by name.
  const std::vector<std::string>& SetNames() const { return setNames_; }
  // The number of the set of that name, -1 when no labels came for it.
  int FindSet(const std::string& name) const;

 private:
  static int OnMetadata(readstat_metadata_t* metadata, void* context);
  static int OnVariable(int index, readstat_variable_t* variable, const char* labels,
                        void* context);
  static int OnLabel(const char* set, readstat_value_t value, const char* label, void* context);
  static void OnError(const char* message, void* context);

  bool Parse(DICTIONARY* out);
  int TakeMetadata(readstat_metadata_t* metadata);
  int TakeVariable(const readstat_variable_t& variable, const char* labels);
  int TakeLabel(const char* set, const readstat_value_t& value, const char* label);
  VARIABLE MakeVariable(const readstat_variable_t& variable);
  std::string SetName(const char* name) const;
  int Refuse(std::string reason);

  void ChooseEncoding(const char* named, std::int64_t version);

  const READSTAT_FORMAT& format_;
  CInputFile* input_;
  std::string chosen_;
  DICTIONARY* out_ = nullptr;
  CTextDecoder decoder_;
  std::string encoding_;
  std::vector<std::string> setNames_;
  std::map<std::string, int> sets_;
  std::int64_t expected_ = 0;     // variables
  std::size_t setNameBytes_ = 0;  // 0: no limit
  std::int64_t labelBytes_ = 0;
  bool complete_ = false;
  PARSE_RESULT result_;
};

}  // namespace statrn32
