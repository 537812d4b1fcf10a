// A table of a report: headings and rows of texts.
#pragma once

#include <vector>

#include "host/Types.h"

struct TABLECOLUMN {
  CString heading;
  bool left = false;  // texts begin at the left edge; numbers end at the right one
};

struct TABLE {
  std::vector<TABLECOLUMN> columns;
  std::vector<std::vector<CString>> rows;
  // Columns in front that are repeated where a table is continued for want of width.
  std::size_t repeated = 1;
  std::size_t narrowest = 0;  // of the columns that hold numbers
};

// Characters that a UTF-8 text takes on the page.
std::size_t TextColumns(const CString& text);

// Appends the table, each column as wide as its widest text, two blanks apart and two from the
// margin. What does not fit into `pageColumns` follows below, as further tables of the same rows.
void AppendTable(const TABLE& table, int pageColumns, CString& out);
