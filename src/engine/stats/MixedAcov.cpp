#include "engine/stats/MixedAcov.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>

#include "engine/stats/InfluenceValues.h"
#include "engine/stats/SymmetricProduct.h"

namespace stats {

namespace {

// The cases of one step, those that are left out taken out.
struct Step {
  const CaseBlock& cells;
  const CodeBlock& codes;
  std::vector<std::int64_t> kept;  // indexes into the blocks

  double Cell(std::int64_t k, int place) const { return cells.cells[k * cells.stride + place]; }
  std::uint8_t Code(std::int64_t k, int place) const {
    return codes.codes[static_cast<std::int64_t>(place) * codes.stride + k];
  }
};

// Writes the influence of the kept cases on one element, kLanes apart.
using Fill = std::function<void(const Step&, double* to)>;

template <typename Influence>
Fill FillBy(Influence influence) {
  return [influence](const Step& step, double* to) {
    for (const std::int64_t k : step.kept) {
      *to = influence(step, k);
      to += kLanes;
    }
  };
}

double ZeroForNan(double value) {
  return std::isnan(value) ? 0.0 : value;
}

// (x y - s) / n, or (z_x z_y - r (z_x^2 + z_y^2) / 2) / n
Fill ProductFill(const CMoments& moments, EMoments kind, int i, int j) {
  const double n = moments.N(i, j);
  const double meanI = moments.Mean(i, j);
  const double meanJ = moments.Mean(j, i);
  double scaleI = 1, scaleJ = 1, half = 0;
  double estimate = moments.Product(i, j) / n;
  if (kind == EMoments::Correlation) {
    scaleI = std::sqrt(n / moments.Square(i, j));
    scaleJ = std::sqrt(n / moments.Square(j, i));
    half = estimate * scaleI * scaleJ / 2;
    estimate = 0;
  }
  return FillBy([=](const Step& step, std::int64_t k) {
    const double x = (step.Cell(k, i) - meanI) * scaleI;
    const double y = (step.Cell(k, j) - meanJ) * scaleJ;
    // A pair without this case owes it nothing.
    return ZeroForNan((x * y - estimate - half * (x * x + y * y)) / n);
  });
}

Fill PolychoricFill(const MixedEstimates& estimates, int i, int j) {
  const int row = std::max(i, j);
  const int column = std::min(i, j);
  const int rows = estimates.tables->Categories(row);
  const int columns = estimates.tables->Categories(column);
  return FillBy([=, influence = PolychoricInfluence(*estimates.tables, *estimates.polychoric, row,
                                                    column)](const Step& step, std::int64_t k) {
    const int a = std::min<int>(step.Code(k, row), rows);
    const int b = std::min<int>(step.Code(k, column), columns);
    return influence[CellIndex(a, columns + 1, b)];
  });
}

Fill PolyserialFill(const CMoments& moments, const PolyserialResult& result, EMoments kind,
                    int numeric, int ordinal) {
  const bool covariance = kind == EMoments::Covariance;
  const double n = moments.N(numeric, numeric);
  const double mean = moments.Mean(numeric, numeric);
  const double sd = std::sqrt(moments.Product(numeric, numeric) / n);
  const auto categories = result.frequencies.size();
  return FillBy([=, r = result.r, influence = CPolyserialInfluence(result)](const Step& step,
                                                                            std::int64_t k) {
    const double x = step.Cell(k, numeric);
    if (std::isnan(x)) return 0.0;
    const std::uint8_t code = step.Code(k, ordinal);
    const double onR = code < categories ? influence(x, code) : 0.0;
    if (!covariance) return onR;
    const double z = (x - mean) / sd;
    return sd * (onR + r * (z * z - 1) / (2 * n));
  });
}

// A covariance with a censored variable is r s t: its influence is that on r times s t, and that on
// the logarithms of the standard deviations s and t times the covariance.
template <typename SeeI, typename SeeJ>
Fill NormalFill(const NormalPairs& normal, std::size_t i, std::size_t j, EMoments kind, SeeI seeI,
                SeeJ seeJ) {
  const CNormalMargin& a = normal.margins[i];
  const CNormalMargin& b = normal.margins[j];
  const double scale = kind == EMoments::Covariance ? a.Deviation() * b.Deviation() : 1.0;
  if (i == j) {
    return FillBy([=](const Step& step, std::int64_t k) {
      return 2 * scale * a.OnLogDeviation(seeI(a, step, k));
    });
  }
  const NormalPairResult& pair = normal.Pair(i, j);
  const double r = kind == EMoments::Covariance ? pair.r : 0.0;
  return FillBy(
      [=, influence = CNormalPairInfluence(pair, a, b)](const Step& step, std::int64_t k) {
        const SeenValue x = seeI(a, step, k), y = seeJ(b, step, k);
        return scale * (influence(x, y) + r * (a.OnLogDeviation(x) + b.OnLogDeviation(y)));
      });
}

Fill NoInfluence() {
  return FillBy([](const Step&, std::int64_t) { return 0.0; });
}

int Places(const std::vector<MixedVariable>& variables, bool ordinal) {
  return static_cast<int>(
      std::count_if(variables.begin(), variables.end(),
                    [ordinal](const MixedVariable& v) { return v.ordinal == ordinal; }));
}

int ElementCount(int variables, EMoments kind) {
  return variables * (kind == EMoments::Correlation ? variables - 1 : variables + 1) / 2;
}

}  // namespace

struct CMixedAcov::State {
  State(int variables, EMoments wanted, EDeletion wantedDeletion, int threads)
      : kind(wanted), deletion(wantedDeletion), product(ElementCount(variables, wanted), threads) {}

