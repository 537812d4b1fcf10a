// The layout of the header, numbers little-endian: 0 the word DADA; 6 the number of variables; 8
// the bytes of a row; 10 the bytes of the header; 12 the bytes of an element (2 whole numbers, 4
// and 8 floating point); from 128 on the names, of 8 letters and a NUL each. The data are rows of
// elements; NaN is missing. A variable whose name is written in small letters holds texts of up to
// 8 letters in the place of its numbers. The variant in one file begins with the word FFFFFFFF.
#include "statrn32/GaussFiles.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/BesideFile.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"

namespace statrn32 {
namespace {

constexpr unsigned kMagic = 0xDADA;
constexpr std::size_t kNames = 128;
constexpr std::size_t kNameBytes = 9;
constexpr std::size_t kTextBytes = 8;

class CGaussReader final : public CFileReader {
 public:
  CGaussReader() : CFileReader(9) {}

  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 protected:
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;

 private:
  bool ReadSideFile(std::string* header);
  void ReadNames(std::string_view header, DICTIONARY* out);
  void PutElement(CByteReader* in, std::size_t variable, CBlockFiller* out);

  CTextDecoder decoder_;
  std::size_t elementBytes_ = 0;
  std::vector<bool> text_;
  std::int64_t rows_ = 0;
  std::int64_t next_ = 0;
  std::string row_;
};

bool CGaussReader::ReadSideFile(std::string* header) {
  constexpr std::int64_t kMost = std::int64_t{1} << 20;
  constexpr std::string_view kOneFile("\xFF\xFF\xFF\xFF\0\0\0\0\xFF\xFF\xFF\xFF", 12);
  std::array<char, kOneFile.size()> first{};
  Input().Read(first.data(), first.size());
  Input().Seek(0);
  if (std::string_view(first.data(), first.size()) == kOneFile) {
    return FailFile(
        "this is a Gauss data set of one file, which is not read; please save it in "
        "the older form of two files (.dat and .dht)");
  }
  CInputFile side;
  const std::string name = FindBeside(Name(), "dht");
  if (name.empty() || !side.Open(name)) {
    return FailFile("its header, a file of the same name with .dht, is not beside it");
  }
  header->resize(static_cast<std::size_t>(std::min(side.Size(), kMost)));
  const std::int64_t got = side.Read(header->data(), static_cast<std::int64_t>(header->size()));
  header->resize(static_cast<std::size_t>(std::max<std::int64_t>(0, got)));
  return true;
}

bool CGaussReader::ReadHeader(DICTIONARY* out) {
  std::string header;
  if (!ReadSideFile(&header)) return false;
  CByteReader in(header);
  const bool magic = in.U16() == kMagic;
  in.Seek(6);
  const std::size_t variables = in.U16();
  const std::size_t rowBytes = in.U16();
  in.Skip(2);
  elementBytes_ = in.U16();
  if (!magic || !in.Ok()) return FailFile("its header (.dht) is none of Gauss");
  const bool known = elementBytes_ == 2 || elementBytes_ == 4 || elementBytes_ == 8;
  if (!known || variables == 0 || rowBytes != variables * elementBytes_ ||
      header.size() < kNames + variables * kNameBytes) {
    return FailFile("its header (.dht) is damaged: " + std::to_string(variables) +
                    " variables of " + std::to_string(elementBytes_) + " bytes in rows of " +
                    std::to_string(rowBytes));
  }
  row_.resize(rowBytes);
  text_.assign(variables, false);
  // A last row that is cut off counts: reading it tells of that.
  const auto bytes = static_cast<std::int64_t>(rowBytes);
  rows_ = (Input().Size() + bytes - 1) / bytes;
  decoder_.SetEncoding(Options().encoding, "CP437");
  ReadNames(header, out);
  out->cases = rows_;
  return true;
}

void CGaussReader::ReadNames(std::string_view header, DICTIONARY* out) {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    VARIABLE& variable = out->variables.emplace_back();
    variable.name = decoder_.Decode(header.substr(kNames + i * kNameBytes, kNameBytes));
    const char first = variable.name.empty() ? ' ' : variable.name[0];
    text_[i] = elementBytes_ == kTextBytes && first >= 'a' && first <= 'z';
    variable.type = text_[i] ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
    variable.width = text_[i] ? static_cast<int>(kTextBytes) : 12;
    variable.decimals = text_[i] || elementBytes_ == 2 ? 0 : 4;
  }
}

void CGaussReader::FillBlock(CBlockFiller* out) {
  for (; next_ < rows_ && !out->Full(); ++next_) {
    if (!ReadExactly(row_.data(), static_cast<std::int64_t>(row_.size()), "the rows")) return;
    CByteReader in(row_);
    for (std::size_t i = 0; i < text_.size(); ++i) PutElement(&in, i, out);
    out->EndRecord();
  }
}

void CGaussReader::PutElement(CByteReader* in, std::size_t variable, CBlockFiller* out) {
  if (text_[variable]) return out->Text(&decoder_, in->Bytes(kTextBytes));
  const double number = elementBytes_ == 8   ? in->F64()
                        : elementBytes_ == 4 ? static_cast<double>(in->F32())
                                             : in->I16();
  if (std::isfinite(number)) return out->Number(number);
  out->MissingNumber(ST_STATUS_MISSING);
}

}  // namespace

std::unique_ptr<CReader> ReadGauss() {
  return std::make_unique<CGaussReader>();
}

}  // namespace statrn32
