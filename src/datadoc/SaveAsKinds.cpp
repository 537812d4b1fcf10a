#include "datadoc/SaveAsKinds.h"

#include <algorithm>
#include <filesystem>

#include "host/Text.h"

namespace {

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
  std::vector<SAVEASKIND> choices = {{SystemDataRow(), EXTERNDATA()},
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

FileDialogRow SystemDataRow() {
  return {"VEXMOR Data (*.VSF)", "*.VSF", "VSF"};
}

std::vector<SAVEASKIND> SaveAsKinds(const EXTERNDATA& own, const TORVIKSTRUCT& data) {
  const bool matrix = own.data_type == kDsfFile || own.ma_type >= 1;
  return matrix ? MatrixChoices(own, data) : CaseChoices(own);
}

std::vector<FileDialogRow> OpenRows() {
  return {SystemDataRow(),
          TextRow("Text Data"),
          TextRow("Moment Matrix Text"),
          DsfRow(),
          {"All Files (*.*)", "*.*", ""}};
}

std::optional<EXTERNDATA> KindOfOpenRow(int row, const CString& fileName) {
  constexpr int kText = 1;
  constexpr int kMatrix = 2;
  constexpr int kDsf = 3;
  const CString extension = std::filesystem::path(fileName).extension().string();
  if (EqualIgnoringCase(extension, ".VSF")) return std::nullopt;
  if (row == kDsf || EqualIgnoringCase(extension, ".DSF")) return KindOfType(kDsfFile);
  if (row != kText && row != kMatrix) return std::nullopt;
  EXTERNDATA kind = KindOfType(kTextFile);
  kind.ma_type = row == kMatrix ? 1 : 0;
  kind.matrixPosition = row == kMatrix ? 1 : 0;
  return kind;
}
