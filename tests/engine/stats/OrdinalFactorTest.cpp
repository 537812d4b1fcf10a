#include <algorithm>
#include <cmath>
#include <random>

#include <Eigen/Eigenvalues>
#include <Eigen/Geometry>
#include <Eigen/SVD>

#include "Oracle.h"
#include "engine/stats/BivariateNormal.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/FactorRotations.h"
#include "engine/stats/OrdinalFactorFit.h"
#include "engine/stats/Rotation.h"
#include "engine/stats/Thresholds.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;
using stats::COrdinalPatterns;
using stats::ELink;
using stats::EStatus;
using stats::kMissingCode;
using stats::OrdinalFactorOptions;
using stats::OrdinalFactorParameters;

struct Answers {
  std::vector<std::uint8_t> codes;  // variable after variable
  std::int64_t cases = 0;
  int variables = 0;

  COrdinalPatterns Patterns(int categories) const {
    COrdinalPatterns patterns(std::vector<int>(static_cast<std::size_t>(variables), categories));
    patterns.Add({codes.data(), cases, variables, cases, nullptr});
    return patterns;
  }
};

OrdinalFactorParameters Truth(int variables, int factors) {
  OrdinalFactorParameters truth;
  truth.slopes.setZero(variables, factors);
  for (int j = 0; j < variables; ++j) {
    truth.slopes(j, j % factors) = .8 + .1 * j;
    truth.slopes(j, (j + 1) % factors) += factors > 1 ? .3 : 0;
    truth.threshold.push_back(VectorXd::LinSpaced(3, -1.2 + .1 * j, 1.3));
  }
  return truth;
}

Answers Simulate(const OrdinalFactorParameters& truth, ELink link, std::int64_t cases,
                 unsigned seed, double missing = 0) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform;
  Answers answers{{}, cases, truth.Variables()};
  answers.codes.resize(static_cast<std::size_t>(cases * truth.Variables()));
  for (std::int64_t k = 0; k < cases; ++k) {
    VectorXd factors(truth.Factors());
    for (double& f : factors) f = normal(random);
    for (int j = 0; j < truth.Variables(); ++j) {
      double error = normal(random);
      if (link == ELink::Logistic) {
        const double u = uniform(random);
        error = std::log(u / (1 - u));
      }
      const double y = truth.slopes.row(j).dot(factors) + error;
      const VectorXd& t = truth.threshold[static_cast<std::size_t>(j)];
      const bool gap = uniform(random) < missing;
      answers.codes[static_cast<std::size_t>(j * cases + k)] =
          gap ? kMissingCode : static_cast<std::uint8_t>((t.array() < y).count());
    }
  }
  return answers;
}

stats::OrdinalFactorResult Estimate(const COrdinalPatterns& patterns, ELink link, int factors,
                                    OrdinalFactorOptions options = {}) {
  MatrixXd loadings(patterns.Variables(), factors);
  std::vector<std::vector<double>> thresholds;
  for (int j = 0; j < patterns.Variables(); ++j) {
    for (int k = 0; k < factors; ++k) loadings(j, k) = j % factors == k ? .6 : .1;
    thresholds.push_back(stats::EstimateThresholds(patterns.Margin(j)).threshold);
  }
  return stats::EstimateOrdinalFactors(
      patterns, link, stats::StartingParameters(loadings, thresholds, link), options);
}

