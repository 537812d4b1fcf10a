// The contents listing: nothing in it acts, every line is a comment.
#include <algorithm>
#include <array>

#include "host/Numbers.h"
#include "host/Text.h"
#include "syntax/SyntaxText.h"

namespace {

constexpr std::size_t kNamesInLine = 8;
constexpr std::size_t kLabelBytes = 8;
constexpr std::array<const char*, 6> kTypeKeywords = {"OR", "CO", "CA", "CB", "CE", "FI"};

// A text out of the data file. A line end in it would begin a line that is no comment any more.
CString InLine(CString text) {
  const auto endsLine = [](char c) { return c == '\n' || c == '\r' || c == '\0'; };
  std::replace_if(text.begin(), text.end(), endsLine, ' ');
  return text;
}

CString Fixed2(double value) {
  return FormatFixed(value, 6, 2);
}

template <std::size_t N>
bool HasRange(const std::array<double, N>& missing) {
  return missing[kRangeLow] != kNotSet && missing[kRangeHigh] != kNotSet;
}

CString MissingPart(const TORVIKSTRUCT& data) {
  CString part = "MI=";
  for (std::size_t i = 0; i < kMissingValues; ++i) {
    if (data.missing[i] != kNotSet) part += Fixed2(data.missing[i]) + ',';
  }
  if (HasRange(data.missing)) {
    part += Fixed2(data.missing[kRangeLow]) + " - " + Fixed2(data.missing[kRangeHigh]) + ',';
  }
  part += FormatFixed(data.missing[kGlobalValue], 8, 0) + ' ';
  if (data.deletion == kListwise) part += "TR=LI ";
  if (data.deletion == kPairwise) part += "TR=PA ";
  return part;
}

class Listing {
 public:
  explicit Listing(const TORVIKSTRUCT& data)
      : data_(data), count_(static_cast<std::size_t>(std::max(data.variables, 0))) {}

  CString Write(bool withMissing) {
    text_ = "\n!Contents of VSFFILE: \n!-------------------- \n";
    AddDataLine(withMissing);
    AddNames();
    if (data_.weightVariable > 0) text_ += "!WE " + std::to_string(data_.weightVariable) + " \n";
    for (std::size_t i = 0; i < count_; ++i) AddType(data_.variable[i]);
    for (std::size_t i = 0; i < count_; ++i) AddCategories(i);
    for (std::size_t i = 0; withMissing && i < count_; ++i) AddMissing(data_.variable[i]);
    text_ += "!End of Contents \n!--------------- \n\n";
    return std::move(text_);
  }

 private:
  void AddDataLine(bool withMissing) {
    // Weighted cases are listed as none, on purpose.
    const std::int32_t cases = data_.weightVariable > 0 ? 0 : data_.records;
    text_ += "!DA NI=" + std::to_string(data_.variables) + " NO=" + std::to_string(cases) + ' ';
    if (withMissing) text_ += MissingPart(data_);
    text_ += '\n';
  }

  void AddNames() {
    text_ += "!LA\n";
    for (std::size_t i = 0; i < count_; ++i) {
      if (i % kNamesInLine == 0) text_ += '!';
      text_ += InLine(data_.variable[i].name) + ' ';
      if (i % kNamesInLine == kNamesInLine - 1 || i == count_ - 1) text_ += '\n';
    }
  }

  void AddType(const VARSTRUCT& variable) {
    const auto type = static_cast<std::uint32_t>(variable.type);
    if (type >= kTypeKeywords.size()) return;
    text_ += CString("!") + kTypeKeywords[type] + ' ' + InLine(variable.name) + " \n";
  }

  void AddCategories(std::size_t index) {
    const VARSTRUCT& variable = data_.variable[index];
    if (variable.categories < 1) return;
    text_ += "!CL " + InLine(variable.name) + ' ';
    const std::size_t begin = index * kCategorySlots;
    const auto used = std::min(static_cast<std::size_t>(variable.categories), kCategorySlots);
    for (std::size_t slot = begin; slot < begin + used; ++slot) {
      text_ += std::to_string(data_.categoryValues[slot]) + " = " +
               InLine(CutText(data_.categoryLabels[slot], kLabelBytes)) + ' ';
    }
    text_ += '\n';
  }

  void AddMissing(const VARSTRUCT& variable) {
    constexpr std::string_view kStart = "!MI ";
    CString line(kStart);
    for (std::size_t i = 0; i < kMissingValues; ++i) {
      if (variable.missing[i] != kNotSet) line += Fixed2(variable.missing[i]) + ", ";
    }
    if (line.size() == kStart.size()) return;
    // A variable's range is never listed; what it does is keep the last comma.
    if (!HasRange(variable.missing)) line[line.size() - 2] = ' ';
    text_ += line + InLine(variable.name) + '\n';
  }

  const TORVIKSTRUCT& data_;
  std::size_t count_;
  CString text_;
};

}  // namespace

CString ContentsListing(const TORVIKSTRUCT& data, bool withMissing) {
  return Listing(data).Write(withMissing);
}
