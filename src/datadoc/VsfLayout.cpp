#include "datadoc/VsfLayout.h"

#include <algorithm>
#include <cstring>

#include "host/Text.h"
#include "vexutils/FieldWidth.h"

namespace {

template <typename Number>
void AppendNumber(Number number, CString& out) {
  char bytes[sizeof number];
  std::memcpy(bytes, &number, sizeof number);
  out.append(bytes, sizeof number);
}

void AppendText(std::string_view text, std::size_t width, CString& out) {
  const CString cut = CutText(text, width);
  out += cut;
  out.append(width - cut.size(), '\0');
}

}  // namespace

const VsfHeaderWord* FindVsfHeaderWord(std::string_view firstBytes) {
  const auto word =
      std::find_if(std::begin(kVsfHeaderWords), std::end(kVsfHeaderWords),
                   [&](const VsfHeaderWord& w) { return firstBytes.starts_with(w.text); });
  return word == std::end(kVsfHeaderWords) ? nullptr : word;
}

std::int64_t VsfBlockBytes(int kind) {
  return FieldWidth(kind) + static_cast<std::int64_t>(kVsfBlockBytesBesideName);
}

std::int64_t VsfCellsOffset(int kind, std::int64_t variables) {
  return static_cast<std::int64_t>(kVsfHeaderBytes) + variables * VsfBlockBytes(kind);
}

void AppendVsfHeader(const TORVIKSTRUCT& data, int kind, VsfFiller filler, CString& out) {
  const std::size_t begin = out.size();
  const auto word = std::find_if(std::begin(kVsfHeaderWords), std::end(kVsfHeaderWords),
                                 [&](const VsfHeaderWord& w) { return w.kind == kind; });
  if (word != std::end(kVsfHeaderWords)) out += word->text;
  out.resize(begin + kVsfHeaderWordBytes, static_cast<char>(filler));
  for (const std::int32_t setting : data.settings) AppendNumber(setting, out);
  AppendNumber(data.groupVariable, out);
  for (const std::uint8_t byte : data.settingsBytes) AppendNumber(byte, out);
  AppendNumber(data.records, out);
  AppendNumber(data.variables, out);
  for (const double value : data.missing) AppendNumber(value, out);
  AppendNumber(data.deletion, out);
  AppendNumber(data.weightVariable, out);
}

void AppendVsfVariable(const TORVIKSTRUCT& data, std::size_t index, int kind, CString& out) {
  const VARSTRUCT& variable = data.variable[index];
  AppendText(variable.name, static_cast<std::size_t>(FieldWidth(kind)), out);
  AppendText(variable.description, kVsfDescriptionBytes, out);
  AppendNumber(variable.type, out);
  for (const double value : variable.missing) AppendNumber(value, out);
  AppendNumber(variable.categories, out);
  const std::size_t firstSlot = index * kCategorySlots;
  for (std::size_t slot = firstSlot; slot < firstSlot + kCategorySlots; ++slot) {
    AppendText(data.categoryLabels[slot], kVsfLabelBytes, out);
  }
  for (std::size_t slot = firstSlot; slot < firstSlot + kCategorySlots; ++slot) {
    AppendNumber(data.categoryValues[slot], out);
  }
}

CString EncodeVsfDescription(const TORVIKSTRUCT& data, int kind, VsfFiller filler) {
  CString out;
  out.reserve(static_cast<std::size_t>(VsfCellsOffset(kind, data.variables)));
  AppendVsfHeader(data, kind, filler, out);
  for (std::size_t index = 0; index < static_cast<std::size_t>(data.variables); ++index) {
    AppendVsfVariable(data, index, kind, out);
  }
  return out;
}