TEST(ResponseFunction, AgreesWithTheDistributionFunctionsFarIntoTheTails) {
  const double ends[] = {-HUGE_VAL, -20, -6.3, -1.01, -.3, .2, .21, 4, 19.9, HUGE_VAL};
  for (const ELink link : {ELink::Probit, ELink::Logistic}) {
    const stats::CResponseFunction response(link);
    stats::ResponseCells cells;
    cells.Resize(1);
    const Eigen::ArrayXd x = Eigen::ArrayXd::Constant(1, .123);
    for (std::size_t a = 0; a + 1 < std::size(ends); ++a) {
      const double l = ends[a] - x(0), u = ends[a + 1] - x(0);
      const auto tail = [](double z) { return 1 / (1 + std::exp(z)); };
      const double want = link == ELink::Probit ? stats::NormalInterval(l, u)
                          : l > 0               ? tail(l) - tail(u)
                                                : tail(-u) - tail(-l);
      response.Evaluate(ends[a], ends[a + 1], x, cells);
      EXPECT_NEAR(cells.p(0), want, 1e-8 * want) << a;
      const double density = link == ELink::Probit ? stats::NormalDensity(u) : tail(u) * tail(-u);
      EXPECT_NEAR(cells.upper1(0) * want, density, 1e-8 * density + 1e-300) << a;
      const double slope = link == ELink::Probit ? -u * density : density * (2 * tail(u) - 1);
      if (std::isfinite(u)) {
        EXPECT_NEAR(cells.upper2(0) * want, slope, 1e-7 * std::fabs(slope) + 1e-300) << a;
      }
    }
  }
}

// Two variables and the normal ogive: the pattern's probability is that of a rectangle of the
// bivariate normal distribution with the product of the loadings as correlation.
TEST(OrdinalFactors, TheLikelihoodOfAPatternIsThatOfTheUnderlyingVariables) {
  for (const int factors : {1, 2, 3}) {
    OrdinalFactorParameters at = Truth(2, factors);
    const COrdinalPatterns patterns = Simulate(at, ELink::Probit, 400, 3).Patterns(4);
    stats::COrdinalFactorPass pass(patterns, ELink::Probit, factors, 31, 1);
    stats::OrdinalFactorScores scores;
    ASSERT_TRUE(pass.Scores(at, {}, scores));
    const MatrixXd loadings = stats::StandardisedLoadings(at.slopes, 1);
    const double r = loadings.row(0).dot(loadings.row(1));
    const auto corner = [&](int a, int b) {
      const auto edge = [&](int j, int c) {
        const VectorXd& t = at.threshold[static_cast<std::size_t>(j)];
        if (c < 0) return -HUGE_VAL;
        if (c >= t.size()) return HUGE_VAL;
        return t(c) / std::sqrt(1 + at.slopes.row(j).squaredNorm());
      };
      return stats::BivariateNormalCdf(edge(0, a), edge(1, b), r);
    };
    for (std::int64_t i = 0; i < patterns.Patterns(); ++i) {
      const int a = patterns.Codes(i)[0], b = patterns.Codes(i)[1];
      const double want = corner(a, b) - corner(a - 1, b) - corner(a, b - 1) + corner(a - 1, b - 1);
      EXPECT_NEAR(std::exp(scores.logLikelihoods(i)), want, 1e-8) << factors << " factors";
    }
  }
}

// Gradient and information against differences of the likelihood.
TEST(OrdinalFactors, DerivativesAreThoseOfTheLikelihood) {
  for (const ELink link : {ELink::Probit, ELink::Logistic}) {
    for (const int factors : {1, 2}) {
      const OrdinalFactorParameters at = Truth(4, factors);
      const COrdinalPatterns patterns = Simulate(at, link, 60, 5, .15).Patterns(4);
      stats::COrdinalFactorPass pass(patterns, link, factors, 25, 1);
      stats::OrdinalFactorSums sums;
      ASSERT_TRUE(pass.Collect(at, true, {}, sums));
      const auto moved = [&](Index place, double step) {
        OrdinalFactorParameters to = at;
        for (int j = 0; j < at.Variables(); ++j) {
          const Index in = place - at.Offset(j);
          VectorXd& t = to.threshold[static_cast<std::size_t>(j)];
          if (in < 0 || in >= at.CountOf(j)) continue;
          (in < t.size() ? t(in) : to.slopes(j, in - t.size())) += step;
        }
        stats::OrdinalFactorSums there;
        EXPECT_TRUE(pass.Collect(to, false, {}, there));
        return there;
      };
      constexpr double kStep = 1e-4;
      for (Index place = 0; place < at.Count(); ++place) {
        const auto up = moved(place, kStep), down = moved(place, -kStep);
        const double slope = (up.logLikelihood - down.logLikelihood) / (2 * kStep);
        EXPECT_NEAR(sums.gradient(place), slope, 1e-4) << place;
        const VectorXd curve = (down.gradient - up.gradient) / (2 * kStep);
        EXPECT_LT((sums.information.col(place) - curve).cwiseAbs().maxCoeff(), 1e-3) << place;
      }
    }
  }
}

