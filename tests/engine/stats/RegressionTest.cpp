#include <cmath>
#include <random>

#include "Oracle.h"
#include "engine/stats/CensoredRegression.h"
#include "engine/stats/IntervalRegression.h"
#include "engine/stats/LeastSquares.h"
#include "engine/stats/OrdinalRegression.h"

namespace {

using oracle::ExpectClose;
using oracle::Json;
using stats::EStatus;

const Json& Reference(const char* key) {
  return oracle::Load("procedures.json").at(key);
}

stats::CCrossProducts Products(const oracle::Data& data, const double* weights = nullptr) {
  stats::CCrossProducts sums(data.Variables());
  stats::CaseBlock block = data.Block();
  block.weights = weights;
  sums.Add(block);
  return sums;
}

// The same, of pieces of so many cases.
stats::CCrossProducts Pieces(const oracle::Data& data, const double* weights, std::int64_t cases) {
  stats::CCrossProducts sums(data.Variables());
  for (std::int64_t at = 0; at < data.Cases(); at += cases) {
    stats::CCrossProducts part(data.Variables());
    stats::CaseBlock block = data.Block();
    block.cells += at * block.stride;
    block.cases = std::min(cases, data.Cases() - at);
    block.weights = weights + at;
    part.Add(block);
    sums.Merge(part);
  }
  return sums;
}

// The certified texts have 15 digits; 13 of them are asked for.
void ExpectCertified(double value, const Json& text, const std::string& what) {
  const double want = std::stod(text.get<std::string>());
  EXPECT_NEAR(value, want, 1e-13 * std::fabs(want)) << what;
}

TEST(LeastSquares, AgreesWithTheCertifiedValues) {
  const auto result = stats::EstimateLeastSquares(Products(oracle::ReadCsv("longley_nist.csv")), 0,
                                                  {1, 2, 3, 4, 5, 6});
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = Reference("ols_longley_nist_certified");
  for (std::size_t i = 0; i < 7; ++i) {
    ExpectCertified(result.coefficient[i], want.at("coef")[i], "coefficient");
    ExpectCertified(result.standardError[i], want.at("se")[i], "standard error");
  }
  ExpectCertified(result.residualSd, want.at("residual_sd"), "residual sd");
  ExpectCertified(result.rSquare, want.at("r2"), "R-square");
  ExpectCertified(result.f, want.at("F"), "F");
  ExpectCertified(result.residualSquares, want.at("rss"), "residual squares");
  ExpectCertified(result.regressionSquares, want.at("regression_ss"), "regression squares");
}

// Polynomials of degree 5 on 0 ... 20, as in the Wampler problems of the same collection: the
// certified coefficients are 1 (first), 10^-i (second), without residuals. An offset of the
// powers' sum makes the problem of the third: residuals of +-100000 that are orthogonal to them do
// not exist, so exact ones are used.
TEST(LeastSquares, KeepsItsDigitsWithPowersOfX) {
  for (const double base : {1.0, 0.1}) {
    oracle::Data data{{"y", "x1", "x2", "x3", "x4", "x5"}, {}};
    for (int x = 0; x <= 20; ++x) {
      long double y = 0, factor = 1, power = 1;
      std::vector<double> powers;
      for (int i = 0; i <= 5; ++i, factor *= base, power *= x) {
        y += factor * power;
        if (i > 0) powers.push_back(static_cast<double>(power));
      }
      data.cells.push_back(static_cast<double>(y));
      data.cells.insert(data.cells.end(), powers.begin(), powers.end());
    }
    const auto result = stats::EstimateLeastSquares(Products(data), 0, {1, 2, 3, 4, 5});
    ASSERT_EQ(result.status, EStatus::Ok);
    for (int i = 0; i <= 5; ++i) {
      EXPECT_NEAR(result.coefficient[static_cast<std::size_t>(i)], std::pow(base, i),
                  1e-9 * std::pow(base, i))
          << i;
    }
    EXPECT_GT(result.rSquare, 1 - 1e-14);
  }
}

TEST(LeastSquares, AgreesWithTheReference) {
  const oracle::Data data = oracle::ReadCsv("mtcars.csv").Select({"mpg", "wt", "hp", "qsec"});
  const auto result = stats::EstimateLeastSquares(Products(data), 0, {1, 2, 3});
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = Reference("ols_mtcars");
  const char* const names[] = {"(Intercept)", "wt", "hp", "qsec"};
  for (std::size_t i = 0; i < 4; ++i) {
    ExpectClose(result.coefficient[i], want.at("coef").at(names[i]), 1e-11, names[i]);
    ExpectClose(result.standardError[i], want.at("se").at(names[i]), 1e-11, names[i]);
    ExpectClose(result.t[i], want.at("t").at(names[i]), 1e-11, names[i]);
  }
  ExpectClose(result.adjustedRSquare, want.at("adj_r2"), 1e-11, "adjusted");
  ExpectClose(result.f, want.at("F"), 1e-11, "F");
  ExpectClose(result.logLikelihood, want.at("loglik"), 1e-11, "log-likelihood");
  // Simple regression: VIF 1, and the two tests are one.
  const auto simple = stats::EstimateLeastSquares(Products(data), 0, {1});
  EXPECT_NEAR(simple.varianceInflation[0], 1, 1e-14);
  EXPECT_NEAR(simple.pF, simple.p[1], 1e-12 * simple.pF);
}

TEST(LeastSquares, WeightsCountCasesAndPiecesAddUp) {
  std::mt19937 random(4);
  std::normal_distribution<double> normal;
  oracle::Data data{{"y", "a", "b"}, {}}, repeated{data.names, {}};
  std::vector<double> weights;
  for (int k = 0; k < 20'000; ++k) {
    const double a = 1e6 + normal(random), b = normal(random) / 3;
    const double row[] = {a - b + normal(random), a, b};
    weights.push_back(static_cast<double>(k % 4) * 0.5);
    data.cells.insert(data.cells.end(), row, row + 3);
    for (int w = 0; w < k % 4; ++w) repeated.cells.insert(repeated.cells.end(), row, row + 3);
  }
  const auto one = stats::EstimateLeastSquares(Products(data, weights.data()), 0, {1, 2});
  const auto two = stats::EstimateLeastSquares(Pieces(data, weights.data(), 7), 0, {1, 2});
  const auto plain = stats::EstimateLeastSquares(Products(repeated), 0, {1, 2});
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(one.coefficient[i], two.coefficient[i], 1e-14 * std::fabs(one.coefficient[i]));
    EXPECT_NEAR(one.standardError[i], two.standardError[i], 1e-14 * one.standardError[i]);
  }
  EXPECT_NEAR(2 * one.n, plain.n, 1e-9);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(one.coefficient[i], plain.coefficient[i], 1e-13 * std::fabs(plain.coefficient[i]));
}

