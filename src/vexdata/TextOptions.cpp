#include "vexdata/TextOptions.h"

#include "host/Host.h"
#include "transfer/FileTypes.h"
#include "transfer/TextTransfer.h"

std::optional<char> DelimiterOf(const CString& option, int type) {
  if (option.empty() && type != STUtils::DELIMITED_TEXT_FILE_TYPE) return 0;
  const CString delimiter = option == "tab" ? "\t" : option;
  if (delimiter.size() != 1) {
    AfxMessageBox("File type " + std::to_string(type) +
                  ": --delimiter needs one character, or the word tab");
    return std::nullopt;
  }
  if (STUtils::CanDelimit(delimiter.front())) return delimiter.front();
  AfxMessageBox("--delimiter: fields cannot be delimited by \"" + delimiter + '"');
  return std::nullopt;
}