// More points do not move the estimates of the survey, the likelihood never falls, and threads do
// not matter.
TEST(OrdinalFactors, TheSurveysEstimatesStandWithMorePoints) {
  const oracle::Data data = oracle::Items();
  const std::vector<std::uint8_t> codes = oracle::Codes(data);
  COrdinalPatterns patterns(std::vector<int>(10, 6));
  patterns.Add({codes.data(), 600, 10, data.Cases(), nullptr});
  for (const ELink link : {ELink::Probit, ELink::Logistic}) {
    const auto one = Estimate(patterns, link, 1);
    ASSERT_EQ(one.status, EStatus::Ok);
    EXPECT_LT(one.largestGradient, 1e-9);
    for (std::size_t k = 1; k < one.history.size(); ++k) {
      EXPECT_GE(one.history[k].logLikelihood, one.history[k - 1].logLikelihood - 1e-5);
    }
    OrdinalFactorOptions more;
    more.nodes = 40;
    more.threads = 2;
    const auto fine = Estimate(patterns, link, 1, more);
    ASSERT_EQ(fine.status, EStatus::Ok);
    EXPECT_NEAR(one.logLikelihood, fine.logLikelihood, 1e-5);
    EXPECT_LT((one.parameters.slopes - fine.parameters.slopes).cwiseAbs().maxCoeff(), 1e-6);
    more.nodes = 0;
    const auto two = Estimate(patterns, link, 1, more);
    EXPECT_EQ(two.logLikelihood, one.logLikelihood);
    EXPECT_TRUE((two.parameters.slopes.array() == one.parameters.slopes.array()).all());
  }
}

// The estimated loadings, their columns with the signs of the true ones, in standard errors from
// them.
MatrixXd Deviations(const stats::OrdinalFactorResult& result, const MatrixXd& truth,
                    double residualVariance) {
  const MatrixXd errors =
      stats::LoadingErrors(result.parameters,
                           stats::RestrictedCovariance(result.parameters, result.information,
                                                       stats::PrincipalAxesEquations),
                           residualVariance);
  MatrixXd loadings = stats::StandardisedLoadings(result.parameters.slopes, residualVariance);
  for (Index k = 0; k < loadings.cols(); ++k) {
    if (loadings.col(k).dot(truth.col(k)) < 0) loadings.col(k) *= -1;
  }
  return (loadings - truth).cwiseQuotient(errors);
}

