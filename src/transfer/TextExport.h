// A delimited text file that is being written, and the text of one value.
#pragma once

#include <fstream>
#include <string>

#include "transfer/TextTransfer.h"
#include "transfer/TransferTypes.h"

class CSideFile;

namespace STUtils {

template <typename CharT>
class basic_text_export_t : public basic_text_transfer_t<CharT> {
 public:
  std::basic_ofstream<CharT> stream;
  std::basic_string<CharT> line;  // room of the line that is being put together
  CSideFile* side = nullptr;      // that the stream goes to; null for standard output
};

// Appends a value as a text file holds it: nothing for a missing one; a string in double quotes
// with a backslash before each quote and backslash; a number as the shortest text that reads back
// as it was.
void AppendValueText(const variable_data_t& value, std::string& text);

// Is a value, where it is not missing, written as a number and nothing else?
inline bool IsPlainNumber(const variable_data_t& value) {
  return (value.kind == 0 || value.kind == 1) && value.text.empty();
}

// Appends a string in quotes as above.
void AppendQuoted(const std::string& value, std::string& text);

}  // namespace STUtils
