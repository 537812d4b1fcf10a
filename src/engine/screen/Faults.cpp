#include "engine/screen/Faults.h"

#include <algorithm>
#include <cmath>

#include "host/Text.h"

namespace {

void Note(ENGINERUN& run, FAULT fault) {
  const bool known =
      std::any_of(run.faults.begin(), run.faults.end(),
                  [&fault](const FAULT& other) { return other.cause == fault.cause; });
  if (!known) run.faults.push_back(std::move(fault));
}

}  // namespace

CString PairStatusText(stats::EStatus status, double last) {
  const CString text = stats::StatusText(status);
  if (status != stats::EStatus::NotConverged) return text;
  constexpr double kNearlyOne = 0.99;
  constexpr int kDecimals = 6;
  return text + ", the last value is " + CReport::Number(last, kDecimals) +
         (std::fabs(last) > kNearlyOne ? " (one variable is all but a function of the other)" : "");
}

FAULT OutputFault(const ENGINERUN& run, CString cause, CString remedy) {
  const SyntaxLine& line = run.job.output.line;
  return {line.number, CString(Trimmed(line.text)), std::move(cause), std::move(remedy)};
}

void NoteOutputFault(ENGINERUN& run, CString cause, CString remedy) {
  Note(run, OutputFault(run, std::move(cause), std::move(remedy)));
}

void NoteVariableFault(ENGINERUN& run, const SCREENVARIABLE& variable, stats::EStatus status) {
  const bool selected = run.job.selectedLine.number != 0;
  const SyntaxLine& line = selected ? run.job.selectedLine : run.job.output.line;
  Note(run, {line.number, CString(Trimmed(line.text)),
             "variable " + variable.name + " (number " + std::to_string(variable.variable + 1) +
                 "): " + stats::StatusText(status),
             "Leave the variable out with an SE line that names the others, or change the "
             "selection of cases."});
}
