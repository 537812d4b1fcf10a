#include <gtest/gtest.h>

#include "datadoc/DataSet.h"
#include "datadoc/DocumentFixture.h"

TEST(CapacityFor, MovesByEights) {
  const struct {
    std::int32_t variables, capacity, expected;
  } cases[] = {{0, 16, 16},  {9, 0, 16},   {9, 8, 16},  {16, 16, 16}, {17, 16, 24}, {15, 24, 16},
               {16, 24, 24}, {14, 24, 16}, {0, 40, 16}, {0, 17, 9},   {25, 40, 32}, {31, 40, 32}};
  for (const auto& c : cases) {
    EXPECT_EQ(CapacityFor(c.variables, c.capacity), c.expected)
        << c.variables << " of " << c.capacity;
  }
}

using DataSetCopy = DocumentTest;

TEST_F(DataSetCopy, CarriesWhatDialogsChangeAndNothingElse) {
  Fill({{1, 2}, {3, 4}});
  TORVIKSTRUCT& data = *document.GetTorvik();
  data.format = kNewFormat;
  data.settings = {1, 2, 3};
  data.settingsBytes[7] = 9;
  data.groupVariable = 2;
  data.weightVariable = 1;
  data.deletion = kPairwise;
  data.missing = {1, 2, 3, 4, 5, 99};
  data.variable[1] = {"B", "second", kCensoredBelow, {6, 7, 8, 9, 10}, 2};
  data.categoryLabels[15] = "low";
  data.categoryLabels[17] = "unused";
  data.categoryValues[16] = 5;

  std::int32_t capacity = 3;
  const auto copy = document.GetTorvikCopy(capacity, 0);
  EXPECT_EQ(capacity, 3);
  EXPECT_EQ(copy->format, 0);
  EXPECT_EQ(copy->settings, (std::array<std::int32_t, 3>{}));
  EXPECT_EQ(copy->groupVariable, 0);
  EXPECT_EQ(copy->weightVariable, 1);
  EXPECT_EQ(copy->deletion, kPairwise);
  EXPECT_EQ(copy->missing, (GlobalMissingDefinition{1, 2, 3, 4, 5, 0}));
  EXPECT_EQ(copy->variable[1].description, "");
  EXPECT_EQ(copy->variable[1].type, kCensoredBelow);
  EXPECT_EQ(copy->categoryLabels[15], "low");
  EXPECT_EQ(copy->categoryLabels[17], "");

  copy->variable[0].name = "renamed";
  copy->variable[1].missing[0] = 66;
  document.UpdateTorvik(*copy);
  EXPECT_EQ(data.variable[0].name, "renamed");
  EXPECT_EQ(data.variable[1].missing[0], 66);
  EXPECT_EQ(data.variable[1].description, "second");
  EXPECT_EQ(data.categoryLabels[17], "unused");
  EXPECT_EQ(data.format, kNewFormat);
  EXPECT_EQ(data.settings[2], 3);
  EXPECT_EQ(data.groupVariable, 2);
  EXPECT_EQ(data.weightVariable, 1);
  EXPECT_EQ(data.missing, (GlobalMissingDefinition{1, 2, 3, 4, 5, kMissingCode}));
  EXPECT_EQ(host.statusTexts.size(), 1U);  // the global value was another
}

TEST_F(DataSetCopy, GrowsByEightsAndFillsNewVariablesWithDefaults) {
  Fill({{1, 2}});
  std::int32_t capacity = -5;
  const auto copy = document.GetTorvikCopy(capacity, 9);
  EXPECT_EQ(capacity, 16);
  EXPECT_EQ(copy->variables, 9);
  EXPECT_EQ(copy->variable[8].missing, kNoMissing);
  document.UpdateTorvik(*copy);
  EXPECT_EQ(document.GetVarnum(), 9);
  EXPECT_EQ(document.GetCapacity(), 16);
}

TEST_F(DataSetCopy, ReInitialisingResetsMissingValuesButKeepsNames) {
  Fill({{1, 2}});
  TORVIKSTRUCT& data = *document.GetTorvik();
  data.missing[0] = 7;
  data.deletion = kPairwise;
  data.weightVariable = 2;
  data.variable[1].missing[0] = 7;
  EXPECT_EQ(document.MemoryReInit(2), 1);
  EXPECT_EQ(data.missing, kDefaultGlobalMissing);
  EXPECT_EQ(data.deletion, kListwise);
  EXPECT_EQ(data.weightVariable, 0);
  EXPECT_EQ(data.variable[1].missing, kNoMissing);
  EXPECT_EQ(data.variable[1].name, "B");
}

TEST_F(DataSetCopy, VariableTypeIsAskedOfVariablesInUseOnly) {
  EXPECT_EQ(document.GetVarType(), 0);
  Fill({{1, 2}});
  EXPECT_EQ(document.GetVarType(), 1);
  document.GetTorvik()->variable[0].type = kContinuous;
  document.GetTorvik()->variable[1].type = kCensoredAbove;
  EXPECT_EQ(document.GetVarType(), 0);  // the spare records are ordinal
}
