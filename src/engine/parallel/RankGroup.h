// The ranks that a launcher has started with this process.
#pragma once

#include <memory>

#include "engine/parallel/Ranks.h"

// What this build can say about them, for --version: "MPI", or "no MPI".
const char* RankSupport();

// Joins the ranks of the launcher, or gives a process by itself. Null when a launcher has started
// several processes and this build cannot join them: each would write the same files.
std::unique_ptr<CRanks> JoinRanks(int& argc, char**& argv);
