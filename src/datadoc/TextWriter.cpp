#include "datadoc/TextWriter.h"

#include <algorithm>

#include "datadoc/FieldText.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr std::size_t kWriteBytes = std::size_t{128} << 10;

bool FieldsOverlap(std::vector<RANGE_KTQ> fields) {
  const auto before = [](const RANGE_KTQ& a, const RANGE_KTQ& b) {
    return a.line != b.line ? a.line < b.line : a.first < b.first;
  };
  std::sort(fields.begin(), fields.end(), before);
  const auto overlap = [](const RANGE_KTQ& a, const RANGE_KTQ& b) {
    return a.line == b.line && b.first <= a.last;
  };
  return std::adjacent_find(fields.begin(), fields.end(), overlap) != fields.end();
}

}  // namespace

CTextWriter::CTextWriter(int file, std::vector<RANGE_KTQ> fields)
    : file_(file), fields_(std::move(fields)), overlap_(FieldsOverlap(fields_)) {}

bool CTextWriter::AddLine(std::string_view line) {
  text_ += line;
  text_ += '\n';
  return FlushWhenLarge();
}

bool CTextWriter::AddRecord(std::span<const double> values) {
  badValue_ = -1;
  return (fields_.empty() ? AddFree(values) : AddFixed(values)) && FlushWhenLarge();
}

bool CTextWriter::AddFree(std::span<const double> values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!AppendFreeNumber(values[i], text_)) {
      badValue_ = static_cast<int>(i);
      return false;
    }
    text_ += ' ';
  }
  text_ += '\n';
  return true;
}

bool CTextWriter::AddFixed(std::span<const double> values) {
  if (values.size() != lineValues_) FindLines(values.size());
  const std::size_t record = text_.size();
  text_.resize(record + recordSize_, ' ');
  for (const Line& line : lines_) text_[record + line.begin + line.size] = '\n';
  for (std::size_t i = 0; i < values.size(); ++i) {
    const RANGE_KTQ& field = fields_[i];
    char* const at = text_.data() + record + lines_[static_cast<std::size_t>(field.line)].begin +
                     static_cast<std::size_t>(field.first);
    if (WriteField(values[i], field.Width(), field.decimals, at)) continue;
    badValue_ = static_cast<int>(i);
    return false;
  }
  return !overlap_ || ReadsBack(values);
}

// The lines of a record: each as long as its last field reaches, without a text where it has none.
void CTextWriter::FindLines(std::size_t values) {
  lineValues_ = values;
  lines_.clear();
  for (std::size_t i = 0; i < values; ++i) {
    const RANGE_KTQ& field = fields_[i];
    lines_.resize(std::max(lines_.size(), static_cast<std::size_t>(field.line) + 1), {0, 0});
    std::size_t& size = lines_.back().size;
    size = std::max(size, static_cast<std::size_t>(field.last) + 1);
  }
  recordSize_ = 0;
  for (Line& line : lines_) {
    line.begin = recordSize_;
    recordSize_ += line.size + 1;
  }
}

// A field that shares columns with a later one may have been written over.
bool CTextWriter::ReadsBack(std::span<const double> values) {
  const std::size_t record = text_.size() - recordSize_;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const RANGE_KTQ& field = fields_[i];
    const std::string_view text(
        text_.data() + record + lines_[static_cast<std::size_t>(field.line)].begin + field.first,
        static_cast<std::size_t>(field.Width()));
    FieldState state = FieldState::Number;
    if (ReadField(text, field.decimals, state) == values[i]) continue;
    badValue_ = static_cast<int>(i);
    return false;
  }
  return true;
}

bool CTextWriter::FlushWhenLarge() {
  return text_.size() < kWriteBytes || Flush();
}

bool CTextWriter::Flush() {
  if (!WriteAt(file_, offset_, text_.data(), text_.size())) return false;
  offset_ += static_cast<std::int64_t>(text_.size());
  text_.clear();
  return true;
}