// Loadings of simulated samples lie around the true ones as their standard errors say.
TEST(OrdinalFactors, RecoversLoadingsWithinTheirStandardErrors) {
  for (const ELink link : {ELink::Probit, ELink::Logistic}) {
    for (const int factors : {1, 2}) {
      const int samples = factors == 1 ? 40 : 6;
      OrdinalFactorParameters truth = Truth(4 + 2 * factors, factors);
      // To the principal axes, where the estimates are.
      const Eigen::BDCSVD<MatrixXd> axes(truth.slopes, Eigen::ComputeThinU | Eigen::ComputeThinV);
      truth.slopes = truth.slopes * axes.matrixV() * (link == ELink::Logistic ? 1.7 : 1);
      const double v = stats::CResponseFunction(link).ResidualVariance();
      const MatrixXd want = stats::StandardisedLoadings(truth.slopes, v);
      double squares = 0, largest = 0;
      for (int s = 0; s < samples; ++s) {
        const COrdinalPatterns patterns =
            Simulate(truth, link, 300, 40U + static_cast<unsigned>(s), .1).Patterns(4);
        const auto result = Estimate(patterns, link, factors);
        ASSERT_EQ(result.status, EStatus::Ok) << s;
        const MatrixXd z = Deviations(result, want, v);
        squares += z.squaredNorm() / static_cast<double>(z.size() * samples);
        largest = std::max(largest, z.cwiseAbs().maxCoeff());
      }
      EXPECT_GT(squares, .7) << factors;
      EXPECT_LT(squares, 1.4) << factors;
      EXPECT_LT(largest, 5) << factors;
    }
  }
}

TEST(OrdinalFactors, RotatedInformationBelongsToTheRotatedSlopes) {
  const OrdinalFactorParameters at = Truth(5, 2);
  const COrdinalPatterns patterns = Simulate(at, ELink::Probit, 200, 8).Patterns(4);
  stats::COrdinalFactorPass pass(patterns, ELink::Probit, 2, 25, 1);
  stats::OrdinalFactorSums sums, turned;
  ASSERT_TRUE(pass.Collect(at, true, {}, sums));
  const Eigen::Rotation2D<double> rotation(.7);
  OrdinalFactorParameters rotated = at;
  rotated.slopes *= rotation.toRotationMatrix();
  pass.ForgetModes();
  ASSERT_TRUE(pass.Collect(rotated, true, {}, turned));
  const MatrixXd want = stats::RotateInformation(at, sums.information, rotation.toRotationMatrix());
  EXPECT_LT((turned.information - want).cwiseAbs().maxCoeff(), 1e-4 * want.maxCoeff());
}

// PROMAX of slopes that are drawn about the estimates as the covariance matrix says.
TEST(OrdinalFactors, PromaxErrorsAreThoseOfDrawnSlopes) {
  const OrdinalFactorParameters start = Truth(6, 2);
  const COrdinalPatterns patterns = Simulate(start, ELink::Probit, 200, 8).Patterns(4);
  OrdinalFactorParameters at = start;
  const MatrixXd turn =
      stats::RotateVarimax(stats::StandardisedLoadings(at.slopes, 1)).transformation;
  at.slopes *= turn;
  stats::COrdinalFactorPass pass(patterns, ELink::Probit, 2, 15, 1);
  stats::OrdinalFactorSums sums;
  ASSERT_TRUE(pass.Collect(at, true, {}, sums));
  // So small that the rotation is linear; the information need not be that of a maximum.
  const MatrixXd covariance =
      1e-4 * stats::RestrictedCovariance(at, stats::HoldRotations(at, sums.information),
                                         stats::VarimaxEquations);
  const auto errors = stats::EstimatePromaxErrors(at, covariance, 1);
  const Eigen::SelfAdjointEigenSolver<MatrixXd> root(covariance);
  const MatrixXd spread =
      root.eigenvectors() * root.eigenvalues().cwiseMax(0).cwiseSqrt().asDiagonal();
  const auto promax = [](const MatrixXd& slopes) {
    return stats::RotatePromax(stats::StandardisedLoadings(slopes, 1));
  };
  const auto center = promax(at.slopes);
  std::mt19937 random(2);
  std::normal_distribution<double> normal;
  constexpr int kDraws = 4000;
  MatrixXd squares = MatrixXd::Zero(6, 2);
  double correlation = 0;
  for (int k = 0; k < kDraws; ++k) {
    VectorXd z(covariance.rows());
    for (double& one : z) one = normal(random);
    const VectorXd step = spread * z;
    MatrixXd slopes = at.slopes;
    for (int j = 0; j < 6; ++j) slopes.row(j) += step.segment(at.Offset(j) + 3, 2).transpose();
    const auto drawn = promax(slopes);
    squares += (drawn.loadings - center.loadings).cwiseAbs2() / kDraws;
    correlation += std::pow(drawn.correlation(1, 0) - center.correlation(1, 0), 2) / kDraws;
  }
  EXPECT_LT((squares.cwiseSqrt().cwiseQuotient(errors.loadings).array() - 1).abs().maxCoeff(), .06);
  EXPECT_NEAR(std::sqrt(correlation) / errors.correlation(1, 0), 1, .06);
}

