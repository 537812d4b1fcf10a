// What tells the formats that ReadStat reads apart.
#pragma once

#include <readstat.h>
#include <string>
#include <string_view>

#include "statrn32/Dates.h"
#include "statrn32/Dictionary.h"
#include "statrn32/InputFile.h"

namespace statrn32 {

// More variables than any of these packages allows: such a header is damaged.
inline constexpr std::int64_t kMaxVariables = 120'000;

struct READSTAT_FORMAT {
  std::int32_t code;  // of the file type
  readstat_error_t (*parse)(readstat_parser_t* parser, const char* path, void* context);
  // Looks at sizes in the header before anything is allocated by them. False with the problem,
  // without the file's name, in `error`; the position is where the problem lies.
  bool (*check)(CInputFile* input, std::string* error);
  std::int64_t bytesPerVariable;  // what each variable takes in the file at least
  bool labelsInFile;              // value labels stand in the file and not beside it
  // The longest name of a set of value labels in that version of the format: such a name comes
  // without a closing NUL when it has this length. Null: always closed.
  std::size_t (*setNameBytes)(std::int64_t version) = nullptr;
  const char* encoding = nullptr;  // of the text handed over; null: as the file says, empty: none
  std::int64_t utf8Version = 0;    // the first that holds UTF-8 without saying so; 0: none does
  std::int64_t epochDay;
  DATE_KIND (*dateKind)(std::string_view format);
  DATE_KIND dateOfDisplay;      // what a number displayed as a date counts
  DATE_KIND dateTimeOfDisplay;  // what a number displayed as date and time counts
  // Adds value labels from beside the file; null when there are none ever. `names` are the label
  // sets' names that the variables ask for, in the order of the variables.
  void (*addLabels)(const std::string& file, const std::vector<std::string>& names,
                    DICTIONARY* dictionary) = nullptr;
};

}  // namespace statrn32
