// One function per command. Each returns an exit code (CommandLine.h); a failure has been told
// before.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Types.h"
#include "syntax/OutputOptions.h"
#include "syntax/procedures/Procedures.h"

struct ImportOptions {
  CString source;
  CString target;  // empty: the source's name with the extension VSF
  int type = -1;   // -1: told from the name
  std::vector<CString> select;
  bool keepLabels = false;
  bool overwrite = false;
};

struct ShowOptions {
  CString file;
  CString cases;      // empty: all
  CString variables;  // empty: all
};

struct ConvertOptions {
  CString source;
  CString target;
  CString layout;  // "old" or "new"
  bool overwrite = false;
};

struct ExportOptions {
  CString source;
  CString target;
  int type = -1;      // -1: told from the target's name
  CString delimiter;  // of the text type that has none of its own
  bool names = false;
  bool overwrite = false;
};

struct RunOptions {
  CString file;
  bool contents = false;                      // the contents listing
  std::optional<ProcedureChoices> procedure;  // as AddProcedures leaves them; none: the lines below
  std::vector<CString> lines;                 // as typed
  TRVOUSTRUCT output;                         // for the output line, where none was typed
  bool syntaxOnly = false;
  bool overwrite = false;  // the new data of a procedure may replace a file
};

int ListFormats(bool json);
int ImportFile(const ImportOptions& options);
int ShowInfo(const CString& fileName, bool json);
int ShowCells(const ShowOptions& options);
int ConvertFile(const ConvertOptions& options);
int ExportFile(const ExportOptions& options);
// Is there an output line among those typed?
bool HasOutputLine(const RunOptions& options);
int RunData(const RunOptions& options);
