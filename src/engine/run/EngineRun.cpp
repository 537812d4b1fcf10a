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

bool ENGINERUN::Exchange(const std::string& mine, std::vector<std::string>& all, FAULT& fault) {
  if (ranks == nullptr) {
    all = {mine};
    return true;
  }
  if (ranks->Exchange(mine, all)) return true;
  fault.cause = ranks->Problem();
  return false;
}
