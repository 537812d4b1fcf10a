// Reads the numbers of a text data file into a file of cells: cases in free or fixed format, or the
// parts of a moment matrix.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "datadoc/ExternData.h"
#include "datadoc/FormatStatement.h"

// Where the numbers stand, and how many there are to be.
struct TEXTSOURCE {
  int file = -1;
  std::int64_t begin = 0;         // offset of the first line of numbers
  std::int64_t bytes = 0;         // of the whole file, for progress
  std::int32_t variables = 0;     // 1 or more
  std::int32_t records = 0;       // below 1: as many as there are
  std::vector<RANGE_KTQ> fields;  // of fixed format, one a variable; empty: free format
};

// A text that is no number, or not only one, with the place of the first.
struct TEXTFAULTS {
  std::int64_t count = 0;
  std::int64_t record = 0;    // counted from 1
  std::int32_t variable = 0;  // counted from 0
  CString text;
};

struct TEXTRESULT {
  std::int64_t records = 0;  // written
  std::int64_t blanks = 0;   // fields without any text, read as 0
  TEXTFAULTS unreadable;     // read as 0
  TEXTFAULTS partial;        // read as the number that they begin with
  std::int64_t absent = 0;   // values that the last record lacks; they became -999999
  bool more = false;         // numbers were left behind the last record wanted
  int error = 0;             // errno of a failure; ECANCELED: stopped
  CString problem;           // a failure in words; empty with `error`
  bool Failed() const { return error != 0 || !problem.empty(); }
};

// Told the share of the file that is read; returns false to stop.
using TextProgress = std::function<bool(double)>;

// Writes the cases to the file of cells `scratch`, from its beginning on. Where the number of
// records is not given, blank lines at the end of the file are none.
TEXTRESULT ReadTextCases(const TEXTSOURCE& source, int scratch, const TextProgress& progress);

// Writes the rows of the matrix, then the first and the second vector, as far as `kind` places them
// in the file. A lower triangle is filled up with zeros. The matrix must be whole.
TEXTRESULT ReadTextMatrix(const TEXTSOURCE& source, const EXTERNDATA& kind, int scratch,
                          const TextProgress& progress);

// What came in that was no plain number, as a text for people; empty when there was none.
CString DescribeFaults(const TEXTRESULT& result, const std::vector<CString>& variableNames);
