// Format statements of fixed-column text files: "(F8.2, 3X, 2I1 / 5F4.0)".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/Types.h"

// One field of a fixed-column layout.
struct RANGE_KTQ {
  std::int32_t first = 0;     // column, counted from 0
  std::int32_t last = 0;      // column, inclusive
  std::int32_t decimals = 0;  // behind an implied point, where the text has none of its own
  std::int32_t line = 0;      // within the case, counted from 0

  std::int32_t Width() const { return last - first + 1; }
  friend bool operator==(const RANGE_KTQ&, const RANGE_KTQ&) = default;
};

struct FORMATFIELDS {
  std::vector<RANGE_KTQ> fields;
  CString problem;  // a sentence for people; empty: the statement was understood
};

// Columns of one case that a statement may reach; a line of that length is still held in memory.
inline constexpr std::int32_t kMostColumns = 1 << 20;
inline constexpr std::int32_t kMostDecimals = 300;

// The fields of a statement in their order, `most` of them at most: what stands behind those is not
// looked at.
//
// Items are separated by commas; letters may be of either case, and blanks may stand anywhere.
// r stands for a repeat count, w for a width and d for a number of decimals:
//   rFw.d  and the same with D, E, G or I: r fields of w columns
//   Aw     skips w columns
//   rX, Xw skips r columns, or w where a width is given
//   Hw     goes on at column w, counted from 1
//   /      ends the item before it and goes on in the next line of the case; the column stays
// Other letters are ignored. The statement ends at ")" or with the text.
FORMATFIELDS ParseFormat(std::string_view statement, std::size_t most);

// Does a line begin, behind blanks, as a format statement does?
bool BeginsFormat(std::string_view line);