TEST(LeastSquares, NamesWhatCannotBeEstimated) {
  //                            y  a  b  c (b + a)  d (constant)
  const oracle::Data data{{"y", "a", "b", "c", "d"},
                          {1, 1.1, 4, 5.1, 7, 2, 2.7, 1, 3.7, 7, 4, 3.2, 5, 8.2,  7,
                           3, 4.3, 2, 6.3, 7, 9, 5.9, 2, 7.9, 7, 8, 6.6, 7, 13.6, 7}};
  const auto sums = Products(data);
  struct {
    int y;
    std::vector<int> x;
    EStatus status;
    int variable;
  } const cases[] = {{0, {1, 2, 3}, EStatus::NotPositiveDefinite, 2},
                     {0, {1, 4}, EStatus::Constant, 1},
                     {4, {1}, EStatus::Constant, -1},
                     {0, {}, EStatus::BadArgument, -1},
                     {0, {1, 2}, EStatus::Ok, -1}};
  for (const auto& c : cases) {
    const auto result = stats::EstimateLeastSquares(sums, c.y, c.x);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.variable, c.variable);
  }
  // Squares that are no doubles; a perfect fit.
  oracle::Data odd{{"y", "huge", "tiny", "line"}, {}};
  for (int k = 0; k < 9; ++k) {
    const double row[] = {static_cast<double>(k), k * 1e300, (k + 1) * 1e-200, -2.0 * k};
    odd.cells.insert(odd.cells.end(), row, row + 4);
  }
  for (const int place : {1, 2}) {
    const auto asX = stats::EstimateLeastSquares(Products(odd), 0, {3, place});
    EXPECT_EQ(asX.status, EStatus::NotFinite);
    EXPECT_EQ(asX.variable, 1);
    const auto asY = stats::EstimateLeastSquares(Products(odd), place, {3});
    EXPECT_EQ(asY.status, EStatus::NotFinite);
    EXPECT_EQ(asY.variable, -1);
  }
  const auto perfect = stats::EstimateLeastSquares(Products(odd), 0, {3});
  ASSERT_EQ(perfect.status, EStatus::Ok);
  EXPECT_LT(perfect.t[1], 0);
  EXPECT_EQ(stats::EstimateTwoStage(sums, 0, {1, 2}, {3}).status, EStatus::BadArgument);
  EXPECT_EQ(stats::EstimateTwoStage(sums, 0, {1, 2}, {1, 4}).status, EStatus::NotPositiveDefinite);
  EXPECT_EQ(stats::EstimateLeastSquares(stats::CCrossProducts(2), 0, {1}).status, EStatus::NoCases);
}

