// The output options as options of the command line.
#pragma once

#include <CLI/CLI.hpp>

#include "syntax/OutputOptions.h"

// Adds them to a command; they are written into `options`, which must live as long.
void AddOutputArguments(CLI::App& command, TRVOUSTRUCT& options);

// Was one of them given?
bool HasOutputArguments(const CLI::App& command);
