// The layout. A byte 'K'; then records, each in pieces of up to 128 bytes between two bytes that
// tell the length (0x81: 128 bytes, and the record goes on with the next piece); at the end a byte
// 0x82. The first record holds three 16-bit integers: the number of variables, a kind, the number
// type. Where that is neither 1 (float) nor 2 (double), comments of 72 bytes follow, the last of
// which begins with "$", and then the integers again. A record of 12 bytes names each variable,
// texts with a "$" behind their 8 letters. Then one record a case: the numbers of all numeric
// variables, then the texts, of 12 bytes each.
#include "statrn32/SystatFiles.h"

#include <algorithm>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/ByteWriter.h"
#include "statrn32/FileReader.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/TextEncoder.h"

namespace statrn32 {
namespace {

constexpr unsigned char kBegin = 'K';
constexpr unsigned char kMore = 0x81;
constexpr unsigned char kEnd = 0x82;
constexpr std::size_t kPieceBytes = 128;
constexpr std::size_t kNameBytes = 12;
constexpr std::size_t kLetters = 8;
constexpr std::size_t kTextBytes = 12;
constexpr std::size_t kCommentBytes = 72;
constexpr unsigned kFloat = 1;
constexpr unsigned kDouble = 2;
constexpr double kMissing = -1e36;
constexpr double kLargest = 9.99e35;

class CSystatReader final : public CFileReader {
 public:
  CSystatReader() : CFileReader(16) {}

  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }

 private:
  // The next record, empty behind the last one; false after FailFile.
  bool NextRecord();
  bool ReadCounts(std::size_t* variables);
  bool SkipComments();
  bool ReadNames(std::size_t variables, DICTIONARY* out);
  std::int64_t StoredBytes() const;

  CTextDecoder decoder_;
  std::string record_;
  unsigned numberType_ = kDouble;
  std::size_t numberBytes_ = 0;     // of all numbers of a record
  std::vector<std::size_t> place_;  // of each variable in a record
  std::vector<bool> text_;
  std::size_t recordBytes_ = 0;
  bool ended_ = false;
};

bool CSystatReader::NextRecord() {
  record_.clear();
  for (;;) {
    unsigned char before = 0;
    unsigned char behind = 0;
    const std::int64_t place = Input().Position();
    if (!ReadExactly(&before, 1, "the records")) return false;
    if (before == kEnd && record_.empty()) return ended_ = true;
    const std::size_t bytes = std::min<std::size_t>(before, kPieceBytes);
    const std::size_t begin = record_.size();
    record_.resize(begin + bytes);
    if (before > kEnd ||
        !ReadExactly(record_.data() + begin, static_cast<int>(bytes), "a record") ||
        !ReadExactly(&behind, 1, "a record")) {
      return before <= kEnd ? false : FailFile("no record begins at byte " + std::to_string(place));
    }
    if (behind != before) {
      return FailFile("the piece at byte " + std::to_string(place) + " has two lengths");
    }
    constexpr std::size_t kMostBytes = std::size_t{1} << 20;
    if (record_.size() > kMostBytes) return FailFile("a record has more than a million bytes");
    if (before != kMore) return true;
  }
}

bool CSystatReader::ReadCounts(std::size_t* variables) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!NextRecord()) return false;
    CByteReader in(record_);
    *variables = in.U16();
    in.Skip(2);
    numberType_ = in.U16();
    if (!in.Ok()) break;
    if (numberType_ == kFloat || numberType_ == kDouble) return true;
    if (attempt == 0 && !SkipComments()) return false;
  }
  return FailFile("the counts at the beginning are damaged");
}

bool CSystatReader::SkipComments() {
  do {
    if (!NextRecord()) return false;
    if (record_.empty()) return FailFile("the comments at the beginning have no end");
  } while (record_[0] != '$');
  return true;
}

bool CSystatReader::ReadNames(std::size_t variables, DICTIONARY* out) {
  std::size_t texts = 0;
  for (std::size_t i = 0; i < variables; ++i) {
    if (!NextRecord()) return false;
    if (record_.size() < kNameBytes) {
      return FailFile("the name of variable " + std::to_string(i + 1) + " is cut off");
    }
    VARIABLE& variable = out->variables.emplace_back();
    const std::size_t mark = record_.find('$');
    text_.push_back(mark != std::string::npos);
    variable.type = text_.back() ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
    variable.width = static_cast<int>(kTextBytes);
    variable.decimals = text_.back() ? 0 : 3;
    variable.name = std::string(Trimmed(decoder_.Decode(record_.substr(0, mark))));
    place_.push_back(text_.back() ? texts++ : place_.size() - texts);
  }
  const std::size_t size = numberType_ == kFloat ? 4 : 8;
  numberBytes_ = (variables - texts) * size;
  for (std::size_t i = 0; i < variables; ++i) {
    place_[i] = text_[i] ? numberBytes_ + place_[i] * kTextBytes : place_[i] * size;
  }
  recordBytes_ = numberBytes_ + texts * kTextBytes;
  return true;
}

