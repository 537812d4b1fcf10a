#include "transfer/ExportLosses.h"

#include <algorithm>
#include <memory>

#include "host/Text.h"
#include "host/statrn32.h"
#include "transfer/FileTypes.h"

namespace {

struct CloseEnvironment {
  void operator()(ST_ENV* env) const { ST_CloseEnvironment(env); }
};

bool HasMissingValues(const VARSTRUCT& variable) {
  return std::any_of(std::begin(variable.missing), std::end(variable.missing),
                     [](double value) { return value != kNotSet; });
}

template <typename TEST>
void NoteCount(const TORVIKSTRUCT& data, const TEST& test, const char* what,
               std::vector<CString>& losses) {
  const auto end = data.variable.begin() + std::max(0, data.variables);
  const auto count = std::count_if(data.variable.begin(), end, test);
  if (count > 0) losses.push_back(what + std::to_string(count) + " variable(s).");
}

// What is never handed over: names and values are all that an export takes along.
void NoteDescription(const TORVIKSTRUCT& data, std::vector<CString>& losses) {
  NoteCount(
      data, [](const VARSTRUCT& v) { return !Trimmed(v.description.c_str()).empty(); },
      "Descriptions stay behind: those of ", losses);
  NoteCount(
      data, [](const VARSTRUCT& v) { return v.categories > 0; },
      "Category labels stay behind: those of ", losses);
  NoteCount(data, HasMissingValues,
            "Cells that are missing by definition become plain missing values, in ", losses);
  if (IsVariableNumber(data, data.weightVariable)) {
    losses.emplace_back("The choice of a weight variable stays behind.");
  }
}

void NoteFormat(const TORVIKSTRUCT& data, std::int32_t type, std::vector<CString>& losses) {
  const std::unique_ptr<ST_ENV, CloseEnvironment> env(ST_OpenEnvironment());
  if (!env || ST_InitUserDict(env.get(), data.variables) != 0) return;
  for (int i = 0; i < data.variables; ++i) {
    const CString name = TextForDisplay(data.variable[static_cast<std::size_t>(i)].name);
    ST_AddUserVar(env.get(), name.c_str(), ST_TYPE_NUMERIC, 0, 0);
  }
  ST_SetNCases(env.get(), std::max(0, data.records));
  const int count = ST_GetNLosses(env.get(), type);
  for (int i = 0; i < count; ++i) losses.emplace_back(ST_GetLoss(env.get(), i));
}

}  // namespace

std::vector<CString> ExportLosses(const TORVIKSTRUCT& data, std::int32_t type) {
  std::vector<CString> losses;
  NoteDescription(data, losses);
  if (!STUtils::IsTextFileType(type)) NoteFormat(data, type, losses);
  return losses;
}
