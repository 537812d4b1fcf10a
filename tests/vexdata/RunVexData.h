// Runs one command of vexdata in the test's own process.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vexdata/CommandLine.h"

struct Outcome {
  int code;
  std::string out;
  std::string err;
};

inline Outcome RunVexData(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "vexdata");
  std::vector<const char*> argv;
  for (const auto& argument : arguments) argv.push_back(argument.c_str());
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int code = RunCommandLine(static_cast<int>(argv.size()), argv.data());
  std::fflush(stdout);
  return {code, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}
