// The source of the kernels, included by KernelsGeneric.cpp, KernelsAvx2.cpp and KernelsAvx512.cpp,
// each with a namespace and compiler flags of its own. It uses no library: an inline function of a
// library that is compiled with the wide instructions could be the one that the linker keeps for
// everybody.
#pragma once

#ifndef VEX_KERNEL_NAMESPACE
#error "included by the kernels' sources only"
#endif

#include "engine/stats/Kernels.h"

namespace stats::VEX_KERNEL_NAMESPACE {

namespace {

// The compiler splits a vector that the processor has not.
#ifdef __AVX512F__
#define VEX_VECTOR_BYTES 64
#else
#define VEX_VECTOR_BYTES 32
#endif
typedef double Vector __attribute__((vector_size(VEX_VECTOR_BYTES), may_alias));
typedef double Loose __attribute__((vector_size(VEX_VECTOR_BYTES), may_alias, aligned(8)));
typedef long long Mask __attribute__((vector_size(VEX_VECTOR_BYTES)));
constexpr std::int64_t kVectorLanes = VEX_VECTOR_BYTES / 8;

inline const Vector* At(const double* from) {
  return reinterpret_cast<const Vector*>(from);
}

inline Vector* At(double* to) {
  return reinterpret_cast<Vector*>(to);
}

inline Vector Spread(double x) {
  return x - Vector{};
}

// kRows rows by kVectors vectors of columns; as many accumulators as the registers hold.
template <int kRows, int kVectors>
inline void MultiplyTile(const double* rows, const double* columns, std::int64_t cases,
                         double* result, std::int64_t stride) {
  Vector sum[kRows][kVectors];  // set by a loop: an initialiser would go through memory
  for (auto& row : sum) {
    for (Vector& part : row) part = Vector{};
  }
  for (std::int64_t k = 0; k < cases; ++k, rows += kLanes, columns += kLanes) {
    for (int v = 0; v < kVectors; ++v) {
      const Vector b = *At(columns + v * kVectorLanes);
      for (int r = 0; r < kRows; ++r) sum[r][v] += Spread(rows[r]) * b;
    }
  }
  for (int r = 0; r < kRows; ++r) {
    for (int v = 0; v < kVectors; ++v) *At(result + r * stride + v * kVectorLanes) += sum[r][v];
  }
}

CleanCounts Clean(double* cells, std::int64_t count, const MissingRule& rule) {
  const Vector largest = Spread(__DBL_MAX__);
  const Vector none = Spread(__builtin_nan(""));
  const Vector low = Spread(rule.low), high = Spread(rule.high);
  Mask missing = {}, infinite = {};
  const auto clean = [&](Vector x) {
    Mask is = ~((x <= largest) & (x >= -largest));
    infinite -= is & (x == x);
    is |= (x >= low) & (x <= high);
    for (std::int64_t v = 0; v < rule.count; ++v) is |= x == Spread(rule.values[v]);
    missing -= is;
    return is ? none : x;
  };
  std::int64_t at = 0;
  for (; at + kVectorLanes <= count; at += kVectorLanes) {
    Loose* const place = reinterpret_cast<Loose*>(cells + at);
    *place = clean(*place);
  }
  // Lanes without a cell hold a number that is changed or not, and is not counted.
  Vector rest = {};
  const Mask before = missing, infiniteBefore = infinite;
  for (std::int64_t l = 0; at + l < count; ++l) rest[l] = cells[at + l];
  rest = clean(rest);
  CleanCounts counts;
  for (std::int64_t l = 0; l < kVectorLanes; ++l) {
    const bool there = at + l < count;
    if (there) cells[at + l] = rest[l];
    counts.missing += there ? missing[l] : before[l];
    counts.infinite += there ? infinite[l] : infiniteBefore[l];
  }
  return counts;
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
#ifdef __AVX512F__
  MultiplyTile<8, 1>(rows, columns, cases, result, stride);
#else
  for (int r = 0; r < kLanes; r += 4, rows += 4, result += 4 * stride) {
#ifdef __AVX2__
    MultiplyTile<4, 2>(rows, columns, cases, result, stride);
#else
    MultiplyTile<4, 1>(rows, columns, cases, result, stride);
    MultiplyTile<4, 1>(rows, columns + kVectorLanes, cases, result + kVectorLanes, stride);
#endif
  }
#endif
}

// A template's argument would lose the attributes of a type that is given by itself.
struct Whole {
  typedef Vector Part;
  typedef ::stats::VEX_KERNEL_NAMESPACE::Loose Loose;
};

// Four lanes, whatever the processor has.
struct Half {
  typedef double Part __attribute__((vector_size(32), may_alias));
  typedef double Loose __attribute__((vector_size(32), may_alias, aligned(8)));
};

// kRows rows, each of them case after case, by kVectors vectors of columns.
template <typename Width, int kRows, int kVectors>
inline void MultiplyRowTile(const double* rows, std::int64_t rowStride, const double* columns,
                            std::int64_t cases, double* result, std::int64_t stride) {
  using Part = typename Width::Part;
  constexpr int kLanesOfPart = sizeof(Part) / sizeof(double);
  Part sum[kRows][kVectors];
  for (auto& row : sum) {
    for (Part& part : row) part = Part{};
  }
  for (std::int64_t k = 0; k < cases; ++k, columns += stride) {
    Part b[kVectors];
    for (int v = 0; v < kVectors; ++v) {
      b[v] = *reinterpret_cast<const typename Width::Loose*>(columns + v * kLanesOfPart);
    }
    for (int r = 0; r < kRows; ++r) {
      const Part a = rows[r * rowStride + k] - Part{};
      for (int v = 0; v < kVectors; ++v) sum[r][v] += a * b[v];
    }
  }
  for (int r = 0; r < kRows; ++r) {
    for (int v = 0; v < kVectors; ++v) {
      *reinterpret_cast<typename Width::Loose*>(result + r * stride + v * kLanesOfPart) +=
          sum[r][v];
    }
  }
}

// What MultiplyRows was asked for; a part of its rows and columns is done with one tile.
struct RowProduct {
  const double* rows;
  std::int64_t rowStride, rowCount;
  const double* columns;
  std::int64_t cases;
  double* result;
  std::int64_t stride;

