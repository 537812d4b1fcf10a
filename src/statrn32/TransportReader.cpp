// Reads SAS transport files, versions 5 and 8, with any number of data sets.
//
// Records of 80 bytes, numbers big-endian. Behind the library's cards each data set has its own:
// MEMBER (with the size of a variable's description), DSCRPTR with name and label, NAMESTR with the
// number of variables, then their descriptions packed without gaps, in version 8 perhaps the long
// labels, then OBS and the rows packed without gaps. Numbers are hexadecimal floating point in 2 to
// 8 bytes.
#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/SasFiles.h"

namespace statrn32 {
namespace {

constexpr std::int64_t kCard = 80;

// Does this card begin so? Both versions name their cards a little differently.
bool IsCard(std::string_view card, std::string_view name, std::string_view nameV8) {
  constexpr std::string_view kHead = "HEADER RECORD*******";
  const std::string_view kind = card.substr(std::min(card.size(), kHead.size()), 8);
  return card.substr(0, kHead.size()) == kHead && (kind == name || kind == nameV8);
}

std::string_view WithoutPadding(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.remove_suffix(1);
  return text;
}

std::int64_t DigitsAt(std::string_view card, std::size_t at, std::size_t count) {
  std::int64_t number = 0;
  const std::string_view digits = card.substr(std::min(at, card.size()), count);
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

// A sign bit, a power of 16 above 64 in seven bits, a fraction in the rest.
double NumberOf(std::string_view bytes) {
  CByteReader in(bytes);
  in.SetBigEndian(true);
  const unsigned head = in.U8();
  const std::size_t rest = bytes.size() - 1;
  const std::uint64_t fraction = in.Unsigned(rest);
  const int power = 4 * (static_cast<int>(head & 0x7F) - 64) - 8 * static_cast<int>(rest);
  const double size = std::ldexp(static_cast<double>(fraction), power);
  return (head & 0x80) != 0 ? -size : size;
}

// A missing value is a full stop, an underscore or a letter before zeros; its tag, or 0.
char MissingMark(std::string_view bytes) {
  const char first = bytes.front();
  const bool mark = first == '.' || first == '_' || (first >= 'A' && first <= 'Z');
  const bool zeros = bytes.find_first_not_of('\0', 1) == std::string_view::npos;
  return mark && zeros ? first : 0;
}

class CTransportReader final : public CFileReader {
 public:
  CTransportReader() : CFileReader(12) {
    SetDates({kSasEpochDay, DATE_KIND::DayDate, DATE_KIND::Seconds, DATE_KIND::TimeOfDay});
  }

  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;
  std::string GuessedEncoding() const override { return decoder_.GuessedEncoding(); }
  std::vector<std::string> Tables() const override;
  std::vector<std::string> Notes() const override;

 private:
  struct MEMBER {
    std::string name;
    std::int64_t begin;  // of its first card
    std::int64_t end;
  };
  struct FIELD {
    bool text;
    std::size_t offset;
    std::size_t bytes;
  };

  bool ReadCard(std::string* card);
  bool ReadDescriptions(std::int64_t count, std::int64_t bytes, DICTIONARY* out);
  bool ReadDescription(std::string_view bytes, DICTIONARY* out);
  bool ReadLongLabels(std::string_view card, DICTIONARY* out);
  bool CountRows(std::string_view observations, std::int64_t end, DICTIONARY* out);
  bool IsBlank(std::int64_t begin, std::int64_t end);

  std::vector<MEMBER> members_;
  std::size_t member_ = 0;
  CTextDecoder decoder_;
  std::vector<FIELD> fields_;
  std::size_t rowBytes_ = 0;
  std::int64_t rows_ = 0;
  std::int64_t next_ = 0;
  std::string row_;
};

bool CTransportReader::ReadCard(std::string* card) {
  card->resize(kCard);
  return ReadExactly(card->data(), kCard, "its header");
}

// Finds where the data sets begin, and their names.
bool CTransportReader::LookInside() {
  constexpr std::int64_t kCardsAtOnce = 4096;
  std::string block(static_cast<std::size_t>(kCard * kCardsAtOnce), '\0');
  Input().Seek(0);
  for (std::int64_t place = 0;; place += kCard * kCardsAtOnce) {
    const std::int64_t got = Input().Read(block.data(), static_cast<std::int64_t>(block.size()));
    for (std::int64_t at = 0; at + kCard <= got; at += kCard) {
      if (block[static_cast<std::size_t>(at)] != 'H') continue;
      const std::string_view card(block.data() + at, kCard);
      if (!IsCard(card, "MEMBER  ", "MEMBV8  ")) continue;
      if (!members_.empty()) members_.back().end = place + at;
      members_.push_back({{}, place + at, Input().Size()});
    }
    if (got < static_cast<std::int64_t>(block.size())) break;
  }
  if (members_.empty()) return FailFile("there is no data set in this transport file");
  std::string card;
  for (MEMBER& member : members_) {
    Input().Seek(member.begin + 2 * kCard);
    if (!ReadCard(&card)) return false;
    const bool long8 = WithoutPadding(std::string_view(card).substr(16, 8)) != "SASDATA";
    const std::string_view name = std::string_view(card).substr(8, long8 ? 32 : 8);
    member.name = TextForDisplay(WithoutPadding(name));
  }
  return true;
}

std::vector<std::string> CTransportReader::Tables() const {
  std::vector<std::string> names;
  for (const MEMBER& member : members_) names.push_back(member.name);
  return names;
}

bool CTransportReader::ReadHeader(DICTIONARY* out) {
  if (!Options().table.empty()) {
    while (member_ < members_.size() &&
           !EqualIgnoringCase(members_[member_].name, Options().table)) {
      ++member_;
    }
    if (member_ == members_.size()) {
      return FailFile("there is no data set \"" + Options().table + "\" in it");
    }
  }
  decoder_.SetEncoding(Options().encoding.c_str());
  const MEMBER& member = members_[member_];
  std::string card;
  Input().Seek(member.begin);
  if (!ReadCard(&card)) return false;
  const std::int64_t bytes = DigitsAt(card, 74, 4);
  Input().Seek(member.begin + 4 * kCard);
  if (!ReadCard(&card)) return false;
  if (!IsCard(card, "NAMESTR ", "NAMSTV8 ") || bytes < 136 || bytes > 1024) {
    return FailFile("the description of the data set " + member.name + " is damaged");
  }
  if (!ReadDescriptions(DigitsAt(card, 52, 6), bytes, out) || !ReadCard(&card)) return false;
  if (IsCard(card, "LABELV8 ", "LABELV9 ") && !ReadLongLabels(card, out)) return false;
  if (IsCard(card, "LABELV8 ", "LABELV9 ")) {
    do {
      if (!ReadCard(&card)) return false;
    } while (!IsCard(card, "OBS     ", "OBSV8   "));
  }
  if (!IsCard(card, "OBS     ", "OBSV8   ")) {
    return FailFile("the rows of the data set " + member.name + " do not begin where they should");
  }
  return CountRows(card, member.end, out);
}

bool CTransportReader::ReadDescriptions(std::int64_t count, std::int64_t bytes, DICTIONARY* out) {
  if (count < 1 || count * bytes > Input().Size() - Input().Position()) {
    return FailFile("the header tells of " + std::to_string(count) +
                    " variables, which the file has no room for");
  }
  const std::int64_t begin = Input().Position();
  std::string description(static_cast<std::size_t>(bytes), '\0');
  for (std::int64_t i = 0; i < count; ++i) {
    if (!ReadExactly(description.data(), bytes, "the description of a variable") ||
        !ReadDescription(description, out)) {
      return false;
    }
  }
  Input().Seek(begin + (count * bytes + kCard - 1) / kCard * kCard);
  return true;
}

bool CTransportReader::ReadDescription(std::string_view bytes, DICTIONARY* out) {
  constexpr std::size_t kLongName = 88;
  constexpr std::size_t kMostRowBytes = std::size_t{1} << 24;
  CByteReader in(bytes);
  in.SetBigEndian(true);
  FIELD field{};
  field.text = in.U16() == 2;
  in.Skip(2);
  field.bytes = in.U16();
  in.Skip(2);
  VARIABLE variable;
  variable.name = decoder_.Decode(in.Bytes(8));
  variable.label = decoder_.Decode(in.Bytes(40));
  const std::string_view format = WithoutPadding(in.Bytes(8));
  const int width = in.U16();
  const int decimals = in.U16();
  field.offset = rowBytes_;  // some writers give another position, but all pack in this order
  const std::string_view longName =
      bytes.size() > kLongName ? WithoutPadding(bytes.substr(kLongName, 32)) : std::string_view();
  if (!longName.empty() && longName.find('\0') == std::string_view::npos) {
    variable.name = decoder_.Decode(longName);
  }
  const bool legal = field.text ? field.bytes >= 1 : field.bytes >= 2 && field.bytes <= 8;
  if (!legal || field.offset + field.bytes > kMostRowBytes) {
    return FailFile("the description of the variable " + variable.name + " is damaged");
  }
  variable.type = field.text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  variable.width = field.text ? static_cast<int>(field.bytes) : width > 0 ? width : 12;
  variable.decimals = field.text ? 0 : decimals;
  if (!field.text) variable.date = SasDateKind(format);
  if (variable.date != DATE_KIND::None) variable.type = ST_TYPE_DATE;
  rowBytes_ += field.bytes;
  fields_.push_back(field);
  out->variables.push_back(std::move(variable));
  return true;
}

// Version 8: number of the variable, sizes of its name and label (and, with LABELV9, of its
// formats), then these texts.
bool CTransportReader::ReadLongLabels(std::string_view card, DICTIONARY* out) {
  const bool formats = card.substr(20, 8) == "LABELV9 ";
  const std::int64_t begin = Input().Position();
  const std::int64_t count = DigitsAt(card, 48, 15);
  std::string sizes(formats ? 10 : 6, '\0');
  std::string text;
  for (std::int64_t i = 0; i < count && i < static_cast<std::int64_t>(fields_.size()); ++i) {
    if (!ReadExactly(sizes.data(), static_cast<std::int64_t>(sizes.size()), "a label"))
      return false;
    CByteReader in(sizes);
    in.SetBigEndian(true);
    const std::size_t variable = in.U16();
    const std::size_t nameBytes = in.U16();
    const std::size_t labelBytes = in.U16();
    const std::size_t formatBytes = formats ? std::size_t{in.U16()} + in.U16() : 0;
    text.resize(nameBytes + labelBytes + formatBytes);
    if (!ReadExactly(text.data(), static_cast<std::int64_t>(text.size()), "a label")) return false;
    if (variable < 1 || variable > out->variables.size()) continue;
    out->variables[variable - 1].label =
        decoder_.Decode(std::string_view(text).substr(nameBytes, labelBytes));
  }
  const std::int64_t read = Input().Position() - begin;
  Input().Seek(begin + (read + kCard - 1) / kCard * kCard);
  return true;
}

bool CTransportReader::IsBlank(std::int64_t begin, std::int64_t end) {
  std::string bytes(static_cast<std::size_t>(end - begin), '\0');
  Input().Seek(begin);
  return Input().Read(bytes.data(), end - begin) == end - begin &&
         bytes.find_first_not_of(' ') == std::string::npos;
}

// The last card is filled up with blanks; short rows of blanks only at the very end are that.
bool CTransportReader::CountRows(std::string_view observations, std::int64_t end, DICTIONARY* out) {
  const std::int64_t begin = Input().Position();
  const auto bytes = static_cast<std::int64_t>(rowBytes_);
  const std::int64_t told = DigitsAt(observations, 48, 15);
  rows_ = (end - begin) / bytes;
  if (told > 0 && told <= rows_) {
    rows_ = told;
  } else {
    while (rows_ > 0 && end - (begin + (rows_ - 1) * bytes) < kCard &&
           IsBlank(begin + (rows_ - 1) * bytes, end)) {
      --rows_;
    }
  }
  out->cases = rows_;
  row_.resize(rowBytes_);
  Input().Seek(begin);
  return true;
}

void CTransportReader::FillBlock(CBlockFiller* out) {
  for (; next_ < rows_ && !out->Full(); ++next_) {
    if (!ReadExactly(row_.data(), static_cast<std::int64_t>(rowBytes_), "the rows")) return;
    for (const FIELD& field : fields_) {
      const std::string_view bytes(row_.data() + field.offset, field.bytes);
      if (field.text) {
        out->Text(&decoder_, bytes);
      } else if (const char mark = MissingMark(bytes); mark != 0) {
        out->MissingNumber(mark == '.' ? ST_STATUS_MISSING : ST_STATUS_TAGGED);
      } else {
        out->Number(NumberOf(bytes));
      }
    }
    out->EndRecord();
  }
}

std::vector<std::string> CTransportReader::Notes() const {
  std::vector<std::string> notes;
  if (members_.size() > 1 && Options().table.empty()) {
    std::string others;
    for (std::size_t i = 0; i < members_.size(); ++i) {
      if (i != member_) others += (others.empty() ? "" : ", ") + members_[i].name;
    }
    notes.push_back("Read was the data set " + members_[member_].name + "; the file also holds " +
                    others + ".");
  }
  return notes;
}

}  // namespace

std::unique_ptr<CReader> ReadTransport() {
  return std::make_unique<CTransportReader>();
}

}  // namespace statrn32
