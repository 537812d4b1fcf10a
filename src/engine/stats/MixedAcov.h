// The asymptotic covariance matrix of the moments of continuous and ordinal variables together.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/stats/AsymptoticCovariance.h"
#include "engine/stats/NormalPair.h"
#include "engine/stats/Polyserial.h"

namespace stats {

// A variable of the analysis: its place among the numeric or among the ordinal ones.
struct MixedVariable {
  bool ordinal = false;
  int place = 0;
};

// Correlations with censored variables, in the order of the analysis: pairs[PairIndex(i, j)] means
// something when i or j is censored.
struct NormalPairs {
  std::vector<bool> censored;
  std::vector<CNormalMargin> margins;
  std::vector<NormalPairResult> pairs;

  bool Has(std::size_t i, std::size_t j) const {
    return !censored.empty() && (censored[i] || censored[j]);
  }
  const NormalPairResult& Pair(std::size_t i, std::size_t j) const {
    return pairs[static_cast<std::size_t>(PairIndex(static_cast<int>(i), static_cast<int>(j)))];
  }
};

// What the elements are made of. `polyserial` holds ordinal after ordinal, one for each numeric
// variable. `tables` and `polychoric` may be null with fewer than two ordinal variables, `moments`
// without numeric ones, `normal` without censored ones.
struct MixedEstimates {
  const CMoments* moments = nullptr;
  const CPairTables* tables = nullptr;
  const PolychoricMatrix* polychoric = nullptr;
  const std::vector<PolyserialResult>* polyserial = nullptr;
  const NormalPairs* normal = nullptr;
};

// Elements in the order of CProductMomentAcov. Between numeric variables they are product moments
// and their influence values those of that class; between ordinal ones polychoric correlations as
// in CPolychoricAcov; a polyserial correlation has the delta method on its own two-step equations:
// with the score s of a case, -(s + sum of ds/dv influence(v)) / (ds/dr), v being mean, standard
// deviation and thresholds. Covariance: an ordinal variable stands for one with standard deviation
// 1, its variance does not vary, and a covariance with a numeric variable is r times the standard
// deviation (divisor n). With a censored variable the equations are those of NormalPair.h: the
// score goes through means and maximum likelihood standard deviations likewise, a covariance is r
// times both standard deviations, and a variance that of the censored variable. Status as in the
// two classes named.
class CMixedAcov {
 public:
  CMixedAcov(std::vector<MixedVariable> variables, const MixedEstimates& estimates, EMoments kind,
             EDeletion deletion, int threads = 1);
  ~CMixedAcov();
  CMixedAcov(CMixedAcov&&) noexcept;
  CMixedAcov& operator=(CMixedAcov&&) noexcept;

  // The numeric variables and the ordinal ones of the same cases; weights are those of `cells`. A
  // block of no variables may be empty.
  void Add(const CaseBlock& cells, const CodeBlock& codes);
  AsymptoticCovarianceResult Result() const;

  static std::int64_t MemoryFor(int variables, EMoments kind);  // bytes

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace stats
