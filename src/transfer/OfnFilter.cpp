#include "transfer/OfnFilter.h"

#include <filesystem>

namespace WinUtils {

template <typename CharT>
std::vector<FileDialogRow> basic_ofn_filter_t<CharT>::DialogRows() const {
  std::vector<FileDialogRow> rows;
  for (const row_type& row : rows_) {
    rows.push_back({row.displayName(), row.filter(), row.defaultExtension()});
  }
  return rows;
}

template class basic_ofn_filter_t<char>;

}  // namespace WinUtils

namespace STUtils {
namespace {

// The type of a name without an extension, which gets the one of the row that was chosen.
std::int32_t TypeOfChosenRow(const file_type_info_t& row, std::string& name) {
  if (row.type() == NO_FORMAT_FILE_TYPE) return UNKNOWN_FILE_TYPE;
  if (!row.defaultExtension().starts_with('.')) name += '.';
  name += row.defaultExtension();
  return row.type();
}

}  // namespace

WinUtils::basic_ofn_filter_t<char> TransferDialogFilter() {
  WinUtils::basic_ofn_filter_t<char> filter;
  filter.Add(TextFileTypes());
  filter.Add(StatFileTypes());
  filter.Add(HostFileTypes());
  filter.Add(AllFilesType());
  return filter;
}

eRESULT AskForFileAndType(bool save, const std::string& folder, const std::string& fileName,
                          std::string& name, std::int32_t& type) {
  const auto filter = TransferDialogFilter();
  FileDialogRequest request;
  request.save = save;
  request.flags = save ? FileDialogRequest::kSaveFlags : FileDialogRequest::kOpenFlags;
  request.title = save ? "Export Data" : "Import Data";
  request.folder = folder;
  request.fileName = fileName;
  request.rows = filter.DialogRows();
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return eCANCELLED;

  name = choice.path;
  const bool hasExtension = std::filesystem::path(name).has_extension();
  type = hasExtension
             ? TypeOfFileName(name)
             : TypeOfChosenRow(filter.Rows().at(static_cast<std::size_t>(choice.row)), name);
  if (type != UNKNOWN_FILE_TYPE) return eOK;
  AfxMessageBox("The type of the file is not known: " + name);
  return eFAILED;
}

}  // namespace STUtils