// Slopes so steep that a few points cannot follow the likelihood to its maximum.
TEST(OrdinalFactors, RefinesAQuadratureThatIsTooCoarse) {
  OrdinalFactorParameters steep = Truth(4, 1);
  steep.slopes *= 2;
  for (VectorXd& threshold : steep.threshold) threshold *= 2;
  for (const unsigned seed : {1U, 2U, 4U, 8U}) {
    const COrdinalPatterns patterns = Simulate(steep, ELink::Probit, 200, seed).Patterns(4);
    OrdinalFactorOptions few, many;
    few.nodes = 5;
    many.nodes = 40;
    const auto refined = Estimate(patterns, ELink::Probit, 1, few);
    const auto fine = Estimate(patterns, ELink::Probit, 1, many);
    ASSERT_EQ(refined.status, EStatus::Ok) << seed;
    ASSERT_EQ(fine.status, EStatus::Ok) << seed;
    EXPECT_GT(refined.nodes, 5) << seed;
    EXPECT_EQ(fine.nodes, 40) << seed;
    EXPECT_NEAR(refined.logLikelihood, fine.logLikelihood, .01) << seed;
  }
}

TEST(OrdinalFactors, SaysHowAnEstimationEnds) {
  const COrdinalPatterns patterns = Simulate(Truth(4, 1), ELink::Probit, 300, 2).Patterns(4);
  OrdinalFactorOptions options;
  options.mostSteps = 2;
  const auto few = Estimate(patterns, ELink::Probit, 1, options);
  EXPECT_EQ(few.status, EStatus::NotConverged);
  EXPECT_EQ(few.history.size(), 2U);
  options.goOn = [] { return false; };
  EXPECT_TRUE(Estimate(patterns, ELink::Probit, 1, options).stopped);
  // Two variables that are the same draw the factor to themselves.
  Answers same = Simulate(Truth(3, 1), ELink::Probit, 300, 2);
  std::copy_n(same.codes.begin(), 300, same.codes.begin() + 300);
  EXPECT_EQ(Estimate(same.Patterns(4), ELink::Probit, 1).status, EStatus::Boundary);
}

TEST(OrdinalPatterns, CountsEqualAnswersOnceAndLeavesOutEmptyOnes) {
  const std::uint8_t codes[] = {0, 1, 0, 255, 255, 0, 1, 1, 1, 255, 0, 1};
  const double weights[] = {1, 2, 3, 4, 5, 0};
  COrdinalPatterns patterns({2, 2});
  patterns.Add({codes, 6, 2, 6, weights});
  EXPECT_EQ(patterns.Patterns(), 3);
  EXPECT_EQ(patterns.Cases(), 4);
  EXPECT_EQ(patterns.Complete(), 3);
  EXPECT_EQ(patterns.AllMissing(), 1);
  EXPECT_EQ(patterns.N(), 11);
  const std::uint8_t first[] = {0, 1}, none[] = {0, 0};
  EXPECT_EQ(patterns.Frequency(patterns.Find(first)), 4);
  EXPECT_EQ(patterns.Find(none), -1);
  const std::uint8_t wrong[] = {0, 2};
  EXPECT_THROW(patterns.Add({wrong, 1, 2, 1, nullptr}), std::out_of_range);
}

}  // namespace
