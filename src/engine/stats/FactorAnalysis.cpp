#include "engine/stats/FactorAnalysis.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "engine/stats/Distributions.h"
#include "engine/stats/Moments.h"

namespace stats {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

// The function of the uniquenesses that a method minimises, with two derivatives.
class CObjective {
 public:
  CObjective(const MatrixXd& correlation, int factors)
      : correlation_(correlation), p_(correlation.rows()), k_(factors) {}
  virtual ~CObjective() = default;

  // From parameters to uniquenesses, and what bounds the parameters.
  virtual VectorXd Uniqueness(const VectorXd& x) const = 0;
  virtual VectorXd Parameters(const VectorXd& uniqueness) const = 0;
  virtual double Evaluate(const VectorXd& x) = 0;
  virtual MatrixXd Loadings() const = 0;

  const VectorXd& Gradient() const { return gradient_; }
  const MatrixXd& Hessian() const { return hessian_; }

 protected:
  // Eigenvalues in descending order.
  void Decompose(const MatrixXd& matrix) {
    const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(matrix);
    values_ = solver.eigenvalues().reverse();
    vectors_ = solver.eigenvectors().rowwise().reverse();
  }

  // Sum over the large n and the small m of factor(m, n) (u_in u_jn) (u_im u_jm).
  template <typename Factor>
  void AddMixedPairs(const Factor& factor) {
    const MatrixXd small = vectors_.rightCols(p_ - k_);
    for (Index n = 0; n < k_; ++n) {
      VectorXd weights(p_ - k_);
      for (Index m = k_; m < p_; ++m) weights(m - k_) = factor(values_(m), values_(n));
      const MatrixXd inner = small * weights.asDiagonal() * small.transpose();
      hessian_.array() += (vectors_.col(n) * vectors_.col(n).transpose()).array() * inner.array();
    }
  }

  const MatrixXd& correlation_;
  Index p_, k_;
  VectorXd values_;
  MatrixXd vectors_;
  VectorXd gradient_;
  MatrixXd hessian_;
};

// In log uniquenesses, with the eigenvalues v and vectors w of U^-1/2 R U^-1/2:
//   f = sum over the small ones of v - log v - 1
//   df/dx_i = sum (1 - v) w_i^2
class CLikelihood : public CObjective {
 public:
  using CObjective::CObjective;

  VectorXd Uniqueness(const VectorXd& x) const override { return x.array().exp(); }
  VectorXd Parameters(const VectorXd& uniqueness) const override {
    return uniqueness.array().log();
  }

  double Evaluate(const VectorXd& x) override {
    root_ = (0.5 * x.array()).exp();
    const VectorXd inverse = root_.cwiseInverse();
    Decompose(inverse.asDiagonal() * correlation_ * inverse.asDiagonal());
    const VectorXd small = values_.tail(p_ - k_);
    if (!(small.minCoeff() > 0)) return HUGE_VAL;
    const MatrixXd w = vectors_.rightCols(p_ - k_);
    gradient_ = w.array().square().matrix() * (1 - small.array()).matrix();
    const MatrixXd weighted = w * small.asDiagonal() * w.transpose();
    hessian_ = weighted.array() * (w * w.transpose()).array();
    AddMixedPairs([](double v, double large) { return (1 - v) * (v + large) / (large - v); });
    // v - log v - 1 without cancellation near 1.
    double sum = 0;
    for (const double v : small) sum += (v - 1) - std::log1p(v - 1);
    return sum;
  }

  MatrixXd Loadings() const override {
    const VectorXd scale = (values_.head(k_).array() - 1).max(0).sqrt();
    return root_.asDiagonal() * vectors_.leftCols(k_) * scale.asDiagonal();
  }

 private:
  VectorXd root_;
};

// In uniquenesses, with the eigenvalues v and vectors u of R - U:
//   f = sum over the small ones of v^2 / 2,   df/dx_i = -sum v u_i^2
class CLeastResiduals : public CObjective {
 public:
  using CObjective::CObjective;

  VectorXd Uniqueness(const VectorXd& x) const override { return x; }
  VectorXd Parameters(const VectorXd& uniqueness) const override { return uniqueness; }

  double Evaluate(const VectorXd& x) override {
    Decompose(correlation_ - MatrixXd(x.asDiagonal()));
    const VectorXd small = values_.tail(p_ - k_);
    const MatrixXd u = vectors_.rightCols(p_ - k_);
    gradient_ = -(u.array().square().matrix() * small);
    hessian_ = (u * u.transpose()).array().square();
    AddMixedPairs([](double v, double large) { return 2 * v / (v - large); });
    return 0.5 * small.squaredNorm();
  }

