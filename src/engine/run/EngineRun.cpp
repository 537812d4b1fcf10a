#include "engine/run/EngineRun.h"

#include "engine/run/Interrupt.h"

bool ENGINERUN::Pass(CCaseSource& cases, const std::function<void(const CASEBLOCK&)>& work,
                     FAULT& fault) {
  const bool done = cases.ForEachBlock(
      work,
      [this](double share) {
        progress.Tell(share);
        return !IsInterrupted();
      },
      fault);
  progress.NextStage();
  return done;
}
