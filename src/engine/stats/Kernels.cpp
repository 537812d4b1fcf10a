#include "engine/stats/Kernels.h"

namespace stats {

const Kernels& ActiveKernels() {
#ifdef VEX_KERNELS_AVX2
  static const bool wide =
      __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  if (wide) return avx2::kKernels;
#endif
  return generic::kKernels;
}

}  // namespace stats
