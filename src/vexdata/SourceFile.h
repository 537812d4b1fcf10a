// The data file that a command reads: a system data file, a text file or a DSF file.
#pragma once

#include <CLI/CLI.hpp>

#include "datadoc/ExternData.h"
#include "vexdata/Commands.h"

class CDataDoc;

// Adds the options that say what DATA is; they are written into `source`, which must live as long.
void AddSourceArguments(CLI::App& command, SourceOptions& source);

// "vsf", "dsf" or "text": as asked for, else told from the extension; a text file also where an
// option asks for what only text files have.
CString KindOfSource(const SourceOptions& source);

// Opens DATA into the document, which has a view. False after a message.
bool OpenSource(const SourceOptions& source, CDataDoc& document);
