// Memory for the kernels: doubles, aligned, set to zero.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "engine/stats/Kernels.h"

namespace stats {

class CAlignedBuffer {
 public:
  CAlignedBuffer() = default;
  explicit CAlignedBuffer(std::int64_t count)
      : data_(static_cast<double*>(::operator new (static_cast<std::size_t>(count) * sizeof(double),
                                                   std::align_val_t{kAlignment}))),
        count_(count) {
    Clear();
  }

  double* Data() { return data_.get(); }
  const double* Data() const { return data_.get(); }
  std::int64_t Count() const { return count_; }
  void Clear() { std::fill_n(data_.get(), count_, 0.0); }

  // Adds another buffer of the same length.
  void Add(const CAlignedBuffer& other) {
    double* to = data_.get();
    const double* from = other.data_.get();
    for (std::int64_t i = 0; i < count_; ++i) to[i] += from[i];
  }

 private:
  struct Free {
    void operator()(double* data) const { ::operator delete (data, std::align_val_t{kAlignment}); }
  };
  std::unique_ptr<double, Free> data_;
  std::int64_t count_ = 0;
};

// `count` rounded up to whole panels.
inline int PaddedLanes(int count) {
  return static_cast<int>((count + kLanes - 1) / kLanes * kLanes);
}

}  // namespace stats
