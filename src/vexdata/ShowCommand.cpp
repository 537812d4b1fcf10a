#include <cerrno>
#include <cstdio>
#include <cstring>

#include "datadoc/Selections.h"
#include "datadoc/TextDump.h"
#include "host/Host.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SystemFile.h"

namespace {

// The exit code.
int ParseRange(const ShowOptions& options, const TORVIKSTRUCT& data, DumpRange& range) {
  range.variables = data.variables;
  range.recordEnd = data.records;
  if (!options.cases.empty()) {
    const auto cases = ParseCaseRange(options.cases, data.records);
    if (!cases) {
      AfxMessageBox("--cases: expected a number or a range such as 1-20, not " + options.cases);
      return kExitUsage;
    }
    range.recordBegin = cases->begin;
    range.recordEnd = cases->end;
  }
  CString problem;
  const auto columns = ParseVariableList(data, options.variables, problem);
  if (!columns) {
    AfxMessageBox("--variables: there is no variable " + problem);
    return kExitFailed;
  }
  range.columns = *columns;
  return kExitDone;
}

}  // namespace

int ShowCells(const ShowOptions& options) {
  CDescriptor file;
  VsfContents contents;
  DumpRange range;
  if (!OpenSystemFile(options.file, file, contents)) return kExitFailed;
  if (const int code = ParseRange(options, contents.data, range); code != kExitDone) return code;
  const auto print = [](std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  };
  const bool shown = DumpCells(file.Get(), contents.cellsOffset, range, print);
  if (shown && std::fflush(stdout) == 0) return kExitDone;
  if (errno != EPIPE) AfxMessageBox(options.file + ": " + std::strerror(errno));
  return kExitFailed;
}
