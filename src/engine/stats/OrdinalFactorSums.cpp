#include "engine/stats/OrdinalFactorSums.h"

#include <algorithm>
#include <atomic>
#include <cmath>

#include "engine/stats/Parallel.h"

namespace stats {

using Eigen::ArrayXd;
using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

namespace {

constexpr std::int64_t kMostPieces = 64;
constexpr std::int64_t kSmallestPiece = 16;                   // patterns
constexpr std::int64_t kPieceMemory = std::int64_t{1} << 28;  // bytes for all pieces together

// The places of the parameters that an answer touches: its two thresholds, -1 for none, and the
// first slope.
struct Places {
  Index upper = -1, lower = -1, slopes = 0;
};

Places PlacesOf(const OrdinalFactorParameters& parameters, int variable, int code) {
  const Index thresholds = parameters.threshold[static_cast<std::size_t>(variable)].size();
  return {code < thresholds ? code : -1, code - 1, thresholds};
}

// Adds the sums of one case after the other.
class CCollector {
 public:
  CCollector(const OrdinalFactorParameters& parameters, Index points, bool information,
             OrdinalFactorSums& sums)
      : parameters_(parameters), m_(parameters.Factors()), information_(information), sums_(sums) {
    const Index q = points;
    byCell_.resize(q, kStatistics);
    monomials_.resize(q, 1 + m_ + m_ * (m_ + 1) / 2);
    if (information_) scores_.resize(q, parameters.Variables() * (2 + m_));
    for (int j = 0; j < parameters.Variables(); ++j) offsets_.push_back(parameters.Offset(j));
    sums_.gradient.setZero(parameters.Count());
    for (int j = 0; j < parameters.Variables(); ++j)
      sums_.complete.push_back(MatrixXd::Zero(parameters.CountOf(j), parameters.CountOf(j)));
    if (information_) sums_.information.setZero(parameters.Count(), parameters.Count());
  }

  void Add(const CFactorPosterior& posterior, const std::uint8_t* codes, double frequency) {
    sums_.logLikelihood += frequency * posterior.LogLikelihood();
    SetMonomials(posterior.Points());
    weights_ = frequency * posterior.Weights();
    if (information_) {
      places_.clear();
      root_ = weights_.sqrt();
    }
    for (std::size_t place = 0; place < posterior.Answered().size(); ++place) {
      const int j = posterior.Answered()[place];
      AddVariable(j, PlacesOf(parameters_, j, codes[j]), posterior.Cells(place),
                  posterior.Points());
    }
    if (information_) AddInformation(frequency);
  }

 private:
  // Columns: weight times F'(u), F'(l), F''(u), F''(l), F'(u)^2, F'(l)^2, F'(u) F'(l), all over P.
  static constexpr Index kStatistics = 7;

  void SetMonomials(const MatrixXd& points) {
    monomials_.col(0).setOnes();
    monomials_.middleCols(1, m_) = points;
    Index at = 1 + m_;
    for (Index k = 0; k < m_; ++k) {
      for (Index l = 0; l <= k; ++l)
        monomials_.col(at++) = points.col(k).cwiseProduct(points.col(l));
    }
  }

  void AddVariable(int j, const Places& at, const ResponseCells& cells, const MatrixXd& points) {
    const ArrayXd& u = cells.upper1;
    const ArrayXd& l = cells.lower1;
    auto column = [this](Index k) { return byCell_.col(k).array(); };
    column(0) = weights_ * u;
    column(1) = weights_ * l;
    column(2) = weights_ * cells.upper2;
    column(3) = weights_ * cells.lower2;
    column(4) = column(0) * u;
    column(5) = column(1) * l;
    column(6) = column(0) * l;
    moments_.noalias() = byCell_.transpose() * monomials_;
    AddGradient(j, at);
    AddComplete(at, sums_.complete[static_cast<std::size_t>(j)]);
    if (!information_) return;
    const Index offset = offsets_[static_cast<std::size_t>(j)];
    const auto add = [&](Index place, const auto& score) {
      if (place < 0) return;
      scores_.col(static_cast<Index>(places_.size())).array() = root_ * score;
      places_.push_back(offset + place);
    };
    add(at.lower, -l);  // in ascending order
    add(at.upper, u);
    for (Index k = 0; k < m_; ++k) add(at.slopes + k, (l - u) * points.col(k).array());
  }

