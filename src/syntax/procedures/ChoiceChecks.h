// Checks that several procedures share.
#pragma once

#include <cstdint>
#include <optional>

#include "syntax/procedures/ProcedureText.h"
#include "syntax/procedures/VariableNumbers.h"

std::int32_t TypeOf(const TORVIKSTRUCT& data, const CString& name);
bool IsOrdinalVariable(const TORVIKSTRUCT& data, const CString& name);
bool IsCensoredVariable(const TORVIKSTRUCT& data, const CString& name);

// At least `fewest` names? `what` goes on from "Please select ": "at least one Y variable".
std::optional<ChoiceProblem> CheckCount(const NameList& names, std::size_t fewest, const char* what,
                                        const char* field);
// Are all of this kind? `kind` goes on from "NAME is no ": "ordinal variable".
std::optional<ChoiceProblem> CheckKind(const TORVIKSTRUCT& data, const NameList& names,
                                       bool (*isKind)(const TORVIKSTRUCT&, const CString&),
                                       const char* kind, const char* field);
// Is no variable in both lists?
std::optional<ChoiceProblem> CheckDisjoint(const NameList& a, const NameList& b, const char* field);
// A whole number from `low` to `high`? `what` goes on from "for ": "the number of factors".
std::optional<ChoiceProblem> CheckWhole(const CString& text, std::int64_t low, std::int64_t high,
                                        const char* what, const char* field);
// A file name as it can stand on the output line?
std::optional<ChoiceProblem> CheckFileName(const CString& name, const char* message,
                                           const char* field);

// The whole of `text` as a number.
std::optional<std::int64_t> WholeNumber(const CString& text);
std::optional<double> RealNumber(const CString& text);
