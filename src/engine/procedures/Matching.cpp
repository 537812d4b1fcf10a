#include "engine/procedures/Matching.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "engine/procedures/ProcedureReport.h"
#include "engine/run/Interrupt.h"
#include "engine/screen/CasesSections.h"
#include "engine/stats/NearestDonors.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/Univariate.h"
#include "host/Numbers.h"
#include "vexutils/FreeMemory.h"

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

enum class OUTCOME { Imputed, NoMatchingValues, NoDonors, TooDifferent };

const char* OutcomeText(OUTCOME outcome) {
  switch (outcome) {
    case OUTCOME::Imputed:
      return "imputed";
    case OUTCOME::NoMatchingValues:
      return "a matching value is missing";
    case OUTCOME::NoDonors:
      return "no donors";
    default:
      return "the donors differ too much";
  }
}

// A missing value and what became of it.
struct RECIPIENT {
  std::int64_t number = 0;  // of the case
  std::size_t row = 0;      // among the cases that are held
  OUTCOME outcome = OUTCOME::NoDonors;
  std::int64_t donors = 0;
  double ratio = 0;
  double value = kNone;
};

struct IMPUTEDVARIABLE {
  std::int32_t variable = 0;
  CString name;
  std::vector<double> categories;     // of an ordinal variable: those that have cases
  std::vector<RECIPIENT> recipients;  // in the order of the cases

  std::int64_t Count(OUTCOME outcome) const {
    return std::count_if(recipients.begin(), recipients.end(),
                         [outcome](const RECIPIENT& one) { return one.outcome == outcome; });
  }
  double ValueOf(std::int64_t number) const {
    const auto at =
        std::lower_bound(recipients.begin(), recipients.end(), number,
                         [](const RECIPIENT& one, std::int64_t n) { return one.number < n; });
    return at != recipients.end() && at->number == number ? at->value : kNone;
  }
};

