#include "engine/procedures/ImputedValues.h"

#include <cmath>
#include <limits>

namespace {

using Eigen::Index;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

}  // namespace

// A value of the model's variable j in units of the data.
double IMPUTEDVALUES::ValueOf(std::size_t j, double drawn) const {
  const INCOMPLETEVARIABLE& one = variables[j];
  if (!one.IsOrdinal()) return one.center + one.scale * drawn;
  const int category = sample->Variable(static_cast<int>(j)).CategoryOf(drawn);
  return one.categories[static_cast<std::size_t>(category)];
}

bool IMPUTEDVALUES::IsMissing(std::size_t j, double value) const {
  return std::isnan(value) || (variables[j].IsOrdinal() && variables[j].CategoryOf(value) < 0);
}

void IMPUTEDVALUES::Complete(std::size_t chain, std::int64_t number, const double* in,
                             double* out) const {
  const std::size_t p = variables.size();
  std::size_t missing = 0;
  for (std::size_t j = 0; j < p; ++j) {
    const bool none = IsMissing(j, in[j]);
    out[j] = none ? kNone : in[j];
    missing += none ? 1 : 0;
  }
  if (missing == 0) return;
  if (missing == p) {
    for (std::size_t j = 0; j < p && fillEmpty; ++j) {
      out[j] = variables[j].IsOrdinal() ? ValueOf(j, mean(static_cast<Index>(j)))
                                        : mean(static_cast<Index>(j));
    }
    return;
  }
  const std::size_t place = sample->PlaceOf(number);
  if (place == sample->Held()) return;  // a case without a weight
  const double* drawn = chains[chain].imputed.data() + sample->FirstMissing(place);
  for (std::size_t j = 0; j < p; ++j) {
    if (std::isnan(out[j])) out[j] = ValueOf(j, *drawn++);
  }
}

std::vector<CASEFUNCTION> CompletionsBy(const std::shared_ptr<const IMPUTEDVALUES>& values,
                                        const VARIABLELIST& list) {
  std::vector<CASEFUNCTION> completions(values->chains.size());
  for (std::size_t chain = 0; chain < completions.size(); ++chain) {
    completions[chain].inputs = completions[chain].outputs = list;
    completions[chain].computeOfCase = [values, chain](std::int64_t number, const double* in,
                                                       double* out) {
      values->Complete(chain, number, in, out);
    };
  }
  return completions;
}
