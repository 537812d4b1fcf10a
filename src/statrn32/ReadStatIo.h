// Lets ReadStat read through CInputFile, and says what went wrong in words.
#pragma once

#include <memory>
#include <readstat.h>
#include <string>

#include "statrn32/InputFile.h"

namespace statrn32 {

struct PARSER_DELETER {
  void operator()(readstat_parser_t* parser) const { readstat_parser_free(parser); }
};
using PARSER = std::unique_ptr<readstat_parser_t, PARSER_DELETER>;

// A parser that reads from `input` (kept by the caller) and hands text over as the file's own
// bytes. Null when there is no memory for one.
PARSER MakeParser(CInputFile* input);

// How a parse ended.
struct PARSE_RESULT {
  readstat_error_t code = READSTAT_OK;
  std::string detail;   // what ReadStat added; may be empty
  std::string refusal;  // our own reason for having stopped it; may be empty
  std::int64_t position = 0;
  std::int64_t records = -1;  // complete records before the failure; -1 outside of the records
};

// One sentence: file, what is wrong, place.
std::string FailureText(const std::string& name, const CInputFile& input,
                        const PARSE_RESULT& result);

// The reason in errno, for a file that could not be opened.
std::string OpenFailureText(const std::string& name);

}  // namespace statrn32
