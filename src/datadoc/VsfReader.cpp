#include "datadoc/VsfReader.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "datadoc/VsfLayout.h"
#include "vexutils/BlockIo.h"
#include "vexutils/FieldWidth.h"

namespace {

// Takes fields from the front of a buffer. A field that is not completely there keeps its default,
// and so does every field behind it.
class FieldReader {
 public:
  explicit FieldReader(std::string_view bytes) : bytes_(bytes) {}

  template <typename Number>
  void Take(Number& number) {
    if (const char* field = Next(sizeof number)) std::memcpy(&number, field, sizeof number);
  }
  // A text of fixed width, up to its first NUL.
  void TakeText(std::size_t width, CString& text) {
    if (const char* field = Next(width)) text.assign(field, strnlen(field, width));
  }
  bool Complete() const { return complete_; }

 private:
  const char* Next(std::size_t size) {
    complete_ = complete_ && bytes_.size() >= size;
    if (!complete_) return nullptr;
    const char* const field = bytes_.data();
    bytes_.remove_prefix(size);
    return field;
  }

  std::string_view bytes_;
  bool complete_ = true;
};

std::int32_t ClampCategories(std::int32_t categories) {
  return std::clamp<std::int32_t>(categories, 0, static_cast<std::int32_t>(kCategorySlots));
}

bool DecodeHeader(std::string_view bytes, TORVIKSTRUCT& data) {
  FieldReader fields(bytes);
  CString headerWord;
  fields.TakeText(kVsfHeaderWordBytes, headerWord);
  for (std::int32_t& setting : data.settings) fields.Take(setting);
  fields.Take(data.groupVariable);
  for (std::uint8_t& byte : data.settingsBytes) fields.Take(byte);
  fields.Take(data.records);
  fields.Take(data.variables);
  for (double& value : data.missing) fields.Take(value);
  fields.Take(data.deletion);
  fields.Take(data.weightVariable);
  return fields.Complete();
}

bool DecodeVariable(std::string_view bytes, std::size_t index, TORVIKSTRUCT& data) {
  FieldReader fields(bytes);
  VARSTRUCT& variable = data.variable[index];
  fields.TakeText(static_cast<std::size_t>(FieldWidth(data.format)), variable.name);
  fields.TakeText(kVsfDescriptionBytes, variable.description);
  fields.Take(variable.type);
  for (double& value : variable.missing) fields.Take(value);
  fields.Take(variable.categories);
  variable.categories = ClampCategories(variable.categories);
  const std::size_t firstSlot = index * kCategorySlots;
  for (std::size_t slot = firstSlot; slot < firstSlot + kCategorySlots; ++slot) {
    fields.TakeText(kVsfLabelBytes, data.categoryLabels[slot]);
  }
  for (std::size_t slot = firstSlot; slot < firstSlot + kCategorySlots; ++slot) {
    fields.Take(data.categoryValues[slot]);
  }
  return fields.Complete();
}

// Reads the variable blocks, many at a time; the arrays grow with what is read.
VsfStatus ReadVariables(int file, VsfContents& contents) {
  TORVIKSTRUCT& data = contents.data;
  const auto blockBytes = static_cast<std::size_t>(VsfBlockBytes(data.format));
  const auto variables = static_cast<std::size_t>(data.variables);
  const std::size_t blocksAtOnce = kBlockBytes / blockBytes;
  CString buffer;
  for (std::size_t first = 0; first < variables && !contents.damaged; first += blocksAtOnce) {
    const std::size_t count = std::min(blocksAtOnce, variables - first);
    buffer.resize(count * blockBytes);
    const std::int64_t offset = VsfCellsOffset(data.format, static_cast<std::int64_t>(first));
    const std::int64_t got = ReadAt(file, offset, buffer.data(), buffer.size());
    if (got < 0) return VsfStatus::ReadError;
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(got));
    data.ResizeArrays(first + count);
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t begin = std::min(i * blockBytes, bytes.size());
      const bool whole = DecodeVariable(bytes.substr(begin, blockBytes), first + i, data);
      contents.damaged = contents.damaged || !whole;
    }
  }
  data.ResizeArrays(variables);
  return VsfStatus::Ok;
}

// How many records are there, and how many of their cells.
void CountRecords(std::int64_t fileBytes, VsfContents& contents) {
  TORVIKSTRUCT& data = contents.data;
  contents.statedRecords = data.records;
  contents.cellsOffset = VsfCellsOffset(data.format, data.variables);
  const std::int64_t stated = data.variables > 0 ? std::max<std::int32_t>(data.records, 0) : 0;
  const std::int64_t cellBytesThere = std::clamp<std::int64_t>(fileBytes - contents.cellsOffset, 0,
                                                               CellBytes(stated, data.variables));
  contents.wholeCells = cellBytesThere / static_cast<std::int64_t>(kCellBytes);
  const std::int64_t recordBytes = CellBytes(1, data.variables);
  const std::int64_t present =
      recordBytes > 0 ? (cellBytesThere + recordBytes - 1) / recordBytes : 0;
  contents.damaged = contents.damaged || contents.wholeCells < stated * data.variables;
  data.records = static_cast<std::int32_t>(present);
}

}  // namespace

VsfStatus ReadVsf(int file, VsfContents& contents) {
  contents = VsfContents();
  TORVIKSTRUCT& data = contents.data;
  char bytes[kVsfHeaderBytes];
  const std::int64_t fileBytes = FileBytes(file);
  const std::int64_t got = ReadAt(file, 0, bytes, sizeof bytes);
  if (got < 0 || fileBytes < 0) return VsfStatus::ReadError;
  const std::string_view header(bytes, static_cast<std::size_t>(got));

  const VsfHeaderWord* const word = FindVsfHeaderWord(header.substr(0, kVsfHeaderWordBytes));
  if (word == nullptr) return VsfStatus::NotCorrect;
  contents.headerText = word->text;
  data.format = word->kind;
  contents.damaged = !DecodeHeader(header, data);
  if (data.variables < 0) return VsfStatus::NotCorrect;
  if (data.variables > kVsfTrustedVariables &&
      VsfCellsOffset(data.format, data.variables) > fileBytes) {
    return VsfStatus::NotCorrect;
  }
  if (const VsfStatus status = ReadVariables(file, contents); status != VsfStatus::Ok) {
    return status;
  }
  CountRecords(fileBytes, contents);
  return VsfStatus::Ok;
}
