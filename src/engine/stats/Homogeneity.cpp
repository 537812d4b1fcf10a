#include "engine/stats/Homogeneity.h"

#include <cmath>

#include <Eigen/Cholesky>
#include <Eigen/Core>

#include "engine/stats/Distributions.h"
#include "engine/stats/Moments.h"

namespace stats {

namespace {

std::vector<int> UsedCategories(const HomogeneityResult& result) {
  std::vector<int> used;
  for (std::size_t a = 0; a < result.row.size(); ++a) {
    if (result.row[a] + result.column[a] > 0) used.push_back(static_cast<int>(a));
  }
  return used;
}

void TestSymmetry(const FrequencyTable& table, HomogeneityResult& result) {
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < a; ++b) {
      const double sum = table.At(a, b) + table.At(b, a);
      if (sum == 0) continue;
      const double difference = table.At(a, b) - table.At(b, a);
      result.bowker += difference * difference / sum;
      ++result.dfBowker;
    }
  }
  result.pBowker = ChiSquareUpper(result.bowker, result.dfBowker);
}

}  // namespace

HomogeneityResult TestHomogeneity(const FrequencyTable& table) {
  HomogeneityResult result;
  if (table.rows != table.columns || table.rows < 1) return result;
  result.row.assign(static_cast<std::size_t>(table.rows), 0);
  result.column = result.row;
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      result.row[static_cast<std::size_t>(a)] += table.At(a, b);
      result.column[static_cast<std::size_t>(b)] += table.At(a, b);
      result.n += table.At(a, b);
    }
  }
  const std::vector<int> used = UsedCategories(result);
  result.status = !std::isfinite(result.n) ? EStatus::NotFinite
                  : !(result.n > 0)        ? EStatus::ZeroWeights
                  : used.size() < 2        ? EStatus::OneCategory
                                           : EStatus::Ok;
  if (result.status != EStatus::Ok) return result;
  TestSymmetry(table, result);
  const auto c = static_cast<Eigen::Index>(used.size()) - 1;
  Eigen::VectorXd d(c);
  Eigen::MatrixXd s(c, c);
  for (Eigen::Index i = 0; i < c; ++i) {
    const int a = used[static_cast<std::size_t>(i)];
    const double row = result.row[static_cast<std::size_t>(a)];
    const double column = result.column[static_cast<std::size_t>(a)];
    d(i) = row - column;
    for (Eigen::Index j = 0; j < c; ++j) {
      const int b = used[static_cast<std::size_t>(j)];
      s(i, j) = i == j ? row + column - 2 * table.At(a, a) : -(table.At(a, b) + table.At(b, a));
    }
  }
  if (CheckPositiveDefinite(s).status != EStatus::Ok) {
    result.status = EStatus::Boundary;
    return result;
  }
  result.df = static_cast<int>(c);
  result.stuartMaxwell = d.dot(s.ldlt().solve(d));
  result.pStuartMaxwell = ChiSquareUpper(result.stuartMaxwell, result.df);
  const double rest = 1 - result.stuartMaxwell / result.n;
  result.bhapkar = rest > 0 ? result.stuartMaxwell / rest : HUGE_VAL;
  result.pBhapkar = ChiSquareUpper(result.bhapkar, result.df);
  return result;
}

}  // namespace stats
