#include "datadoc/MatrixParts.h"

#include <algorithm>

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
