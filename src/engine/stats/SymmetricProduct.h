// Sums of products of all pairs of many quantities over the cases, for matrices too large for one
// thread or one cache.
#pragma once

#include <cstdint>
#include <functional>

#include <Eigen/Core>

#include "engine/stats/AlignedBuffer.h"

namespace stats {

class CSymmetricProduct {
 public:
  static constexpr std::int64_t kChunkCases = 1024;

  CSymmetricProduct(int size, int threads);

  int Panels() const { return panels_; }

  // Adds up to kChunkCases cases. fill(panel, to) writes the quantities kLanes * panel and
  // following of all `cases` cases to to[case * kLanes + lane], 0 in the lanes beyond `size`; it is
  // called once a panel, on any thread. Sums go over the cases in order: the result does not depend
  // on the threads.
  void Add(std::int64_t cases, const std::function<void(int panel, double* to)>& fill);

  Eigen::MatrixXd Matrix() const;  // size by size, both triangles

  static std::int64_t MemoryFor(int size);  // bytes of an object, and of Matrix()

 private:
  double* Panel(int panel) { return chunk_.Data() + panel * kChunkCases * kLanes; }
  void MultiplyColumns(int firstPanel, std::int64_t cases);

  int size_, threads_, panels_;
  CAlignedBuffer chunk_;
  CAlignedBuffer sums_;  // rows of panels_ * kLanes; the blocks on and above the diagonal
};

}  // namespace stats