// Of one case's record, with the lengths around its pieces.
std::int64_t CSystatReader::StoredBytes() const {
  return static_cast<std::int64_t>(recordBytes_ +
                                   2 * ((recordBytes_ + kPieceBytes - 1) / kPieceBytes));
}

bool CSystatReader::ReadHeader(DICTIONARY* out) {
  decoder_.SetEncoding(Options().encoding, "CP437");
  Input().Seek(1);
  std::size_t variables = 0;
  if (!ReadCounts(&variables) || !ReadNames(variables, out)) return false;
  if (variables == 0) return FailFile("there are no variables");
  out->cases = (Input().Size() - Input().Position() - 1) / StoredBytes();
  return true;
}

void CSystatReader::FillBlock(CBlockFiller* out) {
  while (!ended_ && !out->Full() && NextRecord() && !ended_) {
    if (record_.size() < recordBytes_) {
      FailFile("a record of " + std::to_string(recordBytes_) + " bytes was expected before byte " +
               std::to_string(Input().Position()));
      return;
    }
    for (std::size_t i = 0; i < text_.size(); ++i) {
      CByteReader in(std::string_view(record_).substr(place_[i]));
      if (text_[i]) {
        out->Text(&decoder_, in.Bytes(kTextBytes));
        continue;
      }
      const double number = numberType_ == kFloat ? in.F32() : in.F64();
      const bool missing = !std::isfinite(number) || number == kMissing ||
                           number == static_cast<double>(static_cast<float>(kMissing));
      if (missing) {
        out->MissingNumber(ST_STATUS_MISSING);
      } else {
        out->Number(number);
      }
    }
    out->EndRecord();
  }
}

class CSystatWriter final : public CFileWriter {
 public:
  CSystatWriter() : CFileWriter(16), encoder_("CP437") {}

  std::vector<std::string> Notes() const override;

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return Put({reinterpret_cast<const char*>(&kEnd), 1}); }

 private:
  void AppendRecord(std::string_view bytes);

  CTextEncoder encoder_;
  CByteWriter record_;
  CByteWriter pieces_;
};

void CSystatWriter::AppendRecord(std::string_view bytes) {
  while (bytes.size() > kPieceBytes) {
    pieces_.U8(kMore).Bytes(bytes.substr(0, kPieceBytes)).U8(kMore);
    bytes.remove_prefix(kPieceBytes);
  }
  pieces_.U8(bytes.size()).Bytes(bytes).U8(bytes.size());
}

bool CSystatWriter::PutHeader() {
  pieces_.U8(kBegin);
  AppendRecord(CByteWriter().U16(30).U16(0).U16(0).Data());
  AppendRecord(std::string(kCommentBytes, '$'));
  AppendRecord(CByteWriter().U16(Variables().size()).U16(1).U16(kDouble).Data());
  for (const VARIABLE& variable : Variables()) {
    const bool text = variable.type == ST_TYPE_STRING;
    const std::string name(kLetters - std::min(kLetters, variable.name.size()), ' ');
    AppendRecord(CByteWriter()
                     .Field(name + variable.name, kLetters, ' ')
                     .Field(text ? "$" : "", kNameBytes - kLetters, ' ')
                     .Data());
  }
  const bool put = Put(pieces_.Data());
  pieces_.Clear();
  return put;
}

bool CSystatWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  record_.Clear();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (Variables()[i].type == ST_TYPE_STRING) continue;
    const bool missing = cells[i].missing || std::isnan(cells[i].number);
    record_.F64(missing ? kMissing : cells[i].number);
  }
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (Variables()[i].type != ST_TYPE_STRING) continue;
    record_.Field(cells[i].missing ? "" : encoder_.Encode(cells[i].text), kTextBytes, ' ');
  }
  AppendRecord(record_.Data());
  const bool put = Put(pieces_.Data());
  pieces_.Clear();
  return put;
}

std::vector<std::string> CSystatWriter::Notes() const {
  std::vector<std::string> notes;
  encoder_.Note(&notes);
  return notes;
}

}  // namespace

constexpr NAME_RULES kSystatNames = {kLetters, "", "_", true, true, false, {}};
constexpr LIMITS kSystatLimits = {
    .variables = 32767,
    .textBytes = kTextBytes,
    .largest = kLargest,
    .textRemark =
        "Letters outside code page 437 are lost; an empty text and a missing one are the "
        "same."};

bool IsSystat(std::string_view first) {
  // The first record is short and has the same length on both sides.
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(first[at]); };
  if (first.size() < 9 || byte(0) != kBegin || byte(1) != 6 || byte(8) != 6) return false;
  return byte(3) < 0x80;
}

std::unique_ptr<CReader> ReadSystat() {
  return std::make_unique<CSystatReader>();
}
std::unique_ptr<CWriter> WriteSystat() {
  return std::make_unique<CSystatWriter>();
}

}  // namespace statrn32
