// Matrices of changing shapes in memory that stays.
#pragma once

#include <Eigen/Core>

namespace stats {

// Aligned as a matrix of its own is, so that the same instructions work on it.
using MatrixView = Eigen::Map<Eigen::MatrixXd, Eigen::AlignedMax>;
using VectorView = Eigen::Map<Eigen::VectorXd, Eigen::AlignedMax>;

// Room for one matrix or vector at a time. Memory is taken for one that is larger than all before;
// what a view holds is lost with the next one.
class CMatrixRoom {
 public:
  MatrixView Matrix(Eigen::Index rows, Eigen::Index columns) {
    return {Reserved(rows * columns), rows, columns};
  }
  VectorView Vector(Eigen::Index size) { return {Reserved(size), size}; }

 private:
  double* Reserved(Eigen::Index size) {
    if (size > numbers_.size()) numbers_.resize(size);
    return numbers_.data();
  }

  Eigen::VectorXd numbers_;
};

}  // namespace stats
