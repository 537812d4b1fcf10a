#include "engine/stats/OrdinalFactorAnalysis.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>

#include "engine/stats/FactorRotations.h"

namespace stats {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

constexpr int kFirstSteps = 2;            // of EM
constexpr int kEmBetween = 5;             // after a Newton step that failed
constexpr double kNewtonGradient = 1e-2;  // of a case, from which on Newton's method may work
constexpr double kSmallFall = 1e-10;      // relative: rounding
constexpr int kMostHalvings = 10;
constexpr int kNewtonHalvings = 3;
constexpr int kEmHalvings = 5;         // more than that: the step fails, though it is taken
constexpr int kMostFailures = 3;       // of steps: the quadrature is too coarse
constexpr int kMostPoints = 1024;      // of a refined quadrature
constexpr int kMostNodes = 50;         // and in each dimension
constexpr double kNearHeywood = 0.95;  // communality where even the finest one fails
constexpr double kSlowFall = 0.1;  // of the gradient in a step, above which information is renewed

class CEstimation {
 public:
  CEstimation(const COrdinalPatterns& patterns, ELink link, const OrdinalFactorParameters& start,
              const OrdinalFactorOptions& options)
      : patterns_(patterns), options_(options), link_(link), factors_(start.Factors()) {
    result_.parameters = start;
    SetNodes(options.nodes > 0 ? options.nodes : DefaultNodes(factors_));
  }

  OrdinalFactorResult Run() {
    if (!Climb()) return result_;
    Canonise();
    return result_;
  }

 private:
  const OrdinalFactorParameters& At() const { return result_.parameters; }

  void SetNodes(int nodes) {
    result_.nodes = nodes;
    pass_.emplace(patterns_, link_, factors_, nodes, options_.threads);
  }

  // False: stopped, or no likelihood.
  bool Evaluate(const OrdinalFactorParameters& at, bool information, OrdinalFactorSums& sums) {
    if (!pass_->Collect(at, information, options_.goOn, sums)) {
      result_.stopped = true;
      return false;
    }
    return true;
  }

  // Without what quadrature leaves in the directions that only rotate the factors.
  VectorXd Gradient(const OrdinalFactorSums& sums) const {
    const MatrixXd directions = RotationDirections(At());
    return sums.gradient - directions * (directions.transpose() * sums.gradient);
  }

  double LargestGradient(const OrdinalFactorSums& sums) const {
    return Gradient(sums).cwiseAbs().maxCoeff() / patterns_.N();
  }

  void Note(EFactorStep next) {
    result_.logLikelihood = sums_.logLikelihood;
    result_.largestGradient = LargestGradient(sums_);
    result_.history.push_back({next, sums_.logLikelihood, result_.largestGradient});
    if (options_.told) options_.told(result_.history.back());
  }

  bool Begin() {
    if (!Evaluate(At(), false, sums_)) return false;
    if (!sums_.valid) result_.status = EStatus::NotFinite;
    return sums_.valid;
  }

  bool Climb() {
    if (!Begin()) return false;
    int untilNewton = kFirstSteps, failures = 0;
    result_.status = EStatus::NotConverged;
    for (int k = 0; k < options_.mostSteps; ++k) {
      const bool newton = untilNewton-- <= 0 && LargestGradient(sums_) < kNewtonGradient;
      Note(newton ? EFactorStep::Newton : EFactorStep::Em);
      if (result_.largestGradient < options_.gradient) {
        result_.status = EStatus::Ok;
        return true;
      }
      const bool moved = newton ? StepNewton() : StepEm();
      if (result_.stopped) return false;
      if (IsHeywood(kLargestCommunality)) return true;
      if (moved && (newton || halvings_ <= kEmHalvings)) continue;
      untilNewton = kEmBetween;
      if (++failures < kMostFailures && (moved || newton)) continue;
      if (!Refine()) return !result_.stopped;
      failures = 0;
    }
    return true;
  }

