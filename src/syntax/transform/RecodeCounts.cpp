#include "syntax/transform/RecodeCounts.h"

#include <algorithm>

#include "datadoc/Missing.h"
#include "datadoc/VsfLayout.h"
#include "datadoc/VsfReader.h"
#include "engine/syntax/Recode.h"
#include "vexutils/BlockIo.h"

namespace {

std::optional<RECODE> Read(const TORVIKSTRUCT& data, const RecodeChoices& choices) {
  const CVariableNames names(data);
  const SyntaxLine line{1, RecodeLine(data, choices)};
  CWords words(line, names);
  RECODE recode;
  if (!ParseRecode(words, recode)) return std::nullopt;
  return recode;
}

class CCounter {
 public:
  CCounter(const TORVIKSTRUCT& data, const RECODE& recode) : recode_(recode) {
    for (const std::int32_t variable : recode.variables) {
      missing_.emplace_back(data, static_cast<std::size_t>(variable));
    }
  }
  void Count(const double* record, RecodeCounts& counts) const {
    for (std::size_t i = 0; i < missing_.size(); ++i) {
      const double cell = record[recode_.variables[i]];
      const auto pair = recode_.PairOf(cell, missing_[i](cell));
      ++(pair ? counts.cells[*pair] : counts.others);
    }
  }

 private:
  const RECODE& recode_;
  std::vector<CMissingTest> missing_;
};

}  // namespace

std::optional<RecodeCounts> CountRecoded(const CString& dataFile, const RecodeChoices& choices,
                                         std::int64_t mostCells) {
  CDescriptor file;
  VsfContents contents;
  if (!file.OpenForReading(dataFile.c_str()) || ReadVsf(file.Get(), contents) != VsfStatus::Ok) {
    return std::nullopt;
  }
  const TORVIKSTRUCT& data = contents.data;
  const auto recode = Read(data, choices);
  if (!recode) return std::nullopt;
  const std::int64_t whole = data.variables > 0 ? contents.wholeCells / data.variables : 0;
  RecodeCounts counts;
  counts.cells.resize(recode->pairs.size());
  counts.cases = data.variables > 0 ? std::min(whole, mostCells / data.variables) : 0;
  counts.all = counts.cases == data.records;
  const CCounter counter(data, *recode);
  const auto variables = static_cast<std::size_t>(data.variables);
  const std::size_t atOnce =
      std::max<std::size_t>(1, kBlockBytes / kCellBytes / std::max<std::size_t>(variables, 1));
  std::vector<double> block(atOnce * variables);
  for (std::int64_t first = 0; first < counts.cases;) {
    const auto records = static_cast<std::size_t>(
        std::min<std::int64_t>(counts.cases - first, static_cast<std::int64_t>(atOnce)));
    const std::size_t bytes = records * variables * kCellBytes;
    const std::int64_t offset = contents.cellsOffset + CellBytes(first, data.variables);
    if (ReadAt(file.Get(), offset, block.data(), bytes) != static_cast<std::int64_t>(bytes)) {
      return std::nullopt;
    }
    for (std::size_t i = 0; i < records; ++i) counter.Count(&block[i * variables], counts);
    first += static_cast<std::int64_t>(records);
  }
  return counts;
}
