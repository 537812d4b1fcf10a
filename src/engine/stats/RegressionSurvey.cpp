#include "engine/stats/RegressionSurvey.h"

#include <algorithm>
#include <numeric>

namespace stats {

void ValueRange::Add(double value, double weight) {
  if (value < low) {
    low = value;
    atLow = 0;
  }
  if (value > high) {
    high = value;
    atHigh = 0;
  }
  atLow += value == low ? weight : 0;
  atHigh += value == high ? weight : 0;
}

void ValueRange::Merge(const ValueRange& other) {
  if (other.low <= low) {
    atLow = other.atLow + (other.low == low ? atLow : 0);
    low = other.low;
  }
  if (other.high >= high) {
    atHigh = other.atHigh + (other.high == high ? atHigh : 0);
    high = other.high;
  }
}

double CRegressionSample::N() const {
  return weights_.empty() ? static_cast<double>(Cases())
                          : std::accumulate(weights_.begin(), weights_.end(), 0.0);
}

void CRegressionSample::Add(const double* cells, const double* weight) {
  cells_.insert(cells_.end(), cells, cells + x_ + 1);
  if (weight != nullptr) weights_.push_back(*weight);
}

void CRegressionSample::Merge(const CRegressionSample& other) {
  cells_.insert(cells_.end(), other.cells_.begin(), other.cells_.end());
  weights_.insert(weights_.end(), other.weights_.begin(), other.weights_.end());
}

void CRegressionSample::Code(const std::vector<double>& values) {
  const CRegressionSample all = std::move(*this);
  *this = CRegressionSample(all.x_);
  for (std::int64_t k = 0; k < all.Cases(); ++k) {
    const double* const cells = all.cells_.data() + k * (x_ + 1);
    const auto at = std::lower_bound(values.begin(), values.end(), cells[x_]);
    if (at == values.end() || *at != cells[x_]) continue;
    Add(cells, all.weights_.empty() ? nullptr : &all.weights_[static_cast<std::size_t>(k)]);
    codes_.push_back(static_cast<std::uint8_t>(at - values.begin()));
  }
}

RegressionPass CRegressionSample::Pass() const {
  return [this](const RegressionWork& work) {
    RegressionBlock block;
    block.x = {cells_.data(), Cases(), x_, x_ + 1, weights_.empty() ? nullptr : weights_.data()};
    block.y = cells_.data() + x_;
    block.yStride = x_ + 1;
    block.codes = codes_.empty() ? nullptr : codes_.data();
    if (Cases() > 0) work(block)();
    return true;
  };
}

CRegressionSurvey::CRegressionSurvey(int x, std::int64_t step)
    : x_(x), step_(step), products_(x + 1), sample_(x) {}

void CRegressionSurvey::Add(const CaseBlock& cases, const std::int64_t* numbers) {
  products_.Add(cases);
  const bool sampled = step_ > 0 && numbers != nullptr;
  for (std::int64_t k = 0; k < cases.cases; ++k) {
    const double* const cells = cases.cells + k * cases.stride;
    const double* const weight = cases.weights != nullptr ? cases.weights + k : nullptr;
    range_.Add(cells[x_], weight != nullptr ? *weight : 1);
    if (sampled && numbers[k] % step_ == 0) sample_.Add(cells, weight);
  }
}

void CRegressionSurvey::Merge(const CRegressionSurvey& other) {
  products_.Merge(other.products_);
  range_.Merge(other.range_);
  sample_.Merge(other.sample_);
}

namespace {

Eigen::MatrixXd Correlations(const CQuadMatrix& centred) {
  Eigen::MatrixXd correlation(centred.Size(), centred.Size());
  for (int i = 0; i < centred.Size(); ++i) {
    for (int j = 0; j < centred.Size(); ++j) {
      const Quad squares = SquareRoot(centred(i, i)) * SquareRoot(centred(j, j));
      correlation(i, j) = static_cast<double>(centred(i, j) / squares);
    }
  }
  return correlation;
}

}  // namespace

RegressorScale ScaleRegressors(const CRegressionSurvey& survey) {
  RegressorScale scale;
  const CCrossProducts& sums = survey.Products();
  const int x = survey.X();
  scale.n = static_cast<double>(sums.N());
  if (sums.Cases() == 0) return scale;
  scale.status = !sums.Finite()       ? EStatus::NotFinite
                 : !(scale.n > 0)     ? EStatus::ZeroWeights
                 : !(scale.n > x + 1) ? EStatus::TooFewCases
                                      : EStatus::Ok;
  if (scale.status != EStatus::Ok) return scale;
  scale.mean.resize(x);
  scale.sd.resize(x);
  CQuadMatrix centred(x);
  for (int i = 0; i < x; ++i) {
    for (int j = 0; j < x; ++j) centred(i, j) = sums.Centred(i, j);
    scale.mean(i) = static_cast<double>(sums.Mean(i));
    scale.sd(i) = std::sqrt(static_cast<double>(centred(i, i) / (sums.N() - 1)));
    scale.status = sums.CheckSpread(i);
    if (scale.status == EStatus::Ok) continue;
    scale.variable = i;
    return scale;
  }
  // Newton's method works with 16 digits.
  constexpr double kCollinear = 1e-13;
  const CQuadCholesky factor(centred, kCollinear);
  scale.smallestPivot = factor.SmallestPivot();
  scale.correlation = Correlations(centred);
  if (factor.Failed() < 0) return scale;
  scale.status = EStatus::NotPositiveDefinite;
  scale.variable = factor.Failed();
  return scale;
}

NewtonResult MaximiseFromSample(Eigen::VectorXd start, double n, const RegressionPass& pass,
                                const CRegressionSample& sample, const LikelihoodOver& evaluate) {
  const auto over = [&evaluate](const RegressionPass& cases) {
    return [&evaluate, cases](const Eigen::VectorXd& at, LikelihoodSums& sums) {
      return evaluate(cases, at, sums);
    };
  };
  if (sample.Cases() > start.size()) {
    NewtonResult near = MaximiseLikelihood(start, sample.N(), over(sample.Pass()));
    if (near.status == EStatus::Ok) start = std::move(near.parameters);
  }
  return MaximiseLikelihood(std::move(start), n, over(pass));
}

}  // namespace stats
