// The one sequence in which every procedure runs: refuse an unsaved document, show the dialog,
// write the syntax file, then open it, or run the engine on it and open the output.
#pragma once

#include <functional>

#include "host/Types.h"

class CDataDoc;

inline constexpr const char* kNotSaved = "Please save data before performing this operation";
// When there is no output. The commands differ in the spelling, which stays as it is.
inline constexpr const char* kNoOutput = "Serious errors occured, no output file available!";
inline constexpr const char* kNoOutputOfRecode =
    "Serious errors occurred, no output file available!";

// How a procedure's dialog can end, and what follows.
inline constexpr int kEndRun = 1;
inline constexpr int kEndCancel = 2;
inline constexpr int kEndSyntax = 1140;  // the dialog's Syntax button
enum class ProcedureAction { Nothing, Run, SyntaxOnly };
ProcedureAction ActionOfEndCode(int endCode);

// What a procedure's dialog came to.
struct ProcedureJob {
  CStringList lines;     // the procedure's own lines, then the output line
  long repetitions = 1;  // bootstrapping alone passes those of the output options
  int rewind = 0;
  const char* noOutput = kNoOutput;
};

// The procedure's lines with the document's output line behind them; `outputParts` ("BS=50 SF=60 ")
// are appended to that line.
ProcedureJob JobOfLines(CDataDoc& document, CStringList lines, const CString& outputParts = {});

enum class ProcedureState {
  Refused,      // unsaved, or a file would have been lost; told
  NotWanted,    // the dialog was left without a run
  SyntaxShown,  // the syntax file was opened
  Failed,       // there is no output; told
  Done,         // the output was opened
};
struct ProcedureResult {
  ProcedureState state = ProcedureState::Refused;
  int engine = -1;  // what the engine came to; negative: no output
};

// May a procedure be asked for at all? There must be variables and raw data, and where it works on
// ordinal variables at least one of them.
bool CanRunProcedure(const CDataDoc& document, bool needsOrdinal = false);

// Has the document a system data file that holds what it shows? Tells the user when not.
bool IsSavedForRun(const CDataDoc& document);

// `showDialog` shows the procedure's dialog and returns its end code; `collect` is asked for the
// lines when something is to be done. The syntax and output files lie beside the data file under
// its name (.TRK, .OUT) and replace those of the run before.
ProcedureResult RunProcedure(CDataDoc& document, const std::function<int()>& showDialog,
                             const std::function<ProcedureJob()>& collect);

// The command Data Screening: the contents listing, without a dialog.
ProcedureResult RunContentsListing(CDataDoc& document);

// Runs the engine on a syntax file as it stands; the output takes its name with .OUT.
ProcedureResult RunSyntaxFile(const CString& syntaxFile, const char* noOutput = kNoOutput);
