// The inner loops, compiled once for every processor and once for those with AVX2 and FMA.
#pragma once

#include <cstdint>

namespace stats {

// Data for the kernels lies in panels: kLanes variables side by side, case after case, the cell of
// case k and lane l at panel[k * kLanes + l]. Panels and results are aligned to kAlignment bytes.
inline constexpr std::int64_t kLanes = 8;
inline constexpr int kAlignment = 64;

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

struct Kernels {
  // Whether no cell is NaN or infinite; any alignment.
  bool (*allFinite)(const double* cells, std::int64_t count);
  // result[r * stride + l] += sum over k of rows[k * kLanes + r] * columns[k * kLanes + l], for 4
  // rows and kLanes columns; `rows` points at lane 0 or 4 of a panel.
  void (*multiply)(const double* rows, const double* columns, std::int64_t cases, double* result,
                   std::int64_t stride);
  // result[r * stride + c] += sum over k of rows[r * rowStride + k] * columns[k * stride + c], for
  // 4 rows and `columnCount` columns, a multiple of 4.
  void (*multiplyRows)(const double* rows, std::int64_t rowStride, const double* columns,
                       std::int64_t columnCount, std::int64_t cases, double* result,
                       std::int64_t stride);
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
#endif

}  // namespace stats
