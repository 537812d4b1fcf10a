// The source of the kernels, included by KernelsGeneric.cpp and KernelsAvx2.cpp, each with a
// namespace and compiler flags of its own. It uses no library: an inline function of a library that
// is compiled with the wide instructions could be the one that the linker keeps for everybody.
#pragma once

#ifndef VEX_KERNEL_NAMESPACE
#error "included by the kernels' sources only"
#endif

#include "engine/stats/Kernels.h"

namespace stats::VEX_KERNEL_NAMESPACE {

namespace {

// The compiler splits a vector that the processor has not.
typedef double Vector __attribute__((vector_size(32), may_alias));
typedef long long Mask __attribute__((vector_size(32)));
constexpr std::int64_t kVectorLanes = 4;

inline const Vector* At(const double* from) {
  return reinterpret_cast<const Vector*>(from);
}

inline Vector* At(double* to) {
  return reinterpret_cast<Vector*>(to);
}

#define VEX_SPREAD(x) (Vector{(x), (x), (x), (x)})

// 4 rows by kVectors vectors of columns; as many accumulators as the registers hold.
template <int kVectors>
inline void MultiplyTile(const double* rows, const double* columns, std::int64_t cases,
                         double* result, std::int64_t stride) {
  Vector sum[4][kVectors];  // set by a loop: an initialiser would go through memory
  for (auto& row : sum) {
    for (Vector& part : row) part = Vector{};
  }
  for (std::int64_t k = 0; k < cases; ++k, rows += kLanes, columns += kLanes) {
    for (int v = 0; v < kVectors; ++v) {
      const Vector b = *At(columns + v * kVectorLanes);
      for (int r = 0; r < 4; ++r) sum[r][v] += VEX_SPREAD(rows[r]) * b;
    }
  }
  for (int r = 0; r < 4; ++r) {
    for (int v = 0; v < kVectors; ++v) *At(result + r * stride + v * kVectorLanes) += sum[r][v];
  }
}

// 0 for every finite number, NaN for the others.
bool AllFinite(const double* cells, std::int64_t count) {
  constexpr int kChains = 4;
  double sum[kChains * kVectorLanes] = {};
  std::int64_t at = 0;
  for (; at + kChains * kVectorLanes <= count; at += kChains * kVectorLanes) {
    for (int c = 0; c < kChains * kVectorLanes; ++c) sum[c] += cells[at + c] * 0;
  }
  double all = 0;
  for (; at < count; ++at) all += cells[at] * 0;
  for (const double part : sum) all += part;
  return all == 0;
}

void Multiply(const double* rows, const double* columns, std::int64_t cases, double* result,
              std::int64_t stride) {
#ifdef __AVX2__
  MultiplyTile<2>(rows, columns, cases, result, stride);
#else
  MultiplyTile<1>(rows, columns, cases, result, stride);
  MultiplyTile<1>(rows, columns + kVectorLanes, cases, result + kVectorLanes, stride);
#endif
}

// 4 rows, each of them case after case, by kVectors vectors of columns.
template <int kVectors>
inline void MultiplyRowTile(const double* rows, std::int64_t rowStride, const double* columns,
                            std::int64_t cases, double* result, std::int64_t stride) {
  Vector sum[4][kVectors];
  for (auto& row : sum) {
    for (Vector& part : row) part = Vector{};
  }
  for (std::int64_t k = 0; k < cases; ++k, columns += stride) {
    Vector b[kVectors];
    for (int v = 0; v < kVectors; ++v) b[v] = *At(columns + v * kVectorLanes);
    for (int r = 0; r < 4; ++r) {
      const Vector a = VEX_SPREAD(rows[r * rowStride + k]);
      for (int v = 0; v < kVectors; ++v) sum[r][v] += a * b[v];
    }
  }
  for (int r = 0; r < 4; ++r) {
    for (int v = 0; v < kVectors; ++v) *At(result + r * stride + v * kVectorLanes) += sum[r][v];
  }
}

void MultiplyRows(const double* rows, std::int64_t rowStride, const double* columns,
                  std::int64_t columnCount, std::int64_t cases, double* result,
                  std::int64_t stride) {
  const auto tile = [&](auto multiply, std::int64_t first) {
    multiply(rows, rowStride, columns + first, cases, result + first, stride);
  };
  std::int64_t first = 0;
#ifdef __AVX2__
  constexpr std::int64_t kWide = 3 * kVectorLanes;
  while (columnCount - first >= kWide && columnCount - first != kWide + kVectorLanes) {
    tile(MultiplyRowTile<3>, first);
    first += kWide;
  }
  for (; columnCount - first >= 2 * kVectorLanes; first += 2 * kVectorLanes) {
    tile(MultiplyRowTile<2>, first);
  }
#endif
  for (; first < columnCount; first += kVectorLanes) tile(MultiplyRowTile<1>, first);
}

void Sum(const double* panel, const double* weights, std::int64_t cases, const double* shift,
         PanelSums& sums) {
  const Vector zero = {};
  const Vector one = VEX_SPREAD(1.0);
  for (int at = 0; at < kLanes; at += kVectorLanes) {
    const Vector origin = *At(shift + at);
    Vector count = {}, weight = {}, sum = {};
    Vector low = VEX_SPREAD(__builtin_inf());
    Vector high = VEX_SPREAD(-__builtin_inf());
    for (std::int64_t k = 0; k < cases; ++k) {
      const Vector x = *At(panel + k * kLanes + at);
      const Mask there = x == x;
      const Vector w = there ? VEX_SPREAD(weights[k]) : zero;
      count += there ? one : zero;
      weight += w;
      sum += w * (there ? x - origin : zero);
      low = x < low ? x : low;
      high = x > high ? x : high;
    }
    *At(sums.cases + at) = count;
    *At(sums.weight + at) = weight;
    *At(sums.sum + at) = sum;
    *At(sums.minimum + at) = low;
    *At(sums.maximum + at) = high;
  }
}

void Powers(const double* panel, const double* weights, std::int64_t cases, const double* shift,
            const double* center, const PanelSums& range, PanelPowers& powers) {
  const Vector zero = {};
  for (int at = 0; at < kLanes; at += kVectorLanes) {
    Vector s1 = {}, s2 = {}, s3 = {}, s4 = {}, atLow = {}, atHigh = {};
    const Vector origin = *At(shift + at);
    const Vector c = *At(center + at);
    const Vector low = *At(range.minimum + at);
    const Vector high = *At(range.maximum + at);
    for (std::int64_t k = 0; k < cases; ++k) {
      const Vector x = *At(panel + k * kLanes + at);
      const Vector all = VEX_SPREAD(weights[k]);
      const Vector d = x == x ? (x - origin) - c : zero;
      const Vector wd = all * d;
      const Vector wd2 = wd * d;
      s1 += wd;
      s2 += wd2;
      s3 += wd2 * d;
      s4 += wd2 * (d * d);
      atLow += x == low ? all : zero;
      atHigh += x == high ? all : zero;
    }
    *At(powers.power[0] + at) = s1;
    *At(powers.power[1] + at) = s2;
    *At(powers.power[2] + at) = s3;
    *At(powers.power[3] + at) = s4;
    *At(powers.atMinimum + at) = atLow;
    *At(powers.atMaximum + at) = atHigh;
  }
}

#undef VEX_SPREAD

}  // namespace

extern const Kernels kKernels;
const Kernels kKernels = {AllFinite, Multiply, MultiplyRows, Sum, Powers};

}  // namespace stats::VEX_KERNEL_NAMESPACE
