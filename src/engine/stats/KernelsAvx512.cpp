// Compiled with -mavx512f and its companions; called only where the processor has them.
#define VEX_KERNEL_NAMESPACE avx512
#include "engine/stats/KernelCode.h"
