// The fuzzing program of one foreign format, whose code CMake gives.
#include "FuzzFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzStatFile(VEX_FUZZ_TYPE, data, size);
  return 0;
}
