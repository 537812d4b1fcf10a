#include "statrn32/ParadoxHeader.h"

#include "statrn32/ByteReader.h"

namespace statrn32 {
namespace {

constexpr int kVersion4 = 5;  // as it stands in the file
constexpr int kVersion7 = 12;
constexpr std::size_t kDecimalBytes = 17;

bool IsKnown(unsigned type) {
  switch (static_cast<PARADOX_TYPE>(type)) {
    case PARADOX_TYPE::Text:
    case PARADOX_TYPE::Date:
    case PARADOX_TYPE::Int16:
    case PARADOX_TYPE::Int32:
    case PARADOX_TYPE::Money:
    case PARADOX_TYPE::Double:
    case PARADOX_TYPE::Logical:
    case PARADOX_TYPE::Memo:
    case PARADOX_TYPE::Blob:
    case PARADOX_TYPE::FormattedMemo:
    case PARADOX_TYPE::Object:
    case PARADOX_TYPE::Graphic:
    case PARADOX_TYPE::Time:
    case PARADOX_TYPE::Moment:
    case PARADOX_TYPE::Counter:
    case PARADOX_TYPE::Decimal:
    case PARADOX_TYPE::Bytes:
      return true;
  }
  return false;
}

bool ReadFields(CByteReader* in, std::size_t count, PARADOX_HEADER* out) {
  std::size_t offset = 0;
  for (std::size_t i = 0; i < count; ++i) {
    PARADOX_FIELD field;
    const unsigned type = in->U8();
    const std::size_t size = in->U8();
    if (!in->Ok() || !IsKnown(type)) return false;
    field.type = static_cast<PARADOX_TYPE>(type);
    const bool decimal = field.type == PARADOX_TYPE::Decimal;
    field.bytes = decimal ? kDecimalBytes : size;
    field.decimals = decimal ? static_cast<int>(size) : 0;
    field.offset = offset;
    offset += field.bytes;
    out->fields.push_back(std::move(field));
  }
  return true;
}

void ReadNames(CByteReader* in, PARADOX_HEADER* out) {
  for (PARADOX_FIELD& field : out->fields) {
    for (char c = static_cast<char>(in->U8()); c != '\0'; c = static_cast<char>(in->U8())) {
      field.name += c;
    }
  }
}

// What the header says of blocks and rows must lie within the file.
bool CheckSizes(const PARADOX_HEADER& header, std::int64_t fileBytes, std::string* error) {
  std::size_t bytes = 0;
  for (const PARADOX_FIELD& field : header.fields) bytes += field.bytes;
  if (header.rowBytes == 0 || bytes > header.rowBytes) {
    *error = "the fields take " + std::to_string(bytes) + " bytes, a row has " +
             std::to_string(header.rowBytes);
    return false;
  }
  if (header.blockBytes == 0 || header.headerBytes > fileBytes) {
    *error = "the header is damaged or cut off";
    return false;
  }
  return true;
}

}  // namespace

bool ReadParadoxHeader(CInputFile* file, PARADOX_HEADER* out, std::string* error) {
  constexpr std::int64_t kMostHeader = 65535;
  std::string bytes(static_cast<std::size_t>(std::min(file->Size(), kMostHeader)), '\0');
  file->Seek(0);
  const auto size = static_cast<std::int64_t>(bytes.size());
  if (file->Read(bytes.data(), size) != size) {
    *error = "the header cannot be read";
    return false;
  }
  CByteReader in(bytes);
  out->rowBytes = in.U16();
  out->headerBytes = in.U16();
  const unsigned kind = in.U8();
  out->blockBytes = in.U8() * std::int64_t{1024};
  out->rows = in.U32();
  in.Seek(0x0E);
  out->firstBlock = in.U16();
  in.Seek(0x21);
  const std::size_t fields = in.U16();
  in.Seek(0x25);
  std::uint32_t secret = in.U32();
  in.Seek(0x39);
  out->version = in.U8();
  const bool version4 = out->version >= kVersion4;
  if (version4 || secret == kParadoxPlain) {
    in.Seek(0x5C);
    secret = in.U32();
  }
  in.Seek(0x6A);
  if (version4) out->codePage = in.U16();
  if (kind != 0 && kind != 2) {
    *error = "this is an index of a Paradox table; please open the table (.db) itself";
    return false;
  }
  if (secret != 0) {
    *error =
        "the table is encrypted; please remove its password in Paradox, or export it there as "
        "dBASE or as text";
    return false;
  }
  in.Seek(version4 ? 0x78 : 0x58);
  if (fields == 0 || !ReadFields(&in, fields, out)) {
    *error = "the list of fields is damaged or cut off";
    return false;
  }
  in.Skip(4 + 4 * fields + (out->version >= kVersion7 ? 261 : 79));
  ReadNames(&in, out);
  if (!in.Ok()) {
    *error = "the names of the fields are damaged or cut off";
    return false;
  }
  return CheckSizes(*out, file->Size(), error);
}

}  // namespace statrn32
