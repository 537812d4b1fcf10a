// Reads a syntax: the lines before the commands first, then, with the data file's description, the
// commands.
#pragma once

#include <vector>

#include "engine/Fault.h"
#include "engine/syntax/Job.h"

// Takes "RP=n", "SY='FILE'" and the RE that is joined to the line behind it from the front of
// `lines`, and leaves the command lines. Returns false with the reason in `fault`.
bool ParseHeader(std::vector<SyntaxLine>& lines, JOBHEADER& header, FAULT& fault);

// Reads the command lines into `job`, whose data and header are those of the data file named
// before. Returns false with the reason in `fault`; what was read until then stands in `job`.
bool ParseCommands(const std::vector<SyntaxLine>& lines, const TORVIKSTRUCT& data, JOB& job,
                   FAULT& fault);
