// The formats that are written, with what a test may ask of each.
#pragma once

#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

namespace sttest {

struct Format {
  std::int32_t type;
  const char* file;
  bool upperNames;
  bool valueLabels;
  bool utf8;
  bool emptyTextIsMissing;
  double largest;
  double tolerance;                           // relative
  bool labels = true;                         // of variables
  bool widths = true;                         // widths and decimals come back
  bool infinite = false;                      // every finite number has its place
  bool seeks = false;                         // cannot be written to a device
  bool emptyFile = true;                      // a file without records tells its variables
  int records = 60000;                        // of the large test
  double smallest = 2.2250738585072014e-308;  // number by size that has its place
};

inline void PrintTo(const Format& format, std::ostream* out) {
  *out << format.file;
}

inline constexpr double kMax = std::numeric_limits<double>::max();
inline constexpr Format kFormats[] = {
    {22, "t.sav", false, true, true, false, 1.79e308, 0},
    {22, "t.zsav", false, true, true, false, 1.79e308, 0},
    {13, "t.por", true, true, false, false, 1e308, 4e-16, true, true, false, false, true, 60000,
     1e-280},
    {14, "t.dta", false, true, true, false, 8e307, 0},
    {12, "t.xpt", true, false, true, false, 4.5e74, 0, true, true, false, false, true, 60000,
     1e-78},
    {12, "t.stx", true, false, true, false, 4.5e74, 0, true, true, false, false, true, 60000,
     1e-78},
    {6, "t.dbf", true, false, true, false, 1e308, 1e-13, false, false},
    {7, "t.xls", false, false, true, true, kMax, 0, false, false, true},
    {0, "t.wk1", false, false, true, true, kMax, 0, false, false, true, false, true, 8191},
    {11, "t.wq1", false, false, true, true, kMax, 0, false, false, true, false, true, 8191},
    {10, "t.db", false, false, true, false, kMax, 0, false, false, true},
    {16, "t.syd", true, false, true, false, 9.99e35, 0, false, false},
    {17, "t.ssc", false, false, true, false, kMax, 0, false, false, true},
    {25, "t.syb", false, false, true, false, kMax, 0, false, false, true},
    {27, "t.ifx", false, false, true, false, kMax, 0, false, false, true},
    {28, "t.sql", false, false, true, false, kMax, 0, false, false, true},
    {29, "t.mat", false, false, true, true, kMax, 0, false, false, true},
    {31, "t.html", false, false, true, true, kMax, 0, false, false, true},
    {32, "t.rec", true, false, true, true, kMax, 1e-7, true, false, true},
    {36, "t.dct", false, false, false, true, kMax, 0, false, false, true, true},
    {39, "t.sps", false, true, true, false, 1.79e308, 0},
    {40, "t.sas", false, true, true, false, 1.79e308, 0, true, false},
    {41, "t.do", false, true, true, false, 8e307, 0, true, false},
    {42, "t.ora", false, false, true, false, kMax, 0, false, false, true},
    {44, "t.db2", false, false, true, false, kMax, 0, false, false, true},
    {900, "t.xlsx", false, false, true, true, kMax, 0, false, false, true},
    {901, "t.ods", false, false, true, true, kMax, 0, false, false, true},
    {902, "t.sqlite", false, false, true, false, kMax, 0, false, false, true, true},
    {903, "t.jsonl", false, false, true, false, kMax, 0, false, false, true, false, false},
};

class RoundTrip : public testing::TestWithParam<Format> {
 protected:
  std::string Name() const { return folder_.Name(GetParam().file); }
  Table There(const Table& table) const { return WriteFile(table, GetParam().type, Name()); }
  Table Back() const { return ReadFile(GetParam().type, Name()); }

 private:
  TempFolder folder_;
};

}  // namespace sttest
