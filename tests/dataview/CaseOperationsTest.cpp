#include <gtest/gtest.h>

#include "dataview/CaseOperations.h"

TEST(CaseOperations, InsertionCase) {
  const struct {
    bool atEnd;
    bool after;
    std::int64_t number;
    std::int64_t cases;
    std::int64_t position;
  } cases[] = {
      {false, false, 1, 5, 0},
      {false, true, 1, 5, 1},
      {false, false, 5, 5, 4},
      {false, true, 5, 5, 5},
      {false, false, 6, 5, 5},
      {false, true, 4, 5, 4},
      {false, false, 7, 5, 5},
      {true, false, 2, 5, 5},
      {true, true, 0, 5, 5},
      {false, false, 0, 5, 0},
      {false, true, 0, 5, 0},
      {false, false, 0, 0, 0},
      {false, true, 0, 0, 0},
      {false, false, 99, 0, 0},
      {false, true, 2147483647, 2147483647, 2147483647},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(InsertionCase({1, c.atEnd, c.after, c.number}, c.cases), c.position) << &c - cases;
  }
}

TEST(CaseOperations, InsertionVariable) {
  const struct {
    bool atEnd;
    bool after;
    std::int32_t selected;
    std::int32_t variables;
    std::int32_t position;
  } cases[] = {{false, false, 1, 5, 1}, {false, true, 1, 5, 2},  {false, true, 4, 5, 5},
               {false, false, 5, 5, 5}, {false, true, 5, 5, 5},  {false, false, 6, 5, 5},
               {true, false, 0, 5, 5},  {false, false, 0, 0, 0}, {false, true, 0, 0, 0},
               {false, false, -1, 5, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(InsertionVariable({1, c.atEnd, c.after, c.selected}, c.variables), c.position)
        << &c - cases;
  }
}

TEST(CaseOperations, DeletionRange) {
  using enum DeleteCasesForm;
  const struct {
    DeleteCasesRequest request;
    CaseRange range;  // of ten cases
  } cases[] = {
      {{FirstAndCount, 3, 2, 0, 0}, {2, 4}},
      {{FirstAndCount, 3, 0, 0, 0}, {2, 2}},
      {{FirstAndCount, 9, 100, 0, 0}, {8, 10}},
      {{FirstAndCount, 11, 1, 0, 0}, {10, 10}},
      {{FirstAndCount, 2, INT64_MAX, 0, 0}, {1, 10}},
      {{FirstAndCount, 5, -3, 0, 0}, {4, 4}},
      {{FromTo, 0, 0, 3, 5}, {2, 5}},
      {{FromTo, 0, 0, 5, 4}, {4, 4}},
      {{FromTo, 0, 0, 0, 4}, {0, 4}},
      {{FromTo, 0, 0, 8, 99}, {7, 10}},
      {{ThroughLast, 0, 0, 8, 1}, {7, 10}},
  };
  for (const auto& c : cases) {
    const CaseRange range = DeletionRange(c.request, 10);
    EXPECT_EQ(range.begin, c.range.begin) << &c - cases;
    EXPECT_EQ(range.end, c.range.end) << &c - cases;
  }
}

TEST(CaseOperations, StartingCase) {
  EXPECT_EQ(StartingCase(-1, 0), 0);
  EXPECT_EQ(StartingCase(3, 0), 0);
  EXPECT_EQ(StartingCase(3, 9), 4);
  EXPECT_EQ(StartingCase(-1, 9), std::nullopt);
}
