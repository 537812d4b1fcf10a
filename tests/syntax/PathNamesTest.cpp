#include <gtest/gtest.h>

#include "syntax/PathNames.h"

TEST(ReplaceExtension, SplitsDriveFolderAndBaseName) {
  const std::string most(255, 'f');
  const struct {
    std::string path;
    std::string derived;
  } cases[] = {
      {"/data/survey.VSF", "/data/survey.TRK"},
      {"survey.vsf", "survey.TRK"},
      {"/data.d/survey", "/data.d/survey.TRK"},
      {"/data/a.b.VSF", "/data/a.b.TRK"},
      {"/data/.VSF", "/data/.TRK"},
      {"/data/name.", "/data/name.TRK"},
      {"C:\\data.d\\survey", "C:\\data.d\\survey.TRK"},
      {"C:survey.VSF", "C:survey.TRK"},
      {"/:.VSF", "/:.TRK"},
      {"/" + most + ".VSF", "/" + most + ".TRK"},
      {"/" + most + "f.VSF", "/" + most + "f.VSF"},
      {most.substr(1) + "/a.VSF", most.substr(1) + "/a.TRK"},
      {most + "/a.VSF", most + "/a.VSF"},
      {"C:" + most.substr(1) + "/a.VSF", "C:" + most.substr(1) + "/a.TRK"},
      {"C:" + most + "/a.VSF", "C:" + most + "/a.VSF"},
  };
  for (const auto& c : cases) EXPECT_EQ(ReplaceExtension(c.path, ".TRK"), c.derived) << c.path;
}
