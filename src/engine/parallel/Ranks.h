// The processes that work on one run together. Each makes the whole run from the same files, but
// computes only its share of what can be divided, and gets the shares of the others: all of them
// know the same at every place, and what comes out is the same for any number. Only the first one
// writes.
#pragma once

#include <string>
#include <vector>

#include "host/Types.h"

// How a rank's part of the run ended.
enum class ERANKEND { Done, Failed, Interrupted };

// One process by itself; the base of those with company.
class CRanks {
 public:
  CRanks() = default;
  virtual ~CRanks() = default;
  CRanks(const CRanks&) = delete;
  CRanks& operator=(const CRanks&) = delete;

  virtual int Rank() const { return 0; }
  virtual int Count() const { return 1; }
  virtual int CountHere() const { return 1; }  // that share this machine
  bool IsFirst() const { return Rank() == 0; }
  bool IsAlone() const { return Count() == 1; }

  // Hands `mine` to all ranks and takes theirs, by rank. All ranks call it, in the same order and
  // from the thread that made this object. False when another rank's run has ended, or this one was
  // asked to stop: then the run cannot go on, and Problem says why.
  virtual bool Exchange(const std::string& mine, std::vector<std::string>& all) {
    all = {mine};
    return true;
  }

  // The last call. Waits for all ranks; true when each of them is done.
  virtual bool End(ERANKEND end, const CString& /*reason*/) { return end == ERANKEND::Done; }

  // Why Exchange or End was false; empty when somebody interrupted the run.
  virtual CString Problem() const { return {}; }
};
