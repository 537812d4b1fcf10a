#include "engine/stats/NormalPair.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/stats/CellScores.h"
#include "engine/stats/CorrelationSearch.h"
#include "engine/stats/PolyserialModel.h"

namespace stats {

namespace {

// A point of one variable, the interval that the other lies in, and the frequency.
struct PointCase {
  double z, lower, upper, weight;
};

// The score of two points.
double PointScore(double x, double y, double r) {
  const double q = (1 - r) * (1 + r);
  return (r + (x * y * (1 + r * r) - r * (x * x + y * y)) / q) / q;
}

// All cases of a pair, by what they show.
class CPairCases {
 public:
  CPairCases(const CNormalMargin& first, const CNormalMargin& second)
      : first_(first), second_(second), model_(first.Edges(), second.Edges()) {
    table_.rows = static_cast<int>(first.Edges().size()) + 1;
    table_.columns = static_cast<int>(second.Edges().size()) + 1;
    table_.count.assign(CellIndex(table_.rows, table_.columns, 0), 0.0);
  }

  void Add(const SeenValue& a, const SeenValue& b, double weight) {
    n_ += weight;
    const bool pointA = a.interval == SeenValue::kPoint, pointB = b.interval == SeenValue::kPoint;
    if (pointA && pointB) {
      points_ += weight;
      squareA_ += weight * a.z * a.z;
      squareB_ += weight * b.z * b.z;
      product_ += weight * a.z * b.z;
      sumA_ += weight * a.z;
      sumB_ += weight * b.z;
    } else if (pointA) {
      byFirst_.push_back({a.z, second_.Lower(b.interval), second_.Upper(b.interval), weight});
    } else if (pointB) {
      bySecond_.push_back({b.z, first_.Lower(a.interval), first_.Upper(a.interval), weight});
    } else {
      table_.count[CellIndex(a.interval, table_.columns, b.interval)] += weight;
      cells_ += weight;
    }
    const double x = first_.Expectation(a), y = second_.Expectation(b);
    startProduct_ += weight * x * y;
    startA_ += weight * x * x;
    startB_ += weight * y * y;
  }

  double N() const { return n_; }
  double Start() const { return startProduct_ / std::sqrt(startA_ * startB_); }

  CorrelationLikelihood At(double r) {
    CorrelationLikelihood sums;
    AddPoints(r, sums);
    AddPointCases(byFirst_, r, sums);
    AddPointCases(bySecond_, r, sums);
    if (cells_ > 0 && sums.valid) {
      model_.Evaluate(r);
      const CorrelationLikelihood cells = model_.Likelihood(table_, n_);
      sums.valid = cells.valid;
      sums.value += cells.value;
      sums.slope += cells.slope;
      sums.curve += cells.curve;
    }
    return sums;
  }

  // At the r that At had last.
  void AddSlopes(double r, NormalPairResult& result) const {
    result.first.edges.assign(first_.Edges().size(), 0);
    result.second.edges.assign(second_.Edges().size(), 0);
    AddPointSlopes(r, result);
    AddCaseSlopes(byFirst_, r, second_, result.first, result.second);
    AddCaseSlopes(bySecond_, r, first_, result.second, result.first);
    result.cellScores.assign(table_.count.size(), 0);
    if (cells_ == 0) return;
    const CCellScores scores(table_, model_, n_);
    for (int a = 0; a < table_.rows; ++a) {
      for (int b = 0; b < table_.columns; ++b)
        result.cellScores[CellIndex(a, table_.columns, b)] = scores.Score(a, b);
    }
    AddTo(scores.ByRowThresholds(), result.first.edges);
    AddTo(scores.ByColumnThresholds(), result.second.edges);
  }

 private:
  static void AddTo(const std::vector<double>& from, std::vector<double>& to) {
    std::transform(from.begin(), from.end(), to.begin(), to.begin(), std::plus<>());
  }

  void AddPoints(double r, CorrelationLikelihood& sums) const {
    const double q = (1 - r) * (1 + r);
    const double squares = squareA_ + squareB_;
    const double form = squares - 2 * r * product_;
    sums.value += (-points_ * std::log(q) - form / q) / 2 / n_;
    sums.slope += (points_ * r + product_ - r * form / q) / q / n_;
    sums.curve +=
        (points_ * (1 + r * r) + 4 * r * product_ - (1 + 3 * r * r) * form / q) / (q * q) / n_;
  }

  void AddPointCases(const std::vector<PointCase>& cases, double r,
                     CorrelationLikelihood& sums) const {
    for (const PointCase& c : cases) {
      const PolyserialEdge low = PolyserialEdgeAt(c.lower, c.z, r);
      const PolyserialEdge high = PolyserialEdgeAt(c.upper, c.z, r);
      const double p = NormalInterval(low.u, high.u);
      if (!(p > std::numeric_limits<double>::min())) {
        sums.valid = false;
        return;
      }
      const double slope = (high.slope - low.slope) / p;
      const double share = c.weight / n_;
      sums.value += share * std::log(p);
      sums.slope += share * slope;
      sums.curve += share * ((high.curve - low.curve) / p - slope * slope);
    }
  }

