// Scalar products with twice the digits of a double.
#pragma once

#include <cstdint>

namespace stats {

// Adds the sum of x[k] y[k] to high + low, as if it were computed with 106 bits (T. Ogita, S. M.
// Rump and S. Oishi, SIAM Journal on Scientific Computing 26, 2005, 1955-1988). `count` is a
// multiple of 16.
using CompensatedDot = void (*)(const double* x, const double* y, std::int64_t count, double& high,
                                double& low);

// The best one for this processor. They may differ in the last of the 106 bits.
CompensatedDot ActiveCompensatedDot();

namespace generic {
void Dot(const double* x, const double* y, std::int64_t count, double& high, double& low);
}
#ifdef VEX_KERNELS_AVX2
namespace avx2 {
void Dot(const double* x, const double* y, std::int64_t count, double& high, double& low);
}
namespace avx512 {
void Dot(const double* x, const double* y, std::int64_t count, double& high, double& low);
}
#endif

}  // namespace stats
