#include "datadoc/MatrixParts.h"

#include <algorithm>

#include "host/Text.h"

std::vector<MatrixPart> MatrixParts(const EXTERNDATA& kind) {
  const struct {
    int place;
    MatrixPart part;
  } all[] = {{kind.matrixPosition, MatrixPart::Matrix},
             {kind.firstVectorPosition, MatrixPart::FirstVector},
             {kind.secondVectorPosition, MatrixPart::SecondVector}};
  std::vector<MatrixPart> parts;
  for (int place = 1;; ++place) {
    const auto at = std::find_if(std::begin(all), std::end(all),
                                 [&](const auto& entry) { return entry.place == place; });
    if (at == std::end(all)) return parts;
    parts.push_back(at->part);
  }
}

std::int64_t MatrixRecords(const EXTERNDATA& kind, std::int32_t variables) {
  std::int64_t records = 0;
  for (const MatrixPart part : MatrixParts(kind)) {
    records += part == MatrixPart::Matrix ? variables : 1;
  }
  return records;
}

bool SetMatrixParts(std::string_view names, EXTERNDATA& kind) {
  EXTERNDATA read = kind;
  read.matrixPosition = read.firstVectorPosition = read.secondVectorPosition = 0;
  for (std::uint8_t place = 1; place == 1 || !names.empty(); ++place) {
    const std::size_t end = std::min(names.find(','), names.size());
    const std::string_view name = Trimmed(names.substr(0, end));
    std::uint8_t* const position = name == "matrix"       ? &read.matrixPosition
                                   : name == "means"      ? &read.firstVectorPosition
                                   : name == "deviations" ? &read.secondVectorPosition
                                                          : nullptr;
    if (position == nullptr || *position != 0) return false;
    *position = place;
    names.remove_prefix(std::min(end + 1, names.size()));
  }
  kind = read;
  return true;
}

std::vector<CString> MatrixOrders() {
  return {"matrix",
          "matrix,means",
          "means,matrix",
          "matrix,deviations",
          "deviations,matrix",
          "matrix,means,deviations",
          "matrix,deviations,means",
          "means,matrix,deviations",
          "means,deviations,matrix",
          "deviations,matrix,means",
          "deviations,means,matrix"};
}
