#include "engine/stats/AsymptoticCovariance.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "engine/stats/Segments.h"
#include "engine/stats/SymmetricProduct.h"

namespace stats {

namespace {

// An element of the matrix: what turns the cells of a case into its influence on the element.
//   covariance   (x y - s_xy) / n, x and y centred
//   correlation  (x y - r (x^2 + y^2) / 2) / n, x and y standardised
struct Element {
  int i = 0, j = 0;
  double meanI = 0, meanJ = 0;
  double scaleI = 1, scaleJ = 1;
  double estimate = 0;  // s_xy, or r
  double share = 0;     // 1 / n
};

std::vector<Element> Elements(const CMoments& moments, EMoments kind) {
  std::vector<Element> elements;
  for (int i = 0; i < moments.Variables(); ++i) {
    for (int j = 0; j <= i; ++j) {
      if (kind == EMoments::Correlation && i == j) continue;
      Element e{i, j, moments.Mean(i, j), moments.Mean(j, i)};
      const double n = moments.N(i, j);
      e.share = 1 / n;
      e.estimate = moments.Product(i, j) / n;
      if (kind == EMoments::Correlation) {
        e.scaleI = std::sqrt(n / moments.Square(i, j));
        e.scaleJ = std::sqrt(n / moments.Square(j, i));
        e.estimate *= e.scaleI * e.scaleJ;
      }
      elements.push_back(e);
    }
  }
  return elements;
}

int ElementCount(int variables, EMoments kind) {
  return variables * (kind == EMoments::Correlation ? variables - 1 : variables + 1) / 2;
}

}  // namespace

struct CProductMomentAcov::State {
  State(const CMoments& moments, EMoments wanted, int threads)
      : variables(moments.Variables()),
        deletion(moments.Deletion()),
        kind(wanted),
        segment(variables),
        product(ElementCount(variables, wanted), threads) {}

  double Influence(const Element& e, double x, double y) const {
    x = (x - e.meanI) * e.scaleI;
    y = (y - e.meanJ) * e.scaleJ;
    if (kind == EMoments::Covariance) return (x * y - e.estimate) * e.share;
    return (x * y - 0.5 * e.estimate * (x * x + y * y)) * e.share;
  }
  void FillPanel(int panel, double* to) const;

  int variables;
  EDeletion deletion;
  EMoments kind;
  AsymptoticCovarianceResult result;
  std::vector<Element> elements;
  CSegment segment;
  CSymmetricProduct product;
};

CProductMomentAcov::CProductMomentAcov(const CMoments& moments, EMoments kind, int threads) {
  if (kind != EMoments::Covariance && kind != EMoments::Correlation)
    throw std::invalid_argument("asymptotic covariances are for covariances and correlations");
  state_ = std::make_unique<State>(moments, kind, threads);
  const MomentMatrix matrix = ComputeMoments(moments, kind);
  AsymptoticCovarianceResult& result = state_->result;
  result.status = matrix.status;
  result.variable = matrix.variable;
  result.other = matrix.other;
  result.n = matrix.smallestN;
  if (result.status == EStatus::Ok && ElementCount(moments.Variables(), kind) == 0)
    result.status = EStatus::BadArgument;
  if (result.status == EStatus::Ok) state_->elements = Elements(moments, kind);
}
CProductMomentAcov::~CProductMomentAcov() = default;
CProductMomentAcov::CProductMomentAcov(CProductMomentAcov&&) noexcept = default;
CProductMomentAcov& CProductMomentAcov::operator=(CProductMomentAcov&&) noexcept = default;

void CProductMomentAcov::State::FillPanel(int panel, double* to) const {
  for (int l = 0; l < kLanes; ++l) {
    const auto at = static_cast<std::size_t>(panel * kLanes + l);
    if (at >= elements.size()) {
      for (std::int64_t k = 0; k < segment.Cases(); ++k) to[k * kLanes + l] = 0;
      continue;
    }
    const Element& e = elements[at];
    const double* x = segment.Panel(e.i / kLanes) + e.i % kLanes;
    const double* y = segment.Panel(e.j / kLanes) + e.j % kLanes;
    for (std::int64_t k = 0; k < segment.Cases(); ++k) {
      const double influence = Influence(e, x[k * kLanes], y[k * kLanes]);
      // A pair without this case owes it nothing.
      to[k * kLanes + l] = std::isnan(influence) ? 0.0 : influence;
    }
  }
  if (!segment.Weighted()) return;
  for (std::int64_t k = 0; k < segment.Cases(); ++k) {
    const double root = std::sqrt(segment.Weights()[k]);
    for (int l = 0; l < kLanes; ++l) to[k * kLanes + l] *= root;
  }
}

void CProductMomentAcov::Add(const CaseBlock& block) {
  State& state = *state_;
  CheckShape(block, state.variables);
  if (state.result.status != EStatus::Ok) return;
  for (std::int64_t at = 0; at < block.cases; at += kSegmentCases) {
    state.segment.Pack(block, at, std::min(at + kSegmentCases, block.cases), state.deletion);
    state.product.Add(state.segment.Cases(),
                      [&](int panel, double* to) { state.FillPanel(panel, to); });
  }
}

AsymptoticCovarianceResult CProductMomentAcov::Result() const {
  AsymptoticCovarianceResult result = state_->result;
  if (result.status == EStatus::Ok) result.matrix = state_->product.Matrix();
  return result;
}

std::int64_t CProductMomentAcov::MemoryFor(int variables, EMoments kind) {
  return CSymmetricProduct::MemoryFor(ElementCount(variables, kind));
}

}  // namespace stats
