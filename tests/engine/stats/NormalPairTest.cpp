#include <cmath>
#include <random>

#include "Oracle.h"
#include "engine/stats/MixedAcov.h"

namespace {

using Eigen::MatrixXd;
using Eigen::VectorXd;
using stats::CNormalMargin;
using stats::ECensoring;
using stats::EDeletion;
using stats::EMoments;
using stats::EStatus;

enum class Kind { Continuous, Below, Above, Both, Ordinal };

// Columns of cases and weights with everything that is estimated from them, in the way of a run:
// margins from the cases that each variable has, listwise from the complete ones.
class Sample {
 public:
  Sample(std::vector<Kind> kinds, std::vector<std::vector<double>> columns)
      : weights(columns.front().size(), 1.0),
        kinds_(std::move(kinds)),
        columns_(std::move(columns)) {}

  std::vector<double> weights;

  void Estimate(EDeletion deletion) {
    used_ = weights;
    for (std::size_t k = 0; k < weights.size(); ++k) {
      for (const auto& column : columns_) {
        if (deletion == EDeletion::Listwise && std::isnan(column[k])) used_[k] = 0;
      }
    }
    pairs = stats::NormalPairs();
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      pairs.margins.push_back(Margin(i));
      pairs.censored.push_back(kinds_[i] != Kind::Ordinal && kinds_[i] != Kind::Continuous);
      codes_.resize(kinds_.size());
      codes_[i].clear();
      for (const double x : columns_[i])
        codes_[i].push_back(std::isnan(x) ? stats::kMissingCode : static_cast<std::uint8_t>(x));
    }
    for (std::size_t i = 1; i < kinds_.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j)
        pairs.pairs.push_back(
            stats::EstimateNormalPair(Column(i), Column(j), Cases(), used_.data()));
    }
  }

  VectorXd Elements(EMoments kind) const {
    std::vector<double> all;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        all.push_back(pairs.Pair(i, j).r *
                      (kind == EMoments::Covariance
                           ? pairs.margins[i].Deviation() * pairs.margins[j].Deviation()
                           : 1));
      }
      if (kind == EMoments::Covariance) all.push_back(std::pow(pairs.margins[i].Deviation(), 2));
    }
    return Eigen::Map<VectorXd>(all.data(), static_cast<Eigen::Index>(all.size()));
  }

  // All pairs by the method for censored variables, the product moments too.
  MatrixXd Acov(EMoments kind, EDeletion deletion) const {
    stats::NormalPairs all = pairs;
    all.censored.assign(kinds_.size(), true);
    std::vector<stats::MixedVariable> variables;
    int numeric = 0, ordinal = 0;
    std::vector<double> cells;
    std::vector<std::uint8_t> codes;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
      const bool is = kinds_[i] == Kind::Ordinal;
      variables.push_back({is, is ? ordinal++ : numeric++});
      if (is) codes.insert(codes.end(), codes_[i].begin(), codes_[i].end());
    }
    for (std::size_t k = 0; k < weights.size(); ++k) {
      for (std::size_t i = 0; i < kinds_.size(); ++i) {
        if (kinds_[i] != Kind::Ordinal) cells.push_back(columns_[i][k]);
      }
    }
    const stats::CaseBlock block{cells.data(), Cases(), numeric, numeric, used_.data()};
    stats::CMoments moments(numeric, deletion);
    moments.Add(block);
    stats::CMixedAcov acov(std::move(variables), {&moments, nullptr, nullptr, nullptr, &all}, kind,
                           deletion);
    acov.Add(block, {codes.data(), Cases(), ordinal, Cases(), used_.data()});
    return acov.Result().matrix;
  }

  stats::NormalPairs pairs;

 private:
  std::int64_t Cases() const { return static_cast<std::int64_t>(weights.size()); }

  CNormalMargin Margin(std::size_t i) const {
    if (kinds_[i] == Kind::Ordinal) {
      std::vector<double> frequencies(3, 0.0);
      for (std::size_t k = 0; k < used_.size(); ++k) {
        if (!std::isnan(columns_[i][k]))
          frequencies[static_cast<std::size_t>(columns_[i][k])] += used_[k];
      }
      return CNormalMargin::Ordinal(frequencies);
    }
    const stats::UnivariateResult one =
        stats::DescribeColumn(columns_[i].data(), Cases(), used_.data());
    if (kinds_[i] == Kind::Continuous) return CNormalMargin::Continuous(one);
    const ECensoring censoring = kinds_[i] == Kind::Below   ? ECensoring::Below
                                 : kinds_[i] == Kind::Above ? ECensoring::Above
                                                            : ECensoring::Both;
    return CNormalMargin::Censored(one, censoring,
                                   stats::EstimateCensored(stats::SumsAtRange(one, censoring)));
  }

  stats::PairColumn Column(std::size_t i) const {
    return {&pairs.margins[i], columns_[i].data(), codes_[i].data()};
  }

  std::vector<Kind> kinds_;
  std::vector<std::vector<double>> columns_;
  std::vector<std::vector<std::uint8_t>> codes_;
  std::vector<double> used_;
};

