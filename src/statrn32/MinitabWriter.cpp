// The columns of a worksheet stand behind each other, but records come one by one: they wait in a
// temporary file.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "statrn32/ColumnFile.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/MinitabFiles.h"

namespace statrn32 {
namespace {

constexpr std::size_t kLineBytes = 80;
constexpr std::size_t kNumberBytes = 16;

class CMinitabWriter final : public CFileWriter {
 public:
  CMinitabWriter() : CFileWriter(37) {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override;

 private:
  // Of what went wrong before, such as a full disk, the first word stays.
  bool FailSpool() { return FailFile("temporary file: " + spool_.Reason()); }
  bool PutClosedLine(std::string line);
  bool PutColumn(std::size_t column);
  void AppendNumber(double number);

  CColumnFile spool_;
  std::string lines_;
  std::int64_t rounded_ = 0;
};

// A line that is not full of values.
bool CMinitabWriter::PutClosedLine(std::string line) {
  line.resize(kLineBytes - 1, ' ');
  return Put(line + ".\n");
}

bool CMinitabWriter::PutHeader() {
  if (!spool_.Create("")) return FailSpool();
  const std::int64_t columnBytes = Cases() * static_cast<std::int64_t>(sizeof(double));
  for (std::size_t i = 0; i < Variables().size(); ++i) {
    spool_.AddColumn(static_cast<std::int64_t>(i) * columnBytes, sizeof(double));
  }
  // The release is the one whose layout this is.
  return PutClosedLine(std::string(kMinitabMark) + " P1.1                      Release 9.1");
}

bool CMinitabWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const bool there = !cells[i].missing && !std::isnan(cells[i].number);
    const double number = there ? cells[i].number : kMinitabMissing;
    std::memcpy(spool_.Element(i), &number, sizeof number);
  }
  return spool_.EndRecord() || FailSpool();
}

bool CMinitabWriter::PutEnd() {
  if (!spool_.Flush()) return FailSpool();
  for (std::size_t i = 0; i < Variables().size(); ++i) {
    if (!PutColumn(i)) return false;
  }
  return true;
}

bool CMinitabWriter::PutColumn(std::size_t column) {
  std::array<char, kLineBytes> head;
  std::snprintf(head.data(), head.size(), "%%%7d%7d%7lld%7d %s", kMinitabColumn,
                static_cast<int>(column) + 1, static_cast<long long>(Cases()), kMinitabNumbers,
                Variables()[column].name.c_str());
  if (!PutClosedLine(head.data())) return false;
  std::size_t inLine = 0;
  const auto putNumbers = [&](std::string_view block) {
    lines_.clear();
    for (std::size_t at = 0; at < block.size(); at += sizeof(double)) {
      double number = 0;
      std::memcpy(&number, block.data() + at, sizeof number);
      AppendNumber(number);
      inLine = (inLine + kNumberBytes) % kLineBytes;
      if (inLine == 0) lines_ += '\n';
    }
    return Put(lines_);
  };
  const std::int64_t begin =
      static_cast<std::int64_t>(column) * Cases() * static_cast<std::int64_t>(sizeof(double));
  if (!spool_.ReadColumn(begin, sizeof(double), Cases(), putNumbers)) return FailSpool();
  return inLine == 0 || Put(std::string(kLineBytes - 1 - inLine, ' ') + ".\n");
}

// With a point and an exponent, as these files have them: a reader of fixed columns takes a number
// without a point for a fraction. Behind a blank or a minus: numbers are read without columns too.
void CMinitabWriter::AppendNumber(double number) {
  std::array<char, 2 * kNumberBytes> text;
  char* const first = text.data();
  char* end = first + text.size();
  const std::size_t most = std::signbit(number) ? kNumberBytes : kNumberBytes - 1;
  for (int decimals = 9; static_cast<std::size_t>(end - first) > most; --decimals) {
    end = std::to_chars(first, first + text.size(), number, std::chars_format::scientific, decimals)
              .ptr;
  }
  double back = 0;
  std::from_chars(first, end, back);
  if (back != number) ++rounded_;
  *std::find(first, end, 'e') = 'E';
  lines_.append(kNumberBytes - static_cast<std::size_t>(end - first), ' ').append(first, end);
}

std::vector<std::string> CMinitabWriter::Notes() const {
  if (rounded_ == 0) return {};
  return {"Numbers that were rounded to 10 digits: " + std::to_string(rounded_) + "."};
}

}  // namespace

constexpr NAME_RULES kMinitabNames = {8, "", "_", true, false, false, {}};
constexpr LIMITS kMinitabLimits = {
    .records = 9999999,  // a count has 7 digits
    .variables = 4000,
    .textBytes = 0,
    .largest = 1.2e30,  // 1.23456E+30 is a missing value
    .remark = "The file is a portable worksheet (*.mtp): numbers have 10 digits."};

std::unique_ptr<CWriter> WriteMinitab() {
  return std::make_unique<CMinitabWriter>();
}

}  // namespace statrn32
