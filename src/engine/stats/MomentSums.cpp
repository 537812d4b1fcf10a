#include "engine/stats/MomentSums.h"

namespace stats {

MomentSums::MomentSums(int variables, EDeletion deletion)
    : pairwise(deletion == EDeletion::Pairwise) {
  mean.setZero(variables);
  products.setZero(variables, variables);
  if (pairwise) pairN = pairMean = squares = products;
}

void MomentSums::Merge(const MomentSums& other) {
  if (pairwise) {
    MergePairwise(other);
  } else {
    MergeListwise(other);
  }
  cases += other.cases;
  incomplete += other.incomplete;
  withoutWeight += other.withoutWeight;
  finite = finite && other.finite;
}

void MomentSums::MergeListwise(const MomentSums& other) {
  if (other.n == 0) return;
  const double total = n + other.n;
  const Eigen::VectorXd delta = other.mean - mean;
  products += other.products;
  const double factor = n * other.n / total;
  for (Eigen::Index i = 0; factor > 0 && i < delta.size(); ++i)
    products.row(i) += factor * delta[i] * delta.transpose();
  mean += other.n / total * delta;
  n = total;
}

void MomentSums::MergePairwise(const MomentSums& other) {
  for (Eigen::Index i = 0; i < products.rows(); ++i) {
    for (Eigen::Index j = 0; j <= i; ++j) {
      const double b = other.pairN(i, j);
      if (b == 0) continue;
      const double a = pairN(i, j);
      const double deltaI = other.pairMean(i, j) - pairMean(i, j);
      const double deltaJ = other.pairMean(j, i) - pairMean(j, i);
      const double factor = a * b / (a + b);
      products(i, j) += other.products(i, j) + factor * deltaI * deltaJ;
      products(j, i) = products(i, j);
      squares(i, j) += other.squares(i, j) + factor * deltaI * deltaI;
      pairMean(i, j) += b / (a + b) * deltaI;
      pairN(i, j) = a + b;
      if (i == j) continue;
      squares(j, i) += other.squares(j, i) + factor * deltaJ * deltaJ;
      pairMean(j, i) += b / (a + b) * deltaJ;
      pairN(j, i) = a + b;
    }
  }
}

void MomentSums::Move(const Eigen::VectorXd& distance) {
  mean += distance;
  if (pairwise) pairMean.colwise() += distance;
}

CSegmentMoments::CSegmentMoments(const COrigins& origins, int variables, EDeletion deletion)
    : origins_(origins),
      variables_(variables),
      panels_(PaddedLanes(variables) / kLanes),
      stride_(PaddedLanes(variables)),
      result_(variables, deletion),
      center_(stride_),
      products_(static_cast<std::int64_t>(stride_) * stride_),
      weightedCells_(panels_) {
  if (!result_.pairwise) return;
  pairN_ = CAlignedBuffer(products_.Count());
  pairSums_ = CAlignedBuffer(products_.Count());
  pairSquares_ = CAlignedBuffer(products_.Count());
  weightedSquares_ = CPanels(panels_);
  weights_ = CPanels(panels_);
  there_ = CPanels(panels_);
}

const MomentSums& CSegmentMoments::Compute(CSegment& segment) {
  result_.cases = segment.Cases();
  result_.incomplete = segment.Incomplete();
  result_.withoutWeight = segment.WithoutWeight();
  result_.finite = segment.Finite();
  n_ = 0;
  for (std::int64_t k = 0; k < segment.Cases(); ++k) n_ += segment.Weights()[k];
  Center(segment);
  if (segment.HasMissing()) {
    ComputeWithMissing(segment);
  } else {
    ComputeComplete(segment);
  }
  return result_;
}

void CSegmentMoments::Center(CSegment& segment) {
  PanelSums sums;
  for (int panel = 0; panel < panels_; ++panel) {
    ActiveKernels().sum(segment.Panel(panel), segment.Weights(), segment.Cases(),
                        origins_.Panel(panel), sums);
    const double* origin = origins_.Panel(panel);
    double* center = center_.Data() + panel * kLanes;
    for (int l = 0; l < kLanes; ++l)
      center[l] = sums.weight[l] > 0 ? sums.sum[l] / sums.weight[l] : 0.0;
    double* cells = segment.Panel(panel);
    for (std::int64_t k = 0; k < segment.Cases(); ++k, cells += kLanes) {
      for (int l = 0; l < kLanes; ++l) cells[l] = (cells[l] - origin[l]) - center[l];
    }
  }
}

void CSegmentMoments::MultiplyPanels(int rows, const double* left, int columns, const double* right,
                                     std::int64_t cases, CAlignedBuffer& sums) const {
  double* to = sums.Data() + static_cast<std::int64_t>(rows) * kLanes * stride_ + columns * kLanes;
  ActiveKernels().multiply(left, right, cases, to, stride_);
}

void CSegmentMoments::ComputeComplete(CSegment& segment) {
  products_.Clear();
  for (int rows = 0; rows < panels_; ++rows) {
    const double* left = segment.Panel(rows);
    if (segment.Weighted()) {
      double* weighted = weightedCells_.Panel(rows);
      for (std::int64_t k = 0; k < segment.Cases(); ++k) {
        for (int l = 0; l < kLanes; ++l)
          weighted[k * kLanes + l] = segment.Weights()[k] * left[k * kLanes + l];
      }
      left = weighted;
    }
    for (int columns = rows; columns < panels_; ++columns)
      MultiplyPanels(rows, left, columns, segment.Panel(columns), segment.Cases(), products_);
  }
  SetListwise(segment);
}

// The complete segment's sums; under pairwise deletion every pair has them.
void CSegmentMoments::SetListwise(const CSegment& segment) {
  result_.n = n_;
  for (int i = 0; i < variables_; ++i) {
    result_.mean[i] = center_.Data()[i];
    for (int j = i; j < variables_; ++j)
      result_.products(i, j) = result_.products(j, i) = At(products_, i, j);
  }
  if (!result_.pairwise) return;
  result_.pairN.setConstant(segment.Cases() > 0 ? n_ : 0.0);
  result_.pairMean.colwise() = result_.mean;
  result_.squares.colwise() = Eigen::VectorXd(result_.products.diagonal());
}

// Missing cells become 0, and a panel of 0 and 1 says which are there.
void CSegmentMoments::SplitPanel(CSegment& segment, int panel) {
  double* cells = segment.Panel(panel);
  double* weighted = weightedCells_.Panel(panel);
  double* squares = weightedSquares_.Panel(panel);
  double* weights = weights_.Panel(panel);
  double* there = there_.Panel(panel);
  for (std::int64_t k = 0; k < segment.Cases(); ++k) {
    const double weight = segment.Weights()[k];
    for (int l = 0; l < kLanes; ++l) {
      const std::int64_t at = k * kLanes + l;
      const bool is = cells[at] == cells[at];
      there[at] = is ? 1.0 : 0.0;
      weights[at] = is ? weight : 0.0;
      cells[at] = is ? cells[at] : 0.0;
      weighted[at] = weight * cells[at];
      squares[at] = weighted[at] * cells[at];
    }
  }
}

void CSegmentMoments::ComputeWithMissing(CSegment& segment) {
  const std::int64_t cases = segment.Cases();
  for (int panel = 0; panel < panels_; ++panel) SplitPanel(segment, panel);
  for (CAlignedBuffer* sums : {&products_, &pairN_, &pairSums_, &pairSquares_}) sums->Clear();
  for (int i = 0; i < panels_; ++i) {
    for (int j = 0; j < panels_; ++j) {
      MultiplyPanels(i, weightedCells_.Panel(i), j, there_.Panel(j), cases, pairSums_);
      MultiplyPanels(i, weightedSquares_.Panel(i), j, there_.Panel(j), cases, pairSquares_);
      if (j < i) continue;
      MultiplyPanels(i, weights_.Panel(i), j, there_.Panel(j), cases, pairN_);
      MultiplyPanels(i, weightedCells_.Panel(i), j, segment.Panel(j), cases, products_);
    }
  }
  SetPairwise();
}

void CSegmentMoments::SetPairwise() {
  for (int i = 0; i < variables_; ++i) {
    for (int j = i; j < variables_; ++j) {
      const double n = At(pairN_, i, j);
      const double share = n > 0 ? 1 / n : 0.0;
      const double sumI = At(pairSums_, i, j), sumJ = At(pairSums_, j, i);
      result_.pairN(i, j) = result_.pairN(j, i) = n;
      result_.pairMean(i, j) = center_.Data()[i] + sumI * share;
      result_.pairMean(j, i) = center_.Data()[j] + sumJ * share;
      result_.products(i, j) = result_.products(j, i) = At(products_, i, j) - sumI * sumJ * share;
      result_.squares(i, j) = At(pairSquares_, i, j) - sumI * sumI * share;
      result_.squares(j, i) = At(pairSquares_, j, i) - sumJ * sumJ * share;
    }
  }
}

}  // namespace stats
