#include "engine/run/Estimates.h"

#include <algorithm>
#include <cmath>
#include <limits>

ESTIMATES MakeEstimates(CString title) {
  ESTIMATES estimates;
  estimates.title = std::move(title);
  return estimates;
}

void AddEstimate(ESTIMATES& estimates, CString name, double value) {
  estimates.parameters.push_back(
      {std::move(name), value, std::numeric_limits<double>::quiet_NaN()});
}

ESTIMATES LoadingEstimates(CString title, const std::vector<CString>& rows,
                           const std::vector<CString>& columns, const Eigen::MatrixXd& loadings) {
  ESTIMATES estimates = MakeEstimates(std::move(title));
  for (Eigen::Index i = 0; i < loadings.rows(); ++i) {
    for (Eigen::Index j = 0; j < loadings.cols(); ++j) {
      AddEstimate(estimates,
                  rows[static_cast<std::size_t>(i)] + " on " + columns[static_cast<std::size_t>(j)],
                  loadings(i, j));
    }
  }
  estimates.factors = columns.size();
  return estimates;
}

ESTIMATES FactorCorrelationEstimates(CString title, const std::vector<CString>& factors,
                                     const Eigen::MatrixXd& correlation) {
  ESTIMATES estimates = MakeEstimates(std::move(title));
  for (Eigen::Index i = 1; i < correlation.rows(); ++i) {
    for (Eigen::Index j = 0; j < i; ++j) {
      AddEstimate(estimates,
                  factors[static_cast<std::size_t>(i)] + "," + factors[static_cast<std::size_t>(j)],
                  correlation(i, j));
    }
  }
  estimates.ofFactors = true;
  return estimates;
}

std::vector<double> ValuesOf(const std::vector<ESTIMATES>& estimates) {
  std::vector<double> values;
  for (const ESTIMATES& one : estimates) {
    for (const auto& parameter : one.parameters) values.push_back(parameter.value);
  }
  return values;
}

void LeaveOutFactors(const std::vector<ESTIMATES>& others, std::vector<ESTIMATES>& estimates) {
  std::erase_if(estimates, [&](const ESTIMATES& one) {
    return (one.factors > 0 || one.ofFactors) &&
           std::none_of(others.begin(), others.end(),
                        [&](const ESTIMATES& other) { return other.title == one.title; });
  });
}

bool HaveSameNames(const std::vector<ESTIMATES>& a, const std::vector<ESTIMATES>& b) {
  const auto same = [](const ESTIMATES& x, const ESTIMATES& y) {
    return x.factors == y.factors &&
           std::equal(x.parameters.begin(), x.parameters.end(), y.parameters.begin(),
                      y.parameters.end(),
                      [](const auto& one, const auto& other) { return one.name == other.name; });
  };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

namespace {

using Eigen::Index;
using Eigen::MatrixXd;

MatrixXd LoadingsOf(const ESTIMATES& estimates) {
  const std::size_t factors = estimates.factors;
  MatrixXd loadings(static_cast<Index>(estimates.parameters.size() / factors),
                    static_cast<Index>(factors));
  for (Index i = 0; i < loadings.rows(); ++i) {
    for (Index j = 0; j < loadings.cols(); ++j) {
      const std::size_t at = static_cast<std::size_t>(i) * factors + static_cast<std::size_t>(j);
      loadings(i, j) = estimates.parameters[at].value;
    }
  }
  return loadings;
}

MatrixXd Congruences(const MatrixXd& own, const MatrixXd& target) {
  MatrixXd congruence = own.transpose() * target;
  for (Index a = 0; a < congruence.rows(); ++a) {
    for (Index b = 0; b < congruence.cols(); ++b) {
      const double lengths = own.col(a).norm() * target.col(b).norm();
      congruence(a, b) /= lengths > 0 ? lengths : 1;
    }
  }
  return congruence;
}

// Which column of a sample stands for each factor of all cases, and with which sign.
struct ALIGNMENT {
  std::vector<Index> column;
  std::vector<double> sign;
};

// The pair of columns with the largest congruence first, then the largest among the others.
ALIGNMENT Align(const MatrixXd& own, const MatrixXd& target) {
  const MatrixXd congruence = Congruences(own, target);
  constexpr double kTaken = -1;
  MatrixXd free = congruence.cwiseAbs();
  const auto factors = static_cast<std::size_t>(own.cols());
  ALIGNMENT alignment{std::vector<Index>(factors), std::vector<double>(factors)};
  for (std::size_t k = 0; k < factors; ++k) {
    Index a = 0, b = 0;
    free.maxCoeff(&a, &b);
    alignment.column[static_cast<std::size_t>(b)] = a;
    alignment.sign[static_cast<std::size_t>(b)] = congruence(a, b) < 0 ? -1 : 1;
    free.row(a).setConstant(kTaken);
    free.col(b).setConstant(kTaken);
  }
  return alignment;
}

void AlignColumns(const MatrixXd& loadings, const ALIGNMENT& alignment, ESTIMATES& estimates) {
  for (std::size_t at = 0; at < estimates.parameters.size(); ++at) {
    const std::size_t factor = at % estimates.factors;
    estimates.parameters[at].value =
        alignment.sign[factor] *
        loadings(static_cast<Index>(at / estimates.factors), alignment.column[factor]);
  }
}

void AlignCorrelations(const ALIGNMENT& alignment, ESTIMATES& estimates) {
  const std::vector<ESTIMATES::PARAMETER> own = estimates.parameters;
  std::size_t at = 0;
  for (std::size_t i = 1; i < alignment.column.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const auto [less, more] = std::minmax(alignment.column[i], alignment.column[j]);
      estimates.parameters[at++].value =
          alignment.sign[i] * alignment.sign[j] *
          own[static_cast<std::size_t>(more * (more - 1) / 2 + less)].value;
    }
  }
}

}  // namespace

void AlignLoadings(const std::vector<ESTIMATES>& target, std::vector<ESTIMATES>& estimates) {
  ALIGNMENT alignment;
  for (std::size_t g = 0; g < estimates.size(); ++g) {
    ESTIMATES& one = estimates[g];
    if (one.factors > 0) {
      const MatrixXd own = LoadingsOf(one);
      alignment = Align(own, LoadingsOf(target[g]));
      AlignColumns(own, alignment, one);
    } else if (one.ofFactors) {
      AlignCorrelations(alignment, one);
    }
  }
}