TEST(TwoStage, AgreesWithTheReference) {
  const oracle::Data data =
      oracle::ReadCsv("cigarettes1995.csv");  // lpacks lrprice lrincome tdiff rtax
  const auto result = stats::EstimateTwoStage(Products(data), 0, {1, 2}, {2, 3, 4});
  ASSERT_EQ(result.status, EStatus::Ok);
  const Json& want = Reference("tsls_cigarettes");
  const char* const names[] = {"(Intercept)", "lrprice", "lrincome"};
  for (std::size_t i = 0; i < 3; ++i) {
    ExpectClose(result.coefficient[i], want.at("coef").at(names[i]), 1e-10, names[i]);
    ExpectClose(result.standardError[i], want.at("se_nk").at(names[i]), 1e-10, names[i]);
  }
  ExpectClose(result.residualSd, want.at("residual_sd_nk"), 1e-10, "residual sd");
  ExpectClose(result.rSquare, want.at("r2_1_minus_rss_tss"), 1e-10, "R-square");
  ASSERT_EQ(result.firstStages.size(), 1U);
  EXPECT_EQ(result.firstStages[0].df1, 2);
  EXPECT_GT(result.firstStages[0].f, 10);
  EXPECT_EQ(result.dfSargan, 1);
}

// x as its own instruments: ordinary least squares.
TEST(TwoStage, WithTheRegressorsAsInstrumentsIsOneStage) {
  const oracle::Data data = oracle::ReadCsv("mtcars.csv");
  const auto sums = Products(data);
  const auto two = stats::EstimateTwoStage(sums, 0, {3, 5}, {5, 3});
  const auto one = stats::EstimateLeastSquares(sums, 0, {3, 5});
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(two.coefficient[i], one.coefficient[i], 1e-13 * std::fabs(one.coefficient[i]));
    EXPECT_NEAR(two.standardError[i], one.standardError[i], 1e-13 * one.standardError[i]);
  }
  EXPECT_TRUE(two.firstStages.empty());
}

// Cases of a file, in pieces: y is its first variable, or for categories one counted from `lowest`.
class Cases {
 public:
  Cases(const oracle::Data& data, int lowest) : lowest_(lowest) {
    data_.names.assign(data.names.begin() + 1, data.names.end());
    data_.names.push_back(data.names.front());
    for (std::int64_t k = 0; k < data.Cases(); ++k) {
      const double* row = data.cells.data() + k * data.Variables();
      if (std::any_of(row, row + data.Variables(), [](double v) { return std::isnan(v); }))
        continue;
      data_.cells.insert(data_.cells.end(), row + 1, row + data.Variables());
      data_.cells.push_back(row[0]);
    }
  }
  int X() const { return data_.Variables() - 1; }
  double& Y(std::int64_t k) {
    return data_.cells[static_cast<std::size_t>((k + 1) * data_.Variables() - 1)];
  }
  std::int64_t Count() const { return data_.Cases(); }

