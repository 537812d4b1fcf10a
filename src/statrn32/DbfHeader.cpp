#include "statrn32/DbfHeader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "statrn32/HeaderBytes.h"

namespace statrn32 {
namespace {

constexpr char kFieldsEnd = '\r';
constexpr std::size_t kMostFields = 4096;
constexpr std::int64_t kDbase2Begin = 521;
constexpr unsigned kHiddenFlag = 1;
constexpr unsigned kNullableFlag = 2;

DBF_FAMILY FamilyOf(std::uint8_t version) {
  if (version == 0x02) return DBF_FAMILY::Dbase2;
  if (version == 0x04 || version == 0x8C) return DBF_FAMILY::Dbase7;
  const bool foxPro = (version >= 0x30 && version <= 0x32) || version == 0xF5;
  return foxPro ? DBF_FAMILY::FoxPro : DBF_FAMILY::Dbase3;
}

void ReadField(DBF_FAMILY family, CHeaderBytes* in, char first, DBF_FIELD* out, unsigned* flags) {
  std::array<char, 32> name{first};
  const std::int64_t nameBytes = family == DBF_FAMILY::Dbase7 ? 32 : 11;
  in->Bytes(name.data() + 1, nameBytes - 1);
  out->name.assign(name.data(), static_cast<std::size_t>(nameBytes));
  out->name.resize(std::min(out->name.find('\0'), out->name.size()));
  out->type = static_cast<char>(in->Unsigned(1));
  if (family == DBF_FAMILY::Dbase3 || family == DBF_FAMILY::FoxPro) in->Skip(4);
  out->length = in->Unsigned(1);
  if (family == DBF_FAMILY::Dbase2) in->Skip(2);
  out->decimals = static_cast<int>(in->Unsigned(1));
  if (family == DBF_FAMILY::Dbase7) in->Skip(13);
  if (family == DBF_FAMILY::Dbase2 || family == DBF_FAMILY::Dbase7) return;
  *flags = static_cast<unsigned>(in->Unsigned(1));
  in->Skip(13);
}

bool ReadFields(CHeaderBytes* in, DBF_HEADER* out, std::string* error) {
  int bit = 0;
  while (out->fields.size() < kMostFields) {
    const auto first = static_cast<char>(in->Unsigned(1));
    if (!in->Ok() || first == kFieldsEnd) break;
    DBF_FIELD field;
    unsigned flags = 0;
    ReadField(out->family, in, first, &field, &flags);
    if (!in->Ok() || !IsDbfType(field.type)) {
      *error = "the description of field " + std::to_string(out->fields.size() + 1) +
               " is damaged or cut off";
      return false;
    }
    if (out->family == DBF_FAMILY::FoxPro) {
      field.hidden = (flags & kHiddenFlag) != 0 || field.type == '0';
      if (field.type == 'V' || field.type == 'Q') field.shortBit = bit++;
      if ((flags & kNullableFlag) != 0) field.nullBit = bit++;
    }
    out->fields.push_back(std::move(field));
  }
  if (!in->Ok()) *error = "the file ends within its header";
  return in->Ok();
}

std::size_t PlaceFields(DBF_HEADER* out) {
  std::size_t offset = 1;
  for (DBF_FIELD& field : out->fields) {
    field.offset = offset;
    offset += field.length;
  }
  return offset;
}

// Some programs keep texts of more than 255 bytes and put the upper half of the length into the
// decimals.
void WidenTexts(DBF_HEADER* out) {
  std::size_t bytes = 1;
  const auto lengthOf = [](const DBF_FIELD& field) {
    return field.type == 'C' ? field.length + static_cast<std::size_t>(field.decimals) * 256
                             : field.length;
  };
  for (const DBF_FIELD& field : out->fields) bytes += lengthOf(field);
  if (bytes != out->recordBytes) return;
  for (DBF_FIELD& field : out->fields) field.length = lengthOf(field);
}

}  // namespace

bool IsDbfVersion(unsigned char version) {
  constexpr std::string_view kVersions(
      "\x02\x03\x04\x30\x31\x32\x43\x63\x7B\x83\x8B\x8C\x8E\xCB\xF5");
  return kVersions.find(static_cast<char>(version)) != std::string_view::npos;
}

bool IsDbfType(char type) {
  return type != 0 && std::string_view("CNFDLMIBYT@O+VGPQW0").find(type) != std::string_view::npos;
}

bool ReadDbfHeader(CInputFile* file, DBF_HEADER* out, std::string* error) {
  CHeaderBytes in(file);
  bool encrypted = false;
  out->version = static_cast<std::uint8_t>(in.Unsigned(1));
  out->family = FamilyOf(out->version);
  if (out->family == DBF_FAMILY::Dbase2) {
    out->records = static_cast<std::int64_t>(in.Unsigned(2));
    in.Skip(3);
    out->recordBytes = in.Unsigned(2);
    out->begin = kDbase2Begin;
  } else {
    in.Skip(3);
    out->records = static_cast<std::int64_t>(in.Unsigned(4));
    out->begin = static_cast<std::int64_t>(in.Unsigned(2));
    out->recordBytes = in.Unsigned(2);
    in.Skip(3);
    encrypted = in.Unsigned(1) == 1 && out->family != DBF_FAMILY::FoxPro;
    in.Skip(13);
    out->codePage = static_cast<std::uint8_t>(in.Unsigned(1));
    in.Skip(out->family == DBF_FAMILY::Dbase7 ? 38 : 2);
  }
  if (encrypted) {
    *error = "the table is encrypted; please copy it in dBASE without the encryption first";
    return false;
  }
  if (!ReadFields(&in, out, error)) return false;
  if (PlaceFields(out) < out->recordBytes) WidenTexts(out);
  const std::size_t bytes = PlaceFields(out);
  if (out->fields.empty()) {
    *error = "the header describes no fields";
    return false;
  }
  if (bytes > out->recordBytes) {
    *error = "the fields take " + std::to_string(bytes) + " bytes, a record has " +
             std::to_string(out->recordBytes);
    return false;
  }
  if (out->begin > file->Size()) {
    *error = "the file ends within its header";
    return false;
  }
  return true;
}

const char* EncodingOfDbf(std::uint8_t codePage) {
  switch (codePage) {
    case 0x01:
      return "CP437";
    case 0x02:
      return "CP850";
    case 0x03:
    case 0x57:
    case 0x58:
    case 0x59:
      return "CP1252";
    case 0x04:
      return "MACINTOSH";
    case 0x64:
    case 0x87:
      return "CP852";
    case 0x65:
    case 0x26:
      return "CP866";
    case 0x66:
      return "CP865";
    case 0x67:
      return "CP861";
    case 0x6A:
      return "CP737";
    case 0x6B:
      return "CP857";
    case 0x78:
      return "CP950";
    case 0x79:
      return "CP949";
    case 0x7A:
    case 0x4D:
      return "CP936";
    case 0x7B:
    case 0x13:
      return "CP932";
    case 0x96:
      return "MAC-CYRILLIC";
    case 0xC8:
      return "CP1250";
    case 0xC9:
      return "CP1251";
    case 0xCA:
      return "CP1254";
    case 0xCB:
      return "CP1253";
    case 0xCC:
      return "CP1257";
    default:
      return nullptr;
  }
}

}  // namespace statrn32
