// Compiled with -mavx2 -mfma.
#define VEX_KERNEL_NAMESPACE avx2
#include "engine/stats/CompensatedDotCode.h"
