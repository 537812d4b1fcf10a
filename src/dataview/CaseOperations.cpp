#include "dataview/CaseOperations.h"

#include <algorithm>

std::int64_t InsertionCase(const InsertCasesRequest& request, std::int64_t cases) {
  const std::int64_t position = request.caseNumber - 1;
  const bool behindLast = request.after && position >= cases - 1;
  if (request.atEnd || position > cases || behindLast) return cases;
  if (position < 0) return 0;
  return position + (request.after ? 1 : 0);
}

std::int32_t InsertionVariable(const InsertVariablesRequest& request, std::int32_t variables) {
  const std::int32_t selected = std::max(request.variable, 0);
  const bool behindLast = request.after && selected == variables - 1;
  if (request.atEnd || selected > variables || behindLast) return variables;
  return std::min(selected + (request.after ? 1 : 0), variables);
}

CaseRange DeletionRange(const DeleteCasesRequest& request, std::int64_t cases) {
  std::int64_t begin = request.from - 1;
  std::int64_t end = cases;
  if (request.form == DeleteCasesForm::FromTo) end = request.to;
  if (request.form == DeleteCasesForm::FirstAndCount) {
    begin = request.first - 1;
    if (__builtin_add_overflow(begin, request.count, &end)) end = cases;
  }
  begin = std::clamp<std::int64_t>(begin, 0, cases);
  return {begin, std::clamp<std::int64_t>(end, begin, cases)};
}

std::optional<std::int64_t> StartingCase(std::int64_t currentRow, std::int64_t cases) {
  if (cases < 1) return 0;
  if (currentRow < 0) return std::nullopt;
  return std::min(currentRow, cases - 1) + 1;
}
