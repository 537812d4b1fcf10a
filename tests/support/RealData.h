// Files that other programs made and that are not ours to ship. Their folder comes from the
// environment variable VEX_REAL_DATA; without it the tests that need them say so and are skipped.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

class RealDataTest : public testing::Test {
 protected:
  void SetUp() override {
    const char* const folder = std::getenv("VEX_REAL_DATA");
    if (folder == nullptr || !std::filesystem::is_directory(folder)) {
      GTEST_SKIP() << "VEX_REAL_DATA names no folder of files made by other programs";
    }
    folder_ = folder;
  }
  std::string RealFile(const std::string& name) const { return folder_ + '/' + name; }

 private:
  std::string folder_;
};