  // Where no step raises the likelihood although the gradient says so, the quadrature is to blame:
  // more points follow the likelihood closer to a Heywood case, or to its maximum. False when
  // there are no more.
  bool Refine() {
    const int nodes = result_.nodes * 3 / 2;
    if (nodes > kMostNodes || std::pow(nodes, factors_) > kMostPoints) {
      IsHeywood(kNearHeywood);
      return false;
    }
    Note(EFactorStep::FinerQuadrature);
    SetNodes(nodes);
    factor_.reset();
    lastGradient_ = 0;
    return Begin();
  }

  bool IsHeywood(double communality) {
    const MatrixXd loadings =
        StandardisedLoadings(At().slopes, pass_->Response().ResidualVariance());
    Index variable = 0;
    if (loadings.rowwise().squaredNorm().maxCoeff(&variable) < communality) return false;
    result_.status = EStatus::Boundary;
    result_.variable = static_cast<int>(variable);
    Note(EFactorStep::Em);
    return true;
  }

  // Adds `share` of the step; false when thresholds no longer ascend.
  static bool Move(const OrdinalFactorParameters& from, const VectorXd& step, double share,
                   OrdinalFactorParameters& to) {
    to = from;
    Index at = 0;
    for (int j = 0; j < from.Variables(); ++j) {
      VectorXd& threshold = to.threshold[static_cast<std::size_t>(j)];
      threshold += share * step.segment(at, threshold.size());
      at += threshold.size();
      to.slopes.row(j) += share * step.segment(at, to.slopes.cols()).transpose();
      at += to.slopes.cols();
      for (Index a = 1; a < threshold.size(); ++a) {
        if (!(threshold(a) > threshold(a - 1))) return false;
      }
    }
    return step.allFinite();
  }

  // Takes as much of the step as does not lower the likelihood.
  bool Take(const VectorXd& step, int halvings) {
    double share = 1;
    for (halvings_ = 0; halvings_ <= halvings; ++halvings_, share /= 2) {
      OrdinalFactorParameters next;
      if (!Move(At(), step, share, next)) continue;
      OrdinalFactorSums sums;
      if (!Evaluate(next, false, sums)) return false;
      if (!sums.valid ||
          sums.logLikelihood < sums_.logLikelihood - kSmallFall * std::fabs(sums_.logLikelihood)) {
        continue;
      }
      result_.parameters = std::move(next);
      sums_ = std::move(sums);
      return true;
    }
    return false;
  }

  bool StepEm() {
    VectorXd step = VectorXd::Zero(At().Count());
    for (int j = 0; j < At().Variables(); ++j) {
      const Index offset = At().Offset(j), count = At().CountOf(j);
      const Eigen::LLT<MatrixXd> factor(-sums_.complete[static_cast<std::size_t>(j)]);
      if (factor.info() != Eigen::Success) return false;
      step.segment(offset, count) = factor.solve(sums_.gradient.segment(offset, count));
    }
    return Take(step, kMostHalvings);
  }

  // The information is kept as long as the gradient falls fast.
  bool StepNewton() {
    const double before = LargestGradient(sums_);
    if (!fresh_ && before > kSlowFall * lastGradient_) factor_.reset();
    lastGradient_ = before;
    fresh_ = !factor_;
    if (!factor_) {
      OrdinalFactorSums sums;
      if (!Evaluate(At(), true, sums)) return false;
      Factorise(sums);
      if (!factor_) return false;
    }
    if (Take(factor_->solve(Gradient(sums_)), kNewtonHalvings)) return true;
    factor_.reset();
    return false;
  }

  // Where the information is not positive definite, as much of what EM takes for it is mixed in as
  // makes it so: that is larger by the covariances of the scores.
  void Factorise(const OrdinalFactorSums& sums) {
    MatrixXd complete = MatrixXd::Zero(At().Count(), At().Count());
    for (int j = 0; j < At().Variables(); ++j) {
      complete.block(At().Offset(j), At().Offset(j), At().CountOf(j), At().CountOf(j)) =
          -sums.complete[static_cast<std::size_t>(j)];
    }
    for (const double share : {0.0, 0.02, 0.1, 0.3}) {
      factor_.emplace(HoldRotations(At(), (1 - share) * sums.information + share * complete));
      if (factor_->info() == Eigen::Success) return;
    }
    factor_.reset();
  }

