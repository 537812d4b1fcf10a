#define VEX_KERNEL_NAMESPACE generic
#include "engine/stats/KernelCode.h"
