#include "engine/stats/Kernels.h"

namespace stats {

const Kernels& ActiveKernels() {
#ifdef VEX_KERNELS_AVX2
  static const bool wide =
      __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  static const bool wider = wide && __builtin_cpu_supports("avx512f") != 0 &&
                            __builtin_cpu_supports("avx512vl") != 0 &&
                            __builtin_cpu_supports("avx512dq") != 0;
  if (wider) return avx512::kKernels;
  if (wide) return avx2::kKernels;
#endif
  return generic::kKernels;
}

}  // namespace stats
