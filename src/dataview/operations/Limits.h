// The ranges of the numbers that the dialogs of the data window take.
#pragma once

#include <algorithm>
#include <cstdint>

#include "host/Framework.h"

// Display format.
inline constexpr int kLeastColumnWidth = 4;
inline constexpr int kGreatestColumnWidth = 20;
inline constexpr int kMostDecimals = 8;

inline bool IsDisplayFormat(const DisplaySettings& settings) {
  return settings.width >= kLeastColumnWidth && settings.width <= kGreatestColumnWidth &&
         settings.decimals >= 0 && settings.decimals <= kMostDecimals && settings.alignment >= 0 &&
         settings.alignment <= 2;
}

// How many of something can be added beside `present` of at most `most`.
inline std::int32_t RoomBeside(std::int64_t present, std::int64_t most) {
  return static_cast<std::int32_t>(std::max<std::int64_t>(most - present, 0));
}
