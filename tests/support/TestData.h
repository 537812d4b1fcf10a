// The small files that the tests read.
#pragma once

#include <string>

// The path of a file of tests/data, or of another folder of the tests ("../engine/data/x").
std::string TestData(const std::string& name);