  // With every third case as the sample.
  stats::CRegressionSurvey Survey(bool coded = false) const {
    stats::CRegressionSurvey survey(X(), 3);
    std::vector<std::int64_t> numbers;
    for (std::int64_t k = 1; k <= Count(); ++k) numbers.push_back(k);
    survey.Add(data_.Block(), numbers.data());
    std::vector<double> values;
    for (int j = 0; j < 10; ++j) values.push_back(j + lowest_);
    if (coded) survey.Sample().Code(values);
    return survey;
  }

  std::vector<double> Frequency(std::size_t categories) const {
    std::vector<double> frequency(categories, 0);
    for (const std::uint8_t code : Codes()) ++frequency[code];
    return frequency;
  }

  stats::RegressionPass Pass() const {
    return [this](const stats::RegressionWork& work) {
      constexpr std::int64_t kPiece = 300;
      const std::vector<std::uint8_t> codes = Codes();
      for (std::int64_t at = 0; at < Count(); at += kPiece) {
        stats::CaseBlock x = data_.Block();
        x.variables = X();
        x.cells += at * x.stride;
        x.cases = std::min(kPiece, Count() - at);
        work({x, x.cells + X(), x.stride, codes.data() + at})();
      }
      return true;
    };
  }

 private:
  std::vector<std::uint8_t> Codes() const {
    std::vector<std::uint8_t> codes;
    for (std::int64_t k = 1; k <= Count(); ++k) {
      const double y = data_.cells[static_cast<std::size_t>(k * data_.Variables() - 1)];
      codes.push_back(static_cast<std::uint8_t>(y - lowest_));
    }
    return codes;
  }

  oracle::Data data_{{}, {}};
  int lowest_;
};

stats::OrdinalRegressionResult Estimate(const Cases& cases, std::size_t categories, bool probit) {
  return stats::EstimateOrdinalRegression(cases.Pass(), cases.Survey(true),
                                          cases.Frequency(categories),
                                          probit ? stats::ELink::Probit : stats::ELink::Logistic);
}

const std::vector<std::string> kAffairs = {"age", "yearsmarried", "religiousness", "occupation",
                                           "rating"};

Cases Affairs(const char* y) {
  std::vector<std::string> names = {y};
  names.insert(names.end(), kAffairs.begin(), kAffairs.end());
  return {oracle::ReadCsv("affairs.csv").Select(names), 0};
}

TEST(OrdinalRegression, OfTwoCategoriesAgreesWithTheReferences) {
  const Cases cases = Affairs("any");
  for (const bool probit : {true, false}) {
    const auto result = Estimate(cases, 2, probit);
    ASSERT_EQ(result.status, EStatus::Ok);
    EXPECT_LT(result.gradient, 1e-12);
    const Json& want = Reference(probit ? "probit_affairs" : "logit_affairs");
    const auto alternative = stats::Alternative(result);
    ExpectClose(alternative.intercept, want.at("coef").at("(Intercept)"), 1e-7, "intercept");
    const Json& errors = want.at("se_observed_information");
    ExpectClose(alternative.interceptError, errors.at("(Intercept)"), 1e-7, "its error");
    for (std::size_t j = 0; j < kAffairs.size(); ++j) {
      ExpectClose(result.slope[j], want.at("coef").at(kAffairs[j]), 1e-7, kAffairs[j]);
      ExpectClose(result.slopeError[j], errors.at(kAffairs[j]), 1e-7, kAffairs[j]);
    }
    ExpectClose(result.logLikelihood, want.at("loglik"), 1e-10, "log-likelihood");
    ExpectClose(result.logLikelihoodNull, want.at("loglik_null"), 1e-10, "without x");
    ExpectClose(result.ratio, want.at("LR"), 1e-8, "ratio");
  }
}

