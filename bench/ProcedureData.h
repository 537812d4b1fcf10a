// The data on which procedures are timed, as a data file and, for other programs, as its bare
// cells.
#pragma once

#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "datadoc/VsfLayout.h"

namespace bench {

inline constexpr int kMadeVariables = 4;  // variables behind x1, x2 ...

inline TORVIKSTRUCT DescribeProcedureData(std::int64_t cases, int variables) {
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = variables + kMadeVariables;
  data.records = static_cast<std::int32_t>(cases);
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  for (int j = 0; j < data.variables; ++j) {
    VARSTRUCT& variable = data.variable[static_cast<std::size_t>(j)];
    variable.name = "x" + std::to_string(j + 1);
    variable.type = kContinuous;
  }
  const auto made = static_cast<std::size_t>(variables);
  data.variable[made].name = "y";
  data.variable[made + 1].name = "binary";
  data.variable[made + 2].name = "ordered";
  data.variable[made + 3].name = "floor";
  data.variable[made + 1].type = data.variable[made + 2].type = kOrdinal;
  data.variable[made + 3].type = kCensoredBelow;
  return data;
}

// x1, x2 ... are normal with correlations of 0.3; behind them stand "y", their mean and an error,
// "binary" and "ordered" (2 and 5 categories), both made of y, and "floor", y censored below at
// -0.8. `cellFile`, when not empty, gets the cells alone, case after case.
inline void WriteProcedureData(std::int64_t cases, int variables, const std::string& name,
                               const std::string& cellFile = {}) {
  std::ofstream file(name, std::ios::binary), bare;
  if (!cellFile.empty()) bare.open(cellFile, std::ios::binary);
  const std::string description =
      EncodeVsfDescription(DescribeProcedureData(cases, variables), kNewFormat, VsfFiller::Spaces);
  file.write(description.data(), static_cast<std::streamsize>(description.size()));
  std::mt19937_64 random(3);
  std::normal_distribution<double> normal;
  std::vector<double> row(static_cast<std::size_t>(variables + kMadeVariables));
  const double own = std::sqrt(.7), shared = std::sqrt(.3);
  for (std::int64_t k = 0; k < cases; ++k) {
    const double common = shared * normal(random);
    double sum = 0;
    for (int j = 0; j < variables; ++j) {
      sum += row[static_cast<std::size_t>(j)] = common + own * normal(random);
    }
    const double y = sum / variables + normal(random);
    double* const made = row.data() + variables;
    made[0] = y;
    made[1] = y > .2 ? 1 : 0;
    made[2] = 1;
    for (const double cut : {-1.2, -.4, .4, 1.2}) made[2] += y > cut ? 1 : 0;
    made[3] = std::max(y, -.8);
    const auto bytes = static_cast<std::streamsize>(row.size() * sizeof(double));
    file.write(reinterpret_cast<const char*>(row.data()), bytes);
    if (bare.is_open()) bare.write(reinterpret_cast<const char*>(row.data()), bytes);
  }
  if (!file || (!cellFile.empty() && !bare)) throw std::runtime_error("cannot write " + name);
}

}  // namespace bench
