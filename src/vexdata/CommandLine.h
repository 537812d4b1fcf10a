// The command line of vexdata.
#pragma once

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// Runs one command. The exit code is one of the above; a failure has said why on standard error.
int RunCommandLine(int argc, const char* const* argv);
