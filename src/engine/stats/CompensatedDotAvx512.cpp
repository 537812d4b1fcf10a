// Compiled for AVX-512.
#define VEX_KERNEL_NAMESPACE avx512
#include "engine/stats/CompensatedDotCode.h"
