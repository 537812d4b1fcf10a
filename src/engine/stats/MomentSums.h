// Sums of products about the means, of a segment or of all cases so far; merging keeps them
// centred.
#pragma once

#include <cstdint>

#include <Eigen/Core>

#include "engine/stats/Segments.h"

namespace stats {

using RowMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

// Listwise: n, mean and products. Pairwise: pairN, pairMean, products and squares, (i, j) meaning i
// over the cases that have i and j. Means are counted from an origin for each variable (COrigins).
struct MomentSums {
  MomentSums(int variables, EDeletion deletion);
  void Merge(const MomentSums& other);         // counted from the same origins
  void Move(const Eigen::VectorXd& distance);  // all means, to other origins

  bool pairwise;
  bool finite = true;
  std::int64_t cases = 0, incomplete = 0, withoutWeight = 0;
  double n = 0;
  Eigen::VectorXd mean;
  RowMatrix products;
  RowMatrix pairN, pairMean, squares;

 private:
  void MergeListwise(const MomentSums& other);
  void MergePairwise(const MomentSums& other);
};

// Computes the sums of one segment after the other; holds the buffers that this takes.
class CSegmentMoments {
 public:
  // The origins are kept by reference.
  CSegmentMoments(const COrigins& origins, int variables, EDeletion deletion);

  // Centres the segment's cells in place. The result stays until the next call.
  const MomentSums& Compute(CSegment& segment);

 private:
  // Panels of a whole segment.
  class CPanels {
   public:
    explicit CPanels(int panels = 0) : cells_(panels * kSegmentCases * kLanes) {}
    double* Panel(int panel) { return cells_.Data() + panel * kSegmentCases * kLanes; }

   private:
    CAlignedBuffer cells_;
  };

  void Center(CSegment& segment);
  void MultiplyPanels(int rows, const double* left, int columns, const double* right,
                      std::int64_t cases, CAlignedBuffer& sums) const;
  void ComputeComplete(CSegment& segment);
  void ComputeWithMissing(CSegment& segment);
  void SplitPanel(CSegment& segment, int panel);
  void SetListwise(const CSegment& segment);
  void SetPairwise();
  double At(const CAlignedBuffer& sums, int i, int j) const { return sums.Data()[i * stride_ + j]; }

  const COrigins& origins_;
  int variables_, panels_, stride_;
  MomentSums result_;
  CAlignedBuffer center_;  // means of the segment
  CAlignedBuffer products_, pairN_, pairSums_, pairSquares_;
  CPanels weightedCells_, weightedSquares_, weights_, there_;
  double n_ = 0;  // sum of weights of the segment
};

}  // namespace stats
