// A delimited text file that is being written, and the text of one value.
#pragma once

#include <fstream>
#include <string>

#include "transfer/TransferTypes.h"

namespace STUtils {

// What a text target of a file type puts between two values; `own` is that of the type whose
// delimiter is asked for.
char TextSeparator(std::int32_t type, char own);

template <typename CharT>
class basic_text_export_t {
 public:
  std::basic_ofstream<CharT> stream;
  std::int32_t type = 0;
  CharT delimiter = 0;

  CharT Separator() const { return TextSeparator(type, delimiter); }
};

// Appends a value as a text file holds it: nothing for a missing one; a string in double quotes
// with a backslash before each quote and backslash; a number as the shortest text that reads back
// as it was.
void AppendValueText(const variable_data_t& value, std::string& text);

// Appends a string in quotes as above.
void AppendQuoted(const std::string& value, std::string& text);

}  // namespace STUtils
