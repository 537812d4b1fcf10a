#include "engine/stats/InfluenceValues.h"

#include <algorithm>
#include <cmath>

#include "engine/stats/CellScores.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/PolyserialModel.h"

namespace stats {

namespace {

using Values = std::vector<double>;

double Total(const Values& margin) {
  double n = 0;
  for (const double f : margin) n += f;
  return n;
}

// One pair: the influence of a case by its two categories, the last row and column being for
// missing ones.
class CPairInfluence {
 public:
  CPairInfluence(const FrequencyTable& table, const Values& rowThresholds,
                 const Values& columnThresholds, double r)
      : table_(table),
        model_(rowThresholds, columnThresholds),
        n_(Total(table.count)),
        scores_(table_, model_, n_) {
    model_.Evaluate(r);
    curve_ = model_.Likelihood(table_, n_).curve;
  }

  Values Compute(const Values& rowThresholds, const Values& rowMargin,
                 const Values& columnThresholds, const Values& columnMargin) const {
    const Values byRow = ThroughThresholds(scores_.ByRowThresholds(), rowThresholds, rowMargin);
    const Values byColumn =
        ThroughThresholds(scores_.ByColumnThresholds(), columnThresholds, columnMargin);
    Values influence;
    for (int a = 0; a <= table_.rows; ++a) {
      for (int b = 0; b <= table_.columns; ++b) {
        double sum = 0;
        if (a < table_.rows) sum += byRow[static_cast<std::size_t>(a)];
        if (b < table_.columns) sum += byColumn[static_cast<std::size_t>(b)];
        if (a < table_.rows && b < table_.columns) sum += scores_.Score(a, b) / n_;
        influence.push_back(-sum / curve_);
      }
    }
    return influence;
  }

 private:
  const FrequencyTable& table_;
  CCellModel model_;
  double n_;
  CCellScores scores_;
  double curve_ = 0;
};

}  // namespace

Values ThroughThresholds(const Values& slopes, const Values& thresholds,
                         const Values& frequencies) {
  const double n = Total(frequencies);
  Values influence(frequencies.size(), 0.0);
  double cumulative = 0;
  for (std::size_t a = 0; a < slopes.size(); ++a) {
    cumulative += frequencies[a];
    const double density = NormalDensity(thresholds[a]);
    if (!(density > 0)) continue;  // an infinite threshold does not move
    for (std::size_t c = 0; c < frequencies.size(); ++c)
      influence[c] += slopes[a] / density * ((c <= a ? 1.0 : 0.0) - cumulative / n) / n;
  }
  return influence;
}

Values PolychoricInfluence(const CPairTables& tables, const PolychoricMatrix& matrix, int i,
                           int j) {
  const FrequencyTable table = tables.Table(i, j);
  const Values& rows = matrix.thresholds[static_cast<std::size_t>(i)].threshold;
  const Values& columns = matrix.thresholds[static_cast<std::size_t>(j)].threshold;
  return CPairInfluence(table, rows, columns, matrix.correlation(i, j))
      .Compute(rows, tables.Margin(i), columns, tables.Margin(j));
}

CPolyserialInfluence::CPolyserialInfluence(const PolyserialResult& result)
    : mean_(result.mean),
      sd_(result.sd),
      r_(result.r),
      n_(result.n),
      curve_(result.curve),
      byMean_(-result.byZ),
      bySquare_(-result.bySquare),
      byThreshold_(ThroughThresholds(result.byThreshold, result.thresholds, result.frequencies)) {
  thresholds_.push_back(-HUGE_VAL);
  thresholds_.insert(thresholds_.end(), result.thresholds.begin(), result.thresholds.end());
  thresholds_.push_back(HUGE_VAL);
}

double CPolyserialInfluence::operator()(double value, std::uint8_t category) const {
  const double z = (value - mean_) / sd_;
  const double score =
      PolyserialScoreAt(thresholds_[category], thresholds_[category + std::size_t{1}], z, r_).score;
  const double moments = byMean_ * z + bySquare_ * (z * z - 1) / 2;
  return -((score + moments) / n_ + byThreshold_[category]) / curve_;
}

}  // namespace stats
