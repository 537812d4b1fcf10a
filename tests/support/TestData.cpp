#include "support/TestData.h"

std::string TestData(const std::string& name) {
  return VEX_TEST_DATA "/" + name;
}
