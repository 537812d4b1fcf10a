// The record stream of an .xls file.
//
// A record is u16 id, u16 length, body; little-endian. Versions 5 to 8 (the last of 1997): a
// substream of globals (code page, date mode, number formats, cell formats, shared texts, places of
// the sheets), then one substream a sheet. Versions 2 to 4 hold one sheet and nothing else.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "statrn32/ByteReader.h"
#include "statrn32/Sheet.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {

class CXlsWorkbook final : public CWorkbook {
 public:
  bool Open(const std::string& name, const READ_OPTIONS& options) override;
  std::vector<std::string> Sheets() const override;
  bool Load(std::size_t sheet, CSheet* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 private:
  struct RECORD {
    unsigned id = 0;
    std::string_view body;
  };
  struct SHEET_PLACE {
    std::string name;
    std::size_t begin;
  };
  // A cell whose text comes in the next record.
  struct PENDING {
    bool waits = false;
    std::uint32_t row = 0;
    std::uint32_t column = 0;
  };

  bool ReadStream(const std::string& name);
  bool ReadVersion();
  bool NextRecord(std::size_t* at, RECORD* out) const;
  bool ReadGlobals();
  bool ReadGlobal(const RECORD& record, std::size_t at);
  void ReadCodePage(unsigned codePage);
  void ReadFormat(const RECORD& record);
  void ReadCellFormat(const RECORD& record);
  void ReadPlace(const RECORD& record);
  void ReadSharedTexts(const RECORD& record, std::size_t at);
  std::string LongText(CByteReader* in, std::size_t length);
  bool ReadCell(const RECORD& record, CSheet* out);
  void ReadLabel(const RECORD& record, CSheet* out);
  void ReadFormula(const RECORD& record, CSheet* out);
  void ReadPackedNumbers(const RECORD& record, CSheet* out);
  void ReadLogicalOrError(CByteReader* in, CSheet* out);
  void PutNumber(unsigned cellFormat, double number, CSheet* out);
  bool ReadPlaceOfCell(CByteReader* in, unsigned* cellFormat);
  DATE_KIND KindOfFormat(unsigned format) const;

  std::string stream_;
  int version_ = 0;  // 2, 3, 4, 5 or 8
  std::size_t firstRecord_ = 0;
  CTextDecoder decoder_;
  bool encodingChosen_ = false;
  bool from1904_ = false;
  std::vector<std::pair<unsigned, DATE_KIND>> formats_;  // number formats of the file
  std::vector<unsigned> cellFormats_;                    // number format of each
  std::vector<DATE_KIND> kinds_;                         // of the cell formats
  std::vector<SHEET_PLACE> places_;
  std::string texts_ = std::string(1, '\0');  // shared, NUL-terminated
  std::vector<std::size_t> textPlaces_;

  // Of the sheet being loaded.
  std::vector<std::uint64_t> stored_;
  std::uint32_t row_ = 0;
  std::uint32_t column_ = 0;
  PENDING pending_;
};

}  // namespace statrn32
