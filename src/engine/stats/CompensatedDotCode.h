// The source of the compensated scalar product, included twice as KernelCode.h is. No contraction
// of products and sums may take place here: the rounding errors are what it works with.
#pragma once

#ifndef VEX_KERNEL_NAMESPACE
#error "included by the kernels' sources only"
#endif

#include "engine/stats/CompensatedDot.h"

namespace stats::VEX_KERNEL_NAMESPACE {

namespace {

// sum + x = the new sum + the error that is added to `error`, exactly.
inline void AddExactly(double x, double& sum, double& error) {
  const double total = sum + x;
  const double part = total - sum;
  error += (sum - (total - part)) + (x - part);
  sum = total;
}

}  // namespace

void Dot(const double* x, const double* y, std::int64_t count, double& high, double& low) {
  constexpr int kChains = 16;
  double sum[kChains] = {};
  double error[kChains] = {};
  for (std::int64_t k = 0; k < count; k += kChains) {
    for (int c = 0; c < kChains; ++c) {
      const double product = x[k + c] * y[k + c];
      const double rounding = __builtin_fma(x[k + c], y[k + c], -product);
      const double total = sum[c] + product;
      const double part = total - sum[c];
      error[c] += ((sum[c] - (total - part)) + (product - part)) + rounding;
      sum[c] = total;
    }
  }
  for (int c = 0; c < kChains; ++c) {
    AddExactly(sum[c], high, low);
    low += error[c];
  }
  const double total = high + low;
  low -= total - high;
  high = total;
}

}  // namespace stats::VEX_KERNEL_NAMESPACE
