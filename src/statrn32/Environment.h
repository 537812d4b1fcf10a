// What the handles of host/statrn32.h point to.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/statrn32.h"
#include "statrn32/Formats.h"

// An open input or output file.
struct ST_FILE {
  ST_ENV* env = nullptr;
  statrn32::DICTIONARY dictionary;

  // Of an input file.
  std::unique_ptr<statrn32::CReader> reader;
  bool dictionaryRead = false;
  bool ended = false;
  const statrn32::RECORD_BLOCK* block = nullptr;
  std::size_t record = 0;                 // of the block
  const statrn32::CELL* cells = nullptr;  // of the current record; null outside of the records
  const std::uint8_t* status = nullptr;
  struct COLUMN {
    std::int32_t type;
    std::int32_t display;
  };
  std::vector<COLUMN> columns;
  std::vector<std::string> tables;
  std::string guessedEncoding;

  // Of an output file.
  std::unique_ptr<statrn32::CWriter> writer;
  std::vector<statrn32::OUT_CELL> outCells;
  std::vector<std::pair<std::string, std::string>> renamed;
};

// An environment: at most one input and one output file.
struct ST_ENV {
  std::string error;
  std::unique_ptr<ST_FILE> input;
  std::unique_ptr<ST_FILE> output;
  statrn32::READ_OPTIONS options;   // for the next input file
  std::vector<std::string> notes;   // of files already read or closed
  std::vector<std::string> losses;  // as ST_GetNLosses found them
  statrn32::DICTIONARY userDictionary;
  int userVariables = 0;  // announced; described ones stand in the dictionary
  std::int64_t cases = -1;
  std::string outName;  // that the next output file will have in the end
};

namespace statrn32 {

// Stores the text of an error and gives `result`.
int FailWith(ST_ENV* env, std::string text, int result = -1);

// The first kFirstBytes bytes of a file; empty when it cannot be read.
std::string FirstBytesOf(const char* name);

// A text of a list; empty for an index that it does not have.
const char* TextAt(const std::vector<std::string>& texts, int index);

}  // namespace statrn32
