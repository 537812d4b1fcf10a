// What a reader tells about a file before its records, and what a writer is told.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "statrn32/Dates.h"

namespace statrn32 {

// One value label. For labels of text values `isText` is set and `text` holds the value.
struct VALUE_LABEL {
  double number = 0;
  std::string text;
  bool isText = false;
  char tag = 0;  // 'a' to 'z' or '_' for the label of a tagged missing value, else 0
  std::string label;
};

using LABEL_SET = std::vector<VALUE_LABEL>;

// Values that a file declares to mean missing: both ends belong to it.
struct MISSING_RANGE {
  double low = 0;
  double high = 0;
  std::string lowText;
  std::string highText;
};

struct VARIABLE {
  std::string name;
  std::string label;
  std::int32_t type = 0;  // ST_TYPE_...
  DATE_KIND date = DATE_KIND::None;
  int width = 0;      // characters shown; of a text variable to be written: its bytes
  int decimals = 0;   // digits shown after the point
  int labelSet = -1;  // counted from 0; -1 for none
  std::vector<MISSING_RANGE> missing;
};

struct DICTIONARY {
  std::vector<VARIABLE> variables;
  std::vector<LABEL_SET> labelSets;
  std::string tableName;    // to be written, where the format names its tables; may be empty
  std::string password;     // of the database to be written to; may be empty
  std::int64_t cases = -1;  // -1: not known before the end
};

}  // namespace statrn32
