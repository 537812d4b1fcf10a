// The inner loops, compiled for every processor, for those with AVX2 and FMA, and for AVX-512.
#pragma once

#include <cstdint>

namespace stats {

// Data for the kernels lies in panels: kLanes variables side by side, case after case, the cell of
// case k and lane l at panel[k * kLanes + l]. Panels and results are aligned to kAlignment bytes.
inline constexpr std::int64_t kLanes = 8;
inline constexpr int kAlignment = 64;
inline constexpr std::int64_t kRowsAtOnce = 4;
inline constexpr std::int64_t kMostRowsAtOnce = 2 * kRowsAtOnce;

// By lane, over the cells that are not NaN: their number, sum of weights, weighted sum of x -
// shift, range of x.
struct alignas(kAlignment) PanelSums {
  double cases[kLanes], weight[kLanes], sum[kLanes], minimum[kLanes], maximum[kLanes];
};

// By lane: weighted sums of powers of x - shift - center, and the weight of the cases at the two
// ends of the range.
struct alignas(kAlignment) PanelPowers {
  double power[4][kLanes];  // exponents 1 to 4
  double atMinimum[kLanes], atMaximum[kLanes];
};

// Values that count as missing, and a range of them (low above high: none).
struct MissingRule {
  const double* values = nullptr;
  std::int64_t count = 0;
  double low = 1, high = 0;
};

struct CleanCounts {
  std::int64_t missing = 0;   // cells that are NaN now
  std::int64_t infinite = 0;  // of these, those that were infinite
};

struct Kernels {
  // Cells that the rule names become NaN, and infinite ones; any alignment.
  CleanCounts (*clean)(double* cells, std::int64_t count, const MissingRule& rule);
  // Whether no cell is NaN or infinite; any alignment.
  bool (*allFinite)(const double* cells, std::int64_t count);
  // result[r * stride + l] += sum over k of rows[k * kLanes + r] * columns[k * kLanes + l], for
  // kLanes rows and columns.
  void (*multiply)(const double* rows, const double* columns, std::int64_t cases, double* result,
                   std::int64_t stride);
  // result[r * stride + c] += sum over k of rows[r * rowStride + k] * columns[k * stride + c], for
  // `rowCount` rows, kRowsAtOnce or kMostRowsAtOnce, and `columnCount` columns, a multiple of 4.
  void (*multiplyRows)(const double* rows, std::int64_t rowStride, std::int64_t rowCount,
                       const double* columns, std::int64_t columnCount, std::int64_t cases,
                       double* result, std::int64_t stride);
  // to[k] = a[k] * b[k]
  void (*product)(const double* a, const double* b, std::int64_t count, double* to);
  // log(1 / (1 + exp(-z))) with its first and second derivative, equal to the library's functions
  // but for the last digits. An exponent below -708 counts as that.
  void (*logistic)(const double* z, std::int64_t count, double* value, double* slope,
                   double* curve);
  void (*sum)(const double* panel, const double* weights, std::int64_t cases, const double* shift,
              PanelSums& sums);
  void (*powers)(const double* panel, const double* weights, std::int64_t cases,
                 const double* shift, const double* center, const PanelSums& range,
                 PanelPowers& powers);
};

// The best ones for this processor; always the same ones in one run.
const Kernels& ActiveKernels();

namespace generic {
extern const Kernels kKernels;
}
#ifdef VEX_KERNELS_AVX2
namespace avx2 {
extern const Kernels kKernels;
}
namespace avx512 {
extern const Kernels kKernels;
}
#endif

}  // namespace stats
