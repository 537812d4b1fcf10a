#include "engine/report/Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "host/Numbers.h"

namespace {

constexpr std::string_view kMargin = "  ";
constexpr std::string_view kOverflow = "overflow";

bool Overflows(const TABLE& table) {
  for (const auto& row : table.rows) {
    for (std::size_t j = 0; j < row.size() && j < table.columns.size(); ++j) {
      if (!table.columns[j].left && row[j].ends_with(kOverflow)) return true;
    }
  }
  return false;
}

// The form with an exponent, for numbers whose digits would fill a line.
CString Scientific(double value, int decimals) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*e", decimals, value);
  return text;
}

}  // namespace

void CReport::Title(std::string_view text) {
  const CString rule(static_cast<std::size_t>(columns_), '=');
  Gap();
  text_ += rule + '\n';
  text_ += kMargin;
  text_ += text;
  text_ += '\n' + rule + '\n';
}

void CReport::Section(std::string_view heading) {
  Gap();
  text_ += heading;
  text_ += '\n' + CString(TextColumns(CString(heading)), '-') + "\n\n";
}

void CReport::Subsection(std::string_view heading) {
  Gap();
  Wrapped(heading, kMargin, kMargin);
  text_ += '\n';
}

void CReport::Wrapped(std::string_view text, std::string_view first, std::string_view next) {
  CString line(first);
  bool empty = true;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const CString word(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (word.empty()) continue;
    if (!empty && TextColumns(line) + 1 + TextColumns(word) > static_cast<std::size_t>(columns_)) {
      text_ += line + '\n';
      line = next;
      empty = true;
    }
    if (!empty) line += ' ';
    line += word;
    empty = false;
  }
  text_ += line + '\n';
}

void CReport::Paragraph(std::string_view text) {
  Wrapped(text, kMargin, kMargin);
}

void CReport::Line(std::string_view text) {
  text_ += text;
  text_ += '\n';
}

void CReport::Gap() {
  const bool atStart = text_.empty() && handedOut_.empty();
  const bool gap = text_.empty() ? handedOut_ == "\n\n" : text_.ends_with("\n\n");
  if (!atStart && !gap) text_ += '\n';
}

void CReport::Table(const TABLE& table) {
  AppendTable(table, columns_, text_);
  if (!Overflows(table)) return;
  Warning(
      "\"overflow\" stands for figures beyond the range of numbers, about 1.8e308. Bring the "
      "variables to units with neither very large nor very small values with NE first.");
}

void CReport::Warning(std::string_view text) {
  Gap();
  Wrapped(text, "  WARNING: ", "           ");
  Gap();
  Keep(text);
}

void CReport::Keep(std::string_view warning) {
  if (std::find(warnings_.begin(), warnings_.end(), warning) == warnings_.end()) {
    warnings_.emplace_back(warning);
  }
}

CReport CReport::Blank() const {
  CReport blank;
  blank.columns_ = columns_;
  blank.format_ = format_;
  return blank;
}

void CReport::Append(std::string_view text, const std::vector<CString>& warnings) {
  text_ += text;
  for (const CString& warning : warnings) Keep(warning);
}

void CReport::Error(const FAULT& fault) {
  Gap();
  if (fault.line > 0) {
    Wrapped("line " + std::to_string(fault.line) + " of the syntax", "ERROR in ", "");
    if (!fault.lineText.empty()) Line("  " + fault.lineText);
    Gap();
  } else {
    Line("ERROR");
    Gap();
  }
  Wrapped(fault.cause, "  Cause:   ", "           ");
  if (!fault.remedy.empty()) Wrapped(fault.remedy, "  Remedy:  ", "           ");
}

CString CReport::TakeText() {
  constexpr std::size_t kGapBytes = 2;
  if (!text_.empty()) handedOut_ = text_.substr(text_.size() - std::min(text_.size(), kGapBytes));
  return std::exchange(text_, {});
}

void CReport::End() {
  if (warnings_.empty()) return;
  Section("Warnings of this run");
  for (const CString& warning : warnings_) Wrapped(warning, "  - ", "    ");
}

CString CReport::Number(double value, int decimals) {
  constexpr double kLargestPlain = 1e12;
  if (std::isnan(value)) return ".";
  if (std::isinf(value)) return CString(value < 0 ? "-" : "").append(kOverflow);
  if (std::abs(value) >= kLargestPlain) return Scientific(value, decimals);
  CString text = FormatFixed(value, 0, decimals);
  // A rounded zero has no sign.
  if (text.find_first_not_of("-0.") == CString::npos && text.starts_with('-')) text.erase(0, 1);
  return text;
}

CString CReport::Estimate(double value, double error) const {
  constexpr int kMostDecimals = 9;
  const double size = std::abs(error);
  if (format_.fixed || !(size > 0) || !std::isfinite(size)) return Number(value);
  const auto wanted = static_cast<int>(1 - std::floor(std::log10(size)));
  if (wanted <= kMostDecimals) return Number(value, std::max(wanted, format_.decimals));
  return std::abs(value) < 1 && value != 0 ? Digits(value) : Number(value);
}

CString CReport::Digits(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3g", value);
  return text;
}

CString CReport::Count(double value) {
  constexpr int kDecimals = 2;
  return Number(value, value == std::floor(value) ? 0 : kDecimals);
}

CString CReport::Probability(double p) {
  constexpr int kDecimals = 3;
  constexpr double kSmallest = 0.0005;
  if (std::isnan(p)) return ".";
  return p < kSmallest ? "<0.001" : FormatFixed(p, 0, kDecimals);
}