TEST(NormalPair, AgreesWithTheReferences) {
  const oracle::Json& want = oracle::Load("censored_pairs.json");
  const oracle::Data data = oracle::ReadCsv("survey.csv").Select({"A1", "A4", "C5", "C3", "age"});
  std::vector<std::vector<double>> columns(5);
  for (std::int64_t k = 0; k < data.Cases(); ++k) {
    for (std::size_t j = 0; j < 5; ++j)
      columns[j].push_back(data.cells[static_cast<std::size_t>(k) * 5 + j]);
  }
  for (double& c : columns[3]) c = std::floor((c - 1) / 2);  // three categories
  Sample sample({Kind::Below, Kind::Above, Kind::Both, Kind::Ordinal, Kind::Continuous}, columns);
  sample.Estimate(EDeletion::Listwise);
  const char* names[] = {"A1", "A4", "C5", "C3", "age"};
  for (const std::size_t i : {0, 1, 2, 4}) {
    const oracle::Json& margin = want.at("margins").at(names[i]);
    oracle::ExpectClose(sample.pairs.margins[i].Mean(), margin.at("mean"), 1e-8, names[i]);
    oracle::ExpectClose(sample.pairs.margins[i].Deviation(), margin.at("sd"), 1e-8, names[i]);
  }
  const struct {
    std::size_t i, j;
    const char* key;
  } pairs[] = {{4, 0, "A1_age"}, {4, 2, "C5_age"}, {1, 0, "A1_A4"},
               {2, 1, "A4_C5"},  {3, 0, "A1_C3"},  {3, 2, "C5_C3"}};
  for (const auto& p : pairs) {
    const stats::NormalPairResult& pair = sample.pairs.Pair(p.i, p.j);
    ASSERT_EQ(pair.status, EStatus::Ok) << p.key;
    EXPECT_EQ(pair.n, want.at("n").get<double>());
    oracle::ExpectClose(pair.r, want.at(p.key).at("r"), 1e-8, p.key);
    oracle::ExpectClose(pair.standardError, want.at(p.key).at("se_fixed_margins"), 1e-5, p.key);
  }
}

std::vector<std::vector<double>> Simulate(std::size_t cases, double r, unsigned seed, bool gaps) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  std::vector<std::vector<double>> columns(5);
  for (std::size_t k = 0; k < cases; ++k) {
    const double common = normal(random) * std::sqrt(r);
    const auto next = [&] { return common + std::sqrt(1 - r) * normal(random); };
    const double all[] = {10 + 2 * next(), std::max(next(), -.5), std::min(3 + next(), 3.6),
                          std::clamp(next(), -.8, .7),
                          std::clamp(std::floor(next() + 1.4), 0., 2.)};
    for (std::size_t j = 0; j < 5; ++j)
      columns[j].push_back(gaps && random() % 11 == 0 ? std::nan("") : all[j]);
  }
  return columns;
}

