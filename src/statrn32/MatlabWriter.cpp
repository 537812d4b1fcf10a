// MAT-files of level 5. The layout: 128 bytes of header; then for each variable an element that
// holds four others: flags with the class, the two dimensions, the name, the values by column. An
// element is a 32-bit type, a 32-bit size and its bytes, filled up to a multiple of 8.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/statrn32.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/ColumnFile.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/MatlabFiles.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

enum ELEMENT { kInt8 = 1, kUint16 = 4, kInt32 = 5, kUint32 = 6, kDouble = 9, kMatrix = 14 };
enum MATRIX_CLASS { kCharacters = 4, kDoubles = 6 };
constexpr std::size_t kHeaderBytes = 128;

std::size_t RoundedUp(std::size_t bytes) {
  return (bytes + 7) / 8 * 8;
}

class CMatlabWriter final : public CFileWriter {
 public:
  CMatlabWriter() : CFileWriter(29) {}

 protected:
  bool Create() override;
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return file_.Flush() || FailFile(file_.Reason()); }
  bool Close() override { return file_.Close() || FailFile(file_.Reason()); }

 private:
  bool PutMatrix(const VARIABLE& variable);
  void PutText(std::size_t column, std::size_t width, const OUT_CELL& cell);

  CColumnFile file_;
  std::int64_t end_ = 0;
};

bool CMatlabWriter::Create() {
  return file_.Create(Name()) || FailFile("cannot be created: " + file_.Reason());
}

std::size_t TextWidth(const VARIABLE& variable) {
  return static_cast<std::size_t>(std::max(1, variable.width));
}

bool CMatlabWriter::PutHeader() {
  constexpr unsigned kVersion = 0x0100;
  CByteWriter out;
  out.Field("MATLAB 5.0 MAT-file", 116, ' ').Zeros(8).U16(kVersion).Bytes("IM");
  if (!file_.Write(0, out.Data())) return FailFile(file_.Reason());
  end_ = kHeaderBytes;
  for (const VARIABLE& variable : Variables()) {
    if (!PutMatrix(variable)) return false;
  }
  return true;
}

// The head of the variable's element; its values follow as the records come.
bool CMatlabWriter::PutMatrix(const VARIABLE& variable) {
  const bool text = variable.type == ST_TYPE_STRING;
  const auto rows = static_cast<std::size_t>(Cases());
  const std::size_t columns = text ? TextWidth(variable) : 1;
  const std::size_t elementBytes = text ? 2 : 8;
  const std::size_t bytes = rows * columns * elementBytes;
  CByteWriter out;
  out.U32(kUint32).U32(8).U32(text ? kCharacters : kDoubles).U32(0);
  out.U32(kInt32).U32(8).U32(rows).U32(columns);
  out.U32(kInt8).U32(variable.name.size());
  out.Field(variable.name, RoundedUp(variable.name.size()), '\0');
  out.U32(text ? kUint16 : kDouble).U32(bytes);
  const std::size_t size = out.Size() + RoundedUp(bytes);
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
  if (size > kMost) {
    return FailFile("the variable " + variable.name + " would take " + std::to_string(size) +
                    " bytes; a variable of this file type has at most 2147483647");
  }
  CByteWriter head;
  head.U32(kMatrix).U32(size).Bytes(out.Data());
  if (!file_.Write(end_, head.Data())) return FailFile(file_.Reason());
  const std::int64_t begin = end_ + static_cast<std::int64_t>(head.Size());
  for (std::size_t i = 0; i < columns; ++i) {
    file_.AddColumn(begin + static_cast<std::int64_t>(i * rows * elementBytes), elementBytes);
  }
  end_ = begin + static_cast<std::int64_t>(RoundedUp(bytes));
  // The filling, so that the file is as long as its sizes say.
  const std::size_t filling = RoundedUp(bytes) - bytes;
  if (filling == 0) return true;
  return file_.Write(end_ - static_cast<std::int64_t>(filling), std::string(filling, '\0')) ||
         FailFile(file_.Reason());
}

bool CMatlabWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  std::size_t column = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (Variables()[i].type == ST_TYPE_STRING) {
      const std::size_t width = TextWidth(Variables()[i]);
      PutText(column, width, cells[i]);
      column += width;
      continue;
    }
    const double number = cells[i].missing ? std::nan("") : cells[i].number;
    std::memcpy(file_.Element(column++), &number, sizeof number);
  }
  return file_.EndRecord() || FailFile(file_.Reason());
}

// UTF-16 never has more units than UTF-8 has bytes.
void CMatlabWriter::PutText(std::size_t column, std::size_t width, const OUT_CELL& cell) {
  std::string wide = cell.missing ? std::string() : Utf16Of(cell.text);
  for (std::size_t i = 0; i < width; ++i) {
    char* const unit = file_.Element(column + i);
    const bool there = 2 * i + 1 < wide.size();
    unit[0] = there ? wide[2 * i] : ' ';
    unit[1] = there ? wide[2 * i + 1] : '\0';
  }
}

constexpr std::string_view kReserved[] = {
    "break", "case",   "catch",  "classdef", "continue",  "else",       "elseif",
    "end",   "for",    "if",     "global",   "otherwise", "persistent", "parfor",
    "spmd",  "return", "switch", "try",      "while",     "function"};

}  // namespace

constexpr NAME_RULES kMatlabNames = {63, "", "_", true, false, true, kReserved};
constexpr LIMITS kMatlabLimits = {
    .records = (std::numeric_limits<std::int32_t>::max() - 136) / 8,
    .textBytes = 4000,
    .textRemark = "An empty text and a missing one are the same; blanks at the end are lost."};

std::unique_ptr<CWriter> WriteMatlab() {
  return std::make_unique<CMatlabWriter>();
}

}  // namespace statrn32