  // Turns the factors to their principal axes and looks from there once more.
  void Canonise() {
    const Eigen::SelfAdjointEigenSolver<MatrixXd> axes(At().slopes.transpose() * At().slopes);
    MatrixXd slopes = At().slopes * axes.eigenvectors().rowwise().reverse();
    for (Index k = 0; k < slopes.cols(); ++k) {
      if (slopes.col(k).sum() < 0) slopes.col(k) *= -1;
    }
    result_.parameters.slopes = slopes;
    pass_->ForgetModes();
    OrdinalFactorSums sums;
    if (!Evaluate(At(), true, sums) || !sums.valid) return;
    result_.information = std::move(sums.information);
    if (result_.status != EStatus::Ok) return;
    const Eigen::LLT<MatrixXd> factor(HoldRotations(At(), result_.information));
    if (factor.info() != Eigen::Success || factor.rcond() < 1e-14)
      result_.status = EStatus::NotPositiveDefinite;
  }

  const COrdinalPatterns& patterns_;
  const OrdinalFactorOptions& options_;
  ELink link_;
  int factors_;
  std::optional<COrdinalFactorPass> pass_;
  OrdinalFactorResult result_;
  OrdinalFactorSums sums_;
  std::optional<Eigen::LLT<MatrixXd>> factor_;
  bool fresh_ = false;
  int halvings_ = 0;  // of the last step
  double lastGradient_ = 0;
};

}  // namespace

int DefaultNodes(int factors) {
  constexpr int kNodes[] = {0, 21, 9, 7, 5, 5, 4, 3, 3};
  return kNodes[std::clamp(factors, 1, kMostFactors)];
}

OrdinalFactorResult EstimateOrdinalFactors(const COrdinalPatterns& patterns, ELink link,
                                           const OrdinalFactorParameters& start,
                                           const OrdinalFactorOptions& options) {
  if (start.Factors() < 1 || start.Factors() > kMostFactors || start.Variables() < 1 ||
      patterns.Patterns() == 0) {
    return {};
  }
  return CEstimation(patterns, link, start, options).Run();
}

OrdinalFactorParameters StartingParameters(const MatrixXd& loadings,
                                           const std::vector<std::vector<double>>& thresholds,
                                           ELink link) {
  constexpr double kLogisticScale = 1.702;  // brings the two response functions together
  constexpr double kLargestStart = 0.9;     // of a communality
  const double scale = link == ELink::Logistic ? kLogisticScale : 1;
  OrdinalFactorParameters start;
  start.slopes = loadings;
  for (Index j = 0; j < loadings.rows(); ++j) {
    const double communality = loadings.row(j).squaredNorm();
    if (communality > kLargestStart) start.slopes.row(j) *= std::sqrt(kLargestStart / communality);
    const double residual = std::sqrt(1 - std::min(communality, kLargestStart));
    start.slopes.row(j) *= scale / residual;
    const auto& from = thresholds[static_cast<std::size_t>(j)];
    start.threshold.emplace_back(
        Eigen::Map<const VectorXd>(from.data(), static_cast<Index>(from.size())) *
        (scale / residual));
  }
  return start;
}

MatrixXd StandardisedLoadings(const MatrixXd& slopes, double residualVariance) {
  const VectorXd deviation =
      (slopes.rowwise().squaredNorm().array() + residualVariance).sqrt().matrix();
  return deviation.cwiseInverse().asDiagonal() * slopes;
}

double IndependenceLogLikelihood(const COrdinalPatterns& patterns) {
  double sum = 0;
  for (int j = 0; j < patterns.Variables(); ++j) {
    const std::vector<double> margin = patterns.Margin(j);
    double n = 0;
    for (const double f : margin) n += f;
    for (const double f : margin) {
      if (f > 0) sum += f * std::log(f / n);
    }
  }
  return sum;
}

}  // namespace stats
