// The cases of a regression that is estimated by several passes, and what the estimators share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
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

// What is left to do with a piece of the cases in its turn: one after the other, in their order.
using RegressionTurn = std::function<void()>;
// Called for several pieces at the same time, on any thread.
using RegressionWork = std::function<RegressionTurn(const RegressionBlock&)>;
// Gives all cases to the work, each time in the same pieces. Returns false when it was stopped.
using RegressionPass = std::function<bool(const RegressionWork& work)>;

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

// What standardises x, and how many other parameters there are.
struct RegressorScale;

// Sums over all cases, piece by piece.
class CLikelihoodPass {
 public:
  static constexpr std::int64_t kChunkCases = 256;

  // Cases on their way through the sums: kChunkCases numbers for each column.
  class Chunk {
   public:
    Chunk(int columns, int others);
    double* Predictor() { return predictor_.Data(); }
    // Derivatives, times the weight.
    double* Slope() { return direct_.Data(); }  // by the predictor, twice: Curve
    double* Curve() { return curve_.Data(); }
    double* Mixed(int other) { return direct_.Data() + (1 + other) * kChunkCases; }

   private:
    friend class CLikelihoodPass;
    CAlignedBuffer cases_;  // standardised x, case after case, padded to whole panels
    CAlignedBuffer predictor_, curve_;
    CAlignedBuffer direct_;    // the slope, then what is mixed with the other parameters
    CAlignedBuffer scaled_;    // x times curve, column after column
    CAlignedBuffer products_;  // of x with the former, of x with the latter
  };

  // columns: x, and one more for a constant.
  CLikelihoodPass(const RegressorScale& scale, bool constant, int others);

  // One pass; `evaluate(block, case, predictor)` gives the case's part. An `evaluate` with a
  // function AddCases does a chunk of cases itself. False when stopped.
  template <typename Evaluate>
  bool Sum(const RegressionPass& pass, const Eigen::VectorXd& slopes, const Evaluate& evaluate,
           LikelihoodSums& sums) const {
    sums = Empty();
    return pass([&](const RegressionBlock& block) {
      auto part = std::make_shared<LikelihoodSums>(Empty());
      Chunk chunk(columns_, others_);
      for (std::int64_t at = 0; at < block.x.cases; at += kChunkCases) {
        const std::int64_t cases = std::min(kChunkCases, block.x.cases - at);
        Standardise(block.x, at, cases, slopes, chunk);
        if constexpr (requires { evaluate.AddCases(block, at, cases, chunk, columns_, *part); }) {
          evaluate.AddCases(block, at, cases, chunk, columns_, *part);
        } else {
          for (std::int64_t k = 0; k < cases; ++k) {
            const double weight = block.x.weights != nullptr ? block.x.weights[at + k] : 1.0;
            AddCase(evaluate(block, at + k, chunk.Predictor()[k]), weight, k, chunk, *part);
          }
        }
        AddChunk(chunk, cases, *part);
      }
      return [&sums, part] {
        sums.value += part->value;
        sums.gradient += part->gradient;
        sums.hessian += part->hessian;
      };
    });
  }

  int Columns() const { return columns_; }

 private:
  LikelihoodSums Empty() const;
  void Standardise(const CaseBlock& block, std::int64_t first, std::int64_t cases,
                   const Eigen::VectorXd& slopes, Chunk& chunk) const;
  void AddCase(const CaseLikelihood& one, double weight, std::int64_t k, Chunk& chunk,
               LikelihoodSums& sums) const;
  void AddChunk(Chunk& chunk, std::int64_t cases, LikelihoodSums& sums) const;
  void Scale(Chunk& chunk, std::int64_t cases) const;

  Eigen::VectorXd mean_, inverseSd_;
  bool constant_;
  int columns_, others_;
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
