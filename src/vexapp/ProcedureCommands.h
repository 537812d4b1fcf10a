// The commands that work on a data window's data set through the procedures' run: which there are,
// what each needs, and what it does. A new procedure is a row in ProcedureCommands.cpp.
#pragma once

#include <span>

class CDataWindow;

struct PROCEDURECOMMAND {
  int number;         // of the menu
  bool needsOrdinal;  // enabled only with at least one ordinal variable
  void (*run)(CDataWindow& window);
};

std::span<const PROCEDURECOMMAND> ProcedureCommands();
