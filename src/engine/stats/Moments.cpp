#include "engine/stats/Moments.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "engine/stats/MomentSums.h"

namespace stats {

struct CMoments::State {
  int variables;
  EDeletion deletion;
  int threads;
  COrigins origins;
  MomentSums sums;
};

CMoments::CMoments(int variables, EDeletion deletion, int threads)
    : state_(new State{variables, deletion, threads, COrigins(variables),
                       MomentSums(variables, deletion)}) {}
CMoments::~CMoments() = default;
CMoments::CMoments(CMoments&&) noexcept = default;
CMoments& CMoments::operator=(CMoments&&) noexcept = default;

namespace {

// The sums of a group of segments, with the buffers for one.
struct Group {
  Group(const COrigins& origins, int variables, EDeletion deletion)
      : sums(variables, deletion), segments(origins, variables, deletion) {}
  MomentSums sums;
  CSegmentMoments segments;
};

}  // namespace

void CMoments::Add(const CaseBlock& block) {
  CheckShape(block, state_->variables);
  state_->origins.Find(block);
  SumInGroups<Group>(
      block, state_->deletion, state_->threads,
      [&] { return Group(state_->origins, state_->variables, state_->deletion); },
      [](Group& group, CSegment& segment) { group.sums.Merge(group.segments.Compute(segment)); },
      [&](const Group& group) { state_->sums.Merge(group.sums); });
}

void CMoments::Merge(const CMoments& other) {
  if (other.state_->variables != state_->variables || other.state_->deletion != state_->deletion)
    throw std::invalid_argument("moments of different variables cannot be merged");
  state_->origins.Adopt(other.state_->origins);
  Eigen::VectorXd distance(state_->variables);
  for (int i = 0; i < state_->variables; ++i)
    distance[i] = other.state_->origins.At(i) - state_->origins.At(i);
  MomentSums moved = other.state_->sums;
  moved.Move(distance);
  state_->sums.Merge(moved);
}

int CMoments::Variables() const {
  return state_->variables;
}

EDeletion CMoments::Deletion() const {
  return state_->deletion;
}

std::int64_t CMoments::Cases() const {
  return state_->sums.cases;
}

std::int64_t CMoments::LeftOut() const {
  return state_->sums.incomplete + state_->sums.withoutWeight;
}

bool CMoments::WithoutWeights() const {
  const MomentSums& sums = state_->sums;
  return sums.cases == 0 && sums.incomplete == 0 && sums.withoutWeight > 0;
}

bool CMoments::Finite() const {
  return state_->sums.finite;
}

double CMoments::N(int i, int j) const {
  return state_->sums.pairwise ? state_->sums.pairN(i, j) : state_->sums.n;
}

double CMoments::Mean(int i, int j) const {
  const MomentSums& sums = state_->sums;
  return state_->origins.At(i) + (sums.pairwise ? sums.pairMean(i, j) : sums.mean[i]);
}

double CMoments::Product(int i, int j) const {
  return state_->sums.products(i, j);
}

double CMoments::Square(int i, int j) const {
  return state_->sums.pairwise ? state_->sums.squares(i, j) : state_->sums.products(i, i);
}

namespace {

// A constant variable has squares of exactly 0. One that is constant only among the cases of a pair
// is left with the rounding error of its other values.
bool IsConstant(const CMoments& moments, int i, int j) {
  const double own = moments.Square(i, i) / moments.N(i, i);
  return moments.Square(i, j) / moments.N(i, j) <= (i == j ? 0.0 : 1e-14 * own);
}

struct Element {
  EStatus status = EStatus::Ok;
  double value = 0;
};

Element ElementOf(const CMoments& moments, EMoments kind, int i, int j) {
  const double n = moments.N(i, j);
  if (n == 0) return {EStatus::NoCases, 0};
  const double product = moments.Product(i, j);
  if (!std::isfinite(product + moments.Square(i, j) + moments.Square(j, i)))
    return {EStatus::NotFinite, 0};
  switch (kind) {
    case EMoments::Raw:
    case EMoments::Augmented:
      return {EStatus::Ok, product / n + moments.Mean(i, j) * moments.Mean(j, i)};
    case EMoments::Covariance:
      return n > 1 ? Element{EStatus::Ok, product / (n - 1)} : Element{EStatus::TooFewCases, 0};
    case EMoments::Correlation:
      break;
  }
  if (!(n > 1)) return {EStatus::TooFewCases, 0};
  if (IsConstant(moments, i, j) || IsConstant(moments, j, i)) return {EStatus::Constant, 0};
  if (i == j) return {EStatus::Ok, 1};
  const double si = moments.Square(i, j), sj = moments.Square(j, i);
  return {EStatus::Ok, std::clamp(product / std::sqrt(si) / std::sqrt(sj), -1.0, 1.0)};
}

void FillVariables(const CMoments& moments, MomentMatrix& result) {
  for (int i = 0; i < moments.Variables(); ++i) {
    const double n = moments.N(i, i);
    result.mean[i] = moments.Mean(i, i);
    result.sd[i] = n > 1 ? std::sqrt(std::max(0.0, moments.Square(i, i)) / (n - 1)) : 0.0;
  }
}

}  // namespace

MomentMatrix ComputeMoments(const CMoments& moments, EMoments kind) {
  MomentMatrix result;
  const int variables = moments.Variables();
  const int order = variables + (kind == EMoments::Augmented ? 1 : 0);
  result.matrix.setZero(order, order);
  result.mean.setZero(variables);
  result.sd.setZero(variables);
  if (moments.Cases() == 0) {
    result.status = moments.WithoutWeights() ? EStatus::ZeroWeights : EStatus::NoCases;
    return result;
  }
  if (!moments.Finite()) {
    result.status = EStatus::NotFinite;
    return result;
  }
  FillVariables(moments, result);
  result.status = EStatus::Ok;
  result.smallestN = moments.N(0, 0);
  for (int i = 0; i < variables; ++i) {
    for (int j = i; j >= 0; --j) {  // a variable's own fault before that of its pairs
      const Element element = ElementOf(moments, kind, i, j);
      result.matrix(i, j) = result.matrix(j, i) = element.value;
      result.smallestN = std::min(result.smallestN, moments.N(i, j));
      if (element.status == EStatus::Ok || result.status != EStatus::Ok) continue;
      result.status = element.status;
      result.variable = i;
      result.other = j;
    }
  }
  // Numbers so large that a product leaves the range of a double.
  const bool finite = result.matrix.allFinite() && result.mean.allFinite() && result.sd.allFinite();
  if (!finite && result.status == EStatus::Ok) result.status = EStatus::NotFinite;
  if (kind == EMoments::Augmented) {
    result.matrix.block(variables, 0, 1, variables) = result.mean.transpose();
    result.matrix.block(0, variables, variables, 1) = result.mean;
    result.matrix(variables, variables) = 1;
  }
  return result;
}

}  // namespace stats
