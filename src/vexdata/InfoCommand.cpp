#include <array>
#include <cmath>
#include <iostream>

#include <nlohmann/json.hpp>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Numbers.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SourceFile.h"
#include "vexdata/SystemFile.h"

namespace {

using nlohmann::ordered_json;

constexpr std::array kTypeNames = {"ordinal", "continuous", "censored above", "censored below",
                                   "censored above and below"};

template <std::size_t N>
ordered_json MissingAsJson(const std::array<double, N>& missing) {
  auto list = ordered_json::array();
  for (const double value : missing) {
    if (std::isnan(value)) {
      list.push_back("nan");  // is set, and JSON has no such number
    } else {
      list.push_back(value == kNotSet ? ordered_json() : ordered_json(value));
    }
  }
  return list;
}

ordered_json CategoriesAsJson(const TORVIKSTRUCT& data, std::size_t index) {
  auto list = ordered_json::array();
  const auto inUse = static_cast<std::size_t>(data.variable[index].categories);
  for (std::size_t slot = index * kCategorySlots; slot < index * kCategorySlots + inUse; ++slot) {
    list.push_back(ordered_json::array(
        {data.categoryValues[slot], TextForDisplay(data.categoryLabels[slot])}));
  }
  return list;
}

// Of a file that has no header word.
CString NameOfKind(const EXTERNDATA& kind) {
  if (kind.data_type == kDsfFile) return "DSF file, group " + std::to_string(kind.group + 1);
  return CString(kind.ma_type >= 1 ? "moment matrix text, " : "text, ") +
         (kind.fixedFormat != 0 ? "fixed columns " + kind.formatStatement : "free format");
}

CString LayoutOf(const TORVIKSTRUCT& data) {
  return data.format == kOldFormat ? "old" : "new";
}

// The layout is that of a system data file.
bool IsSystemFile(const VsfContents& contents) {
  return contents.data.format != kNoFormat;
}

void PrintJson(const VsfContents& contents) {
  const TORVIKSTRUCT& data = contents.data;
  auto variables = ordered_json::array();
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) {
    const VARSTRUCT& variable = data.variable[i];
    variables.push_back({{"name", TextForDisplay(variable.name)},
                         {"description", TextForDisplay(variable.description)},
                         {"type", variable.type},
                         {"missing", MissingAsJson(variable.missing)},
                         {"categories", CategoriesAsJson(data, i)}});
  }
  const ordered_json object = {
      {"header", contents.headerText},
      {"layout", IsSystemFile(contents) ? ordered_json(LayoutOf(data)) : ordered_json()},
      {"settings", data.settings},
      {"settings_bytes", data.settingsBytes},
      {"group_variable", data.groupVariable},
      {"weight_variable", data.weightVariable},
      {"deletion", data.deletion == kListwise ? "listwise" : "pairwise"},
      {"cases", data.records},
      {"missing", MissingAsJson(data.missing)},
      {"variables", std::move(variables)}};
  std::cout << object.dump(2) << '\n';
}

template <std::size_t N>
CString MissingAsText(const std::array<double, N>& missing) {
  CString text;
  const auto add = [&](const CString& part) { text += (text.empty() ? "" : ", ") + part; };
  for (std::size_t i = 0; i < kMissingValues; ++i) {
    if (missing[i] != kNotSet) add(FormatShortest(missing[i]));
  }
  if (missing[kRangeLow] != kNotSet && missing[kRangeHigh] != kNotSet) {
    add(FormatShortest(missing[kRangeLow]) + " to " + FormatShortest(missing[kRangeHigh]));
  }
  if constexpr (N > kGlobalValue) {
    if (missing[kGlobalValue] != kNotSet) add(FormatShortest(missing[kGlobalValue]));
  }
  return text;
}

CString TypeName(std::int32_t type) {
  const auto index = static_cast<std::size_t>(type);
  return type >= 0 && index < kTypeNames.size() ? kTypeNames[index]
                                                : "type " + std::to_string(type);
}

CString NumberedName(const TORVIKSTRUCT& data, std::int32_t number) {
  if (!IsVariableNumber(data, number))
    return number == 0 ? "none" : std::to_string(number) + " (none)";
  return TextForDisplay(data.variable[static_cast<std::size_t>(number) - 1].name);
}

void PrintVariable(const TORVIKSTRUCT& data, std::size_t index) {
  const VARSTRUCT& variable = data.variable[index];
  std::cout << index + 1 << '\t' << TextForDisplay(variable.name) << '\t'
            << TypeName(variable.type);
  if (!variable.description.empty())
    std::cout << "\t\"" << TextForDisplay(variable.description) << '"';
  const CString missing = MissingAsText(variable.missing);
  if (!missing.empty()) std::cout << "\tmissing: " << missing;
  const auto inUse = static_cast<std::size_t>(variable.categories);
  for (std::size_t slot = index * kCategorySlots; slot < index * kCategorySlots + inUse; ++slot) {
    std::cout << (slot == index * kCategorySlots ? "\tcategories: " : ", ")
              << data.categoryValues[slot] << '=' << TextForDisplay(data.categoryLabels[slot]);
  }
  std::cout << '\n';
}

void PrintText(const CString& fileName, const VsfContents& contents) {
  const TORVIKSTRUCT& data = contents.data;
  std::cout << "File       " << fileName << '\n'
            << (IsSystemFile(contents) ? "Header     " : "Kind       ") << contents.headerText
            << (IsSystemFile(contents) ? " (" + LayoutOf(data) + " layout)\n" : "\n")
            << "Cases      " << data.records;
  if (contents.damaged)
    std::cout << "  (damaged: the header says " << contents.statedRecords << ')';
  std::cout << "\nVariables  " << data.variables << '\n'
            << "Missing    " << MissingAsText(data.missing) << ", deleted "
            << (data.deletion == kListwise ? "listwise" : "pairwise") << '\n'
            << "Weight     " << NumberedName(data, data.weightVariable) << '\n'
            << "Group      " << NumberedName(data, data.groupVariable) << "\n\n";
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) PrintVariable(data, i);
}

}  // namespace

int ShowInfo(const SourceOptions& source, bool json) {
  VsfContents contents;
  if (KindOfSource(source) == "vsf") {
    CDescriptor file;
    if (!OpenSystemFile(source.file, file, contents)) return kExitFailed;
  } else {
    CDataDoc document;
    const CDataView view(document);
    if (!OpenSource(source, document)) return kExitFailed;
    contents.data = *document.GetTorvik();
    contents.headerText = NameOfKind(document.GetExtern());
    contents.statedRecords = contents.data.records;
  }
  json ? PrintJson(contents) : PrintText(source.file, contents);
  return kExitDone;
}
