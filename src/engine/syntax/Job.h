// What a syntax file asks for.
#pragma once

#include <cstdint>
#include <functional>
#include <variant>
#include <vector>

#include "datadoc/CaseSelection.h"
#include "datadoc/DataSet.h"
#include "engine/syntax/Expression.h"
#include "engine/syntax/OutputLine.h"
#include "engine/syntax/Procedures.h"
#include "engine/syntax/Recode.h"
#include "engine/syntax/SyntaxLine.h"

// A covariate. The other variable types are those of the data set.
inline constexpr std::int32_t kFixed = 5;

// What stands before the commands.
struct JOBHEADER {
  std::int64_t repetitions = 1;
  bool rewind = false;  // each repetition starts again from the data of the file
  CString dataFile;
  SyntaxLine line;  // where the data file is named
};

// "NE name = expression"
struct COMPUTE {
  SyntaxLine line;
  std::int32_t target = 0;
  CExpression expression;
};

// New values that a procedure found: a function of the values of a case.
struct CASEFUNCTION {
  VARIABLELIST inputs;
  VARIABLELIST outputs;
  // Values in, values out; missing ones are NaN. Called from several threads.
  std::function<void(const double* inputs, double* outputs)> compute;
  // Called in its place where set; the case's number in the file is counted from 1.
  std::function<void(std::int64_t number, const double* inputs, double* outputs)> computeOfCase;
};

// Thresholds that a procedure fixed for those behind it.
struct GIVENTHRESHOLDS {
  std::int32_t variable = 0;
  std::vector<double> values;      // the categories, one more than thresholds
  std::vector<double> thresholds;  // of the normal variable behind
  bool marginal = false;           // estimated from the variable alone, not read from a file
};

using TRANSFORMATION = std::variant<COMPUTE, RECODE, CASEFUNCTION>;

struct JOB {
  JOBHEADER header;
  // The data file's description. Variables that NE lines make stand behind its own; the types are
  // those of this run.
  TORVIKSTRUCT data;
  std::int32_t fileVariables = 0;      // variables of the file
  std::vector<bool> typeSet;           // by variable: its type was given in the syntax
  std::vector<std::int32_t> selected;  // "SE", counted from 0, in that order; empty: all
  SyntaxLine selectedLine;             // the first of them
  CCaseSelection selection;
  std::vector<SyntaxLine> selectionLines;
  // In the order of their lines; behind them what procedures of this repetition add.
  std::vector<TRANSFORMATION> transformations;
  std::vector<PROCEDURE> procedures;  // none: screening
  VARIABLELIST emptyIn;  // cases where all of these are missing are left out; empty: none
  VARIABLELIST added;    // variables that procedures made; RA saves them as well
  std::vector<GIVENTHRESHOLDS> givenThresholds;  // the last one of a variable counts
  OUTPUTLINE output;
  // Several completed data sets that a procedure made: each fills in the missing values in its own
  // way. What follows is done on all of them.
  std::vector<CASEFUNCTION> completions;

  std::int64_t Repetitions() const {
    return output.repetitions > 0 ? output.repetitions : header.repetitions;
  }
};