TEST(OrdinalRegression, OfSixCategoriesAgreesWithTheReferences) {
  const Cases cases(oracle::ReadCsv("survey.csv").Select({"A2", "age", "gender", "education"}), 1);
  for (const bool probit : {true, false}) {
    const auto result = Estimate(cases, 6, probit);
    ASSERT_EQ(result.status, EStatus::Ok);
    const Json& want = Reference(probit ? "ordered_probit_A2" : "ordered_logit_A2");
    ExpectClose(result.n, want.at("n"), 0, "n");
    const char* const cuts[] = {"1|2", "2|3", "3|4", "4|5", "5|6"};
    for (std::size_t j = 0; j < 5; ++j) {
      ExpectClose(result.threshold[j], want.at("thresholds").at(cuts[j]), 1e-7, cuts[j]);
      ExpectClose(result.thresholdError[j], want.at("se").at(cuts[j]), 1e-7, cuts[j]);
    }
    const char* const names[] = {"age", "gender", "education"};
    for (std::size_t j = 0; j < 3; ++j) {
      ExpectClose(result.slope[j], want.at("coef").at(names[j]), 1e-7, names[j]);
      ExpectClose(result.slopeError[j], want.at("se").at(names[j]), 1e-7, names[j]);
    }
    ExpectClose(result.logLikelihood, want.at("loglik"), 1e-10, "log-likelihood");
  }
}

TEST(OrdinalRegression, ReportsSeparationByTheVariable) {
  std::mt19937 random(2);
  std::normal_distribution<double> normal;
  for (const bool complete : {true, false}) {
    oracle::Data data{{"y", "noise", "x"}, {}};
    for (int k = 0; k < 200; ++k) {
      const double x = normal(random);
      // Complete: y is the sign of x. Quasi-complete: y is 1 whenever a rare x is 1.
      const double row[] = {
          complete ? (x > 0 ? 1.0 : 0.0) : (k % 2 == 0 || k % 20 == 1 ? 1.0 : 0.0), normal(random),
          complete ? x : (k % 20 == 1 ? 1.0 : 0.0)};
      data.cells.insert(data.cells.end(), row, row + 3);
    }
    const Cases cases(data, 0);
    for (const bool probit : {true, false}) {
      const auto result = Estimate(cases, 2, probit);
      EXPECT_EQ(result.status, EStatus::Boundary);
      EXPECT_EQ(result.variable, 1);
    }
  }
}

TEST(CensoredRegression, AgreesWithTheReferences) {
  for (const bool above : {false, true}) {
    Cases cases = Affairs("affairs");
    const Json& want = Reference(above ? "censored_affairs_0_4" : "censored_affairs_left0");
    for (std::int64_t k = 0; above && k < cases.Count(); ++k)
      cases.Y(k) = std::min(cases.Y(k), 4.0);
    const auto result =
        stats::EstimateCensoredRegression(cases.Pass(), cases.Survey(), true, above);
    ASSERT_EQ(result.status, EStatus::Ok);
    ExpectClose(result.below, want.at("n_left"), 0, "below");
    EXPECT_EQ(result.above, want.at("n_right").get<double>());
    std::vector<std::string> names = {"(Intercept)"};
    names.insert(names.end(), kAffairs.begin(), kAffairs.end());
    for (std::size_t i = 0; i < names.size(); ++i) {
      ExpectClose(result.coefficient[i], want.at("coef").at(names[i]), 1e-7, names[i]);
      ExpectClose(result.standardError[i], want.at("se_observed_information").at(names[i]), 1e-7,
                  names[i]);
    }
    ExpectClose(result.sd, want.at("sigma"), 1e-7, "sd");
    ExpectClose(result.logSdError, want.at("se_log_sigma"), 1e-7, "error of log sd");
    ExpectClose(result.logLikelihood, want.at("loglik"), 1e-10, "log-likelihood");
    // R 4.2.2, survreg of survival: without x, and the share of the variance of its predictions
    EXPECT_NEAR(result.logLikelihoodNull, above ? -537.099435051811 : -744.737509077331, 1e-8);
    EXPECT_NEAR(result.rSquare, above ? 0.186771091632152 : 0.187651092726756, 1e-8);
    EXPECT_NEAR(result.ratio, 2 * (result.logLikelihood - result.logLikelihoodNull), 1e-10);
  }
}