  MatrixXd Loadings() const override {
    const VectorXd scale = values_.head(k_).array().max(0).sqrt();
    return vectors_.leftCols(k_) * scale.asDiagonal();
  }
};

// Newton steps within bounds: parameters at a bound that the gradient pushes outward stay there.
class CBoundedNewton {
 public:
  CBoundedNewton(CObjective& objective, const VectorXd& low, const VectorXd& high)
      : objective_(objective), low_(low), high_(high) {}

  bool Minimise(VectorXd& x, FactorResult& result) {
    constexpr int kMostIterations = 500;
    constexpr double kSmallGradient = 1e-13;
    double value = objective_.Evaluate(x);
    for (result.iterations = 0; result.iterations < kMostIterations; ++result.iterations) {
      const VectorXd gradient = objective_.Gradient();
      const std::vector<Index> free = Free(x, gradient);
      result.gradient = Largest(gradient, free);
      if (result.gradient <= kSmallGradient || !Step(free, gradient, x, value)) break;
    }
    result.minimum = value;
    constexpr double kEnough = 1e-8;
    return std::isfinite(value) && result.gradient <= kEnough;
  }

 private:
  std::vector<Index> Free(const VectorXd& x, const VectorXd& gradient) const {
    std::vector<Index> free;
    for (Index i = 0; i < x.size(); ++i) {
      const bool held =
          (x(i) <= low_(i) && gradient(i) > 0) || (x(i) >= high_(i) && gradient(i) < 0);
      if (!held) free.push_back(i);
    }
    return free;
  }

  static double Largest(const VectorXd& gradient, const std::vector<Index>& free) {
    double largest = 0;
    for (const Index i : free) largest = std::max(largest, std::fabs(gradient(i)));
    return largest;
  }

  // The Hessian with its eigenvalues made positive, so that the step goes down.
  static VectorXd Downhill(const MatrixXd& hessian, const VectorXd& gradient) {
    const Eigen::LLT<MatrixXd> factor(hessian);
    constexpr double kSmallest = 1e-6;
    if (factor.info() == Eigen::Success && factor.rcond() > kSmallest) {
      return -factor.solve(gradient);
    }
    const Eigen::SelfAdjointEigenSolver<MatrixXd> solver(hessian);
    const double floor = kSmallest * std::max(1.0, solver.eigenvalues().cwiseAbs().maxCoeff());
    const VectorXd inverse = solver.eigenvalues().cwiseAbs().cwiseMax(floor).cwiseInverse();
    return -(solver.eigenvectors() * inverse.asDiagonal() *
             (solver.eigenvectors().transpose() * gradient));
  }

  // False when no step goes down any more.
  bool Step(const std::vector<Index>& free, const VectorXd& gradient, VectorXd& x, double& value) {
    const auto count = static_cast<Index>(free.size());
    MatrixXd hessian(count, count);
    VectorXd slope(count);
    for (Index i = 0; i < count; ++i) {
      slope(i) = gradient(free[static_cast<std::size_t>(i)]);
      for (Index j = 0; j < count; ++j)
        hessian(i, j) = objective_.Hessian()(free[static_cast<std::size_t>(i)],
                                             free[static_cast<std::size_t>(j)]);
    }
    const VectorXd step = Downhill(hessian, slope);
    const double before = Largest(gradient, free);
    double share = 1;
    for (int halvings = 0; halvings < 40; ++halvings, share /= 2) {
      VectorXd next = x;
      for (Index i = 0; i < count; ++i) {
        const Index at = free[static_cast<std::size_t>(i)];
        next(at) = std::clamp(x(at) + share * step(i), low_(at), high_(at));
      }
      const double there = objective_.Evaluate(next);
      // Near the minimum the value is flat to rounding, and the gradient decides.
      const double rounding = 1e-14 * (1 + std::fabs(value));
      const bool lower = there < value - rounding;
      const bool flatter =
          there <= value + rounding &&
          Largest(objective_.Gradient(), Free(next, objective_.Gradient())) < before;
      if (lower || flatter) {
        x = next;
        value = there;
        return true;
      }
    }
    objective_.Evaluate(x);
    return false;
  }

