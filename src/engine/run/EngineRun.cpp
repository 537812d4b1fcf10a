#include "engine/run/EngineRun.h"

#include "engine/run/Interrupt.h"

CCaseSource::Progress ENGINERUN::Teller() {
  return [this](double share) {
    progress.Tell(share);
    return !IsInterrupted();
  };
}

bool ENGINERUN::Pass(CCaseSource& cases, const std::function<void(const CASEBLOCK&)>& work,
                     FAULT& fault) {
  const bool done = cases.ForEachBlock(work, Teller(), fault);
  progress.NextStage();
  return done;
}

bool ENGINERUN::PassInPieces(CCaseSource& cases, const CCaseSource::PieceWork& work, FAULT& fault) {
  const bool done = cases.ForEachPiece(work, Teller(), fault);
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
