#include <gtest/gtest.h>

#include "transfer/ImportNames.h"

namespace {

std::vector<STUtils::variable_info_t> Named(const std::vector<std::string>& names) {
  std::vector<STUtils::variable_info_t> variables;
  for (const auto& name : names) variables.emplace_back().name = name;
  return variables;
}

}  // namespace

TEST(ImportedNames, AreCutAndToldWhereEqual) {
  auto variables =
      Named({"a_very_long_name_1", "a_very_long_name_2", "x", "skipped", "a_very_long_name_3"});
  variables[3].selected = false;
  const auto names = ImportedNames(variables);
  EXPECT_EQ(names, (std::vector<CString>{"a_very_long_name", "a_very_long_name", "x",
                                         "a_very_long_name"}));
  EXPECT_EQ(RepeatedNames(names), std::vector<CString>{"a_very_long_name"});
  EXPECT_EQ(UniqueNames(names), (std::vector<CString>{"a_very_long_name", "a_very_long_na_2", "x",
                                                      "a_very_long_na_3"}));
}

TEST(UniqueNames, DoesNotCollideWithNamesThatAreThere) {
  EXPECT_EQ(UniqueNames({"a", "a", "a_2", "a"}), (std::vector<CString>{"a", "a_3", "a_2", "a_4"}));
}

TEST(KeepLabels, TakesWhatFits) {
  STUtils::variable_info_t source;
  source.name = "full_name_that_was_cut";
  source.label = "a label";
  for (int i = 0; i < 20; ++i)
    source.valueLabels.insert({i - 2.0, 0, "", "label " + std::to_string(i)});
  source.valueLabels.insert({0.5, 0, "", "a fraction"});
  source.valueLabels.insert({1e10, 0, "", "too large"});
  source.valueLabels.insert({0, 'a', "", "a tag"});
  source.valueLabels.insert({0, 0, "text", "of a text"});
  TORVIKSTRUCT block;
  block.ResizeArrays(1);
  KeepLabels(source, "full_name_that_w", block);
  EXPECT_EQ(block.variable[0].description, "full_name_that_was_cut");
  EXPECT_EQ(block.variable[0].categories, 15);
  EXPECT_EQ(block.categoryValues[0], -2);
  EXPECT_EQ(block.categoryValues[14], 12);
  EXPECT_EQ(block.categoryLabels[14], "label 14");
  EXPECT_EQ(LabelsWithoutRoom(source), 9U);

  source.name = "short";
  source.valueLabels = {{1, 0, "", "eight by"}, {2, 0, "", "nine byte"}};
  EXPECT_EQ(LabelsWithoutRoom(source), 1U);
  source.valueLabels.clear();
  KeepLabels(source, "short", block);
  EXPECT_EQ(block.variable[0].description, "a label");
  EXPECT_EQ(block.variable[0].categories, 0);
}