  CObjective& objective_;
  const VectorXd& low_;
  const VectorXd& high_;
};

// Columns by descending squares, each with a sum of 0 or more.
MatrixXd InOrder(const MatrixXd& loadings) {
  std::vector<Index> order(static_cast<std::size_t>(loadings.cols()));
  std::iota(order.begin(), order.end(), Index{0});
  std::stable_sort(order.begin(), order.end(), [&loadings](Index i, Index j) {
    return loadings.col(i).squaredNorm() > loadings.col(j).squaredNorm();
  });
  MatrixXd ordered(loadings.rows(), loadings.cols());
  for (Index j = 0; j < loadings.cols(); ++j) {
    const auto column = loadings.col(order[static_cast<std::size_t>(j)]);
    ordered.col(j) = (column.sum() < 0 ? -1.0 : 1.0) * column;
  }
  return ordered;
}

double LogDeterminant(const Eigen::LLT<MatrixXd>& factor) {
  return 2 * factor.matrixLLT().diagonal().array().log().sum();
}

void ComputeFit(const MatrixXd& correlation, double n, int k, FactorResult& result) {
  FactorFit& fit = result.fit;
  const auto p = static_cast<double>(correlation.rows());
  fit.df = FactorDegreesOfFreedom(static_cast<int>(p), k);
  double squares = 0;
  for (Index i = 0; i < correlation.rows(); ++i) {
    for (Index j = 0; j < i; ++j) squares += result.residual(i, j) * result.residual(i, j);
  }
  fit.rootMeanSquareResidual = std::sqrt(squares / (p * (p - 1) / 2));
  const MatrixXd implied = correlation - result.residual;
  fit.likelihood = CheckPositiveDefinite(correlation).status == EStatus::Ok &&
                   CheckPositiveDefinite(implied).status == EStatus::Ok;
  if (!fit.likelihood) return;
  const Eigen::LLT<MatrixXd> observed(correlation);
  const Eigen::LLT<MatrixXd> model(implied);
  fit.discrepancy =
      LogDeterminant(model) - LogDeterminant(observed) + model.solve(correlation).trace() - p;
  fit.chiSquare = (n - 1) * fit.discrepancy;
  fit.p = ChiSquareUpper(fit.chiSquare, fit.df);
  const double factor = n - 1 - (2 * p + 5) / 6;
  fit.bartlett = (factor - 2.0 * k / 3) * fit.discrepancy;
  fit.pBartlett = ChiSquareUpper(fit.bartlett, fit.df);
  fit.dfBaseline = p * (p - 1) / 2;
  const double baseline = -LogDeterminant(observed);
  fit.baseline = (n - 1) * baseline;
  if (fit.df <= 0) return;
  fit.rmsea = std::sqrt(std::max(0.0, (fit.chiSquare - fit.df) / (fit.df * (n - 1))));
  const double ratio0 = factor * baseline / fit.dfBaseline;
  fit.tuckerLewis = (ratio0 - fit.bartlett / fit.df) / (ratio0 - 1);
}

EStatus Check(const MatrixXd& correlation, int factors, EFactorMethod method) {
  const Index p = correlation.rows();
  if (p != correlation.cols() || factors < 1 || factors >= p) return EStatus::BadArgument;
  if (!correlation.allFinite()) return EStatus::NotFinite;
  if (FactorDegreesOfFreedom(static_cast<int>(p), factors) < 0) return EStatus::TooFewCases;
  if (method == EFactorMethod::Minres) return EStatus::Ok;
  return CheckPositiveDefinite(correlation).status;
}

// From the squared multiple correlations where there are any.
VectorXd Start(const MatrixXd& correlation, int factors) {
  const Index p = correlation.rows();
  const Eigen::LLT<MatrixXd> factor(correlation);
  if (factor.info() != Eigen::Success) return VectorXd::Constant(p, 0.5);
  const VectorXd precision = factor.solve(MatrixXd::Identity(p, p)).diagonal();
  const double share = 1 - 0.5 * factors / static_cast<double>(p);
  return (share * precision.cwiseInverse().array()).max(2 * kSmallestUniqueness).min(0.95);
}

}  // namespace

double FactorDegreesOfFreedom(int variables, int factors) {
  const double rest = variables - factors;
  return (rest * rest - variables - factors) / 2;
}

FactorResult EstimateFactors(const MatrixXd& correlation, double n, int factors,
                             EFactorMethod method) {
  FactorResult result;
  result.status = Check(correlation, factors, method);
  if (result.status != EStatus::Ok) return result;
  CLikelihood likelihood(correlation, factors);
  CLeastResiduals residuals(correlation, factors);
  CObjective& objective = method == EFactorMethod::Minres ? static_cast<CObjective&>(residuals)
                                                          : static_cast<CObjective&>(likelihood);
  const Index p = correlation.rows();
  const VectorXd low = objective.Parameters(VectorXd::Constant(p, kSmallestUniqueness));
  const VectorXd high = objective.Parameters(VectorXd::Ones(p));
  VectorXd x = objective.Parameters(Start(correlation, factors));
  if (!CBoundedNewton(objective, low, high).Minimise(x, result)) {
    result.status = EStatus::NotConverged;
    return result;
  }
  objective.Evaluate(x);
  result.uniqueness = objective.Uniqueness(x);
  result.heywood = (x.array() <= low.array()).cast<int>();
  result.loadings = InOrder(objective.Loadings());
  result.residual = correlation - result.loadings * result.loadings.transpose() -
                    MatrixXd(result.uniqueness.asDiagonal());
  ComputeFit(correlation, n, factors, result);
  return result;
}

MatrixXd RegressionScoreWeights(const MatrixXd& correlation, const MatrixXd& loadings) {
  return correlation.ldlt().solve(loadings);
}

}  // namespace stats
