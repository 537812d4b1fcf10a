// The asymptotic covariance matrix of polychoric correlations; declared in AsymptoticCovariance.h.
#include <algorithm>
#include <array>
#include <cmath>

#include "engine/stats/AsymptoticCovariance.h"
#include "engine/stats/CellModel.h"
#include "engine/stats/CodeChunk.h"
#include "engine/stats/Distributions.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/SymmetricProduct.h"

namespace stats {

namespace {

using Values = std::vector<double>;

double Total(const Values& margin) {
  double n = 0;
  for (const double f : margin) n += f;
  return n;
}

// What a case in each category adds to the slope of a pair through the thresholds of one
// variable: the sum over thresholds of `slopes` times the threshold's influence value.
Values ThroughThresholds(const Values& slopes, const Values& thresholds, const Values& margin) {
  const double n = Total(margin);
  Values influence(margin.size(), 0.0);
  double cumulative = 0;
  for (std::size_t a = 0; a < slopes.size(); ++a) {
    cumulative += margin[a];
    const double density = NormalDensity(thresholds[a]);
    if (!(density > 0)) continue;  // an infinite threshold does not move
    for (std::size_t c = 0; c < margin.size(); ++c)
      influence[c] += slopes[a] / density * ((c <= a ? 1.0 : 0.0) - cumulative / n) / n;
  }
  return influence;
}

// One pair: the influence of a case by its two categories, the last row and column being for
// missing ones.
class CPairInfluence {
 public:
  CPairInfluence(const FrequencyTable& table, const Values& rowThresholds,
                 const Values& columnThresholds, double r)
      : table_(table), model_(rowThresholds, columnThresholds), n_(Total(table.count)) {
    model_.Evaluate(r);
    curve_ = model_.Likelihood(table_, n_).curve;
  }

  Values Compute(const Values& rowThresholds, const Values& rowMargin,
                 const Values& columnThresholds, const Values& columnMargin) const {
    const Values byRow = ThroughThresholds(RowSlopes(), rowThresholds, rowMargin);
    const Values byColumn = ThroughThresholds(ColumnSlopes(), columnThresholds, columnMargin);
    Values influence;
    for (int a = 0; a <= table_.rows; ++a) {
      for (int b = 0; b <= table_.columns; ++b) {
        double sum = 0;
        if (a < table_.rows) sum += byRow[static_cast<std::size_t>(a)];
        if (b < table_.columns) sum += byColumn[static_cast<std::size_t>(b)];
        if (a < table_.rows && b < table_.columns) sum += Score(a, b) / n_;
        influence.push_back(-sum / curve_);
      }
    }
    return influence;
  }

 private:
  // Only cells with cases are asked for.
  double Score(int a, int b) const {
    return table_.At(a, b) > 0 ? model_.Slope(a, b) / model_.Probability(a, b) : 0.0;
  }

  // The share of a cell times the derivative of its score, for derivatives of its probability and
  // slope.
  double ScoreChange(int a, int b, double probability, double slope) const {
    if (table_.At(a, b) == 0) return 0;
    const double p = model_.Probability(a, b);
    return table_.At(a, b) / n_ * (slope - model_.Slope(a, b) * probability / p) / p;
  }

  // Derivatives of the mean slope by the thresholds.
  Values RowSlopes() const {
    Values slopes;
    for (int a = 0; a + 1 < table_.rows; ++a) {
      const CCellModel::ByThreshold by = model_.ByRowThreshold(a);
      double sum = 0;
      for (int b = 0; b < table_.columns; ++b) {
        const auto at = static_cast<std::size_t>(b);
        sum += ScoreChange(a, b, by.probability[at], by.slope[at]) +
               ScoreChange(a + 1, b, -by.probability[at], -by.slope[at]);
      }
      slopes.push_back(sum);
    }
    return slopes;
  }

  Values ColumnSlopes() const {
    Values slopes;
    for (int b = 0; b + 1 < table_.columns; ++b) {
      const CCellModel::ByThreshold by = model_.ByColumnThreshold(b);
      double sum = 0;
      for (int a = 0; a < table_.rows; ++a) {
        const auto at = static_cast<std::size_t>(a);
        sum += ScoreChange(a, b, by.probability[at], by.slope[at]) +
               ScoreChange(a, b + 1, -by.probability[at], -by.slope[at]);
      }
      slopes.push_back(sum);
    }
    return slopes;
  }

  const FrequencyTable& table_;
  CCellModel model_;
  double n_;
  double curve_ = 0;
};

struct PairLookup {
  int row = 0, column = 0, width = 0;
  Values influence;
};

std::vector<int> CategoriesOf(const CPairTables& tables) {
  std::vector<int> categories;
  categories.reserve(static_cast<std::size_t>(tables.Variables()));
  for (int j = 0; j < tables.Variables(); ++j) categories.push_back(tables.Categories(j));
  return categories;
}

}  // namespace

struct CPolychoricAcov::State {
  State(const CPairTables& tables, EDeletion deletion, int wantedThreads)
      : threads(wantedThreads),
        chunk(CategoriesOf(tables), deletion),
        product(static_cast<int>(PairIndex(tables.Variables(), 0)), wantedThreads) {}