  void Check(const std::vector<MixedVariable>& variables, const MixedEstimates& estimates);
  void NotePair(int i, int j, double n, EStatus status);
  Fill FillOf(const MixedEstimates& estimates, MixedVariable a, MixedVariable b) const;
  Fill FillOf(const NormalPairs& normal, const std::vector<MixedVariable>& variables, std::size_t i,
              std::size_t j) const;
  std::int64_t Keep(std::int64_t from, std::int64_t end, Step& step) const;

  EMoments kind;
  EDeletion deletion;
  int numeric = 0, ordinal = 0;
  AsymptoticCovarianceResult result;
  CSymmetricProduct product;
  std::vector<Fill> fills;  // by element
};

void CMixedAcov::State::NotePair(int i, int j, double n, EStatus status) {
  result.n = result.n == 0 ? n : std::min(result.n, n);
  if (status == EStatus::Ok || result.status != EStatus::Ok) return;
  result.status = status;
  result.variable = i;
  result.other = j;
}

void CMixedAcov::State::Check(const std::vector<MixedVariable>& variables,
                              const MixedEstimates& estimates) {
  result.status = EStatus::Ok;
  if (numeric > 0) {
    const MomentMatrix matrix = ComputeMoments(*estimates.moments, kind);
    result.status = matrix.status;
    result.n = matrix.smallestN;
  }
  for (std::size_t i = 0; i < variables.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const MixedVariable& a = variables[i];
      const MixedVariable& b = variables[j];
      if (estimates.normal != nullptr && estimates.normal->Has(i, j)) {
        const NormalPairResult& pair = estimates.normal->Pair(i, j);
        NotePair(static_cast<int>(i), static_cast<int>(j), pair.n, pair.status);
        continue;
      }
      if (!a.ordinal && !b.ordinal) continue;
      const auto at = [&] {
        return a.ordinal ? static_cast<std::size_t>(a.place * numeric + b.place)
                         : static_cast<std::size_t>(b.place * numeric + a.place);
      };
      if (a.ordinal && b.ordinal) {
        const auto& pair = estimates.polychoric->pairs[static_cast<std::size_t>(
            PairIndex(std::max(a.place, b.place), std::min(a.place, b.place)))];
        NotePair(static_cast<int>(i), static_cast<int>(j), pair.n, pair.status);
      } else {
        const PolyserialResult& pair = (*estimates.polyserial)[at()];
        NotePair(static_cast<int>(i), static_cast<int>(j), pair.n, pair.status);
      }
    }
  }
}

Fill CMixedAcov::State::FillOf(const MixedEstimates& estimates, MixedVariable a,
                               MixedVariable b) const {
  if (!a.ordinal && !b.ordinal) return ProductFill(*estimates.moments, kind, a.place, b.place);
  if (a.ordinal && b.ordinal) {
    return a.place == b.place ? NoInfluence() : PolychoricFill(estimates, a.place, b.place);
  }
  if (b.ordinal) std::swap(a, b);
  return PolyserialFill(
      *estimates.moments,
      (*estimates.polyserial)[static_cast<std::size_t>(a.place * numeric + b.place)], kind, b.place,
      a.place);
}

