#include "transfer/FileTypes.h"

#include <filesystem>
#include <string_view>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include "host/Host.h"
#include "host/Text.h"
#include "host/statrn32.h"

namespace STUtils {
namespace {

// Does `text` match a pattern of "?" and "*"? Case does not count.
bool MatchesPattern(std::string_view pattern, std::string_view text) {
  if (pattern.empty()) return text.empty();
  if (pattern.front() == '*') {
    for (std::size_t skip = 0; skip <= text.size(); ++skip) {
      if (MatchesPattern(pattern.substr(1), text.substr(skip))) return true;
    }
    return false;
  }
  if (text.empty()) return false;
  const bool same =
      pattern.front() == '?' || EqualIgnoringCase(pattern.substr(0, 1), text.substr(0, 1));
  return same && MatchesPattern(pattern.substr(1), text.substr(1));
}

// What stands behind the first "." of a pattern; the whole pattern where it has none.
std::string ExtensionOf(const std::string& pattern) {
  const std::size_t dot = pattern.find('.');
  return dot == std::string::npos ? pattern : pattern.substr(dot + 1);
}

std::vector<std::string> SplitFilter(const std::string& filter) {
  std::vector<std::string> patterns;
  if (!filter.empty()) boost::algorithm::split(patterns, filter, boost::is_any_of(";"));
  return patterns;
}

std::string FirstPlainExtension(const std::vector<std::string>& patterns) {
  for (const std::string& pattern : patterns) {
    const std::string extension = ExtensionOf(pattern);
    if (extension.find_first_of("?*") == std::string::npos) return extension;
  }
  return {};
}

const char* Checked(const char* text) {
  if (text == nullptr) throw std::invalid_argument("null pointer");
  return text;
}

}  // namespace

template <typename CharT>
basic_file_type_info_t<CharT>::basic_file_type_info_t(const CharT* name, const CharT* filter,
                                                      const CharT* defaultExtension,
                                                      std::int32_t type)
    : name_(Checked(name)), filter_(Checked(filter)), type_(type) {
  extensions_ = SplitFilter(filter_);
  defaultExtension_ =
      defaultExtension != nullptr ? defaultExtension : FirstPlainExtension(extensions_);
  for (string& extension : extensions_) extension = ExtensionOf(extension);
  displayName_ = name_;
  if (!displayName_.ends_with(' ')) displayName_ += ' ';
  displayName_ += '(' + filter_ + ')';
}

template <typename CharT>
bool basic_file_type_info_t<CharT>::matches(const string& extension) const {
  if (type_ == NO_FORMAT_FILE_TYPE) return false;
  for (const string& pattern : extensions_) {
    if (MatchesPattern(Trimmed(pattern), Trimmed(extension))) return true;
  }
  return false;
}

template class basic_file_type_info_t<char>;

const std::map<std::int32_t, std::int32_t> cs_FILE_TYPE_TO_EXPORT_UTIL_FILE_TYPE_MAP = {
    {COMMA_TEXT_FILE_TYPE, -2}};

const std::vector<file_type_info_t>& TextFileTypes() {
  static const std::vector<file_type_info_t> rows = {
      {"Free Format Data (Space Delimited)", "*.raw", nullptr, SPACE_TEXT_FILE_TYPE},
      {"Comma Delimited Data", "*.csv", nullptr, COMMA_TEXT_FILE_TYPE},
      {"Tab Delimited Data", "*.txt", nullptr, TAB_TEXT_FILE_TYPE},
  };
  return rows;
}

// Two rows share a code and a filter, one carries code 0 and one filter ends in a blank: all on
// purpose.
const std::vector<file_type_info_t>& StatFileTypes() {
  static const std::vector<file_type_info_t> rows = {
      {"Access", "*.mdb", nullptr, 23},
      {"dBASE", "*.dbf", nullptr, 6},
      {"Excel", "*.xls", nullptr, 7},
      {"Epi Info", "*.rec", nullptr, 32},
      {"Gauss", "*.dat", nullptr, 9},
      {"Gauss - Unix", "*.dat", nullptr, 9},
      {"HTML Table", "*.htm*", nullptr, 31},
      {"Informix", "*.ifx", nullptr, 27},
      {"JMP", "*.jmp", nullptr, 35},
      {"LIMDEP for Windows", "*.lpj", nullptr, 33},
      {"Lotus 1-2-3", "*.wk*;*.wr*", ".wk3", 0},
      {"Matlab Matrix", "*.mat", nullptr, 29},
      {"Mineset", "*.schema;*.sch", ".sch", 34},
      {"Minitab", "*.mtw", nullptr, 37},
      {"OSIRIS", "*.dct;*.dict", nullptr, 36},
      {"Paradox", "*.db", nullptr, 10},
      {"Quattro Pro", "*.wq?;*.wb?", ".wb2", 11},
      {"S-Plus", "*.ssc ", nullptr, 17},
      {"SAS Data File - Versions 7/8/9", "*.sd7;*.sas7bdat", nullptr, 38},
      {"SAS V6 Data File", "*.sd2", nullptr, 20},
      {"SAS Transport File", "*.stx", nullptr, 12},
      {"SAS Program & Data File", "*.sas", nullptr, 40},
      {"SPSS Data File", "*.sav", nullptr, 22},
      {"SPSS Portable File", "*.por", nullptr, 13},
      {"SPSS 'Syntax' & Data File", "*.sps", nullptr, 39},
      {"Stata", "*.dta", nullptr, 14},
      {"Stata Program & Data File", "*.do", nullptr, 41},
      {"Statistica", "*.sta", nullptr, 30},
      {"Systat", "*.syd", nullptr, 16},
      {"SigmaPlot File", "*.jnb", nullptr, 21},
      {"SQL Server (Sybase)", "*.syb", nullptr, 25},
      {"SQL Server (Microsoft)", "*.sql", nullptr, 28},
      {"Oracle", "*.ora", nullptr, 42},
      {"DB2", "*.db2", nullptr, 44},
  };
  return rows;
}

const file_type_info_t& AllFilesType() {
  static const file_type_info_t row("All Files", "*.*", nullptr, NO_FORMAT_FILE_TYPE);
  return row;
}

const file_type_info_t& SystemDataFileType() {
  static const file_type_info_t row("VEXMOR Data", "*.VSF", nullptr, NO_FORMAT_FILE_TYPE);
  return row;
}

std::vector<file_type_info_t> HostFileTypes() {
  std::vector<file_type_info_t> rows;
  for (const HostFileType& type : Host().ExtraFileTypes()) {
    const char* const extension =
        type.defaultExtension.empty() ? nullptr : type.defaultExtension.c_str();
    rows.emplace_back(type.name.c_str(), type.filter.c_str(), extension, type.type);
  }
  return rows;
}

std::vector<file_type_info_t> AllFormatTypes() {
  std::vector<file_type_info_t> rows = TextFileTypes();
  rows.insert(rows.end(), StatFileTypes().begin(), StatFileTypes().end());
  for (file_type_info_t& row : HostFileTypes()) rows.push_back(std::move(row));
  return rows;
}

std::int32_t TypeOfFileName(const std::string& fileName) {
  const std::string extension = std::filesystem::path(fileName).extension().string();
  if (extension.empty()) return UNKNOWN_FILE_TYPE;
  for (const file_type_info_t& row : AllFormatTypes()) {
    if (row.matches(extension.substr(1))) return row.type();
  }
  return UNKNOWN_FILE_TYPE;
}

std::string NameOfType(std::int32_t type) {
  for (const file_type_info_t& row : AllFormatTypes()) {
    if (row.type() == type) return row.name();
  }
  return "file type " + std::to_string(type);
}

bool CanImport(std::int32_t type) {
  return IsTextFileType(type) || ST_CanRead(type);
}

bool CanExport(std::int32_t type) {
  return IsTextFileType(type) || ST_CanWrite(type);
}

}  // namespace STUtils