  void PreparePair(const CPairTables& tables, const PolychoricMatrix& matrix, int i, int j);
  void FillPanel(int panel, std::int64_t from, std::int64_t cases, double* to) const;

  int threads;
  AsymptoticCovarianceResult result;
  CCodeChunk chunk;
  CSymmetricProduct product;
  std::vector<PairLookup> pairs;
};

void CPolychoricAcov::State::PreparePair(const CPairTables& tables, const PolychoricMatrix& matrix,
                                         int i, int j) {
  const FrequencyTable table = tables.Table(i, j);
  const Values& rows = matrix.thresholds[static_cast<std::size_t>(i)].threshold;
  const Values& columns = matrix.thresholds[static_cast<std::size_t>(j)].threshold;
  const CPairInfluence pair(table, rows, columns, matrix.correlation(i, j));
  pairs[static_cast<std::size_t>(PairIndex(i, j))] = {
      i, j, tables.Categories(j) + 1,
      pair.Compute(rows, tables.Margin(i), columns, tables.Margin(j))};
}

CPolychoricAcov::CPolychoricAcov(const CPairTables& tables, const PolychoricMatrix& matrix,
                                 EDeletion deletion, int threads)
    : state_(std::make_unique<State>(tables, deletion, threads)) {
  AsymptoticCovarianceResult& result = state_->result;
  const int variables = tables.Variables();
  result.status = variables > 1 ? EStatus::Ok : EStatus::BadArgument;
  for (int i = 0; i < variables; ++i) {
    for (int j = 0; j < i; ++j) {
      const PolychoricResult& pair = matrix.pairs[static_cast<std::size_t>(PairIndex(i, j))];
      result.n = result.n == 0 ? pair.n : std::min(result.n, pair.n);
      if (pair.status == EStatus::Ok || result.status != EStatus::Ok) continue;
      result.status = pair.status;
      result.variable = i;
      result.other = j;
    }
  }
  if (result.status != EStatus::Ok) return;
  state_->pairs.resize(matrix.pairs.size());
  ParallelFor(threads, variables, [&](std::int64_t piece) {
    const int i = variables - 1 - static_cast<int>(piece);
    for (int j = 0; j < i; ++j) state_->PreparePair(tables, matrix, i, j);
  });
}
CPolychoricAcov::~CPolychoricAcov() = default;
CPolychoricAcov::CPolychoricAcov(CPolychoricAcov&&) noexcept = default;
CPolychoricAcov& CPolychoricAcov::operator=(CPolychoricAcov&&) noexcept = default;

void CPolychoricAcov::State::FillPanel(int panel, std::int64_t from, std::int64_t cases,
                                       double* to) const {
  for (int l = 0; l < kLanes; ++l) {
    const auto at = static_cast<std::size_t>(panel * kLanes + l);
    if (at >= pairs.size()) {
      for (std::int64_t k = 0; k < cases; ++k) to[k * kLanes + l] = 0;
      continue;
    }
    const PairLookup& pair = pairs[at];
    const std::uint8_t* row = chunk.Column(pair.row) + from;
    const std::uint8_t* column = chunk.Column(pair.column) + from;
    const double* influence = pair.influence.data();
    for (std::int64_t k = 0; k < cases; ++k)
      to[k * kLanes + l] = influence[row[k] * pair.width + column[k]];
  }
  if (!chunk.Weights()) return;
  for (std::int64_t k = 0; k < cases; ++k) {
    const double root = std::sqrt(chunk.Weights()[from + k]);
    for (int l = 0; l < kLanes; ++l) to[k * kLanes + l] *= root;
  }
}

void CPolychoricAcov::Add(const CodeBlock& block) {
  if (state_->result.status != EStatus::Ok) return;
  CCodeChunk& chunk = state_->chunk;
  chunk.CheckShape(block);
  for (std::int64_t at = 0; at < block.cases; at += CCodeChunk::kCases) {
    chunk.Take(block, at, std::min(at + CCodeChunk::kCases, block.cases));
    for (std::int64_t from = 0; from < chunk.Cases(); from += CSymmetricProduct::kChunkCases) {
      const std::int64_t cases = std::min(CSymmetricProduct::kChunkCases, chunk.Cases() - from);
      state_->product.Add(
          cases, [&](int panel, double* to) { state_->FillPanel(panel, from, cases, to); });
    }
  }
}

AsymptoticCovarianceResult CPolychoricAcov::Result() const {
  AsymptoticCovarianceResult result = state_->result;
  if (result.status == EStatus::Ok) result.matrix = state_->product.Matrix();
  return result;
}

std::int64_t CPolychoricAcov::MemoryFor(int variables) {
  return CSymmetricProduct::MemoryFor(static_cast<int>(PairIndex(variables, 0)));
}

}  // namespace stats
