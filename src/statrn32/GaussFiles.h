// Gauss data sets of two files: the data (.dat) and a header beside them (.dht).
#pragma once

#include <memory>

#include "statrn32/Reader.h"

namespace statrn32 {

std::unique_ptr<CReader> ReadGauss();

}  // namespace statrn32
