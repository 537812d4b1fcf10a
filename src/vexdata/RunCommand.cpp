#include <algorithm>
#include <filesystem>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Text.h"
#include "syntax/ProcedureRun.h"
#include "syntax/transform/TransformCheck.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/ProcedureArguments.h"
#include "vexdata/SystemFile.h"

namespace {

// As a window names its document: wherever the syntax file is run from, it finds the data.
CString FullName(const CString& fileName) {
  std::error_code error;
  const auto path = std::filesystem::absolute(fileName, error);
  return error ? fileName : path.lexically_normal().string();
}

bool IsOutputLine(std::string_view line) {
  line = Trimmed(line);
  return EqualIgnoringCase(line.substr(0, line.find_first_of(" \t")), "OU");
}

ProcedureJob JobOf(CDataDoc& document, const RunOptions& options) {
  CStringList lines(options.lines.begin(), options.lines.end());
  if (!HasOutputLine(options)) return JobOfLines(document, std::move(lines));
  ProcedureJob job;
  job.lines = std::move(lines);
  return job;
}

// Makes the choices of a procedure ready to run. False, after a message, when they are not in
// order.
bool Prepare(const TORVIKSTRUCT& data, ProcedureChoices& choices, bool overwrite) {
  if (!FindChosenVariables(data, choices)) return false;
  auto problem = CheckChoices(data, choices);
  if (!problem) problem = TransformProblem(data, choices);
  if (problem) {
    AfxMessageBox(problem->text);
    return false;
  }
  const CString newData = TextOf(data, choices).newData;
  return newData.empty() || MayWrite(newData, overwrite);
}

// The syntax names the data file: the description is all that is needed of it, not the cells.
ProcedureResult RunLines(CDataDoc& document, const CString& fileName, const RunOptions& options) {
  CDescriptor file;
  VsfContents contents;
  if (!OpenSystemFile(fileName, file, contents)) return {};
  *document.GetTorvik() = std::move(contents.data);
  document.SetPathName(fileName, false);
  *document.GetOutputOptions() = options.output;
  const int endCode = options.syntaxOnly ? kEndSyntax : kEndRun;
  if (!options.procedure) {
    return RunProcedure(
        document, [&] { return endCode; }, [&] { return JobOf(document, options); });
  }
  const TORVIKSTRUCT& data = *document.GetTorvik();
  ProcedureChoices choices = *options.procedure;
  return RunProcedure(
      document, [&] { return Prepare(data, choices, options.overwrite) ? endCode : kEndCancel; },
      [&] { return JobOf(data, options.output, choices); });
}

ProcedureResult RunContents(CDataDoc& document, const CString& fileName) {
  const CDataView view(document);
  if (!document.OnOpenDbmsDocument(fileName)) return {};
  return RunContentsListing(document);
}

}  // namespace

bool HasOutputLine(const RunOptions& options) {
  return std::any_of(options.lines.begin(), options.lines.end(), IsOutputLine);
}

int RunData(const RunOptions& options) {
  const CString fileName = FullName(options.file);
  CDataDoc document;
  const ProcedureResult result =
      options.contents ? RunContents(document, fileName) : RunLines(document, fileName, options);
  if (result.state == ProcedureState::SyntaxShown) return kExitDone;
  if (result.state != ProcedureState::Done) return kExitFailed;
  if (result.engine == 0) return kExitDone;
  AfxMessageBox("the engine ended with code " + std::to_string(result.engine) +
                "; its output says why");
  return kExitFailed;
}
