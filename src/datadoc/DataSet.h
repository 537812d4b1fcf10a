// The description of a data set: everything about it but its cells.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/Types.h"

// An optional double that is not set; told by exact equality.
inline constexpr double kNotSet = -9.999e301;
// What stands in a cell that has no value, and the default of the global missing value.
inline constexpr double kMissingCode = -999999.0;

inline constexpr std::size_t kCategorySlots = 15;  // category slots per variable
inline constexpr int kNoFormat = -1;               // format kinds
inline constexpr int kOldFormat = 1;
inline constexpr int kNewFormat = 2;

inline constexpr std::int32_t kOrdinal = 0;  // variable types
inline constexpr std::int32_t kContinuous = 1;
inline constexpr std::int32_t kCensoredAbove = 2;
inline constexpr std::int32_t kCensoredBelow = 3;
inline constexpr std::int32_t kCensoredBoth = 4;

inline constexpr std::int32_t kListwise = 0;  // deletion methods
inline constexpr std::int32_t kPairwise = 1;

// Where each missing-value definition stands in the arrays below.
inline constexpr std::size_t kMissingValues = 3;  // entries 0 to 2: single values
inline constexpr std::size_t kRangeLow = 3;
inline constexpr std::size_t kRangeHigh = 4;
inline constexpr std::size_t kGlobalValue = 5;  // only in the global definition

using MissingDefinition = std::array<double, 5>;
using GlobalMissingDefinition = std::array<double, 6>;

inline constexpr MissingDefinition kNoMissing = {kNotSet, kNotSet, kNotSet, kNotSet, kNotSet};
inline constexpr GlobalMissingDefinition kDefaultGlobalMissing = {kNotSet, kNotSet, kNotSet,
                                                                  kNotSet, kNotSet, kMissingCode};

// One variable.
struct VARSTRUCT {
  CString name;         // up to 8 bytes in the old layout, 16 in the new
  CString description;  // up to 32 bytes
  std::int32_t type = kOrdinal;
  MissingDefinition missing = kNoMissing;
  std::int32_t categories = 0;  // category slots in use, 0 to 15
};

// A data set. The per-variable arrays hold at least `variables` entries; slot k of variable v
// stands at v * kCategorySlots + k, also where it is not in use.
struct TORVIKSTRUCT {
  std::int32_t format = kNoFormat;
  std::array<std::int32_t, 3> settings{};  // kept and written back unchanged
  std::int32_t groupVariable = 0;          // counted from 1; 0: none
  std::array<std::uint8_t, 16> settingsBytes{};
  std::int32_t records = 0;
  std::int32_t variables = 0;
  GlobalMissingDefinition missing = kDefaultGlobalMissing;
  std::int32_t deletion = kListwise;
  std::int32_t weightVariable = 0;  // counted from 1; 0: none
  std::vector<VARSTRUCT> variable;
  std::vector<CString> categoryLabels;
  std::vector<std::int32_t> categoryValues;

  // Gives the per-variable arrays room for `capacity` variables; entries that stay keep their
  // content.
  void ResizeArrays(std::size_t capacity);
};

// The capacity for `variables` variables: grown by eights until it holds them, shrunk by eights
// while more than 8 are to spare and at least 17 are held.
std::int32_t CapacityFor(std::int32_t variables, std::int32_t capacity);

// Copies what a working copy of a data set carries for variable `index`: name, type, missing
// values, the number of categories and the categories in use. The description and unused slots of
// `to` stay.
void CopyVariable(const TORVIKSTRUCT& from, TORVIKSTRUCT& to, std::size_t index);

// Is this number of a variable, counted from 1, one of the data set's? Weight and group numbers
// beyond the variables stay in the file and mean none.
inline bool IsVariableNumber(const TORVIKSTRUCT& data, std::int32_t number) {
  return number >= 1 && number <= data.variables;
}
