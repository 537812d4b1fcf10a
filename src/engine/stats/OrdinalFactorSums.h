// What all cases together say about the parameters of an ordinal factor model: likelihood,
// gradient, second derivatives.
#pragma once

#include <functional>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/OrdinalFactorModel.h"
#include "engine/stats/OrdinalPatterns.h"

namespace stats {

// Sums over cases. `complete` are the expected second derivatives of the log-likelihood as if the
// factors were observed, by variable; `information` minus the second derivatives of the
// log-likelihood itself (T. A. Louis, Journal of the Royal Statistical Society B 44, 1982,
// 226-233), empty when it was not asked for.
struct OrdinalFactorSums {
  bool valid = true;
  double logLikelihood = 0;
  Eigen::VectorXd gradient;
  std::vector<Eigen::MatrixXd> complete;
  Eigen::MatrixXd information;
};

// The factors given the answers, a row a pattern (expected a posteriori), and the logarithm of the
// pattern's probability.
struct OrdinalFactorScores {
  Eigen::MatrixXd means, variances;
  Eigen::VectorXd logLikelihoods;
};

// Asked between pieces of work, from several threads; false stops.
using GoOn = std::function<bool()>;

// Goes through the patterns in pieces whose borders do not depend on the number of threads. The
// modes of the posteriors are kept from call to call, where the next ones begin.
class COrdinalFactorPass {
 public:
  // All must outlive this. `nodes` in each dimension.
  COrdinalFactorPass(const COrdinalPatterns& patterns, ELink link, int factors, int nodes,
                     int threads);

  // False when it was stopped.
  bool Collect(const OrdinalFactorParameters& parameters, bool information, const GoOn& goOn,
               OrdinalFactorSums& sums);
  bool Scores(const OrdinalFactorParameters& parameters, const GoOn& goOn,
              OrdinalFactorScores& scores);

  void ForgetModes() { modes_.setZero(); }
  const CResponseFunction& Response() const { return response_; }

 private:
  // Calls work(piece, first pattern, end) for all pieces.
  bool ForPieces(std::int64_t pieces, const GoOn& goOn,
                 const std::function<void(std::int64_t, std::int64_t, std::int64_t)>& work) const;

  const COrdinalPatterns& patterns_;
  CResponseFunction response_;
  HermiteGrid grid_;
  int threads_;
  Eigen::MatrixXd modes_;  // factors by patterns
};

}  // namespace stats
