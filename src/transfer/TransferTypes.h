// What import and export share: results, one variable of a dictionary, one value of a record.
#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace STUtils {

// The result of every operation that asks the user something.
enum eRESULT {
  eOK = 0,
  eCANCELLED = 1,  // a file dialog was closed without choosing
  eFAILED = 2,     // the work failed, or the file matches no known type
};

// A label of one value; of a text value where `text` is set, of a tagged missing value where `tag`
// is.
template <typename CharT>
struct basic_value_label_t {
  double value = 0;
  CharT tag = 0;
  std::basic_string<CharT> text;
  std::basic_string<CharT> label;

  bool operator<(const basic_value_label_t& other) const {
    if (value != other.value) return value < other.value;
    if (tag != other.tag) return tag < other.tag;
    return text < other.text;
  }
};

// Records between two looks at progress.
inline constexpr int kRecordsPerStep = 1024;

// One variable of a dictionary. Text is as the source gives it.
template <typename CharT>
struct basic_variable_info_t {
  std::basic_string<CharT> name;
  bool auxiliary = false;  // set by the name handling of the text import
  bool selected = true;    // unselected variables are skipped by every writer
  std::int32_t type =
      -1;  // 1 numeric, 2 string, 64 numeric with a date or time display, -1 unknown
  std::int32_t printWidth = 0;
  std::int32_t decimals = 0;
  std::set<basic_value_label_t<CharT>> valueLabels;
  std::basic_string<CharT> label;  // a description of the variable; empty where there is none
};

// One value of one record.
template <typename CharT>
struct basic_variable_data_t {
  std::int32_t kind = -1;  // the type of this value; -1 before it is read
  bool missing = false;
  double value = 0;
  std::int32_t datePart1 = 0;  // calendar parts of a date or time
  std::int32_t datePart2 = 0;
  std::basic_string<CharT> text;  // of a string; "<missing>" when missing; a formatted date
};

using variable_info_t = basic_variable_info_t<char>;
using variable_data_t = basic_variable_data_t<char>;

}  // namespace STUtils
