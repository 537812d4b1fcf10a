#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/FileReader.h"
#include "statrn32/LineReader.h"
#include "statrn32/MinitabFiles.h"

namespace statrn32 {
namespace {

bool MeansMissing(double number) {
  return std::fabs(number - kMinitabMissing) < kMinitabMissing * 1e-6 || !std::isfinite(number);
}

class CMinitabReader final : public CFileReader {
 public:
  CMinitabReader() : CFileReader(37), lines_(&Input()) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Notes() const override;

 private:
  // A line with "%".
  struct HEAD {
    int kind = 0;
    int number = 0;
    int values = 0;
    int type = 0;
    std::string name;
  };
  bool FailLine(const std::string& what) {
    return FailFile("line " + std::to_string(lines_.Number()) + ": " + what);
  }
  bool ParseHead(HEAD* head);
  bool ReadValues(const HEAD& head, std::vector<double>* values);
  bool ReadAll(DICTIONARY* out);

  CLineReader lines_;
  CTextDecoder decoder_;
  std::string line_;
  std::vector<std::vector<double>> columns_;
  std::string leftOut_;
  std::size_t rows_ = 0;
  std::size_t row_ = 0;
};

bool CMinitabReader::ReadHeader(DICTIONARY* out) {
  decoder_.SetEncoding(Options().encoding.c_str());
  lines_.Next(&line_);
  if (!ReadAll(out)) return false;
  if (columns_.empty()) return FailFile("there is no column of numbers in it");
  for (const auto& column : columns_) rows_ = std::max(rows_, column.size());
  out->cases = static_cast<std::int64_t>(rows_);
  return true;
}

bool CMinitabReader::ReadAll(DICTIONARY* out) {
  constexpr std::size_t kMostColumns = 32767;
  while (lines_.Next(&line_)) {
    HEAD head;
    if (line_.empty() || line_[0] != '%') continue;
    if (!ParseHead(&head)) return FailLine("four numbers and a name are expected behind \"%\"");
    if (head.kind != kMinitabColumn || head.type != kMinitabNumbers) {
      leftOut_ += (leftOut_.empty() ? "" : ", ") + head.name;
      continue;
    }
    if (columns_.size() == kMostColumns) return FailLine("there are too many columns");
    columns_.emplace_back();
    if (!ReadValues(head, &columns_.back())) return false;
    VARIABLE variable;
    variable.name = head.name;
    variable.type = ST_TYPE_NUMERIC;
    variable.width = 12;
    const auto& values = columns_.back();
    const bool whole = std::all_of(values.begin(), values.end(),
                                   [](double x) { return MeansMissing(x) || x == std::trunc(x); });
    variable.decimals = whole ? 0 : 4;
    out->variables.push_back(std::move(variable));
  }
  return !lines_.TooLong() || FailLine("the line is too long");
}

bool CMinitabReader::ParseHead(HEAD* head) {
  constexpr std::size_t kNumberWidth = 7;
  constexpr std::size_t kNameAt = 1 + 4 * kNumberWidth + 1;
  constexpr std::size_t kDotAt = 79;
  std::size_t at = 1;
  for (int* const number : {&head->kind, &head->number, &head->values, &head->type}) {
    if (at + kNumberWidth > line_.size()) return false;
    const std::string_view text = Trimmed(std::string_view(line_).substr(at, kNumberWidth));
    const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
    if (failed != std::errc() || stop != text.data() + text.size()) return false;
    at += kNumberWidth;
  }
  if (line_.size() > kNameAt) {
    head->name =
        Trimmed(decoder_.Decode(std::string_view(line_).substr(kNameAt, kDotAt - kNameAt)));
  }
  if (head->name.empty()) head->name = "C" + std::to_string(head->number);
  return head->values >= 0;
}

// A minus may take the place of the blank between two numbers.
bool CMinitabReader::ReadValues(const HEAD& head, std::vector<double>* values) {
  const auto wanted = static_cast<std::size_t>(head.values);
  while (values->size() < wanted) {
    if (!lines_.Next(&line_) || (!line_.empty() && line_[0] == '%')) {
      return FailLine("the column " + head.name + " ends after " + std::to_string(values->size()) +
                      " of " + std::to_string(wanted) + " values");
    }
    std::string_view rest = Trimmed(line_);
    while (!rest.empty() && values->size() < wanted) {
      double number = 0;
      const auto [stop, failed] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
      if (failed != std::errc()) return FailLine("a number is expected");
      values->push_back(number);
      rest = Trimmed(rest.substr(static_cast<std::size_t>(stop - rest.data())));
    }
  }
  return true;
}

void CMinitabReader::FillBlock(CBlockFiller* out) {
  for (; row_ < rows_ && !out->Full(); ++row_) {
    for (const auto& column : columns_) {
      const bool there = row_ < column.size() && !MeansMissing(column[row_]);
      there ? out->Number(column[row_]) : out->MissingNumber(ST_STATUS_MISSING);
    }
    out->EndRecord();
  }
}

std::vector<std::string> CMinitabReader::Notes() const {
  if (leftOut_.empty()) return {};
  return {"Constants, matrices and columns of texts were left out: " + leftOut_ + "."};
}

}  // namespace

bool IsMinitabPortable(std::string_view first) {
  return first.starts_with(kMinitabMark);
}

std::unique_ptr<CReader> ReadMinitab() {
  return std::make_unique<CMinitabReader>();
}

}  // namespace statrn32
