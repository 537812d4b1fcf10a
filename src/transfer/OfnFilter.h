// The rows behind a file dialog, and the rules of the dialog that import and export share.
#pragma once

#include <string>
#include <vector>

#include "host/Host.h"
#include "transfer/FileTypes.h"
#include "transfer/TransferTypes.h"

namespace WinUtils {

template <typename CharT>
class basic_ofn_filter_t {
 public:
  using row_type = STUtils::basic_file_type_info_t<CharT>;

  void Add(const row_type& row) { rows_.push_back(row); }
  void Add(const std::vector<row_type>& rows) {
    rows_.insert(rows_.end(), rows.begin(), rows.end());
  }
  const std::vector<row_type>& Rows() const { return rows_; }
  // What the dialog shows: display names and filters.
  std::vector<FileDialogRow> DialogRows() const;

 private:
  std::vector<row_type> rows_;
};

}  // namespace WinUtils

namespace STUtils {

// Text rows, statistical rows, the program's rows, "All Files".
WinUtils::basic_ofn_filter_t<char> TransferDialogFilter();

// Asks for a file and tells its type: from the extension, by the first row that matches it, else
// from the row that stood in the type box, whose default extension is then appended. eFAILED, with
// UNKNOWN_FILE_TYPE and a message, when no row fits. `folder` and `fileName` may be empty.
eRESULT AskForFileAndType(bool save, const std::string& folder, const std::string& fileName,
                          std::string& name, std::int32_t& type);

}  // namespace STUtils
