// A build without MPI.
#include "engine/parallel/Launcher.h"
#include "engine/parallel/RankGroup.h"

const char* RankSupport() {
  return "no MPI";
}

std::unique_ptr<CRanks> JoinRanks(int& /*argc*/, char**& /*argv*/) {
  return LaunchedProcesses() > 1 ? nullptr : std::make_unique<CRanks>();
}
