// Why a run cannot go on, in the words that its output uses.
#pragma once

#include "host/Types.h"

struct FAULT {
  int line = 0;      // of the syntax file, counted from 1; 0 when no line is to blame
  CString lineText;  // what stands there
  CString cause;
  CString remedy;  // what to do about it; may be empty

  explicit operator bool() const { return !cause.empty(); }
};