// Nothing censored: least squares, with the variance's divisor n.
TEST(CensoredRegression, WithoutCensoringIsLeastSquares) {
  const oracle::Data data = oracle::ReadCsv("mtcars.csv").Select({"mpg", "wt", "hp"});
  const Cases cases(data, 0);
  const auto censored =
      stats::EstimateCensoredRegression(cases.Pass(), cases.Survey(), false, false);
  const auto plain = stats::EstimateLeastSquares(Products(data), 0, {1, 2});
  ASSERT_EQ(censored.status, EStatus::Ok);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(censored.coefficient[i], plain.coefficient[i],
                1e-10 * std::fabs(plain.coefficient[i]));
  EXPECT_NEAR(censored.sd, plain.residualSd * std::sqrt(29.0 / 32), 1e-10);
  EXPECT_NEAR(censored.logLikelihood, plain.logLikelihood, 1e-10);
  EXPECT_NEAR(censored.rSquare, plain.rSquare, 1e-10);
  EXPECT_NEAR(censored.ratio, -32 * std::log(1 - plain.rSquare), 1e-8);
}

// R 4.2.2, survreg of survival 3.5-3 on intervals (type "interval2", gaussian, rel.tolerance
// 1e-14), whose errors are those of log sd.
TEST(IntervalRegression, AgreesWithRegressionOnIntervals) {
  const Cases cases(oracle::ReadCsv("survey.csv").Select({"A2", "age", "gender", "education"}), 1);
  const std::vector<double> thresholds = {-1.8, -1.1, -0.9, -0.1, 1.0};
  const auto result = stats::EstimateIntervalRegression(cases.Pass(), cases.Survey(true),
                                                        cases.Frequency(6), thresholds);
  ASSERT_EQ(result.status, EStatus::Ok);
  EXPECT_LT(result.gradient, 1e-12);
  const double coefficient[] = {-0.50189290113359508, 0.00919807250717472, 0.47349091236292085,
                                -0.02449826133783247};
  const double error[] = {0.11255344745137988, 0.00215974547405005, 0.04755174923875008,
                          0.02084609456756832};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(result.coefficient[i], coefficient[i], 1e-7 * std::fabs(coefficient[i]));
    EXPECT_NEAR(result.standardError[i], error[i], 1e-7 * error[i]);
  }
  EXPECT_NEAR(result.sd, 1.05340876954418, 1e-8);
  EXPECT_NEAR(result.logSdError, 0.01904264567540986, 1e-8);
  EXPECT_NEAR(result.logLikelihood, -3530.20767523272, 1e-6);
  EXPECT_NEAR(result.logLikelihoodNull, -3590.18328048919, 1e-6);
}

// With two categories the standard deviation is 1, and fixing the threshold at 0 leaves the probit
// model with an intercept. With more, all thresholds moved and stretched move and stretch the rest.
TEST(IntervalRegression, FollowsTheThresholds) {
  const Cases binary = Affairs("any");
  const auto known = stats::EstimateIntervalRegression(binary.Pass(), binary.Survey(true),
                                                       binary.Frequency(2), {0});
  const auto free = Estimate(binary, 2, true);
  ASSERT_EQ(known.status, EStatus::Ok);
  EXPECT_TRUE(known.sdKnown);
  const auto alternative = stats::Alternative(free);
  EXPECT_NEAR(known.coefficient[0], alternative.intercept, 1e-9);
  EXPECT_NEAR(known.standardError[0], alternative.interceptError, 1e-8);
  for (std::size_t j = 0; j < free.slope.size(); ++j) {
    EXPECT_NEAR(known.coefficient[j + 1], free.slope[j], 1e-10);
    EXPECT_NEAR(known.standardError[j + 1], free.slopeError[j], 1e-9);
  }
  const Cases cases(oracle::ReadCsv("survey.csv").Select({"A2", "age", "gender"}), 1);
  const auto at = [&cases](const std::vector<double>& thresholds) {
    return stats::EstimateIntervalRegression(cases.Pass(), cases.Survey(true), cases.Frequency(6),
                                             thresholds);
  };
  const auto one = at({-2, -1, 0, 1, 2}), two = at({-1, 2, 5, 8, 11});
  EXPECT_NEAR(two.coefficient[0], 5 + 3 * one.coefficient[0], 1e-9);
  EXPECT_NEAR(two.coefficient[1], 3 * one.coefficient[1], 1e-9);
  EXPECT_NEAR(two.sd, 3 * one.sd, 1e-9);
  EXPECT_NEAR(two.logLikelihood, one.logLikelihood, 1e-8);
  EXPECT_EQ(at({-2, -1, -1, 1, 2}).status, EStatus::BadArgument);
}

}  // namespace
