// The output of a run: plain text for a fixed font.
#pragma once

#include <string_view>
#include <vector>

#include "engine/Fault.h"
#include "engine/report/Table.h"

// How the numbers of an output are shown.
struct NUMBERFORMAT {
  int width = 0;       // columns of numbers are at least this wide
  int decimals = 3;    // of statistics and matrices
  bool fixed = false;  // estimates have these decimals, too
};

// Collects the text; the caller writes it where it belongs. Not thread-safe.
class CReport {
 public:
  void SetPage(int columns) { columns_ = columns; }
  void SetNumbers(const NUMBERFORMAT& format) { format_ = format; }
  const NUMBERFORMAT& Numbers() const { return format_; }

  void Title(std::string_view text);
  void Section(std::string_view heading);     // numbered by nothing, underlined
  void Subsection(std::string_view heading);  // a line of its own
  void Paragraph(std::string_view text);      // wrapped at the page's width
  void Line(std::string_view text);           // as it stands
  void Gap();                                 // an empty line, never two
  void Table(const TABLE& table);
  // Stands here and once more at the end.
  void Warning(std::string_view text);
  void Error(const FAULT& fault);
  // The warnings once more.
  void End();

  const CString& Text() const { return text_; }
  // Hands out what was written so far, and forgets it (the warnings are kept for the end).
  CString TakeText();
  // A report like this one without any text, and what such a one collected put at the end of this.
  CReport Blank() const;
  const std::vector<CString>& Warnings() const { return warnings_; }
  void Append(std::string_view text, const std::vector<CString>& warnings);
  bool HasWarnings() const { return !warnings_.empty(); }

  // A number with the report's decimals, or as many as asked for; without an exponent unless it has
  // too many digits for that; "." for one that is not defined, "overflow" for one beyond the range
  // of numbers (in tables with a warning).
  CString Number(double value) const { return Number(value, format_.decimals); }
  static CString Number(double value, int decimals);
  // An estimate or its standard error, with so many decimals more that two digits of the error are
  // shown; where the decimals are fixed, with those.
  CString Estimate(double value, double error) const;
  // Three digits, wherever they stand.
  static CString Digits(double value);
  // A sum of weights: whole ones without decimals.
  static CString Count(double value);
  // A probability, "<0.001" where it would show as zero.
  static CString Probability(double p);

 private:
  void Keep(std::string_view warning);
  void Wrapped(std::string_view text, std::string_view first, std::string_view next);

  int columns_ = 80;
  NUMBERFORMAT format_;
  CString text_;
  CString handedOut_;  // the end of what TakeText gave away
  std::vector<CString> warnings_;
};
