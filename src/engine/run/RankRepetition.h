// What one process made of a repetition, on its way to the others.
#pragma once

#include <string>
#include <vector>

#include "engine/Fault.h"

struct RANKREPETITION {
  bool done = false;
  bool failed = false;  // the report says why
  FAULT fault;
  CString text;  // of the report
  std::vector<CString> warnings;
  std::vector<std::string> files;  // what goes into each

  std::string Pack() const;
  static RANKREPETITION Unpack(const std::string& bytes);
};
