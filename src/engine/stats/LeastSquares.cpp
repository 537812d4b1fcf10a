#include "engine/stats/LeastSquares.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "engine/stats/Distributions.h"

namespace stats {

namespace {

using Places = std::vector<int>;
using Quads = std::vector<Quad>;

constexpr double kCollinear = 1e-26;

std::size_t At(int i) {
  return static_cast<std::size_t>(i);
}

int Count(const Places& places) {
  return static_cast<int>(places.size());
}

CQuadMatrix Matrix(const CCrossProducts& sums, const Places& variables) {
  CQuadMatrix matrix(Count(variables));
  for (int i = 0; i < matrix.Size(); ++i) {
    for (int j = 0; j < matrix.Size(); ++j)
      matrix(i, j) = sums.Centred(variables[At(i)], variables[At(j)]);
  }
  return matrix;
}

Quads Column(const CCrossProducts& sums, const Places& variables, int other) {
  Quads column;
  for (const int variable : variables) column.push_back(sums.Centred(variable, other));
  return column;
}

Quad Dot(const Quads& a, const Quads& b) {
  Quad sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

void Check(const CCrossProducts& sums, int y, const Places& x, LeastSquaresResult& result) {
  result.n = static_cast<double>(sums.N());
  result.status = EStatus::Ok;
  if (sums.Cases() == 0) {
    result.status = EStatus::NoCases;
  } else if (!sums.Finite()) {
    result.status = EStatus::NotFinite;
  } else if (!(result.n > 0)) {
    result.status = EStatus::ZeroWeights;
  } else if (x.empty()) {
    result.status = EStatus::BadArgument;
  } else if (!(result.n > static_cast<double>(x.size()) + 1)) {
    result.status = EStatus::TooFewCases;
  } else {
    result.status = sums.CheckSpread(y);
  }
  for (int j = 0; j < Count(x) && result.status == EStatus::Ok; ++j) {
    result.status = sums.CheckSpread(x[At(j)]);
    if (result.status != EStatus::Ok) result.variable = j;
  }
}

// Everything that follows from the slopes, their covariance apart from the residual variance, and
// the squares.
void Finish(const CCrossProducts& sums, int y, const Places& x, const Quads& slopes,
            const CQuadMatrix& inverse, Quad residual, LeastSquaresResult& result) {
  const int k = Count(x);
  const Quad total = sums.Centred(y, y);
  if (residual < 0) residual = 0;
  result.df1 = k;
  result.df2 = result.n - k - 1;
  const Quad variance = residual / Quad(result.df2);
  result.covariance.resize(k + 1, k + 1);
  Quad intercept = sums.Mean(y);
  Quad ofIntercept = 1 / sums.N();
  for (int i = 0; i < k; ++i) {
    Quad withIntercept = 0;
    for (int j = 0; j < k; ++j) {
      withIntercept -= inverse(i, j) * sums.Mean(x[At(j)]);
      result.covariance(i + 1, j + 1) = static_cast<double>(variance * inverse(i, j));
    }
    intercept -= slopes[At(i)] * sums.Mean(x[At(i)]);
    ofIntercept -= withIntercept * sums.Mean(x[At(i)]);
    result.covariance(0, i + 1) = result.covariance(i + 1, 0) =
        static_cast<double>(variance * withIntercept);
    const double ratio = static_cast<double>(sums.Centred(x[At(i)], x[At(i)]) / total);
    result.standardised.push_back(static_cast<double>(slopes[At(i)]) * std::sqrt(ratio));
    result.varianceInflation.push_back(
        static_cast<double>(inverse(i, i) * sums.Centred(x[At(i)], x[At(i)])));
  }
  result.covariance(0, 0) = static_cast<double>(variance * ofIntercept);
  result.coefficient.push_back(static_cast<double>(intercept));
  for (const Quad slope : slopes) result.coefficient.push_back(static_cast<double>(slope));
  for (int i = 0; i <= k; ++i) {
    const double error = std::sqrt(result.covariance(i, i));
    const double infinite = std::numeric_limits<double>::infinity();
    const double t = error > 0 ? result.coefficient[At(i)] / error
                               : std::copysign(infinite, result.coefficient[At(i)]);
    result.standardError.push_back(error);
    result.t.push_back(t);
    result.p.push_back(StudentTwoSided(t, result.df2));
  }
  result.totalSquares = static_cast<double>(total);
  result.residualSquares = static_cast<double>(residual);
  result.regressionSquares = static_cast<double>(total - residual);
  result.rSquare = static_cast<double>(1 - residual / total);
  result.adjustedRSquare = 1 - static_cast<double>(residual / total) * (result.n - 1) / result.df2;
  result.residualSd = std::sqrt(static_cast<double>(variance));
  const double perCase = result.residualSquares / result.n;
  result.logLikelihood = -result.n / 2 * (std::log(2 * std::numbers::pi * perCase) + 1);
}

// The squares of `y` that the variables leave; false when these are collinear.
bool ResidualSquares(const CCrossProducts& sums, int y, const Places& variables, Quad& squares) {
  squares = sums.Centred(y, y);
  if (variables.empty()) return true;
  const CQuadCholesky factor(Matrix(sums, variables), kCollinear);
  if (factor.Failed() >= 0) return false;
  const Quads right = Column(sums, variables, y);
  squares -= Dot(right, factor.Solve(right));
  return true;
}

bool Contains(const Places& places, int variable) {
  return std::find(places.begin(), places.end(), variable) != places.end();
}

void AddFirstStages(const CCrossProducts& sums, const Places& x, const Places& z,
                    TwoStageResult& result) {
  Places exogenous;
  for (const int variable : x) {
    if (Contains(z, variable)) exogenous.push_back(variable);
  }
  for (int j = 0; j < Count(x); ++j) {
    if (Contains(z, x[At(j)])) continue;
    Quad without = 0, with = 0;
    if (!ResidualSquares(sums, x[At(j)], exogenous, without) ||
        !ResidualSquares(sums, x[At(j)], z, with) || !(with > 0) || !(without > 0)) {
      continue;
    }
    TwoStageResult::FirstStage stage;
    stage.x = j;
    stage.df1 = static_cast<double>(z.size() - exogenous.size());
    stage.df2 = result.n - static_cast<double>(z.size()) - 1;
    stage.partialRSquare = static_cast<double>(1 - with / without);
    stage.f = static_cast<double>((without - with) / with) * stage.df2 / stage.df1;
    stage.p = FUpper(stage.f, stage.df1, stage.df2);
    result.firstStages.push_back(stage);
  }
}

}  // namespace

LeastSquaresResult EstimateLeastSquares(const CCrossProducts& sums, int y, const Places& x) {
  LeastSquaresResult result;
  Check(sums, y, x, result);
  if (result.status != EStatus::Ok) return result;
  const CQuadCholesky factor(Matrix(sums, x), kCollinear);
  result.smallestPivot = factor.SmallestPivot();
  if (factor.Failed() >= 0) {
    result.status = EStatus::NotPositiveDefinite;
    result.variable = factor.Failed();
    return result;
  }
  const Quads right = Column(sums, x, y);
  const Quads slopes = factor.Solve(right);
  Finish(sums, y, x, slopes, factor.Inverse(), sums.Centred(y, y) - Dot(slopes, right), result);
  result.f = result.regressionSquares / result.df1 / (result.residualSd * result.residualSd);
  result.pF = FUpper(result.f, result.df1, result.df2);
  return result;
}

TwoStageResult EstimateTwoStage(const CCrossProducts& sums, int y, const Places& x,
                                const Places& z) {
  TwoStageResult result;
  Check(sums, y, x, result);
  if (result.status == EStatus::Ok && z.size() < x.size()) result.status = EStatus::BadArgument;
  if (result.status == EStatus::Ok && !(result.n > static_cast<double>(z.size()) + 1))
    result.status = EStatus::TooFewCases;
  if (result.status != EStatus::Ok) return result;
  result.status = EStatus::NotPositiveDefinite;
  const CQuadCholesky ofX(Matrix(sums, x), kCollinear);
  const CQuadCholesky ofZ(Matrix(sums, z), kCollinear);
  result.variable = ofX.Failed();
  if (ofX.Failed() >= 0 || ofZ.Failed() >= 0) return result;
  // What the instruments predict of the x: their products with each other, and with y.
  const int k = Count(x);
  std::vector<Quads> projected;
  CQuadMatrix predicted(k);
  Quads right;
  const Quads zy = Column(sums, z, y);
  for (int i = 0; i < k; ++i) {
    projected.push_back(ofZ.Solve(Column(sums, z, x[At(i)])));
    for (int j = 0; j < k; ++j) predicted(i, j) = Dot(projected.back(), Column(sums, z, x[At(j)]));
    right.push_back(Dot(projected.back(), zy));
    // An x of which the instruments predict nothing has no coefficient.
    constexpr double kNothing = 1e-20;
    if (!(predicted(i, i) > sums.Centred(x[At(i)], x[At(i)]) * Quad(kNothing))) return result;
  }
  constexpr double kUnidentified = 1e-20;
  const CQuadCholesky factor(predicted, kUnidentified);
  result.smallestPivot = factor.SmallestPivot();
  if (factor.Failed() >= 0) return result;
  result.status = EStatus::Ok;
  const Quads slopes = factor.Solve(right);
  Quad residual = sums.Centred(y, y);
  for (int i = 0; i < k; ++i) {
    residual -= 2 * slopes[At(i)] * sums.Centred(x[At(i)], y);
    for (int j = 0; j < k; ++j)
      residual += slopes[At(i)] * slopes[At(j)] * sums.Centred(x[At(i)], x[At(j)]);
  }
  Finish(sums, y, x, slopes, factor.Inverse(), residual, result);
  AddFirstStages(sums, x, z, result);
  result.dfSargan = static_cast<double>(z.size() - x.size());
  if (result.dfSargan > 0 && residual > 0) {
    Quads error = zy;
    for (std::size_t l = 0; l < z.size(); ++l) {
      for (int i = 0; i < k; ++i) error[l] -= slopes[At(i)] * sums.Centred(z[l], x[At(i)]);
    }
    result.sargan = static_cast<double>(Dot(error, ofZ.Solve(error)) / residual * sums.N());
    result.pSargan = ChiSquareUpper(result.sargan, result.dfSargan);
  }
  return result;
}

}  // namespace stats
