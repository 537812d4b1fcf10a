// What the choices made in a procedure's dialog come to.
#pragma once

#include <optional>

#include "host/Types.h"

// The procedure's part of a syntax file.
struct ProcedureText {
  CStringList lines;        // before the output line; an entry may hold several lines
  CString outputTail;       // appended to the output line
  bool bareOutput = false;  // the output line is "OU" alone
  CString newData;          // file of the run's data (the RA part); empty: as the options say
};

// Why a dialog stays open.
struct ChoiceProblem {
  CString text;
  CString caption;         // empty: the program's name
  const char* field = "";  // the choice that is to blame, by the name of its member
};
