// The data-screening engine as a child process: started, watched and cancelled without a toolkit
// and without waiting.
#pragma once

#include <cstdint>

#include <sys/types.h>

#include "host/Types.h"
#include "vexutils/BlockIo.h"

// Use: Start, then Poll from an event loop (or Wait) until it returns false, then Result. What the
// engine writes to standard error is read all the time, so that it never waits for us; its standard
// output goes nowhere. It runs in a process group of its own: signals from the terminal do not
// reach it, Cancel reaches its own children too. The destructor ends an engine that still runs.
class CEngineProcess {
 public:
  static constexpr std::int64_t kGrace = 5000;  // milliseconds

  CEngineProcess() = default;
  ~CEngineProcess();
  CEngineProcess(const CEngineProcess&) = delete;
  CEngineProcess& operator=(const CEngineProcess&) = delete;

  // The folder that the engine works in, where names without a folder are looked for and written;
  // ours unless set before Start.
  void SetFolder(const CString& folder) { folder_ = folder; }
  // Runs `engine` with the two names as its arguments, made absolute. False, with Reason(), when it
  // cannot be started. Once per object.
  bool Start(const CString& engine, const CString& syntaxFile, const CString& outputFile);

  // Takes what has been said since and looks whether the engine still runs. Does not wait.
  bool Poll();
  // As Poll, but waits up to `milliseconds` for something to happen.
  bool Wait(int milliseconds);

  // Asks the engine to stop (as Ctrl+C does). When it still runs `grace` milliseconds later, Poll
  // kills it. Further calls do nothing.
  void Cancel(std::int64_t grace = kGrace);
  bool IsCancelled() const { return cancelled_; }

  // 0 to 1; negative while the engine has not told.
  double Progress() const { return progress_; }
  // What the engine ended with: its exit code, or 128 and the number of the signal that ended it.
  // Negative while it runs and when there is no output file.
  int Result() const { return result_; }
  // Why there is no result, or how the engine was ended by force; empty otherwise. The last line
  // that it said is part of it.
  const CString& Reason() const { return reason_; }
  // Readable when the engine has something to say or has closed its standard error; -1 when
  // nothing more will come. For an event loop; stays the object's own.
  int Descriptor() const { return said_.Get(); }

 private:
  bool Spawn(const CString& engine, int errorEnd);
  void ReadWhatWasSaid();
  void TakeText(const char* text, std::size_t size);
  void TakeLine();
  void KillWhenDue();
  bool HasEnded();
  void Finish(int status);

  pid_t child_ = -1;  // -1: none runs
  CDescriptor said_;
  CString syntaxFile_;
  CString outputFile_;
  CString folder_;
  CString line_;      // the line that is being said, cut to a length
  CString lastLine_;  // the last one that was no progress
  CString reason_;
  double progress_ = -1;
  int result_ = -1;
  bool cancelled_ = false;
  std::int64_t killAt_ = 0;  // tick count
};
