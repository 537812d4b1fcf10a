// Any bytes as a syntax: lines, header and commands, with a small data set; what was understood of
// expressions, recodes and selections is put to work on one case.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/syntax/Syntax.h"

namespace {

TORVIKSTRUCT SmallDataSet() {
  TORVIKSTRUCT data;
  const char* const names[] = {"A1", "A2", "lo-hi", "3", "", "CASE"};
  data.variables = 6;
  data.ResizeArrays(6);
  for (std::size_t i = 0; i < 6; ++i) data.variable[i].name = names[i];
  return data;
}

void Work(const JOB& job) {
  const std::vector<double> row(static_cast<std::size_t>(job.data.variables), 1.5);
  const std::int64_t number = 1;
  job.selection.Keeps(row.data(), number);
  for (const TRANSFORMATION& transformation : job.transformations) {
    if (const auto* const recode = std::get_if<RECODE>(&transformation)) {
      recode->NewValue(1.5, false);
      continue;
    }
    double out = 0;
    std::get<COMPUTE>(transformation)
        .expression.Evaluate({row.data(), row.size(), 1, &number}, {}, &out);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TORVIKSTRUCT kData = SmallDataSet();
  auto lines = SplitSyntax({reinterpret_cast<const char*>(data), size});
  JOB job;
  FAULT fault;
  if (!ParseHeader(lines, job.header, fault)) {
    // The commands are fuzzed too when there is no header before them.
    lines = SplitSyntax({reinterpret_cast<const char*>(data), size});
  }
  if (ParseCommands(lines, kData, job, fault)) Work(job);
  return 0;
}
