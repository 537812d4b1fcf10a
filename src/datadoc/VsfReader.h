// Reads the description of a system data file and says where its cells lie. Used by the document,
// the engine and the command line alike.
#pragma once

#include <cstdint>

#include "datadoc/DataSet.h"

struct VsfContents {
  // The description; `format` holds the layout, `records` the number of records that are really
  // there (a last partial one included), the arrays have exactly `variables` entries.
  TORVIKSTRUCT data;
  CString headerText;              // which of the header words the file begins with
  std::int64_t cellsOffset = 0;    // of the first cell
  std::int64_t wholeCells = 0;     // cells of these records that are completely there
  std::int32_t statedRecords = 0;  // as the header says
  bool damaged = false;            // something that the header promises is not there

  // Cells that the records need beyond those that are there; they count as missing.
  std::int64_t AbsentCells() const {
    return std::int64_t{data.records} * data.variables - wholeCells;
  }
};

enum class VsfStatus {
  Ok,
  NotCorrect,  // no header word, a negative number of variables, or one that cannot be true
  ReadError,   // the reason is in errno
};

// Reads from an open file. Damage behind the header word is no failure: what is not there gets its
// default. Memory is taken only for what the file holds. Throws std::bad_alloc when that is more
// than there is.
VsfStatus ReadVsf(int file, VsfContents& contents);
