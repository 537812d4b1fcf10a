// The file types that the open and save dialogs of import and export offer.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace STUtils {

// Type codes. 0 to 999 are formats of the transfer library, 1001 to 1005 text that the framework
// reads and writes itself.
inline constexpr std::int32_t NO_FORMAT_FILE_TYPE = -1;  // a row that names no format
inline constexpr std::int32_t UNKNOWN_FILE_TYPE = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t FIRST_TEXT_FILE_TYPE = 1001;
inline constexpr std::int32_t SPACE_TEXT_FILE_TYPE = 1002;
inline constexpr std::int32_t COMMA_TEXT_FILE_TYPE = 1003;
inline constexpr std::int32_t DELIMITED_TEXT_FILE_TYPE = 1004;  // the delimiter is asked for
inline constexpr std::int32_t TAB_TEXT_FILE_TYPE = 1005;
inline constexpr std::int32_t LAST_TEXT_FILE_TYPE = 1005;

constexpr bool IsTextFileType(std::int32_t type) {
  return type >= FIRST_TEXT_FILE_TYPE && type <= LAST_TEXT_FILE_TYPE;
}

// One row of a dialog's type box.
template <typename CharT>
class basic_file_type_info_t {
 public:
  using string = std::basic_string<CharT>;

  // `name` and `filter` must be given, else std::invalid_argument("null pointer"). Without a
  // default extension the first pattern whose extension holds no wildcard supplies it.
  basic_file_type_info_t(const CharT* name, const CharT* filter, const CharT* defaultExtension,
                         std::int32_t type);

  const string& displayName() const {
    return displayName_;
  }                                                 // the name and, in brackets, the filter
  const string& name() const { return name_; }      // as given
  const string& filter() const { return filter_; }  // patterns separated by ";"
  const string& defaultExtension() const { return defaultExtension_; }
  std::int32_t type() const { return type_; }
  // The patterns without everything up to their first "."; blanks are kept.
  const std::vector<string>& extensions() const { return extensions_; }

  // Does a file with this extension (without its dot) belong to the row? Case and blanks at either
  // end do not count; a row without a format never matches.
  bool matches(const string& extension) const;

 private:
  string name_;
  string displayName_;
  string filter_;
  string defaultExtension_;
  std::int32_t type_;
  std::vector<string> extensions_;
};

using file_type_info_t = basic_file_type_info_t<char>;

const std::vector<file_type_info_t>& TextFileTypes();
const std::vector<file_type_info_t>& StatFileTypes();
const file_type_info_t& AllFilesType();
const file_type_info_t& SystemDataFileType();
// The rows that the program adds (host/Host.h).
std::vector<file_type_info_t> HostFileTypes();
// Every row with a format: text rows, statistical rows, the program's rows.
std::vector<file_type_info_t> AllFormatTypes();

// The first row of AllFormatTypes() for a file's name or for a code; null when there is none. The
// type of a name without a matching row is UNKNOWN_FILE_TYPE.
std::int32_t TypeOfFileName(const std::string& fileName);
// The name of the format behind a code, for messages.
std::string NameOfType(std::int32_t type);

// Can files of this type be read and written by this version?
bool CanImport(std::int32_t type);
bool CanExport(std::int32_t type);

// The export utility of the surrounding package knows one format under a code of its own.
extern const std::map<std::int32_t, std::int32_t> cs_FILE_TYPE_TO_EXPORT_UTIL_FILE_TYPE_MAP;

}  // namespace STUtils
