#include <gtest/gtest.h>

#include "engine/run/Progress.h"

namespace {

TEST(Progress, GoesThroughPlannedStagesEvenly) {
  CProgress progress(nullptr);
  progress.BeginRepetition(0, 2);
  progress.Tell(1);
  const double first = progress.Share();  // nobody knew how many stages there are
  EXPECT_GT(first, 0);
  EXPECT_LT(first, .5);
  progress.NextStage();
  progress.Plan(3);
  for (int stage = 1; stage <= 3; ++stage) {
    progress.Tell(.5);
    EXPECT_NEAR(progress.Share(), first + (.5 - first) * (stage - .5) / 3, 1e-12);
    progress.NextStage();
  }
  EXPECT_NEAR(progress.Share(), .5, 1e-12);
  progress.BeginRepetition(1, 2);
  progress.Tell(0);
  EXPECT_NEAR(progress.Share(), .5, 1e-12);
}

// However many passes a method takes, each moves on, and none comes to the end.
TEST(Progress, NeverStandsStillNorGoesBack) {
  CProgress progress(nullptr);
  progress.BeginRepetition(0, 1);
  for (int part = 0; part < 3; ++part) {
    progress.BeginPart(part, 3);
    for (int pass = 0; pass < 20; ++pass) {
      const double before = progress.Share();
      progress.Tell(.5);
      EXPECT_GT(progress.Share(), before);
      progress.Tell(.2);
      progress.NextStage();
    }
    EXPECT_LT(progress.Share(), (part + 1) / 3.0);
    EXPECT_GT(progress.Share(), (part + .9) / 3.0);
  }
  progress.End();
  EXPECT_EQ(progress.Share(), 1);
}

// Samples behind a screening whose stages were planned to its end.
TEST(Progress, WhatFollowsThePlannedPartHasTheRest) {
  CProgress progress(nullptr);
  progress.BeginRepetition(0, 2);
  progress.BeginPart(0, 10);
  progress.Plan(1);
  progress.NextStage();
  EXPECT_NEAR(progress.Share(), .05, 1e-12);
  progress.BeginLastPart();
  progress.Tell(.5);
  progress.Plan(1);
  progress.Tell(.5);
  EXPECT_NEAR(progress.Share(), (.05 + .5) / 2, 1e-12);
  progress.Tell(1);
  EXPECT_NEAR(progress.Share(), .5, 1e-12);
}

}  // namespace
