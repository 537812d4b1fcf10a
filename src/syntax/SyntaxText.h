// The text of a data-screening syntax file.
#pragma once

#include "datadoc/DataSet.h"
#include "host/Types.h"

// Asks for the contents listing in place of a number of repetitions.
inline constexpr long kContentsListing = -9;

struct SyntaxRequest {
  CString systemFile;                  // the system data file that the run reads
  const CStringList* lines = nullptr;  // the command lines; null: none
  bool withMissing = true;             // missing values in the contents listing
  long repetitions = 1;                // or kContentsListing
  bool rewind = false;                 // each repetition starts again from the same data
};

// The whole text, line ends included.
CString SyntaxText(const TORVIKSTRUCT& data, const SyntaxRequest& request);

// The definitions of a data set as comment lines of the syntax, with a blank line at either end.
CString ContentsListing(const TORVIKSTRUCT& data, bool withMissing);