class CMatching {
 public:
  CMatching(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        line_(std::get<IMPUTATION>(procedure.what)),
        variables_(std::make_shared<std::vector<IMPUTEDVARIABLE>>()) {}

  bool Run(FAULT& fault) {
    if (!CheckLists(fault) || !FindCategories(fault) || !FindScales(fault) || !HoldCases(fault))
      return false;
    for (IMPUTEDVARIABLE& one : *variables_) {
      if (!Match(one, fault)) return false;
    }
    Write();
    Impute();
    return true;
  }

 private:
  std::size_t Width() const { return line_.imputed.size() + line_.matching.size(); }

  bool CheckLists(FAULT& fault) {
    for (const std::int32_t variable : line_.imputed) {
      variables_->push_back({variable, ShownName(run_.job.data, variable), {}, {}});
      if (std::find(line_.matching.begin(), line_.matching.end(), variable) == line_.matching.end())
        continue;
      fault = ProcedureFault(procedure_,
                             "variable " + variables_->back().name +
                                 " stands among the variables to impute and the matching ones",
                             "Name it in one of the two lists.");
      return false;
    }
    return true;
  }

  // Ordinal variables keep their categories: the one nearest to the donors' mean is imputed.
  bool FindCategories(FAULT& fault) {
    SCREENVARIABLES found;
    const std::int32_t deletion = std::exchange(run_.job.data.deletion, kPairwise);
    const bool done = FindListedVariables(run_, line_.imputed, found, warnings_, fault);
    run_.job.data.deletion = deletion;
    if (!done) return false;
    for (std::size_t i = 0; i < variables_->size(); ++i) {
      IMPUTEDVARIABLE& one = (*variables_)[i];
      if (found.all[i].IsOrdinal()) one.categories = found.all[i].values.values;
      if (found.all[i].missing < found.counts.used) continue;
      fault = ProcedureFault(procedure_, "all values of variable " + one.name + " are missing",
                             "Leave the variable out of the list.");
      return false;
    }
    std::vector<CASECOLUMN> columns;
    for (const IMPUTEDVARIABLE& one : *variables_)
      columns.push_back({one.variable, one.categories});
    for (const std::int32_t variable : line_.matching) columns.push_back({variable, {}});
    run_.source.SetColumns(std::move(columns));
    run_.source.SetListwise(false);
    return true;
  }

  bool FindScales(FAULT& fault) {
    stats::CUnivariate univariate(static_cast<int>(Width()), stats::EDeletion::Pairwise,
                                  run_.threads);
    if (!run_.Pass(
            run_.source, [&](const CASEBLOCK& block) { univariate.Add(block.cells); }, fault)) {
      return false;
    }
    for (std::size_t j = 0; j < line_.matching.size(); ++j) {
      const stats::UnivariateResult one =
          univariate.Result(static_cast<int>(line_.imputed.size() + j));
      center_.push_back(one.mean);
      scale_.push_back(one.sd);
      if (one.status == stats::EStatus::Ok && one.sd > 0) continue;
      const CString name = ShownName(run_.job.data, line_.matching[j]);
      if (one.status == stats::EStatus::TooFewCases) {
        fault = ProcedureFault(procedure_,
                               "one case has a value of the matching variable " + name +
                                   ", and there is nothing to compare it with",
                               "Use more cases, or leave it out of the second list.");
        return false;
      }
      fault = ProcedureFault(
          procedure_,
          one.status == stats::EStatus::NoCases
              ? "all values of the matching variable " + name + " are missing"
              : "nothing can be matched on variable " + name + ": " +
                    stats::StatusText(one.status == stats::EStatus::Ok ? stats::EStatus::Constant
                                                                       : one.status),
          "Leave it out of the second list.");
      return false;
    }
    return true;
  }

  bool HoldCases(FAULT& fault) {
    const std::int64_t bytes =
        run_.source.Counts().used * static_cast<std::int64_t>((2 * Width() + 4) * sizeof(double));
    if (bytes > FreeMemoryBytes()) {
      fault = ProcedureFault(procedure_,
                             "matching holds all cases and needs up to " +
                                 std::to_string(bytes >> 20) + " MB of memory",
                             "Name fewer variables, or select fewer cases.");
      return false;
    }
    return run_.Pass(
        run_.source, [this](const CASEBLOCK& block) { Hold(block); }, fault);
  }

  void Hold(const CASEBLOCK& block) {
    const std::size_t imputed = line_.imputed.size();
    for (std::int64_t k = 0; k < block.cells.cases; ++k) {
      const double* const cells = block.cells.cells + k * block.cells.stride;
      const std::size_t row = numbers_.size();
      numbers_.push_back(block.numbers[k]);
      weights_.push_back(block.cells.weights != nullptr ? block.cells.weights[k] : 1);
      values_.insert(values_.end(), cells, cells + imputed);
      bool complete = true;
      for (std::size_t j = 0; j < line_.matching.size(); ++j) {
        matching_.push_back((cells[imputed + j] - center_[j]) / scale_[j]);
        complete = complete && !std::isnan(matching_.back());
      }
      complete_.push_back(complete ? 1 : 0);
      for (std::size_t i = 0; i < imputed; ++i) {
        if (std::isnan(cells[i])) (*variables_)[i].recipients.push_back({numbers_[row], row});
      }
    }
  }

  bool Match(IMPUTEDVARIABLE& one, FAULT& fault) {
    const auto at = static_cast<std::size_t>(&one - variables_->data());
    const std::size_t dimensions = line_.matching.size();
    stats::CNearestDonors donors(dimensions);
    for (std::size_t row = 0; row < numbers_.size(); ++row) {
      const double value = values_[row * line_.imputed.size() + at];
      if (complete_[row] != 0 && !std::isnan(value))
        donors.Add(matching_.data() + row * dimensions, value, weights_[row]);
    }
    donors.Finish();
    constexpr std::int64_t kPiece = 256;
    const auto count = static_cast<std::int64_t>(one.recipients.size());
    stats::ParallelFor(run_.threads, (count + kPiece - 1) / kPiece, [&](std::int64_t piece) {
      if (IsInterrupted()) return;
      for (std::int64_t i = piece * kPiece; i < std::min(count, (piece + 1) * kPiece); ++i)
        FindValue(donors, one, one.recipients[static_cast<std::size_t>(i)]);
    });
    run_.progress.NextStage();
    fault = FAULT();
    return !IsInterrupted();
  }

  void FindValue(const stats::CNearestDonors& donors, const IMPUTEDVARIABLE& variable,
                 RECIPIENT& one) const {
    if (complete_[one.row] == 0) {
      one.outcome = OUTCOME::NoMatchingValues;
      return;
    }
    if (donors.Donors() == 0) return;
    const auto match = donors.Find(matching_.data() + one.row * line_.matching.size());
    one.donors = match.donors;
    one.ratio = donors.Variance() > 0 ? match.variance / donors.Variance() : 0;
    if (!(one.ratio < line_.varianceRatio)) {
      one.outcome = OUTCOME::TooDifferent;
      return;
    }
    one.outcome = OUTCOME::Imputed;
    one.value = match.mean;
    if (!variable.categories.empty()) {
      one.value = *std::min_element(
          variable.categories.begin(), variable.categories.end(),
          [&](double a, double b) { return std::abs(a - match.mean) < std::abs(b - match.mean); });
    }
  }

  void Write() {
    WriteDataHeading(run_, Width(), "filled in from similar cases");
    const CASECOUNTS& counts = run_.source.Counts();
    CFactTable facts(LeftOutTable(run_, counts));
    facts.Add("Cases used, held in memory", std::to_string(counts.used));
    facts.Write(report_);
    WriteDataWarnings(run_, counts);
    for (const CString& warning : warnings_) report_.Warning(warning);
    report_.Section("Imputation by matching on " + NameList(run_.job.data, line_.matching));
    report_.Paragraph(
        "A missing value becomes the mean of the donors: the cases with a value that are nearest "
        "on the standardised matching variables. It is accepted when the variance of the donors' "
        "values is below " +
        FormatShortest(line_.varianceRatio) +
        " times that of all cases that could be donors. Ordinal variables get the category that is "
        "nearest to the mean.");
    report_.Gap();
    WriteSummary();
    if (line_.listing != IMPUTATION::Listing::None) WriteListing();
    report_.Gap();
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("The imputed values are not saved: add RA=file to the output line.");
    }
  }

