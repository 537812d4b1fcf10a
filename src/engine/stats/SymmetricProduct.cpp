#include "engine/stats/SymmetricProduct.h"

#include <algorithm>

#include "engine/stats/Parallel.h"

namespace stats {

namespace {

// Two column panels and one row panel of so many cases share the innermost cache.
constexpr std::int64_t kDepth = 128;
constexpr int kColumnPanels = 2;

}  // namespace

CSymmetricProduct::CSymmetricProduct(int size, int threads)
    : size_(size),
      threads_(threads),
      panels_(PaddedLanes(size) / kLanes),
      chunk_(panels_ * kChunkCases * kLanes),
      sums_(static_cast<std::int64_t>(panels_) * kLanes * panels_ * kLanes) {}

void CSymmetricProduct::Add(std::int64_t cases,
                            const std::function<void(int panel, double* to)>& fill) {
  if (cases == 0) return;
  constexpr int kAtOnce = 8;  // panels, so that handing out work costs little
  ParallelFor(threads_, (panels_ + kAtOnce - 1) / kAtOnce, [&](std::int64_t piece) {
    const int first = static_cast<int>(piece) * kAtOnce;
    for (int p = first; p < std::min(first + kAtOnce, panels_); ++p) fill(p, Panel(p));
  });
  const int pieces = (panels_ + kColumnPanels - 1) / kColumnPanels;
  // The last columns have the most rows above them and come first.
  ParallelFor(threads_, pieces, [&](std::int64_t piece) {
    MultiplyColumns((pieces - 1 - static_cast<int>(piece)) * kColumnPanels, cases);
  });
}

void CSymmetricProduct::MultiplyColumns(int firstPanel, std::int64_t cases) {
  const Kernels& kernels = ActiveKernels();
  const std::int64_t stride = static_cast<std::int64_t>(panels_) * kLanes;
  const int endPanel = std::min(firstPanel + kColumnPanels, panels_);
  for (std::int64_t at = 0; at < cases; at += kDepth) {
    const std::int64_t depth = std::min(kDepth, cases - at);
    for (int rows = 0; rows < endPanel; ++rows) {
      const double* left = Panel(rows) + at * kLanes;
      for (int columns = std::max(rows, firstPanel); columns < endPanel; ++columns) {
        const double* right = Panel(columns) + at * kLanes;
        double* to = sums_.Data() + rows * kLanes * stride + columns * kLanes;
        kernels.multiply(left, right, depth, to, stride);
      }
    }
  }
}

Eigen::MatrixXd CSymmetricProduct::Matrix() const {
  Eigen::MatrixXd matrix(size_, size_);
  const std::int64_t stride = static_cast<std::int64_t>(panels_) * kLanes;
  for (int i = 0; i < size_; ++i) {
    for (int j = i; j < size_; ++j) matrix(i, j) = matrix(j, i) = sums_.Data()[i * stride + j];
  }
  return matrix;
}

std::int64_t CSymmetricProduct::MemoryFor(int size) {
  const std::int64_t padded = PaddedLanes(size);
  return 8 * (padded * kChunkCases + padded * padded + static_cast<std::int64_t>(size) * size);
}

}  // namespace stats
