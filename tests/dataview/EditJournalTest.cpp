#include <gtest/gtest.h>

#include "dataview/EditJournal.h"

namespace {

// A step that is told by `number`.
bool Add(CEditJournal& journal, int number, std::size_t bytes = 0) {
  EditStep step;
  step.first = number;
  step.list = std::to_string(number);
  if (!journal.Begin(true)) return false;
  const CString payload(bytes, 'x');
  step.payload = journal.PayloadOffset();
  step.payloadBytes = static_cast<std::int64_t>(bytes);
  return WriteAt(journal.Descriptor(), step.payload, payload.data(), bytes) &&
         journal.Finish(step, "before " + step.list, "after " + step.list);
}

int StepsBack(CEditJournal& journal) {
  int steps = 0;
  for (; journal.ReadUndo(); ++steps) journal.StepBack();
  return steps;
}

}  // namespace

TEST(EditJournal, GoesBackAndForth) {
  CEditJournal journal;
  EXPECT_FALSE(journal.ReadUndo() || journal.ReadRedo());
  for (int i = 1; i <= 3; ++i) ASSERT_TRUE(Add(journal, i, 5000));
  EXPECT_FALSE(journal.ReadRedo());
  for (int i = 3; i >= 1; --i) {
    const auto undo = journal.ReadUndo();
    ASSERT_TRUE(undo);
    EXPECT_EQ(undo->step.first, i);
    EXPECT_EQ(undo->step.list, std::to_string(i));
    EXPECT_EQ(undo->description, "before " + std::to_string(i));
    journal.StepBack();
    EXPECT_EQ(journal.ReadRedo()->description, "after " + std::to_string(i));
  }
  EXPECT_FALSE(journal.ReadUndo());
  journal.StepForward();
  EXPECT_EQ(journal.ReadUndo()->step.first, 1);
  ASSERT_TRUE(Add(journal, 9));  // in place of 2 and 3
  EXPECT_FALSE(journal.ReadRedo());
  EXPECT_EQ(StepsBack(journal), 2);
}

TEST(EditJournal, AnAbandonedStepWasNeverThere) {
  CEditJournal journal;
  ASSERT_TRUE(Add(journal, 1));
  ASSERT_TRUE(journal.Begin(true));
  journal.Abandon();
  EXPECT_EQ(journal.ReadUndo()->step.first, 1);
  EXPECT_FALSE(journal.ReadRedo());
}

TEST(EditJournal, ForgetsTheOldestBeyondItsLimit) {
  CEditJournal journal(100000);
  for (int i = 1; i <= 50; ++i) ASSERT_TRUE(Add(journal, i, 20000));
  EXPECT_LE(journal.BytesOnDisk(), 100000);
  EXPECT_EQ(StepsBack(journal), 4);
  EXPECT_EQ(journal.ReadRedo()->step.first, 47);
  journal.StepForward();
  EXPECT_EQ(journal.ReadUndo()->step.first, 47);
  ASSERT_TRUE(Add(journal, 1, 500000));  // larger than the limit, and kept all the same
  EXPECT_EQ(StepsBack(journal), 1);
}

TEST(EditJournal, KnowsTheSavedPlace) {
  CEditJournal journal(100000);
  EXPECT_FALSE(journal.IsAtSaved());
  journal.MarkSaved();
  EXPECT_TRUE(journal.IsAtSaved());
  ASSERT_TRUE(Add(journal, 1));
  EXPECT_FALSE(journal.IsAtSaved());
  journal.StepBack();
  EXPECT_TRUE(journal.IsAtSaved());
  journal.StepForward();
  journal.MarkSaved();
  journal.StepBack();
  ASSERT_TRUE(Add(journal, 2));  // stands where the saved step stood
  EXPECT_FALSE(journal.IsAtSaved());
  journal.MarkSaved();
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(Add(journal, i, 20000));
  StepsBack(journal);
  EXPECT_FALSE(journal.IsAtSaved());  // it has been forgotten
}
