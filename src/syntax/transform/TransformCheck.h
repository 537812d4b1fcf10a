// Computations and recodings as the engine reads them: what it would not understand, said before
// anything is written.
#pragma once

#include "syntax/procedures/Procedures.h"

// What is wrong with the expression of the computation at `index`; empty: nothing. The variables
// that earlier computations make can be used.
CString ExpressionProblem(const TORVIKSTRUCT& data, const std::vector<Computation>& computations,
                          std::size_t index);

// What is wrong with the old and new values of a rule; empty: nothing.
CString RuleProblem(const TORVIKSTRUCT& data, const RecodeRule& rule);

// The first problem of the choices, when they are a computation or a recoding.
std::optional<ChoiceProblem> TransformProblem(const TORVIKSTRUCT& data,
                                              const ProcedureChoices& choices);

// Can an expression name this variable? Blanks, operators and names of digits alone cannot stand
// there.
bool CanStandInExpression(const CString& name);