  void AddGradient(int j, const Places& at) {
    auto gradient =
        sums_.gradient.segment(offsets_[static_cast<std::size_t>(j)], parameters_.CountOf(j));
    if (at.upper >= 0) gradient(at.upper) += moments_(0, 0);
    if (at.lower >= 0) gradient(at.lower) -= moments_(1, 0);
    for (Index k = 0; k < m_; ++k)
      gradient(at.slopes + k) -= moments_(0, 1 + k) - moments_(1, 1 + k);
  }

  // With g = F'(u) - F'(l): by u twice F''(u) - F'(u)^2, by l twice -F''(l) - F'(l)^2, by both
  // F'(u) F'(l), by u and x -F''(u) + F'(u) g, by l and x F''(l) - F'(l) g, by x twice F''(u) -
  // F''(l) - g^2, all over P.
  void AddComplete(const Places& at, MatrixXd& sum) {
    const auto& s = moments_;
    if (at.upper >= 0) sum(at.upper, at.upper) += s(2, 0) - s(4, 0);
    if (at.lower >= 0) sum(at.lower, at.lower) -= s(3, 0) + s(5, 0);
    if (at.upper >= 0 && at.lower >= 0) {
      sum(at.upper, at.lower) += s(6, 0);
      sum(at.lower, at.upper) += s(6, 0);
    }
    Index square = 1 + m_;
    for (Index k = 0; k < m_; ++k) {
      const Index slope = at.slopes + k;
      if (at.upper >= 0) {
        const double value = s(4, 1 + k) - s(6, 1 + k) - s(2, 1 + k);
        sum(at.upper, slope) += value;
        sum(slope, at.upper) += value;
      }
      if (at.lower >= 0) {
        const double value = s(3, 1 + k) - s(6, 1 + k) + s(5, 1 + k);
        sum(at.lower, slope) += value;
        sum(slope, at.lower) += value;
      }
      for (Index l = 0; l <= k; ++l, ++square) {
        const double value =
            s(2, square) - s(3, square) - s(4, square) - s(5, square) + 2 * s(6, square);
        sum(slope, at.slopes + l) += value;
        if (l < k) sum(at.slopes + l, slope) += value;
      }
    }
  }

  // The covariances of the scores given the answers of the case; the complete part is subtracted
  // at the end.
  void AddInformation(double frequency) {
    const auto used = static_cast<Index>(places_.size());
    const auto scores = scores_.leftCols(used);
    products_.setZero(used, used);
    products_.selfadjointView<Eigen::Lower>().rankUpdate(scores.transpose());
    means_.noalias() = scores.transpose() * root_.matrix();
    products_.selfadjointView<Eigen::Lower>().rankUpdate(means_, -1 / frequency);
    for (Index b = 0; b < used; ++b) {
      double* const column = &sums_.information(0, places_[static_cast<std::size_t>(b)]);
      for (Index a = b; a < used; ++a)
        column[places_[static_cast<std::size_t>(a)]] -= products_(a, b);
    }
  }

