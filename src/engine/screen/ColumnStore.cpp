#include "engine/screen/ColumnStore.h"

#include "engine/screen/Faults.h"
#include "vexutils/FreeMemory.h"

void COLUMNSTORE::Add(const CASEBLOCK& block) {
  for (std::size_t j = 0; j < cells.size(); ++j) {
    const double* cell = block.cells.cells + j;
    for (std::int64_t i = 0; i < block.cells.cases; ++i, cell += block.cells.stride) {
      cells[j].push_back(*cell);
    }
  }
  for (std::size_t j = 0; j < codes.size(); ++j) {
    const std::uint8_t* const first =
        block.codes.codes + static_cast<std::int64_t>(j) * block.codes.stride;
    codes[j].insert(codes[j].end(), first, first + block.codes.cases);
  }
  if (block.cells.weights != nullptr) {
    weights.insert(weights.end(), block.cells.weights, block.cells.weights + block.cells.cases);
  }
}

bool HoldColumns(ENGINERUN& run, const SCREENVARIABLES& variables, const CString& what,
                 COLUMNSTORE& store, std::int64_t& megabytes, FAULT& fault) {
  const std::size_t numeric = variables.numeric.size();
  const std::size_t ordinal = variables.ordinal.size();
  const std::int64_t cases =
      variables.IsListwise() ? variables.census.complete : variables.census.cases;
  const std::int64_t bytes =
      cases * static_cast<std::int64_t>(sizeof(double) * (numeric + 1) + ordinal);
  if (bytes > FreeMemoryBytes()) {
    fault = OutputFault(
        run, what + " need " + std::to_string(bytes >> 20) + " MB of memory for the cases",
        "Select fewer variables with SE.");
    return false;
  }
  megabytes = (bytes >> 20) + 1;
  store = COLUMNSTORE();
  store.cells.resize(numeric);
  store.codes.resize(ordinal);
  for (auto& column : store.cells) column.reserve(static_cast<std::size_t>(cases));
  for (auto& column : store.codes) column.reserve(static_cast<std::size_t>(cases));
  return run.Pass(
      run.source, [&store](const CASEBLOCK& block) { store.Add(block); }, fault);
}