  template <typename Width, int kRows, int kVectors>
  void Tiles(std::int64_t firstColumn) const {
    for (std::int64_t row = 0; row < rowCount; row += kRows) {
      MultiplyRowTile<Width, kRows, kVectors>(rows + row * rowStride, rowStride,
                                              columns + firstColumn, cases,
                                              result + row * stride + firstColumn, stride);
    }
  }

  // A single vector of columns needs many rows to keep the multipliers busy.
  template <typename Width>
  void OneVector(std::int64_t firstColumn) const {
    if (rowCount == kMostRowsAtOnce) return Tiles<Width, kMostRowsAtOnce, 1>(firstColumn);
    Tiles<Width, kRowsAtOnce, 1>(firstColumn);
  }
};

void MultiplyRows(const double* rows, std::int64_t rowStride, std::int64_t rowCount,
                  const double* columns, std::int64_t columnCount, std::int64_t cases,
                  double* result, std::int64_t stride) {
  const RowProduct product = {rows, rowStride, rowCount, columns, cases, result, stride};
  [[maybe_unused]] constexpr int kRows = kRowsAtOnce;
  constexpr std::int64_t kHalfLanes = 4;
  std::int64_t first = 0;
  const auto left = [&] { return columnCount - first; };
#ifdef __AVX512F__
  if (left() >= 3 * kVectorLanes && left() < 4 * kVectorLanes) {
    product.Tiles<Whole, kRows, 3>(first);
    first += 3 * kVectorLanes;
  }
  for (; left() >= 2 * kVectorLanes; first += 2 * kVectorLanes) {
    product.Tiles<Whole, kRows, 2>(first);
  }
  for (; left() >= kVectorLanes; first += kVectorLanes) product.OneVector<Whole>(first);
#elif defined(__AVX2__)
  constexpr std::int64_t kWide = 3 * kVectorLanes;
  for (; left() >= kWide && left() != kWide + kVectorLanes; first += kWide) {
    product.Tiles<Half, kRows, 3>(first);
  }
  for (; left() >= 2 * kVectorLanes; first += 2 * kVectorLanes) {
    product.Tiles<Half, kRows, 2>(first);
  }
#endif
  for (; left() > 0; first += kHalfLanes) product.OneVector<Half>(first);
}

void Product(const double* a, const double* b, std::int64_t count, double* to) {
  for (std::int64_t k = 0; k < count; ++k) to[k] = a[k] * b[k];
}

// exp(x) for x from -708 to 0: x = n log 2 + r, the rest by its series.
inline Vector ExpBelowZero(Vector x) {
  const Vector magic = Spread(0x1.8p52);
  const Vector n = (x * 1.4426950408889634 + magic) - magic;
  const Vector r = (x - n * 0x1.62e42fefap-1) - n * 0x1.cf79abc9e3b3ap-40;
  constexpr double kFactorials[] = {6227020800.0, 479001600.0, 39916800.0, 3628800.0, 362880.0,
                                    40320.0,      5040.0,      720.0,      120.0,     24.0,
                                    6.0,          2.0,         1.0,        1.0};
  Vector sum = {};
  for (const double factorial : kFactorials) sum = sum * r + 1.0 / factorial;
  // 2^n: n moves into the exponent's place.
  const Vector biased = n + (1023.0 + 0x1p52);
  const Mask power = reinterpret_cast<Mask>(biased) << 52;
  return sum * reinterpret_cast<Vector>(power);
}

// log(1 + s) for s from 0 to 1, as twice the inverse hyperbolic tangent of s / (2 + s).
inline Vector LogOnePlus(Vector s) {
  const Vector t = s / (s + 2.0);
  const Vector square = t * t;
  Vector sum = Spread(1.0 / 35);
  for (int odd = 33; odd > 0; odd -= 2) sum = sum * square + 1.0 / odd;
  return 2 * t * sum;
}

void Logistic(const double* z, std::int64_t count, double* value, double* slope, double* curve) {
  for (std::int64_t at = 0; at < count; at += kVectorLanes) {
    Vector x = {};
    const bool whole = at + kVectorLanes <= count;
    if (whole) x = *reinterpret_cast<const Loose*>(z + at);
    for (std::int64_t l = 0; !whole && at + l < count; ++l) x[l] = z[at + l];
    const Vector distance = x < 0 ? x : -x;
    const Vector small = ExpBelowZero(distance > -708.0 ? distance : Spread(-708.0));
    const Vector share = 1 / (1 + small);
    const Vector logarithm = (x < 0 ? x : Vector{}) - LogOnePlus(small);
    const Vector up = (x < 0 ? Spread(1.0) : small) * share;
    const Vector down = -small * share * share;
    if (whole) {
      *reinterpret_cast<Loose*>(value + at) = logarithm;
      *reinterpret_cast<Loose*>(slope + at) = up;
      *reinterpret_cast<Loose*>(curve + at) = down;
    }
    for (std::int64_t l = 0; !whole && at + l < count; ++l) {
      value[at + l] = logarithm[l];
      slope[at + l] = up[l];
      curve[at + l] = down[l];
    }
  }
}

void Sum(const double* panel, const double* weights, std::int64_t cases, const double* shift,
         PanelSums& sums) {
  const Vector zero = {};
  const Vector one = Spread(1.0);
  for (int at = 0; at < kLanes; at += kVectorLanes) {
    const Vector origin = *At(shift + at);
    Vector count = {}, weight = {}, sum = {};
    Vector low = Spread(__builtin_inf());
    Vector high = Spread(-__builtin_inf());
    for (std::int64_t k = 0; k < cases; ++k) {
      const Vector x = *At(panel + k * kLanes + at);
      const Mask there = x == x;
      const Vector w = there ? Spread(weights[k]) : zero;
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
      const Vector all = Spread(weights[k]);
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

#undef VEX_VECTOR_BYTES

}  // namespace

extern const Kernels kKernels;
const Kernels kKernels = {Clean, AllFinite, Multiply, MultiplyRows, Product, Logistic, Sum, Powers};

}  // namespace stats::VEX_KERNEL_NAMESPACE
