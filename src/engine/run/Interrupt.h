// Whether somebody asked the run to stop.
#pragma once

// From now on SIGINT and SIGTERM ask the run to stop instead of ending the program at once.
void WatchForInterrupts();
bool IsInterrupted();
// As the signals do; for tests, and with `false` to begin anew.
void SetInterrupted(bool interrupted);
