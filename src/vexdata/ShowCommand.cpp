#include <cerrno>
#include <cstdio>
#include <cstring>

#include "datadoc/DataDoc.h"
#include "datadoc/Selections.h"
#include "datadoc/TextDump.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SourceFile.h"
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

int Print(const ShowOptions& options, const TORVIKSTRUCT& data, int file, std::int64_t offset) {
  DumpRange range;
  if (const int code = ParseRange(options, data, range); code != kExitDone) return code;
  const auto print = [](std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  };
  if (DumpCells(file, offset, range, print) && std::fflush(stdout) == 0) return kExitDone;
  if (errno != EPIPE) AfxMessageBox(options.source.file + ": " + std::strerror(errno));
  return kExitFailed;
}

}  // namespace

int ShowCells(const ShowOptions& options) {
  if (KindOfSource(options.source) == "vsf") {
    CDescriptor file;
    VsfContents contents;
    if (!OpenSystemFile(options.source.file, file, contents)) return kExitFailed;
    return Print(options, contents.data, file.Get(), contents.cellsOffset);
  }
  CDataDoc document;
  const CDataView view(document);
  if (!OpenSource(options.source, document)) return kExitFailed;
  return Print(options, *document.GetTorvik(), fileno(view.GetScratchStream()), 0);
}
