// The two draws that data augmentation alternates.
#pragma once

#include <Eigen/Cholesky>

#include "engine/stats/AugmentationSample.h"
#include "engine/stats/MatrixRoom.h"
#include "engine/stats/RandomStream.h"

namespace stats {

// Means and covariances as they are drawn: the matrix, its inverse, and the sums that they come
// from.
struct AugmentationModel {
  Eigen::VectorXd mean;
  Eigen::MatrixXd covariance;
  Eigen::MatrixXd inverse;
};

struct AugmentationSums {
  Eigen::VectorXd sum;
  Eigen::MatrixXd products;  // the lower triangle counts
};

// Draws the model from its distribution given a completed sample; n above the number of variables.
// Keeps its working space from one draw to the next.
class CModelDraw {
 public:
  explicit CModelDraw(const CAugmentationSample& sample) : sample_(sample) {}

  // `rescaled` gets, for each variable with one threshold, the standard deviation that its
  // underlying variable was divided by about it; 1 for the others. False when the sums are not
  // positive definite.
  bool Draw(const AugmentationSums& sums, CRandomStream& random, AugmentationModel& model,
            Eigen::VectorXd& rescaled);

 private:
  void DrawWishart(double df, CRandomStream& random);
  void Rescale(AugmentationModel& model, Eigen::VectorXd& rescaled);

  const CAugmentationSample& sample_;
  Eigen::VectorXd average_, normal_, deviation_;
  Eigen::MatrixXd squares_, root_, wishart_, a_, b_;
  Eigen::LLT<Eigen::MatrixXd> factor_;
};

// Draws the missing values of the cases of a block, and the underlying variables of ordinal ones,
// and adds up what the model needs of the cases beyond the sample's fixed sums.
class CAugmentationBlock {
 public:
  CAugmentationBlock(const CAugmentationSample& sample, std::size_t block);

  // `state`: all values of all held cases, case after case in the order of the patterns; needed and
  // kept up to date with ordinal variables, else null. `imputed`: null, or where the missing values
  // go. `rescaled` as DrawModel gave it.
  void Draw(const AugmentationModel& model, const Eigen::VectorXd& rescaled, CRandomStream& random,
            double* state, double* imputed);

  const AugmentationSums& Sums() const { return sums_; }

 private:
  // Of a pattern: missing = constant + slopes observed + noise * (normal numbers).
  struct Conditional {
    MatrixView slopes, noise;
    VectorView constant;
  };
  Conditional Condition(const AugmentationModel& model,
                        const CAugmentationSample::Pattern& pattern);
  void DrawNormal(const Conditional& given, const CAugmentationSample::Segment& segment,
                  CRandomStream& random, double* imputed);
  void AddDrawn(const CAugmentationSample::Segment& segment, const MatrixView& observed,
                const MatrixView& missing);
  void DrawUnderlying(const AugmentationModel& model, const Conditional& given,
                      const CAugmentationSample::Segment& segment, CRandomStream& random,
                      double* state, double* imputed);
  void AddStates(const double* state);

  const CAugmentationSample& sample_;
  const CAugmentationSample::Block block_;
  AugmentationSums sums_;
  // What a pattern takes: nothing is allocated once the largest one has been there.
  CMatrixRoom slopes_, noise_, constant_, inverse_, expected_;
  // Observed, missing values and random numbers of a segment, a column a case.
  CMatrixRoom observed_, missing_, random_, noised_;
  CMatrixRoom cross_, own_, total_;
  Eigen::VectorXd deviation_;
  Eigen::MatrixXd weighted_;
};

}  // namespace stats
