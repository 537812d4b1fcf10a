// The commands that work on a data window's data set through the procedures' run: which there are,
// what each needs, and what it does.
#pragma once

#include <functional>
#include <span>

class CDataWindow;

struct PROCEDURECOMMAND {
  int number;         // of the menu
  bool needsOrdinal;  // enabled only with at least one ordinal variable
  std::function<void(CDataWindow& window)> run;
};

std::span<const PROCEDURECOMMAND> ProcedureCommands();
