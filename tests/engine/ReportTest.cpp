#include <limits>

#include <gtest/gtest.h>

#include "engine/report/Report.h"

namespace {

TEST(Report, ContinuesWideTablesBelowWithTheirFirstColumn) {
  TABLE table;
  table.columns = {{"Name", true}, {"first", false}, {"second", false}, {"third", false}};
  table.rows = {{"a", "1.0", "2.0", "3.0"}, {"b\xC3\xA4", "10.0", "20.0", "30.0"}};
  CString out;
  AppendTable(table, 24, out);
  EXPECT_EQ(out,
            "  Name  first  second\n"
            "  a       1.0     2.0\n"
            "  b\xC3\xA4     10.0    20.0\n"
            "\n"
            "  Name  third\n"
            "  a       3.0\n"
            "  b\xC3\xA4     30.0\n");
}

TEST(Report, KeepsEveryLineWithinThePage) {
  for (const int columns : {80, 132}) {
    CReport report;
    report.SetPage(columns);
    report.Title("Title");
    report.Section("Section");
    for (int words = 1; words < 60; ++words) {
      CString text;
      for (int i = 0; i < words; ++i)
        text += CString(static_cast<std::size_t>(1 + i % 9), 'x') + ' ';
      report.Paragraph(text);
      report.Warning(text);
    }
    report.End();
    const CString& text = report.Text();
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t end = text.find('\n', begin);
      EXPECT_LE(end - begin, static_cast<std::size_t>(columns));
      begin = end + 1;
    }
    EXPECT_EQ(text.find("\n\n\n"), CString::npos);
  }
}

TEST(Report, ShowsNumbersWithoutSurprises) {
  struct {
    double value;
    int decimals;
    const char* want;
  } const cases[] = {
      {1.5, 3, "1.500"},
      {-0.0001, 3, "0.000"},
      {-0.0006, 3, "-0.001"},
      {0, 0, "0"},
      {-0.2, 0, "0"},
      {123456789, 2, "123456789.00"},
      {1e15, 2, "1.00e+15"},
      {std::numeric_limits<double>::quiet_NaN(), 3, "."},
      {std::numeric_limits<double>::infinity(), 3, "overflow"},
  };
  for (const auto& c : cases) EXPECT_EQ(CReport::Number(c.value, c.decimals), c.want);
  EXPECT_EQ(CReport::Count(12), "12");
  EXPECT_EQ(CReport::Count(12.5), "12.50");
  EXPECT_EQ(CReport::Probability(0.0004), "<0.001");
  EXPECT_EQ(CReport::Probability(0.0006), "0.001");
}

// Two digits of the standard error at least; decimals that were asked for stay.
TEST(Report, ShowsEstimatesAsFarAsTheyAreKnown) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  struct {
    double value, error;
    const char* want;
    const char* fixed;
  } const cases[] = {
      {2.5, 0.5, "2.500", "2.500"},
      {-0.0317, 0.00903, "-0.0317", "-0.032"},
      {0.0000692, 0.0000564, "0.000069", "0.000"},
      {0.0000564, 0.0000564, "0.000056", "0.000"},
      {890420.4, 12000, "890420.400", "890420.400"},
      {3e-12, 2e-13, "3e-12", "0.000"},
      {-3, 2e-16, "-3.000", "-3.000"},
      {0, 2e-16, "0.000", "0.000"},
      {1.5, 0, "1.500", "1.500"},
      {1.5, kInfinite, "1.500", "1.500"},
  };
  CReport report;
  for (const auto& c : cases) {
    report.SetNumbers({0, 3, false});
    EXPECT_EQ(report.Estimate(c.value, c.error), c.want);
    report.SetNumbers({0, 3, true});
    EXPECT_EQ(report.Estimate(c.value, c.error), c.fixed);
  }
  EXPECT_EQ(CReport::Digits(-4.80991515e-18), "-4.81e-18");
}

TEST(Report, RepeatsEachWarningOnceAtTheEnd) {
  CReport report;
  report.Warning("careful");
  report.Warning("careful");
  CString all = report.TakeText();
  report.End();
  all += report.Text();
  std::size_t found = 0;
  for (std::size_t at = all.find("careful"); at != CString::npos;
       at = all.find("careful", at + 1)) {
    ++found;
  }
  EXPECT_EQ(found, 3U);
}

}  // namespace