  void WriteSummary() {
    TABLE table;
    table.columns = {{"Variable", true},   {"Missing", false},
                     {"Imputed", false},   {"No matching values", false},
                     {"No donors", false}, {"Too different", false}};
    std::int64_t left = 0;
    for (const IMPUTEDVARIABLE& one : *variables_) {
      std::vector<CString> row = {one.name, std::to_string(one.recipients.size())};
      for (const OUTCOME outcome :
           {OUTCOME::Imputed, OUTCOME::NoMatchingValues, OUTCOME::NoDonors, OUTCOME::TooDifferent})
        row.push_back(std::to_string(one.Count(outcome)));
      left += static_cast<std::int64_t>(one.recipients.size()) - one.Count(OUTCOME::Imputed);
      table.rows.push_back(std::move(row));
    }
    report_.Table(table);
    if (left > 0)
      report_.Warning(CountText(static_cast<double>(left), "missing value") +
                      (left == 1 ? " was" : " were") + " not imputed.");
  }

  void WriteListing() {
    const bool all = line_.listing == IMPUTATION::Listing::All;
    for (const IMPUTEDVARIABLE& variable : *variables_) {
      TABLE table;
      table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
      table.columns = {
          {"Case", false}, {"Value", false}, {"Donors", false}, {"Variance ratio", false}};
      if (all) table.columns.push_back({"Outcome", true});
      for (const RECIPIENT& one : variable.recipients) {
        const bool imputed = one.outcome == OUTCOME::Imputed;
        if (!all && !imputed) continue;
        std::vector<CString> row = {
            std::to_string(one.number), imputed ? report_.Number(one.value) : CString(),
            std::to_string(one.donors), one.donors > 0 ? report_.Number(one.ratio) : CString()};
        if (all) row.emplace_back(OutcomeText(one.outcome));
        table.rows.push_back(std::move(row));
      }
      if (table.rows.empty()) continue;
      report_.Subsection((all ? "Cases that lack " : "Cases with imputed values of ") +
                         variable.name);
      report_.Table(table);
    }
  }

  // From here on the run has the imputed values.
  void Impute() {
    CASEFUNCTION function;
    function.inputs = function.outputs = line_.imputed;
    function.computeOfCase = [variables = variables_](std::int64_t number, const double* in,
                                                      double* out) {
      for (std::size_t i = 0; i < variables->size(); ++i) {
        const IMPUTEDVARIABLE& one = (*variables)[i];
        const bool missing =
            std::isnan(in[i]) ||
            (!one.categories.empty() &&
             !std::binary_search(one.categories.begin(), one.categories.end(), in[i]));
        out[i] = missing ? one.ValueOf(number) : in[i];
      }
    };
    run_.job.transformations.emplace_back(std::move(function));
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const IMPUTATION& line_;
  std::vector<CString> warnings_;
  std::shared_ptr<std::vector<IMPUTEDVARIABLE>> variables_;
  std::vector<double> center_, scale_;
  // The cases: numbers, weights, values to impute, standardised matching values, and whether these
  // are all there.
  std::vector<std::int64_t> numbers_;
  std::vector<double> weights_, values_, matching_;
  std::vector<char> complete_;
};

}  // namespace

bool RunMatching(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CMatching(run, procedure).Run(fault);
}
