#include "engine/procedures/ProcedureTable.h"

#include "engine/procedures/CensoredRegression.h"
#include "engine/procedures/FactorAnalysis.h"
#include "engine/procedures/HomogeneityTest.h"
#include "engine/procedures/IncompleteData.h"
#include "engine/procedures/Matching.h"
#include "engine/procedures/MultipleImputation.h"
#include "engine/procedures/NormalScores.h"
#include "engine/procedures/OrdinalFactorAnalysis.h"
#include "engine/procedures/OrdinalRegression.h"
#include "engine/procedures/PrincipalComponents.h"
#include "engine/procedures/Regression.h"
#include "engine/procedures/Thresholds.h"
#include "host/Text.h"

namespace {

struct ROW {
  const char* word;  // of the syntax
  ProcedureRunner run;
};

constexpr ROW kRows[] = {
    {"FA", RunFactorAnalysis},      {"OFA", RunOrdinalFactorAnalysis},
    {"PC", RunPrincipalComponents}, {"HT", RunHomogeneityTest},
    {"ET", RunEqualThresholds},     {"FT", RunFixedThresholds},
    {"MT", RunMarginalThresholds},  {"NS", RunNormalScores},
    {"RG", RunRegression},          {"TS", RunTwoStageRegression},
    {"PR", RunOrdinalRegression},   {"LO", RunOrdinalRegression},
    {"CR", RunCensoredRegression},  {"EM", RunExpectationMaximisation},
    {"MC", RunMultipleImputation},  {"IMPUTE", RunMatching},
};

}  // namespace

ProcedureRunner RunnerOf(const PROCEDURE& procedure) {
  const std::string_view word = FirstWord(procedure.line.text);
  for (const ROW& row : kRows) {
    if (EqualIgnoringCase(row.word, word)) return row.run;
  }
  return nullptr;
}
