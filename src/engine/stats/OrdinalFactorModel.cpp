#include "engine/stats/OrdinalFactorModel.h"

#include <cmath>

#include <Eigen/Cholesky>

#include "engine/stats/Blocks.h"

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

constexpr int kMostModeSteps = 100;
constexpr double kSmallModeStep = 1e-9;

// Probabilities are multiplied before a logarithm is taken, as many as surely do not underflow.
constexpr int kMultiplied = 8;
constexpr double kSmallestFactor = 1e-35;

}  // namespace

Index OrdinalFactorParameters::Offset(int variable) const {
  Index offset = 0;
  for (int j = 0; j < variable; ++j) offset += CountOf(j);
  return offset;
}

Index OrdinalFactorParameters::Count() const {
  return Offset(Variables());
}

CFactorPosterior::CFactorPosterior(const OrdinalFactorParameters& parameters,
                                   const CResponseFunction& response, const HermiteGrid& grid)
    : parameters_(parameters),
      response_(response),
      grid_(grid),
      cells_(static_cast<std::size_t>(parameters.Variables())),
      one_(1),
      points_(grid.points.rows(), grid.points.cols()) {
  for (ResponseCells& cells : cells_) cells.Resize(grid.points.rows());
  single_.Resize(1);
  answered_.reserve(cells_.size());
}

double CFactorPosterior::Lower(int variable, int code) const {
  return code > 0 ? parameters_.threshold[static_cast<std::size_t>(variable)](code - 1) : -HUGE_VAL;
}

double CFactorPosterior::Upper(int variable, int code) const {
  const VectorXd& threshold = parameters_.threshold[static_cast<std::size_t>(variable)];
  return code < threshold.size() ? threshold(code) : HUGE_VAL;
}

CFactorPosterior::Height CFactorPosterior::HeightAt(const std::uint8_t* codes,
                                                    const FactorVector& factors) {
  const Index m = factors.size();
  Height height{-factors.squaredNorm() / 2, -factors, FactorMatrix::Identity(m, m)};
  for (const int j : answered_) {
    const auto slopes = parameters_.slopes.row(j);
    one_(0) = slopes.dot(factors);
    response_.Evaluate(Lower(j, codes[j]), Upper(j, codes[j]), one_, single_);
    const double slope = single_.upper1(0) - single_.lower1(0);
    const double curve = single_.upper2(0) - single_.lower2(0) - slope * slope;
    height.value += std::log(single_.p(0));
    height.gradient -= slope * slopes.transpose();
    height.curvature -= curve * slopes.transpose() * slopes;
  }
  return height;
}

// Newton's method; the posterior is log-concave.
bool CFactorPosterior::FindMode(const std::uint8_t* codes, FactorVector& mode,
                                FactorMatrix& curvature) {
  Height at = HeightAt(codes, mode);
  for (int k = 0; k < kMostModeSteps; ++k) {
    const Eigen::LLT<FactorMatrix> factor(at.curvature);
    if (factor.info() != Eigen::Success || !at.gradient.allFinite()) return false;
    FactorVector step = factor.solve(at.gradient);
    const bool last = step.squaredNorm() < kSmallModeStep * kSmallModeStep;
    Height next = HeightAt(codes, mode + step);
    for (int halvings = 0; !last && !(next.value >= at.value - 1e-12) && halvings < 60;
         ++halvings) {
      step /= 2;
      next = HeightAt(codes, mode + step);
    }
    mode += step;
    at = next;
    if (last) break;
  }
  curvature = at.curvature;
  return std::isfinite(at.value) && curvature.allFinite();
}

bool CFactorPosterior::Compute(const std::uint8_t* codes, double* start) {
  const Index m = parameters_.Factors();
  answered_.clear();
  for (int j = 0; j < parameters_.Variables(); ++j) {
    if (codes[j] != kMissingCode) answered_.push_back(j);
  }
  FactorVector mode = Eigen::Map<VectorXd>(start, m);
  FactorMatrix curvature;
  if (!FindMode(codes, mode, curvature)) return false;
  Eigen::Map<VectorXd>(start, m) = mode;
  const Eigen::LLT<FactorMatrix> factor(curvature);
  if (factor.info() != Eigen::Success) return false;
  // With curvature = U' U the points are mode + U^-1 node.
  const FactorMatrix root = factor.matrixU();
  points_.noalias() =
      (root.triangularView<Eigen::Upper>().solve(grid_.points.transpose())).transpose();
  points_.rowwise() += mode.transpose();
  logs_ = grid_.logFactors.array() - points_.rowwise().squaredNorm().array() / 2;
  logs_ -= root.diagonal().array().log().sum();
  products_.setOnes(logs_.size());
  int multiplied = 0;
  for (std::size_t place = 0; place < answered_.size(); ++place) {
    const int j = answered_[place];
    x_ = points_ * parameters_.slopes.row(j).transpose();
    response_.Evaluate(Lower(j, codes[j]), Upper(j, codes[j]), x_, cells_[place]);
    products_ *= cells_[place].p.max(kSmallestFactor);
    if (++multiplied < kMultiplied && place + 1 < answered_.size()) continue;
    logs_ += products_.log();
    products_.setOnes();
    multiplied = 0;
  }
  const double largest = logs_.maxCoeff();
  weights_ = (logs_ - largest).exp();
  const double sum = weights_.sum();
  weights_ /= sum;
  logLikelihood_ = largest + std::log(sum);
  return std::isfinite(logLikelihood_);
}

VectorXd CFactorPosterior::Mean() const {
  return points_.transpose() * weights_.matrix();
}

VectorXd CFactorPosterior::Variance() const {
  const VectorXd mean = Mean();
  return (points_.rowwise() - mean.transpose()).cwiseAbs2().transpose() * weights_.matrix();
}

}  // namespace stats