const std::vector<Kind> kAllKinds = {Kind::Continuous, Kind::Below, Kind::Above, Kind::Both,
                                     Kind::Ordinal};

// As for the other correlations: a case's influence is the derivative by its weight.
TEST(NormalPair, AsymptoticCovariancesAreSumsOfSquaredDerivativesByTheWeights) {
  for (const EDeletion deletion : {EDeletion::Listwise, EDeletion::Pairwise}) {
    for (const EMoments kind : {EMoments::Correlation, EMoments::Covariance}) {
      Sample sample(kAllKinds, Simulate(150, .5, 4, true));
      for (std::size_t k = 0; k < sample.weights.size(); ++k)
        sample.weights[k] = 1 + static_cast<double>(k % 3);
      sample.Estimate(deletion);
      const MatrixXd got = sample.Acov(kind, deletion);
      const Eigen::Index elements = sample.Elements(kind).size();
      ASSERT_EQ(got.rows(), elements);
      MatrixXd want = MatrixXd::Zero(elements, elements);
      for (double& weight : sample.weights) {
        constexpr double kStep = 1e-3;
        const double kept = weight;
        weight = kept + kStep;
        sample.Estimate(deletion);
        const VectorXd up = sample.Elements(kind);
        weight = kept - kStep;
        sample.Estimate(deletion);
        const VectorXd slope = (up - sample.Elements(kind)) / (2 * kStep);
        weight = kept;
        want += kept * slope * slope.transpose();
      }
      EXPECT_LT((got - want).cwiseAbs().maxCoeff(), 1e-6 * want.cwiseAbs().maxCoeff());
    }
  }
}

// Over samples of a normal distribution the estimates scatter as the standard errors say.
TEST(NormalPair, RecoversCorrelationsWithinTheirStandardErrors) {
  constexpr int kSamples = 150;
  constexpr double kCorrelation = .5;
  VectorXd sum = VectorXd::Zero(10), squares = sum, variances = sum;
  for (int s = 0; s < kSamples; ++s) {
    Sample sample(kAllKinds, Simulate(600, kCorrelation, 100U + static_cast<unsigned>(s), false));
    sample.Estimate(EDeletion::Listwise);
    const VectorXd r = sample.Elements(EMoments::Correlation);
    sum += r;
    squares += r.cwiseAbs2();
    variances += sample.Acov(EMoments::Correlation, EDeletion::Listwise).diagonal();
  }
  for (Eigen::Index e = 0; e < sum.size(); ++e) {
    const double mean = sum(e) / kSamples;
    const double sd = std::sqrt((squares(e) / kSamples - mean * mean));
    const double se = std::sqrt(variances(e) / kSamples);
    EXPECT_NEAR(mean, kCorrelation, 4 * se / std::sqrt(kSamples)) << e;
    EXPECT_NEAR(sd / se, 1, .25) << e;  // four standard errors of a standard deviation
  }
}

TEST(NormalPair, SaysWhyThereIsNoCorrelation) {
  std::vector<std::vector<double>> columns = Simulate(50, .5, 1, false);
  columns[0] = columns[2];  // the same but for the type
  Sample same({Kind::Above, Kind::Below, Kind::Above, Kind::Both, Kind::Ordinal}, columns);
  same.Estimate(EDeletion::Listwise);
  EXPECT_EQ(same.pairs.Pair(2, 0).status, EStatus::Boundary);
  EXPECT_EQ(same.pairs.Pair(1, 0).status, EStatus::Ok);
  for (std::size_t k = 0; k < 50; ++k) columns[k % 2][k] = std::nan("");
  Sample apart(kAllKinds, columns);
  apart.Estimate(EDeletion::Pairwise);
  EXPECT_EQ(apart.pairs.Pair(1, 0).status, EStatus::NoCases);
  for (double& x : columns[3]) x = x < 0 ? -.8 : .7;
  Sample limits(kAllKinds, columns);
  limits.Estimate(EDeletion::Pairwise);
  EXPECT_EQ(limits.pairs.Pair(3, 2).status, EStatus::TooFewCases);
}

}  // namespace
