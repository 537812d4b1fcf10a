#define VEX_KERNEL_NAMESPACE generic
#include "engine/stats/CompensatedDotCode.h"

namespace stats {

CompensatedDot ActiveCompensatedDot() {
#ifdef VEX_KERNELS_AVX2
  static const bool wide =
      __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
  static const bool wider = wide && __builtin_cpu_supports("avx512f") != 0 &&
                            __builtin_cpu_supports("avx512vl") != 0 &&
                            __builtin_cpu_supports("avx512dq") != 0;
  if (wider) return avx512::Dot;
  if (wide) return avx2::Dot;
#endif
  return generic::Dot;
}

}  // namespace stats
