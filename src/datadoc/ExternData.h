// The kind of file that a data set belongs to, and what a reader hands in about one variable.
#pragma once

#include <cstdint>

#include "host/Types.h"

inline constexpr std::int32_t kSystemDataFile = 0;  // EXTERNDATA::data_type
inline constexpr std::int32_t kDsfFile = 1;
inline constexpr std::int32_t kTextFile = 2;

struct EXTERNDATA {
  static constexpr std::size_t kFormatStatementBytes = 256;

  std::int32_t data_type = kSystemDataFile;
  std::int32_t ma_type =
      0;  // below 1: cases; 1 and more: a text file of moment matrices and vectors
  // Places of the matrix and the two vectors in a matrix text file, counted from 1; 0: absent.
  std::uint8_t matrixPosition = 0;
  std::uint8_t firstVectorPosition = 0;
  std::uint8_t secondVectorPosition = 0;
  std::uint8_t fixedFormat = 0;  // fields stand in the columns that the format statement gives
  std::int32_t fullMatrix = 0;   // full rows, not a lower triangle
  std::int32_t group = 0;        // of a DSF file, counted from 0
  CString formatStatement;       // up to kFormatStatementBytes
};

// A variable as a reader hands it in: up to 16 and 32 bytes are taken.
struct LABSTRUCT {
  CString name;
  CString description;
};
