// The worksheets of a SigmaPlot notebook.
//
// A compound file. Its stream JNBDirectory lists the items, little-endian: u16 items; each u16 kind
// (1: worksheet), title, u16 depth, name of its storage, u16, u8; texts stand behind a byte with
// their length. The stream JNBContents of a worksheet has a group for each column: 87 20 13 00, u32
// size, body. A body: u32 6, u32 flags (0x10: titles of the rows come first), u32 column, u32 first
// row, u32 column, u32 last row, 8 bytes, a title for each row if there are any, the column's
// title, a cell for each row.
//
// A cell has 16 bytes, the last of which is its kind: 0x16 a number (f64), 0x12 nothing, 0x15 a
// colour, 0x20 a text of the u32 at 4 bytes that stands behind the cell, 0 to 15 a text of so many
// bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "statrn32/ByteReader.h"
#include "statrn32/CompoundFile.h"
#include "statrn32/Sheet.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {

class CSigmaPlotWorkbook final : public CWorkbook {
 public:
  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override;
  bool Load(std::size_t sheet, CSheet* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 private:
  struct PLACE {
    std::string title;
    std::string storage;
  };

  bool ReadDirectory();
  void PutColumn(std::string_view body, CSheet* out);
  bool PutCell(CByteReader* in, std::uint32_t row, std::uint32_t column, CSheet* out);

  CCompoundFile file_;
  CTextDecoder decoder_;
  std::vector<PLACE> places_;
};

}  // namespace statrn32
