// The fuzzing program of one foreign format, whose code CMake gives; with the extensions of its
// files where a second one stands beside the first.
#include "FuzzFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
#ifdef VEX_FUZZ_BESIDE
  FuzzStatFilePair(VEX_FUZZ_TYPE, VEX_FUZZ_MAIN, VEX_FUZZ_BESIDE, data, size);
#else
  FuzzStatFile(VEX_FUZZ_TYPE, data, size);
#endif
  return 0;
}
