#include "datadoc/SaveAsKinds.h"

#include <algorithm>
#include <filesystem>

#include "host/Text.h"

namespace {

FileDialogRow SystemRow() {
  return {"VEXMOR Data (*.VSF)", "*.VSF", "VSF"};
}

FileDialogRow DsfRow() {
  return {"VEXMOR Data System (*.DSF)", "*.DSF", "DSF"};
}

FileDialogRow TextRow(const char* name) {
  const CString patterns = "*.DAT;*.TXT;*.RAW";
  return {CString(name) + " (" + patterns + ")", patterns, "DAT"};
}

EXTERNDATA KindOfType(std::int32_t type) {
  EXTERNDATA kind;
  kind.data_type = type;
  return kind;
}

SAVEASKIND MatrixTextChoice(const EXTERNDATA& own) {
  EXTERNDATA kind = own;
  if (own.data_type == kDsfFile) {
    kind = KindOfType(kTextFile);
    kind.ma_type = 1;
    kind.matrixPosition = 1;
    kind.firstVectorPosition = 2;
  }
  return {TextRow("Moment Matrix Text"), kind};
}

std::vector<SAVEASKIND> MatrixChoices(const EXTERNDATA& own, const TORVIKSTRUCT& data) {
  std::vector<SAVEASKIND> choices = {MatrixTextChoice(own)};
  if (own.data_type == kDsfFile) {
    choices.insert(choices.begin(), {DsfRow(), own});
  } else if (own.matrixPosition != 0 && data.records == data.variables + 1) {
    choices.push_back({DsfRow(), KindOfType(kDsfFile)});
  }
  return choices;
}

std::vector<SAVEASKIND> CaseChoices(const EXTERNDATA& own) {
  std::vector<SAVEASKIND> choices = {{SystemRow(), EXTERNDATA()},
                                     {TextRow("Free Format Text"), KindOfType(kTextFile)}};
  if (own.fixedFormat != 0) {
    choices.push_back({TextRow("Fixed Columns Text"), own});
  }
  const auto isOwn = [&](const SAVEASKIND& choice) {
    return choice.kind.data_type == own.data_type && choice.kind.fixedFormat == own.fixedFormat;
  };
  std::stable_partition(choices.begin(), choices.end(), isOwn);
  return choices;
}

}  // namespace

std::vector<SAVEASKIND> SaveAsKinds(const EXTERNDATA& own, const TORVIKSTRUCT& data) {
  const bool matrix = own.data_type == kDsfFile || own.ma_type >= 1;
  return matrix ? MatrixChoices(own, data) : CaseChoices(own);
}

std::vector<FileDialogRow> OpenRows() {
  return {SystemRow(), TextRow("Text Data"), DsfRow(), {"All Files (*.*)", "*.*", ""}};
}

EXTERNDATA KindOfOpenRow(int row, const CString& fileName) {
  const CString extension = std::filesystem::path(fileName).extension().string();
  if (EqualIgnoringCase(extension, ".DSF")) return KindOfType(kDsfFile);
  if (EqualIgnoringCase(extension, ".VSF")) return KindOfType(kSystemDataFile);
  constexpr std::int32_t kTypes[] = {kSystemDataFile, kTextFile, kDsfFile, kSystemDataFile};
  return KindOfType(kTypes[std::clamp(row, 0, 3)]);
}
