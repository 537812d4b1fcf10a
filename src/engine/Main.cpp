// torvik SYNTAX.TRK OUTPUT.OUT
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "engine/parallel/RankGroup.h"
#include "engine/run/Interrupt.h"
#include "engine/run/Run.h"

namespace {

constexpr const char* kHelp =
    "Usage: torvik [--threads N] SYNTAX.TRK OUTPUT.OUT\n"
    "Runs a data-screening syntax and writes its output.\n\n"
    "  --threads N   use N threads (all processors without it; results are the same)\n"
    "  --help        this text\n"
    "  --version     the version\n\n"
    "Started by mpirun, all of its processes make the run together; the first one writes.\n"
    "Exit codes: 0 done, 1 failed (the output says why), 2 wrong usage, 3 interrupted.\n"
    "Progress goes to standard error.\n";

int WrongUsage(const char* reason) {
  std::fprintf(stderr, "torvik: %s\n%s", reason, kHelp);
  return static_cast<int>(ERUNRESULT::Usage);
}

}  // namespace

int main(int argc, char** argv) {
  RUNOPTIONS options{0, stderr, stderr};
  std::vector<const char*> names;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--help" || argument == "-h") {
      std::fputs(kHelp, stdout);
      return 0;
    }
    if (argument == "--version") {
      std::printf("torvik " VEX_VERSION " (%s)\n", RankSupport());
      return 0;
    }
    if (argument == "--threads") {
      char* end = nullptr;
      constexpr long kMostThreads = 1024;
      const long threads = i + 1 < argc ? std::strtol(argv[++i], &end, 10) : 0;
      if (end == nullptr || *end != '\0' || threads < 1 || threads > kMostThreads) {
        return WrongUsage("--threads takes a number from 1 to 1024");
      }
      options.threads = static_cast<int>(threads);
      continue;
    }
    if (argument.starts_with("--")) return WrongUsage("there is no such option");
    names.push_back(argv[i]);
  }
  if (names.size() != 2) return WrongUsage("two files are needed, the syntax and the output");
  const auto ranks = JoinRanks(argc, argv);
  if (!ranks) {
    return WrongUsage("several processes were started, and this program was built without MPI");
  }
  WatchForInterrupts();
  options.ranks = ranks.get();
  return static_cast<int>(RunEngine(names[0], names[1], options));
}
