#include <limits>

#include <gtest/gtest.h>

#include "dataview/DisplayPattern.h"

TEST(CellPattern, IsBuiltFromWidthAndDecimals) {
  const struct {
    int width, decimals;
    const char *cell, *heading;
  } cases[] = {{13, 3, "########0.###", "#########.###"},
               {4, 0, "##0.", "###."},
               {3, 2, "0.##", "#.##"},
               {2, 5, "0.#####", "#.#####"},
               {0, -3, "#0.", "##."}};
  for (const auto& c : cases) {
    EXPECT_EQ(CellPattern(c.width, c.decimals), c.cell);
    EXPECT_EQ(HeadingPattern(c.width, c.decimals), c.heading);
  }
  EXPECT_EQ(CellPattern(200, 3).size(), 63U);
  EXPECT_EQ(CellPattern(5, 200).size(), 63U);
}

TEST(FormatByPattern, RoundsAndDropsZeros) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double value;
    const char *pattern, *text;
  } cases[] = {{1.5, "###0.###", "1.5"},
               {2, "###0.###", "2"},
               {0, "###0.###", "0"},
               {0.0004, "###0.###", "0"},
               {-0.0004, "###0.###", "0"},
               {-1.2346, "###0.###", "-1.235"},
               {1.5, "0.00", "1.50"},
               {1.25, "0.0#", "1.25"},
               {1, "0.0#", "1.0"},
               {0.5, "#.##", ".5"},
               {-0.5, "#.##", "-.5"},
               {12345678, "#0.#", "12345678"},
               {2.5, "##0.", "2"},
               {-999999, "###0.###", "-999999"},
               {kInfinity, "0.#", "Inf"},
               {-kInfinity, "0.#", "-Inf"},
               {0.0 * kInfinity, "0.#", "NaN"}};
  for (const auto& c : cases)
    EXPECT_EQ(FormatByPattern(c.value, c.pattern), c.text) << c.value << ' ' << c.pattern;
}
