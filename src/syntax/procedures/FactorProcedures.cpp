#include "syntax/procedures/FactorProcedures.h"

#include "host/Text.h"
#include "syntax/procedures/ChoiceChecks.h"

namespace {

// The selection lines of a subset and the analysis line, as one entry of the list of lines.
class AnalysisText {
 public:
  AnalysisText(const TORVIKSTRUCT& data, const NameList& subset, const char* command) {
    AppendSelectionLines(data, subset, "SE ", text_);
    if (!subset.empty()) text_ += '\n';
    text_ += command;
  }
  AnalysisText& Word(bool wanted, const char* word) {
    if (wanted) (text_ += ' ') += word;
    return *this;
  }
  AnalysisText& Value(const char* key, const CString& value) {
    if (!value.empty()) ((text_ += ' ') += key) += value;
    return *this;
  }
  ProcedureText Get() const { return {{text_}, {}, false, {}}; }

 private:
  CString text_;
};

std::int64_t CountOf(const TORVIKSTRUCT& data, const NameList& subset) {
  return subset.empty() ? data.variables : static_cast<std::int64_t>(subset.size());
}

}  // namespace

ProcedureText TextOf(const TORVIKSTRUCT& data, const FactorAnalysisChoices& choices) {
  return AnalysisText(data, choices.subset, "FA")
      .Value("NF=", choices.factors)
      .Word(choices.minres, "MR")
      .Word(choices.scores, "FS")
      .Get();
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT&, const FactorAnalysisChoices&) {
  return std::nullopt;
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const OrdinalFactorChoices& choices) {
  return AnalysisText(data, choices.subset, choices.proportionalOdds ? "OFA POM" : "OFA NOR")
      .Value("NF=", CString(Trimmed(choices.factors)))
      .Get();
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const OrdinalFactorChoices& choices) {
  if (auto problem =
          CheckKind(data, choices.subset, IsOrdinalVariable, "ordinal variable", "subset")) {
    return problem;
  }
  if (choices.factors.empty()) return std::nullopt;
  return CheckWhole(choices.factors, 1, CountOf(data, choices.subset), "the number of factors",
                    "factors");
}

ProcedureText TextOf(const TORVIKSTRUCT& data, const PrincipalComponentChoices& choices) {
  return AnalysisText(data, choices.subset, "PC")
      .Value("NC=", CString(Trimmed(choices.components)))
      .Word(choices.correlations, "KM")
      .Word(choices.scores, "PS")
      .Get();
}

std::optional<ChoiceProblem> ProblemOf(const TORVIKSTRUCT& data,
                                       const PrincipalComponentChoices& choices) {
  if (choices.components.empty()) return std::nullopt;
  return CheckWhole(choices.components, 1, CountOf(data, choices.subset),
                    "the number of components", "components");
}
