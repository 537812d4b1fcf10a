// The two draws that data augmentation alternates.
#pragma once

#include "engine/stats/AugmentationSample.h"
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
// `rescaled` gets, for each variable with one threshold, the standard deviation that its
// underlying variable was divided by about it; 1 for the others. False when the sums are not
// positive definite.
bool DrawModel(const CAugmentationSample& sample, const AugmentationSums& sums,
               CRandomStream& random, AugmentationModel& model, Eigen::VectorXd& rescaled);

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
  void Condition(const AugmentationModel& model, const CAugmentationSample::Pattern& pattern);
  void DrawNormal(const CAugmentationSample::Segment& segment, CRandomStream& random,
                  double* imputed);
  void DrawUnderlying(const AugmentationModel& model, const CAugmentationSample::Segment& segment,
                      CRandomStream& random, double* state, double* imputed);
  void AddStates(const double* state);

  const CAugmentationSample& sample_;
  const CAugmentationSample::Block block_;
  AugmentationSums sums_;
  // Of the segment's pattern: missing = constant + slopes observed + noise * (normal numbers).
  Eigen::VectorXd constant_;
  Eigen::MatrixXd slopes_, noise_;
  // Working space: observed, missing values and random numbers of a segment, a column a case.
  Eigen::MatrixXd observed_, missing_, random_;
  Eigen::MatrixXd cross_, own_;  // of the pattern
  Eigen::VectorXd total_, deviation_, given_, drawn_;
};

}  // namespace stats
