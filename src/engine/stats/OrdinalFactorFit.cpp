#include "engine/stats/OrdinalFactorFit.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/Parallel.h"

namespace stats {

using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

constexpr int kPairNodes = 25;

// Category probabilities at the predictors: a row a category.
MatrixXd Probabilities(const CResponseFunction& response, const VectorXd& threshold,
                       const ArrayXd& x) {
  MatrixXd all(threshold.size() + 1, x.size());
  ResponseCells cells;
  cells.Resize(x.size());
  for (Index a = 0; a < all.rows(); ++a) {
    response.Evaluate(a > 0 ? threshold(a - 1) : -HUGE_VAL,
                      a < threshold.size() ? threshold(a) : HUGE_VAL, x, cells);
    all.row(a) = cells.p.matrix().transpose();
  }
  return all;
}

// The two predictors are normal with the products of the slopes as covariances: one factor for
// the first one, a second one for the rest of the other.
MatrixXd ExpectedTable(const CResponseFunction& response, const HermiteRule& rule,
                       const OrdinalFactorParameters& parameters, int i, int j) {
  const VectorXd a = parameters.slopes.row(i), b = parameters.slopes.row(j);
  const double length = a.norm();
  const double along = length > 0 ? a.dot(b) / length : 0;
  const double across = std::sqrt(std::max(0.0, b.squaredNorm() - along * along));
  const auto& thresholds = parameters.threshold;
  const MatrixXd first =
      Probabilities(response, thresholds[static_cast<std::size_t>(i)], length * rule.node.array());
  MatrixXd table = MatrixXd::Zero(thresholds[static_cast<std::size_t>(i)].size() + 1,
                                  thresholds[static_cast<std::size_t>(j)].size() + 1);
  for (Index q = 0; q < rule.node.size(); ++q) {
    const MatrixXd second = Probabilities(response, thresholds[static_cast<std::size_t>(j)],
                                          along * rule.node(q) + across * rule.node.array());
    table += rule.weight(q) * first.col(q) * (second * rule.weight).transpose();
  }
  return table;
}

}  // namespace

std::vector<PairFit> FitPairs(const CPairTables& tables, const OrdinalFactorParameters& parameters,
                              ELink link, int threads) {
  const int p = parameters.Variables();
  const CResponseFunction response(link);
  const HermiteRule rule = GaussHermite(kPairNodes);
  std::vector<PairFit> fits(static_cast<std::size_t>(PairIndex(p, 0)));
  ParallelFor(threads, p, [&](std::int64_t row) {
    const int i = static_cast<int>(row);
    for (int j = 0; j < i; ++j) {
      PairFit& fit = fits[static_cast<std::size_t>(PairIndex(i, j))];
      fit = {j, i};
      const FrequencyTable table = tables.Table(i, j);
      for (const double count : table.count) fit.n += count;
      if (!(fit.n > 0)) continue;
      const MatrixXd expected = ExpectedTable(response, rule, parameters, i, j);
      double squares = 0;
      for (int a = 0; a < table.rows; ++a) {
        for (int b = 0; b < table.columns; ++b) {
          const double difference = table.At(a, b) / fit.n - expected(a, b);
          squares += difference * difference;
          fit.chiSquare += fit.n * difference * difference / std::max(expected(a, b), 1e-300);
        }
      }
      fit.df = (table.rows - 1) * (table.columns - 1);
      fit.residual = std::sqrt(squares / static_cast<double>(table.count.size()));
    }
  });
  return fits;
}

PatternFit FitPatterns(const COrdinalPatterns& patterns, const VectorXd& logLikelihoods,
                       double parameters) {
  PatternFit fit;
  fit.possible = 1;
  for (int j = 0; j < patterns.Variables(); ++j) fit.possible *= patterns.Categories(j);
  fit.df = fit.possible - 1 - parameters;
  fit.usable =
      patterns.Complete() == patterns.Cases() && fit.possible <= patterns.N() && fit.df > 0;
  if (!fit.usable) return fit;
  double rest = patterns.N();  // expected frequency of the patterns that no case has
  for (std::int64_t i = 0; i < patterns.Patterns(); ++i) {
    const double observed = patterns.Frequency(i);
    const double expected = patterns.N() * std::exp(logLikelihoods(i));
    rest -= expected;
    fit.likelihoodRatio += 2 * observed * std::log(observed / expected);
    fit.chiSquare += (observed - expected) * (observed - expected) / expected;
  }
  fit.chiSquare += std::max(0.0, rest);
  return fit;
}

}  // namespace stats
