// Compiled with -mavx2 -mfma; called only where the processor has both.
#define VEX_KERNEL_NAMESPACE avx2
#include "engine/stats/KernelCode.h"
