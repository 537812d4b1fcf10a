// What "Add Variables" makes of its one line of text, and the new variable records.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "datadoc/DataSet.h"

inline constexpr std::size_t kNameBytes = 16;         // longer names are cut
inline constexpr std::int32_t kMostNewIndex = 32767;  // variables that a data window numbers

// A single name (both indices -1), or the names stem + first to stem + last.
struct NewVariables {
  CString stem;
  std::int32_t first = -1;
  std::int32_t last = -1;

  std::int32_t Count() const { return first < 0 ? 1 : last - first + 1; }
};

// Reads "age" or "var1 - var5". Empty, with the message in `problem`, when a range is none, or has
// more variables than fit beside the `present` ones.
std::optional<NewVariables> ParseNewVariables(std::string_view text, std::int32_t present,
                                              CString& problem);

// Appends the records and raises the capacity by eights until it holds them. Of a range only the
// first new record has its missing values set (once for every name), which is on purpose; the
// others keep those of a freshly grown record.
void AppendVariables(const NewVariables& added, TORVIKSTRUCT& copy, std::int32_t& capacity);

// Gives a variable, counted from 0, a name, cut to its first 16 characters.
void RenameVariable(TORVIKSTRUCT& copy, std::int32_t variable, std::string_view name);