Fill CMixedAcov::State::FillOf(const NormalPairs& normal,
                               const std::vector<MixedVariable>& variables, std::size_t i,
                               std::size_t j) const {
  const auto see = [&](std::size_t at) {
    return
        [variable = variables[at]](const CNormalMargin& margin, const Step& step, std::int64_t k) {
          return variable.ordinal ? margin.See(step.Code(k, variable.place))
                                  : margin.See(step.Cell(k, variable.place));
        };
  };
  return NormalFill(normal, i, j, kind, see(i), see(j));
}

CMixedAcov::CMixedAcov(std::vector<MixedVariable> variables, const MixedEstimates& estimates,
                       EMoments kind, EDeletion deletion, int threads) {
  if (kind != EMoments::Covariance && kind != EMoments::Correlation)
    throw std::invalid_argument("asymptotic covariances are for covariances and correlations");
  const int count = static_cast<int>(variables.size());
  state_ = std::make_unique<State>(count, kind, deletion, threads);
  state_->numeric = Places(variables, false);
  state_->ordinal = Places(variables, true);
  if (ElementCount(count, kind) == 0) {
    state_->result.status = EStatus::BadArgument;
    return;
  }
  state_->Check(variables, estimates);
  if (state_->result.status != EStatus::Ok) return;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    for (std::size_t j = 0; j < i + (kind == EMoments::Covariance ? 1 : 0); ++j) {
      const bool normal = estimates.normal != nullptr && estimates.normal->Has(i, j);
      state_->fills.push_back(normal ? state_->FillOf(*estimates.normal, variables, i, j)
                                     : state_->FillOf(estimates, variables[i], variables[j]));
    }
  }
}
CMixedAcov::~CMixedAcov() = default;
CMixedAcov::CMixedAcov(CMixedAcov&&) noexcept = default;
CMixedAcov& CMixedAcov::operator=(CMixedAcov&&) noexcept = default;

std::int64_t CMixedAcov::State::Keep(std::int64_t from, std::int64_t end, Step& step) const {
  step.kept.clear();
  for (std::int64_t k = from; k < end; ++k) {
    if (step.cells.weights != nullptr && !(step.cells.weights[k] > 0)) continue;
    bool complete = true;
    if (deletion == EDeletion::Listwise) {
      for (int j = 0; j < numeric; ++j) complete = complete && !std::isnan(step.Cell(k, j));
      for (int j = 0; j < ordinal; ++j) complete = complete && step.Code(k, j) != kMissingCode;
    }
    if (complete) step.kept.push_back(k);
  }
  return static_cast<std::int64_t>(step.kept.size());
}

void CMixedAcov::Add(const CaseBlock& cells, const CodeBlock& codes) {
  State& state = *state_;
  if (state.result.status != EStatus::Ok) return;
  const std::int64_t cases = state.numeric > 0 ? cells.cases : codes.cases;
  if ((state.numeric > 0 && cells.variables != state.numeric) ||
      (state.ordinal > 0 && (codes.variables != state.ordinal || codes.cases != cases)))
    throw std::invalid_argument("the block has other variables than the matrix");
  Step step{cells, codes, {}};
  constexpr std::int64_t kStep = CSymmetricProduct::kChunkCases;
  for (std::int64_t from = 0; from < cases; from += kStep) {
    const std::int64_t kept = state.Keep(from, std::min(from + kStep, cases), step);
    state.product.Add(kept, [&](int panel, double* to) {
      for (int l = 0; l < kLanes; ++l) {
        const auto at = static_cast<std::size_t>(panel * kLanes + l);
        static const Fill kNothing = NoInfluence();
        (at < state.fills.size() ? state.fills[at] : kNothing)(step, to + l);
      }
      if (cells.weights == nullptr) return;
      for (std::int64_t i = 0; i < kept; ++i) {
        const double root = std::sqrt(cells.weights[step.kept[static_cast<std::size_t>(i)]]);
        for (int l = 0; l < kLanes; ++l) to[i * kLanes + l] *= root;
      }
    });
  }
}

AsymptoticCovarianceResult CMixedAcov::Result() const {
  AsymptoticCovarianceResult result = state_->result;
  if (result.status == EStatus::Ok) result.matrix = state_->product.Matrix();
  return result;
}

std::int64_t CMixedAcov::MemoryFor(int variables, EMoments kind) {
  return CSymmetricProduct::MemoryFor(ElementCount(variables, kind));
}

}  // namespace stats
