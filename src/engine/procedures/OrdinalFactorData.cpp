#include "engine/procedures/OrdinalFactorData.h"

#include "engine/screen/CasesSections.h"
#include "vexutils/FreeMemory.h"

namespace {

// Does each category of one variable go with one category of the other only, and back?
bool AreTheSame(const stats::FrequencyTable& table) {
  std::vector<int> inRow(static_cast<std::size_t>(table.rows), 0);
  std::vector<int> inColumn(static_cast<std::size_t>(table.columns), 0);
  for (int a = 0; a < table.rows; ++a) {
    for (int b = 0; b < table.columns; ++b) {
      if (table.At(a, b) == 0) continue;
      if (++inRow[static_cast<std::size_t>(a)] > 1 || ++inColumn[static_cast<std::size_t>(b)] > 1)
        return false;
    }
  }
  return true;
}

}  // namespace

// The census is that of pairwise deletion: a variable's own cases.
bool COrdinalFactorData::Find(FAULT& fault) {
  const auto kept = run_.job.data.deletion;
  run_.job.data.deletion = kPairwise;
  const bool found = FindScreenVariables(run_, variables_, warnings_, fault);
  run_.job.data.deletion = kept;
  for (const SCREENVARIABLE& variable : variables_.all) names_.push_back(variable.name);
  return found;
}

bool COrdinalFactorData::CheckVariables(FAULT& fault) const {
  for (const SCREENVARIABLE& variable : variables_.all) {
    const std::size_t categories = variable.values.values.size();
    if (!variable.IsOrdinal()) {
      const bool many = variable.values.tooMany;
      fault = Fault("variable " + variable.name +
                        (many ? CString(" has more than ") +
                                    std::to_string(VALUECOUNTS::kMostValues) + " different values"
                              : CString(" is ") + TypeText(variable.type)) +
                        ", and this procedure takes ordinal variables",
                    many ? "Join values to categories with RC, or choose other variables with SE."
                         : "Choose ordinal variables with SE, or treat it as ordinal with an OR "
                           "line.");
    } else if (categories == 0) {
      fault = Fault("all values of variable " + variable.name + " are missing",
                    "Leave the variable out with SE, or change the selection of cases.");
    }
    if (fault) return false;
  }
  const std::size_t p = variables_.all.size();
  const double n = variables_.census.weight;
  if (!(n > static_cast<double>(p))) {
    fault = Fault((n == 1 ? "there is " : "there are ") + CountText(n, "case") + " for " +
                      CountText(static_cast<double>(p), "variable") +
                      ", and this procedure needs more cases than variables",
                  "Select fewer variables with SE, or more cases.");
    return false;
  }
  for (const SCREENVARIABLE& variable : variables_.all) {
    if (variable.values.values.size() > 1) continue;
    fault =
        Fault("variable " + variable.name + " has one category only among the cases that are used",
              "Leave the variable out with SE, or change the selection of cases.");
    return false;
  }
  return true;
}

bool COrdinalFactorData::CheckPairs(FAULT& fault) const {
  for (int i = 1; i < patterns_->Variables(); ++i) {
    for (int j = 0; j < i; ++j) {
      const auto& pair = polychoric_.pairs[static_cast<std::size_t>(stats::PairIndex(i, j))];
      const CString both =
          names_[static_cast<std::size_t>(j)] + " and " + names_[static_cast<std::size_t>(i)];
      if (pair.n == 0) {
        fault = Fault("no case has answers to both " + both,
                      "Leave one of the two variables out with SE.");
      } else if (AreTheSame(tables_->Table(i, j))) {
        fault = Fault("variables " + both +
                          " are the same: each category of one goes with one category of the "
                          "other, and the likelihood has no maximum",
                      "Leave one of the two variables out with SE.");
      }
      if (fault) return false;
    }
  }
  return true;
}

bool COrdinalFactorData::Read(FAULT& fault) {
  if (!Find(fault) || !CheckVariables(fault)) return false;
  std::vector<int> categories;
  for (const SCREENVARIABLE& variable : variables_.all)
    categories.push_back(static_cast<int>(variable.values.values.size()));
  patterns_ = std::make_shared<stats::COrdinalPatterns>(categories);
  tables_.emplace(categories, stats::EDeletion::Pairwise, run_.threads);
  const std::int64_t most = FreeMemoryBytes();
  const bool done = run_.Pass(
      run_.source,
      [&](const CASEBLOCK& block) {
        tables_->Add(block.codes);
        if (patterns_->Bytes() < most) patterns_->Add(block.codes);
      },
      fault);
  if (!done) return false;
  if (patterns_->Bytes() >= most) {
    fault = Fault("the different answers of the cases need more than " +
                      std::to_string(most >> 20) + " MB of memory",
                  "Select fewer variables with SE, or join categories with RC.");
    return false;
  }
  polychoric_ = stats::EstimatePolychoricMatrix(*tables_, run_.threads);
  return CheckPairs(fault);
}

void COrdinalFactorData::Write() const {
  WriteDataHeading(run_, names_.size(), "none: maximum likelihood from all answers");
  CFactTable facts(LeftOutTable(run_, variables_.counts));
  facts.Add("Cases used", std::to_string(patterns_->Cases()));
  if (run_.source.HasWeights()) facts.Add("Sum of their weights", CReport::Count(patterns_->N()));
  facts.Add("Complete cases", std::to_string(patterns_->Complete()));
  facts.Add("Cases with all values missing", std::to_string(patterns_->AllMissing()));
  facts.Add("Patterns of answers", std::to_string(patterns_->Patterns()));
  facts.Write(run_.report);
  WriteDataWarnings(run_, variables_.counts);
  for (const CString& warning : warnings_) run_.report.Warning(warning);
  run_.report.Gap();
  run_.report.Paragraph("The patterns of answers are held in memory: " +
                        std::to_string((patterns_->Bytes() >> 20) + 1) + " MB.");
}
