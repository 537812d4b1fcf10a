#include "syntax/procedures/Procedures.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "syntax/OutputDialog.h"
#include "syntax/procedures/ChoiceChecks.h"

namespace {

ProcedureEntry Entry(int command, const char* title, int outputMode, ProcedureChoices initial) {
  return {command, title, outputMode, false, false, false, kNoOutput, std::move(initial)};
}

ProcedureEntry OfOrdinal(ProcedureEntry entry) {
  entry.needsOrdinal = true;
  return entry;
}

ProcedureEntry Bootstrapping() {
  ProcedureEntry entry = Entry(1240, "Bootstrapping", kOutputBootstrapping, BootstrappingChoices());
  entry.allTests = entry.ownRepetitions = true;
  return entry;
}

ProcedureEntry Recode() {
  ProcedureEntry entry = Entry(1233, "Recode", kOutputOther, RecodeChoices());
  entry.noOutput = kNoOutputOfRecode;
  return entry;
}

using Table = std::array<ProcedureEntry, std::variant_size_v<ProcedureChoices>>;

const Table& ProcedureTable() {
  static const Table table = {
      Entry(34044, "Exploratory Factor Analysis", kOutputOther, FactorAnalysisChoices()),
      Entry(34077, "Ordinal Factor Analysis", kOutputOther, OrdinalFactorChoices()),
      Entry(34083, "Principal Component Analysis", kOutputOther, PrincipalComponentChoices()),
      OfOrdinal(
          Entry(9244, "Equal Threshold Test", kOutputEqualThresholds, EqualThresholdChoices())),
      OfOrdinal(Entry(9243, "Fix Thresholds", kOutputFixThresholds, FixThresholdChoices())),
      OfOrdinal(Entry(9249, "Homogeneity Test", kOutputHomogeneity, HomogeneityChoices())),
      Entry(1250, "Normal Scores", kOutputMarginalThresholds, NormalScoreChoices()),
      Entry(9240, "Impute Missing Values", kOutputOther, ImputationChoices()),
      Entry(34059, "Multiple Imputation", kOutputMultipleImputation, MultipleImputationChoices()),
      Bootstrapping(),
      Entry(9242, "Regression", kOutputOther, RegressionChoices()),
      Entry(34043, "Two-Stage Least-Squares", kOutputOther, TwoStageChoices()),
      Entry(1247, "Probit Regressions", kOutputProbit, ProbitChoices()),
      Entry(34063, "Logistic Regression", kNoOutputOptions, LogisticChoices()),
      Entry(34065, "Censored Regression", kNoOutputOptions, CensoredChoices()),
      Entry(1236, "Compute", kOutputCompute, ComputeChoices()),
      Recode(),
  };
  return table;
}

std::optional<ChoiceProblem> CheckNames(const CVariableNumbers& variables, const NameList& names) {
  for (const CString& name : names) {
    if (!variables.Has(name)) {
      return ChoiceProblem{"There is no variable " + ShownName(name) + ".", {}, ""};
    }
    if (variables.IsShared(name)) {
      return ChoiceProblem{
          "Several variables are called " + ShownName(name) + ". Please rename them first.",
          {},
          ""};
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const ProcedureEntry> Procedures() {
  return ProcedureTable();
}

const ProcedureEntry& EntryOf(const ProcedureChoices& choices) {
  return ProcedureTable()[choices.index()];
}

const ProcedureEntry* FindProcedure(int command) {
  const Table& table = ProcedureTable();
  const auto* const found = std::find_if(
      table.begin(), table.end(),
      [command](const ProcedureEntry& procedure) { return procedure.command == command; });
  return found == table.end() ? nullptr : found;
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const ProcedureChoices& choices) {
  return std::visit([&](const auto& chosen) { return TextOf(data, chosen); }, choices);
}

std::optional<ChoiceProblem> CheckChoices(const TORVIKSTRUCT& data, const ProcedureChoices& choices,
                                          const CString& folder) {
  ProcedureChoices copy = choices;
  const CVariableNumbers variables(data);
  for (const NameList* list : ListsOf(copy)) {
    if (auto problem = CheckNames(variables, *list)) return problem;
  }
  const auto check = [&](auto& chosen) {
    // Thresholds are read: the file is looked for where the engine will look.
    if constexpr (requires { chosen.thresholdFile; }) {
      if (!folder.empty() && !chosen.thresholdFile.empty()) {
        chosen.thresholdFile = (std::filesystem::path(folder) / chosen.thresholdFile).string();
      }
    }
    return ProblemOf(data, chosen);
  };
  return std::visit(check, copy);
}

ProcedureJob JobOf(const TORVIKSTRUCT& data, const TRVOUSTRUCT& options,
                   const ProcedureChoices& choices) {
  const ProcedureEntry& procedure = EntryOf(choices);
  ProcedureText text = TextOf(data, choices);
  TRVOUSTRUCT output = options;
  if (!text.newData.empty()) {
    output.bSaveData = 1;
    output.strDataFile = text.newData;
  }
  ProcedureJob job;
  job.lines = std::move(text.lines);
  job.lines.push_back(text.bareOutput ? "OU" : OutputLine(output, true) + text.outputTail);
  if (procedure.ownRepetitions) {
    job.repetitions = options.nRepetitions;
    job.rewind = options.bRewind;
  }
  job.noOutput = procedure.noOutput;
  return job;
}

int TestsOf(const TORVIKSTRUCT& data, const ProcedureChoices& choices) {
  if (EntryOf(choices).allTests) return kTestsAll;
  ProcedureChoices copy = choices;
  std::vector<std::int32_t> numbers;
  for (const NameList* list : ListsOf(copy)) {
    for (const std::int32_t number : VariableNumbers(data, *list)) numbers.push_back(number);
  }
  return TestsFor(data, numbers);
}

std::vector<NameList*> ListsOf(ProcedureChoices& choices) {
  std::vector<NameList*> lists;
  const auto collect = [&lists](auto& chosen) {
    for (const auto list : std::decay_t<decltype(chosen)>::kLists) {
      lists.push_back(&(chosen.*list));
    }
  };
  std::visit(collect, choices);
  return lists;
}

void ForgetAbsent(const TORVIKSTRUCT& data, ProcedureChoices& choices) {
  const CVariableNumbers variables(data);
  const auto isAbsent = [&variables](const CString& name) { return !variables.Has(name); };
  // A test is of two variables: both go when one does.
  if (auto* const homogeneity = std::get_if<HomogeneityChoices>(&choices)) {
    NameList kept;
    for (std::size_t i = 0; i + 1 < homogeneity->pairs.size(); i += 2) {
      const CString& first = homogeneity->pairs[i];
      const CString& second = homogeneity->pairs[i + 1];
      if (!isAbsent(first) && !isAbsent(second)) kept.insert(kept.end(), {first, second});
    }
    homogeneity->pairs = kept;
    return;
  }
  for (NameList* list : ListsOf(choices)) {
    list->erase(std::remove_if(list->begin(), list->end(), isAbsent), list->end());
  }
}
