// The cases of a regression that is estimated by several passes, and what the estimators share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/AlignedBuffer.h"
#include "engine/stats/Blocks.h"
#include "engine/stats/Status.h"

namespace stats {

// Complete cases: the x as cells with the weights, and y beside them, as a value or as a category
// counted from 0.
struct RegressionBlock {
  CaseBlock x;
  const double* y = nullptr;
  std::int64_t yStride = 1;
  const std::uint8_t* codes = nullptr;
};

// Gives all cases to `work`, block after block, each time in the same order. Returns false when it
// was stopped.
using RegressionPass = std::function<bool(const std::function<void(const RegressionBlock&)>& work)>;

// Means and standard deviations (divisor n - 1) of x; status Constant, NotPositiveDefinite
// (collinear) with `variable`, TooFewCases, NoCases, ZeroWeights, NotFinite.
struct RegressorScale {
  EStatus status = EStatus::NoCases;
  int variable = -1;
  double n = 0;
  Eigen::VectorXd mean, sd;
  Eigen::MatrixXd correlation;
  double smallestPivot = 1;  // the smallest share of an x's variance that those before it leave
  bool stopped = false;
};
RegressorScale ScaleRegressors(const RegressionPass& pass, int x, int threads);

// Log-likelihood with its derivatives by the parameters: first those of the columns (the
// standardised x and, where asked for, a constant behind them), then the others.
struct LikelihoodSums {
  double value = 0;
  Eigen::VectorXd gradient;
  Eigen::MatrixXd hessian;
};

// What one case adds, by its linear predictor and by up to two of the other parameters.
struct CaseLikelihood {
  double value = 0;
  double slope = 0, curve = 0;  // by the predictor
  int other[2] = {-1, -1};      // which other parameters; -1 for none
  double otherSlope[2] = {0, 0};
  double otherCurve[3] = {0, 0, 0};  // first, both, second
  double mixed[2] = {0, 0};          // predictor and other
};

// Sums over all cases in pieces whose order does not depend on the threads.
class CLikelihoodPass {
 public:
  static constexpr std::int64_t kChunkCases = 256;

  struct Chunk {
    Eigen::MatrixXd x;  // standardised, a row a case
    Eigen::VectorXd predictor;
    Eigen::VectorXd slope, curve;  // by the predictor, times the weight
    Eigen::MatrixXd mixed;         // by predictor and others, a column each
    CAlignedBuffer cases;          // x case after case, padded to whole panels
    CAlignedBuffer scaled;         // x times curve, column after column
    CAlignedBuffer products;
  };

  // columns: x, and one more for a constant.
  CLikelihoodPass(const RegressorScale& scale, bool constant, int others, int threads);

  // One pass; `evaluate(block, case, predictor)` gives the case's part. An `evaluate` with a
  // function AddCases does a chunk of cases itself. False when stopped.
  template <typename Evaluate>
  bool Sum(const RegressionPass& pass, const Eigen::VectorXd& slopes, const Evaluate& evaluate,
           LikelihoodSums& sums) const {
    sums = Empty();
    return pass([&](const RegressionBlock& block) {
      const std::int64_t pieces = (block.x.cases + kPieceCases - 1) / kPieceCases;
      std::vector<LikelihoodSums> parts(static_cast<std::size_t>(pieces));
      ForPieces(pieces, [&](std::int64_t piece) {
        LikelihoodSums& part = parts[static_cast<std::size_t>(piece)];
        part = Empty();
        const std::int64_t end = std::min((piece + 1) * kPieceCases, block.x.cases);
        Chunk chunk;
        for (std::int64_t at = piece * kPieceCases; at < end; at += kChunkCases) {
          const std::int64_t cases = std::min(kChunkCases, end - at);
          Standardise(block.x, at, cases, slopes, chunk);
          if constexpr (requires { evaluate.AddCases(block, at, cases, chunk, columns_, part); }) {
            evaluate.AddCases(block, at, cases, chunk, columns_, part);
          } else {
            for (std::int64_t k = 0; k < cases; ++k) {
              const double weight = block.x.weights != nullptr ? block.x.weights[at + k] : 1.0;
              AddCase(evaluate(block, at + k, chunk.predictor(k)), weight, k, chunk, part);
            }
          }
          AddChunk(chunk, cases, part);
        }
      });
      for (const LikelihoodSums& part : parts) {
        sums.value += part.value;
        sums.gradient += part.gradient;
        sums.hessian += part.hessian;
      }
    });
  }

  int Columns() const { return columns_; }

 private:
  static constexpr std::int64_t kPieceCases = 4096;

  LikelihoodSums Empty() const;
  void ForPieces(std::int64_t pieces, const std::function<void(std::int64_t)>& work) const;
  void Standardise(const CaseBlock& block, std::int64_t first, std::int64_t cases,
                   const Eigen::VectorXd& slopes, Chunk& chunk) const;
  void AddCase(const CaseLikelihood& one, double weight, std::int64_t k, Chunk& chunk,
               LikelihoodSums& sums) const;
  void AddChunk(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const;
  void AddProducts(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const;

  Eigen::VectorXd mean_, inverseSd_;
  bool constant_;
  int columns_, others_, threads_;
};

// Newton's method on a concave log-likelihood, with halved steps.
struct NewtonResult {
  EStatus status = EStatus::NotConverged;
  bool stopped = false;
  Eigen::VectorXd parameters;
  LikelihoodSums sums;  // there
  int iterations = 0;
  // Boundary: the likelihood has (nearly) reached its limit while this parameter still runs away.
  int runaway = -1;
};

// `evaluate` fills the sums at given parameters and returns false when the pass was stopped; a
// value that is not finite stands for parameters that are not allowed. n scales the gradient.
NewtonResult MaximiseLikelihood(
    Eigen::VectorXd start, double n,
    const std::function<bool(const Eigen::VectorXd&, LikelihoodSums&)>& evaluate);

}  // namespace stats
