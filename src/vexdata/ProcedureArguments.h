// The procedures of "vexdata run": the choices of each dialog as options.
#pragma once

#include <optional>

#include <CLI/CLI.hpp>

#include "syntax/procedures/Procedures.h"

// Adds a command for each procedure. The one that is called puts its choices into `chosen`; their
// lists of variables hold what was typed (names, numbers, ranges), one entry of a list each.
void AddProcedures(CLI::App& run, std::optional<ProcedureChoices>& chosen);

// Turns the lists of variables as typed into names. False, after a message, when a variable is not
// there.
bool FindChosenVariables(const TORVIKSTRUCT& data, ProcedureChoices& choices);
