// What has to be known before a text data file can be opened.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Types.h"

inline constexpr std::int32_t kMostTextVariables = 32767;

// The answer of the dialog that asks for the number of variables (CAsc2VSFDlg).
struct ASC2VSF {
  std::int32_t variables = 1;  // 1 to kMostTextVariables
  bool namesOnTop = false;     // the first line holds their names
};

// What stands above the numbers of a text file.
struct TEXTFILETOP {
  bool names = false;      // a line of names
  bool statement = true;   // a line with the format statement, in a file of fixed format
  std::int64_t begin = 0;  // for the next open: the offset at which the numbers begin, 0: the top
};

// What the first line of a text file lets expect.
struct TEXTFILELOOK {
  bool readable = false;
  bool statement = false;  // it is a format statement, which says how many variables there are
  ASC2VSF proposal;        // else: a variable a word; names where none of the words is a number
};

TEXTFILELOOK LookAtTextFile(const CString& fileName);

// A line at the top of a text file.
struct TEXTLINE {
  CString text;
  std::int64_t begin = 0;  // its offset
  std::int64_t next = 0;   // offset of the line behind it
};

// The line at `offset`, up to a million characters of it. At the top of a file a byte-order mark is
// passed over.
TEXTLINE ReadTextLine(int file, std::int64_t offset);

// The words of a line.
std::vector<CString> WordsOf(const CString& line);

// Names as a line that WordsOf takes apart again: blanks in a name become "_".
CString NamesLine(const std::vector<CString>& names);
