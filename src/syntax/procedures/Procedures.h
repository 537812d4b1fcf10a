// The procedures: which there are, and what the choices made in any of their dialogs come to. The
// dialogs, the command line and the tests go through here.
#pragma once

#include <span>
#include <variant>

#include "syntax/ProcedureRun.h"
#include "syntax/procedures/Bootstrapping.h"
#include "syntax/procedures/FactorProcedures.h"
#include "syntax/procedures/Imputation.h"
#include "syntax/procedures/Regressions.h"
#include "syntax/procedures/ThresholdProcedures.h"
#include "syntax/procedures/Transformations.h"

struct TRVOUSTRUCT;

using ProcedureChoices =
    std::variant<FactorAnalysisChoices, OrdinalFactorChoices, PrincipalComponentChoices,
                 EqualThresholdChoices, FixThresholdChoices, HomogeneityChoices, NormalScoreChoices,
                 ImputationChoices, MultipleImputationChoices, BootstrappingChoices,
                 RegressionChoices, TwoStageChoices, ProbitChoices, LogisticChoices,
                 CensoredChoices, ComputeChoices, RecodeChoices>;

// Mode of a dialog without an Output Options button.
inline constexpr int kNoOutputOptions = -1;

struct ProcedureEntry {
  int command;               // of the menu
  const char* title;         // of the dialog
  int outputMode;            // of the Output Options dialog that it opens
  bool needsOrdinal;         // the command wants an ordinal variable in the data
  bool allTests;             // the Output Options offer every test whatever the variables are
  bool ownRepetitions;       // passes the repetitions of the output options to the syntax
  const char* noOutput;      // message
  ProcedureChoices initial;  // the dialog's choices the first time
};

// All of them, in the order of the alternatives of ProcedureChoices.
std::span<const ProcedureEntry> Procedures();
const ProcedureEntry& EntryOf(const ProcedureChoices& choices);
// Null when the command is no procedure with a dialog.
const ProcedureEntry* FindProcedure(int command);

// The procedure's part of the syntax file.
ProcedureText TextOf(const TORVIKSTRUCT& data, const ProcedureChoices& choices);

// What is to be said before anything is written; empty when the choices are in order. Names of
// files without a folder are those of `folder` (empty: the current one).
std::optional<ChoiceProblem> CheckChoices(const TORVIKSTRUCT& data, const ProcedureChoices& choices,
                                          const CString& folder = {});

// The lines of a run: the procedure's, then the output line made of `options`.
ProcedureJob JobOf(const TORVIKSTRUCT& data, const TRVOUSTRUCT& options,
                   const ProcedureChoices& choices);

// The `tests` argument of the Output Options dialog.
int TestsOf(const TORVIKSTRUCT& data, const ProcedureChoices& choices);

// Every list of variables in the choices. The pointers live as long as the choices.
std::vector<NameList*> ListsOf(ProcedureChoices& choices);

// Forgets variables that the data set does not have (any more).
void ForgetAbsent(const TORVIKSTRUCT& data, ProcedureChoices& choices);