  const OrdinalFactorParameters& parameters_;
  Index m_;
  bool information_;
  OrdinalFactorSums& sums_;
  std::vector<Index> offsets_;
  ArrayXd weights_, root_;
  MatrixXd byCell_, monomials_, moments_;
  MatrixXd scores_, products_;
  VectorXd means_;
  std::vector<Index> places_;  // of the columns of `scores_` among the parameters
};

void Merge(const OrdinalFactorSums& part, OrdinalFactorSums& sums) {
  if (sums.gradient.size() == 0) {
    sums = part;
    return;
  }
  sums.valid = sums.valid && part.valid;
  sums.logLikelihood += part.logLikelihood;
  sums.gradient += part.gradient;
  for (std::size_t j = 0; j < sums.complete.size(); ++j) sums.complete[j] += part.complete[j];
  if (part.information.size() > 0) sums.information += part.information;
}

// From the lower triangle of the collected part.
void FinishInformation(const OrdinalFactorParameters& parameters, OrdinalFactorSums& sums) {
  MatrixXd whole = sums.information.selfadjointView<Eigen::Lower>();
  for (int j = 0; j < parameters.Variables(); ++j) {
    whole.block(parameters.Offset(j), parameters.Offset(j), parameters.CountOf(j),
                parameters.CountOf(j)) -= sums.complete[static_cast<std::size_t>(j)];
  }
  sums.information = std::move(whole);
}

}  // namespace

COrdinalFactorPass::COrdinalFactorPass(const COrdinalPatterns& patterns, ELink link, int factors,
                                       int nodes, int threads)
    : patterns_(patterns),
      response_(link),
      grid_(ProductGrid(nodes, factors)),
      threads_(threads),
      modes_(MatrixXd::Zero(factors, patterns.Patterns())) {}

bool COrdinalFactorPass::ForPieces(
    std::int64_t pieces, const GoOn& goOn,
    const std::function<void(std::int64_t, std::int64_t, std::int64_t)>& work) const {
  const std::int64_t patterns = patterns_.Patterns();
  std::atomic<bool> stopped{false};
  ParallelFor(threads_, pieces, [&](std::int64_t piece) {
    if (stopped || (goOn && !goOn())) {
      stopped = true;
      return;
    }
    work(piece, patterns * piece / pieces, patterns * (piece + 1) / pieces);
  });
  return !stopped;
}

bool COrdinalFactorPass::Collect(const OrdinalFactorParameters& parameters, bool information,
                                 const GoOn& goOn, OrdinalFactorSums& sums) {
  std::int64_t pieces =
      std::clamp<std::int64_t>(patterns_.Patterns() / kSmallestPiece, 1, kMostPieces);
  if (information) {
    const std::int64_t bytes = parameters.Count() * parameters.Count() * 8;
    pieces = std::clamp<std::int64_t>(kPieceMemory / bytes, 1, pieces);
  }
  std::vector<OrdinalFactorSums> parts(static_cast<std::size_t>(pieces));
  const bool done =
      ForPieces(pieces, goOn, [&](std::int64_t piece, std::int64_t first, std::int64_t end) {
        OrdinalFactorSums& part = parts[static_cast<std::size_t>(piece)];
        CCollector collector(parameters, grid_.points.rows(), information, part);
        CFactorPosterior posterior(parameters, response_, grid_);
        for (std::int64_t i = first; i < end && part.valid; ++i) {
          part.valid = posterior.Compute(patterns_.Codes(i), modes_.col(i).data());
          if (part.valid) collector.Add(posterior, patterns_.Codes(i), patterns_.Frequency(i));
        }
      });
  if (!done) return false;
  sums = OrdinalFactorSums();
  for (const OrdinalFactorSums& part : parts) Merge(part, sums);
  if (information) FinishInformation(parameters, sums);
  return true;
}

bool COrdinalFactorPass::Scores(const OrdinalFactorParameters& parameters, const GoOn& goOn,
                                OrdinalFactorScores& scores) {
  scores.means.resize(patterns_.Patterns(), parameters.Factors());
  scores.variances.resize(patterns_.Patterns(), parameters.Factors());
  scores.logLikelihoods.resize(patterns_.Patterns());
  ForgetModes();
  const std::int64_t pieces =
      std::clamp<std::int64_t>(patterns_.Patterns() / kSmallestPiece, 1, kMostPieces);
  return ForPieces(pieces, goOn, [&](std::int64_t, std::int64_t first, std::int64_t end) {
    CFactorPosterior posterior(parameters, response_, grid_);
    for (std::int64_t i = first; i < end; ++i) {
      posterior.Compute(patterns_.Codes(i), modes_.col(i).data());
      scores.means.row(i) = posterior.Mean().transpose();
      scores.variances.row(i) = posterior.Variance().transpose();
      scores.logLikelihoods(i) = posterior.LogLikelihood();
    }
  });
}

}  // namespace stats
