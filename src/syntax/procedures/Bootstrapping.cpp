#include "syntax/procedures/Bootstrapping.h"

#include <limits>

#include "syntax/procedures/ChoiceChecks.h"

ProcedureText TextOf(const TORVIKSTRUCT&, const BootstrappingChoices& choices) {
  ProcedureText text;
  text.outputTail = " BS=" + std::to_string(WholeNumber(choices.samples).value_or(0)) +
                    " SF=" + std::to_string(WholeNumber(choices.fraction).value_or(0)) + ' ';
  if (choices.saveMatrices) text.outputTail += "BM=" + choices.matricesFile + ' ';
  if (choices.saveMeans) text.outputTail += "ME=" + choices.meansFile + ' ';
  if (choices.saveDeviations) text.outputTail += "SD=" + choices.deviationsFile + ' ';
  return text;
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const BootstrappingChoices& choices) {
  constexpr std::int64_t kMostSamples = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t kAllCases = 100;
  if (auto problem = CheckWhole(choices.samples, 1, kMostSamples, "the number of bootstrap samples",
                                "samples")) {
    return problem;
  }
  if (auto problem = CheckWhole(choices.fraction, 1, kAllCases,
                                "the sample fraction, in percent of the cases", "fraction")) {
    return problem;
  }
  const struct {
    bool save;
    const CString& file;
    const char* field;
  } files[] = {{choices.saveMatrices, choices.matricesFile, "matricesFile"},
               {choices.saveMeans, choices.meansFile, "meansFile"},
               {choices.saveDeviations, choices.deviationsFile, "deviationsFile"}};
  for (const auto& [save, file, field] : files) {
    if (!save) continue;
    if (auto problem =
            CheckFileName(file, "Please enter the file name for the saved data.", field)) {
      problem->caption = "Missing File Name";
      return problem;
    }
  }
  return std::nullopt;
}