  // The score's derivative by the point x is (y (1 + r^2) - 2 r x) / (1 - r^2)^2.
  void AddPointSlopes(double r, NormalPairResult& result) const {
    const double q = (1 - r) * (1 + r);
    const double cross = (1 + r * r) / (q * q) / n_, own = 2 * r / (q * q) / n_;
    result.first.point += cross * sumB_ - own * sumA_;
    result.first.square += cross * product_ - own * squareA_;
    result.second.point += cross * sumA_ - own * sumB_;
    result.second.square += cross * product_ - own * squareB_;
  }

  void AddCaseSlopes(const std::vector<PointCase>& cases, double r, const CNormalMargin& other,
                     MarginSlopes& points, MarginSlopes& intervals) const {
    const std::vector<double>& edges = other.Edges();
    const auto add = [&](double edge, double slope) {
      const auto at = std::lower_bound(edges.begin(), edges.end(), edge);
      if (std::isfinite(edge))
        intervals.edges[static_cast<std::size_t>(at - edges.begin())] += slope;
    };
    for (const PointCase& c : cases) {
      const PolyserialScore score = PolyserialScoreAt(c.lower, c.upper, c.z, r);
      const double share = c.weight / n_;
      points.point += share * score.byZ;
      points.square += share * score.byZ * c.z;
      add(c.lower, share * score.byLower);
      add(c.upper, share * score.byUpper);
    }
  }

  const CNormalMargin& first_;
  const CNormalMargin& second_;
  CCellModel model_;
  FrequencyTable table_;
  std::vector<PointCase> byFirst_, bySecond_;
  double n_ = 0, cells_ = 0;
  double points_ = 0, squareA_ = 0, squareB_ = 0, product_ = 0, sumA_ = 0, sumB_ = 0;
  double startProduct_ = 0, startA_ = 0, startB_ = 0;
};

}  // namespace

NormalPairResult EstimateNormalPair(const PairColumn& first, const PairColumn& second,
                                    std::int64_t cases, const double* weights) {
  NormalPairResult result;
  for (const PairColumn* column : {&first, &second}) {
    result.status = column->margin->Status();
    if (result.status != EStatus::Ok) return result;
  }
  CPairCases pair(*first.margin, *second.margin);
  bool withoutWeight = false;
  for (std::int64_t k = 0; k < cases; ++k) {
    const SeenValue a = first.See(k), b = second.See(k);
    if (a.interval == SeenValue::kMissing || b.interval == SeenValue::kMissing) continue;
    const double weight = weights != nullptr ? weights[k] : 1.0;
    if (!(weight > 0) || std::isinf(weight)) {
      withoutWeight = true;
      continue;
    }
    pair.Add(a, b, weight);
    ++result.cases;
  }
  result.n = pair.N();
  if (result.cases == 0) {
    result.status = withoutWeight ? EStatus::ZeroWeights : EStatus::NoCases;
    return result;
  }
  const CorrelationMaximum maximum =
      MaximiseOverCorrelation([&](double r) { return pair.At(r); }, pair.Start(), result.n);
  result.status = maximum.status;
  result.iterations = maximum.iterations;
  result.r = maximum.r;
  if (!maximum.at.valid) {
    if (result.status == EStatus::Ok) result.status = EStatus::NotConverged;
    return result;
  }
  result.gradient = maximum.at.slope;
  result.logLikelihood = result.n * maximum.at.value;
  if (result.status != EStatus::Ok) return result;
  const CorrelationLikelihood at = pair.At(result.r);
  result.standardError = 1 / std::sqrt(-at.curve * result.n);
  result.curve = at.curve;
  pair.AddSlopes(result.r, result);
  return result;
}

CNormalPairInfluence::CNormalPairInfluence(const NormalPairResult& result,
                                           const CNormalMargin& first, const CNormalMargin& second)
    : first_(first),
      second_(second),
      r_(result.r),
      n_(result.n),
      curve_(result.curve),
      columns_(static_cast<int>(second.Edges().size()) + 1),
      cellScores_(result.cellScores),
      byFirst_(first, result.first.point, result.first.square, result.first.edges),
      bySecond_(second, result.second.point, result.second.square, result.second.edges) {}

double CNormalPairInfluence::Score(const SeenValue& a, const SeenValue& b) const {
  const bool pointA = a.interval == SeenValue::kPoint, pointB = b.interval == SeenValue::kPoint;
  if (pointA && pointB) return PointScore(a.z, b.z, r_);
  if (pointA)
    return PolyserialScoreAt(second_.Lower(b.interval), second_.Upper(b.interval), a.z, r_).score;
  if (pointB)
    return PolyserialScoreAt(first_.Lower(a.interval), first_.Upper(a.interval), b.z, r_).score;
  return cellScores_[CellIndex(a.interval, columns_, b.interval)];
}

double CNormalPairInfluence::operator()(const SeenValue& a, const SeenValue& b) const {
  double sum = byFirst_(a) + bySecond_(b);
  if (a.interval != SeenValue::kMissing && b.interval != SeenValue::kMissing)
    sum += Score(a, b) / n_;
  return -sum / curve_;
}

}  // namespace stats
