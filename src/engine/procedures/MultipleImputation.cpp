#include "engine/procedures/MultipleImputation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>

#include "engine/procedures/IncompleteSample.h"
#include "engine/procedures/SharedChains.h"
#include "engine/run/Interrupt.h"
#include "engine/screen/DataOutput.h"
#include "engine/stats/Augmentation.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/Pooling.h"
#include "vexutils/FreeMemory.h"

namespace {

using Eigen::Index;
using stats::EStatus;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// What fills in the missing values; shared by the functions of all completed data sets.
struct COMPLETEDVALUES {
  std::vector<INCOMPLETEVARIABLE> variables;
  std::unique_ptr<stats::CAugmentationSample> sample;
  std::vector<stats::AugmentationChain> chains;
  Eigen::VectorXd mean;  // expected values
  bool fillEmpty = false;

  // A value of the model's variable j in units of the data.
  double ValueOf(std::size_t j, double drawn) const {
    const INCOMPLETEVARIABLE& one = variables[j];
    if (!one.IsOrdinal()) return one.center + one.scale * drawn;
    const int category = sample->Variable(static_cast<int>(j)).CategoryOf(drawn);
    return one.categories[static_cast<std::size_t>(category)];
  }

  bool IsMissing(std::size_t j, double value) const {
    return std::isnan(value) || (variables[j].IsOrdinal() && variables[j].CategoryOf(value) < 0);
  }

  void Complete(std::size_t chain, std::int64_t number, const double* in, double* out) const {
    const std::size_t p = variables.size();
    std::size_t missing = 0;
    for (std::size_t j = 0; j < p; ++j) {
      const bool none = IsMissing(j, in[j]);
      out[j] = none ? kNone : in[j];
      missing += none ? 1 : 0;
    }
    if (missing == 0) return;
    if (missing == p) {
      for (std::size_t j = 0; j < p && fillEmpty; ++j) {
        out[j] = variables[j].IsOrdinal() ? ValueOf(j, mean(static_cast<Index>(j)))
                                          : mean(static_cast<Index>(j));
      }
      return;
    }
    const std::size_t place = sample->PlaceOf(number);
    if (place == sample->Held()) return;  // a case without a weight
    const double* drawn = chains[chain].imputed.data() + sample->FirstMissing(place);
    for (std::size_t j = 0; j < p; ++j) {
      if (std::isnan(out[j])) out[j] = ValueOf(j, *drawn++);
    }
  }
};

class CMultipleImputation {
 public:
  CMultipleImputation(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        line_(std::get<MULTIPLEIMPUTATION>(procedure.what)),
        sample_(run, procedure) {}

  bool Run(FAULT& fault) {
    if (run_.job.output.samples > 0 && line_.dataSets > 1) {
      fault = ProcedureFault(
          procedure_,
          "bootstrapping (BS) takes its samples from one data set, and RP asks "
          "for " +
              std::to_string(line_.dataSets),
          "Leave out BS=: what the procedures below estimate is pooled over the data "
          "sets by Rubin's rules, with standard errors and intervals. Or bootstrap "
          "EM in place of MC.");
      return false;
    }
    if (!sample_.Read(true, fault)) return false;
    sample_.WriteCases();
    report_.Section("MC: multiple imputation of an incomplete multivariate normal sample");
    WriteMethod();
    if (!sample_.Estimate(fault) || !HoldCases(fault)) return false;
    sample_.WriteHistory();
    if (!DrawChains(fault)) return false;
    WriteConvergence();
    WritePlot();
    MakeCompletions();
    if (!WritePooled(fault)) return false;
    WriteNotes();
    if (completions_.size() == 1) {
      run_.job.transformations.emplace_back(std::move(completions_.front()));
    } else {
      run_.job.completions = std::move(completions_);
    }
    return true;
  }

 private:
  CString DataSets() const {
    return line_.dataSets == 1 ? "1 data set" : std::to_string(line_.dataSets) + " data sets";
  }

  void WriteMethod() {
    report_.Paragraph(
        "Data augmentation, started at the EM values: missing values are drawn given means and "
        "covariances, means and covariances given all values, in turn. Each completed data set "
        "comes from a chain of its own, after its last iteration.");
    std::vector<CString> ordinal, censored;
    for (const INCOMPLETEVARIABLE& one : sample_.Variables()) {
      if (one.IsOrdinal()) {
        ordinal.push_back(one.name + " (" + std::to_string(one.categories.size()) + ")");
        continue;
      }
      const auto type = run_.job.data.variable[static_cast<std::size_t>(one.variable)].type;
      if (type >= kCensoredAbove && type <= kCensoredBoth) censored.push_back(one.name);
    }
    if (!ordinal.empty()) {
      report_.Gap();
      report_.Paragraph(
          "Ordinal variables stand for underlying normal variables, which are drawn as well, and "
          "are imputed by the categories that the thresholds of the observed values cut; EM takes "
          "them by their normal scores. Ordinal, with the number of categories: " +
          Joined(ordinal) + ".");
    }
    if (!censored.empty()) {
      report_.Warning("The values of the censored " + Joined(censored) +
                      " are taken as those of normal variables.");
    }
    report_.Gap();
  }

  static CString Joined(const std::vector<CString>& names) {
    CString text;
    for (const CString& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
  }

  bool CheckMemory(FAULT& fault) const {
    std::int64_t missing = 0;
    for (const INCOMPLETEVARIABLE& one : sample_.Variables()) missing += one.missing;
    const auto p = static_cast<std::int64_t>(sample_.Variables().size());
    const auto& patterns = sample_.Patterns();
    const std::int64_t used = run_.source.Counts().used - patterns.AllMissing();
    const bool ordinal = sample_.HasOrdinal();
    const std::int64_t held = ordinal ? used : used - patterns.Complete();
    constexpr std::int64_t kEachCase = 48;
    const std::int64_t states =
        ordinal ? std::min<std::int64_t>(line_.dataSets, stats::ThreadCount(run_.threads)) : 0;
    const std::int64_t bytes = held * (p * 8 * (1 + states) + kEachCase) +
                               missing * 8 * line_.dataSets + line_.dataSets * line_.iterations * 8;
    if (bytes <= FreeMemoryBytes()) return true;
    fault = ProcedureFault(procedure_,
                           "the incomplete cases and " + DataSets() + " need up to " +
                               std::to_string(bytes >> 20) + " MB of memory",
                           "Ask for fewer data sets (RP), name fewer variables, or close other "
                           "programs.");
    return false;
  }

  bool HoldCases(FAULT& fault) {
    if (!CheckMemory(fault)) return false;
    std::vector<stats::AugmentationVariable> model;
    for (const INCOMPLETEVARIABLE& one : sample_.Variables())
      model.push_back({one.center, one.scale, one.thresholds});
    values_->sample = std::make_unique<stats::CAugmentationSample>(std::move(model));
    stats::CAugmentationSample& held = *values_->sample;
    const bool done =
        sample_.Pass([&held](const stats::CaseBlock& block,
                             const std::int64_t* numbers) { held.Add(block, numbers); },
                     fault);
    if (!done) return false;
    held.Finish();
    if (held.N() > static_cast<double>(held.Variables())) return true;
    fault = ProcedureFault(procedure_, "there are no more cases than variables",
                           "Name fewer variables, or use more cases.");
    return false;
  }

  stats::AugmentationStart Start() const {
    const stats::IncompleteNormalResult& em = sample_.Result();
    const auto p = em.mean.size();
    Eigen::VectorXd center(p), scale(p);
    for (Index j = 0; j < p; ++j) {
      const INCOMPLETEVARIABLE& one = sample_.Variables()[static_cast<std::size_t>(j)];
      center(j) = one.center;
      // Scores vary less than the variable that they stand for.
      scale(j) = one.IsOrdinal() ? std::sqrt(em.covariance(j, j)) : one.scale;
    }
    const Eigen::VectorXd inverse = scale.cwiseInverse();
    stats::AugmentationStart start;
    start.mean = (em.mean - center).cwiseProduct(inverse);
    start.covariance = inverse.asDiagonal() * em.covariance * inverse.asDiagonal();
    start.meanDirection = em.meanStep;
    start.covarianceDirection = em.covarianceStep;
    const double length = std::sqrt(em.meanStep.squaredNorm() + em.covarianceStep.squaredNorm());
    if (length > 0) {
      start.meanDirection /= length;
      start.covarianceDirection /= length;
    }
    return start;
  }

  bool DrawChains(FAULT& fault) {
    stats::AugmentationOptions options;
    options.chains = static_cast<int>(line_.dataSets);
    options.iterations = static_cast<int>(line_.iterations);
    options.seed = run_.seed;
    options.repetition = static_cast<std::uint64_t>(run_.repetition);
    options.threads = run_.threads;
    options.goOn = [this, caller = std::this_thread::get_id()](double share) {
      if (std::this_thread::get_id() == caller) run_.progress.Tell(share);
      return !IsInterrupted();
    };
    const stats::AugmentationStart start = Start();
    const bool drawn =
        DrawSharedChains(run_, *values_->sample, start, options, values_->chains, fault);
    run_.progress.NextStage();
    if (!drawn) return false;
    for (std::size_t i = 0; i < values_->chains.size(); ++i) {
      const stats::AugmentationChain& chain = values_->chains[i];
      if (chain.status == EStatus::Ok) continue;
      fault = ProcedureFault(
          procedure_,
          "the chain of data set " + std::to_string(i + 1) +
              " came to a covariance matrix that is "
              "not positive definite in iteration " +
              std::to_string(chain.watched.size() + 1),
          "Leave out variables that nearly depend on each other or are rarely observed together.");
      return false;
    }
    return true;
  }

  void WriteConvergence() {
    CFactTable facts;
    facts.Add("Completed data sets (RP)", std::to_string(line_.dataSets));
    facts.Add("Iterations of each chain (IT)", std::to_string(line_.iterations));
    facts.Add("Seed", std::to_string(static_cast<std::int64_t>(run_.seed)));
    facts.Add("Missing values drawn", std::to_string(values_->sample->MissingValues()));
    facts.Add("Cases held in memory", std::to_string(values_->sample->Held()));
    report_.Subsection("Chains");
    facts.Write(report_);
    if (line_.iterations < kFewestForWindows) {
      report_.Warning(
          "The chains are too short for checks of their convergence: ask for at least " +
          std::to_string(kFewestForWindows) + " iterations (IT).");
      return;
    }
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true},  {"Missing", false}, {"Mean", false},
                     {"St. dev.", false}, {"R: mean", false}, {"R: variance", false}};
    std::vector<CString> apart;
    const auto p = static_cast<Index>(sample_.Variables().size());
    for (Index j = 0; j < p; ++j) AddConvergenceRow(j, table, apart);
    report_.Subsection("Draws of means and standard deviations, second half of the chains");
    report_.Paragraph(
        "R is the potential scale reduction over the third and last quarter of all chains, near 1 "
        "when they agree. Ordinal variables: of the underlying variable.");
    report_.Gap();
    report_.Table(table);
    if (!apart.empty()) {
      report_.Warning("The chains have not come together (R above 1.2) for " + Joined(apart) +
                      ": ask for more iterations (IT).");
    }
  }

  void AddConvergenceRow(Index j, TABLE& table, std::vector<CString>& apart) {
    const INCOMPLETEVARIABLE& one = sample_.Variables()[static_cast<std::size_t>(j)];
    const auto p = static_cast<Index>(sample_.Variables().size());
    double mean = 0, variance = 0;
    for (const stats::AugmentationChain& chain : values_->chains) {
      for (const auto& window : chain.windows) {
        mean += window.average(j);
        variance += window.average(p + j);
      }
    }
    const auto windows = static_cast<double>(2 * values_->chains.size());
    double r[2];
    for (int k = 0; k < 2; ++k) {
      r[k] = stats::PotentialScaleReduction(values_->chains, j + k * p,
                                            static_cast<int>(line_.iterations));
    }
    constexpr double kApart = 1.2;
    if (r[0] > kApart || r[1] > kApart) apart.push_back(one.name);
    table.rows.push_back({one.name, std::to_string(one.missing),
                          report_.Number(one.center + one.scale * mean / windows),
                          report_.Number(one.scale * std::sqrt(variance / windows)),
                          report_.Number(r[0]), report_.Number(r[1])});
  }

  // The numbers of a plot of the chains, and how long they remember.
  void WritePlot() {
    const auto& chains = values_->chains;
    const double first = stats::Autocorrelation(chains, 1);
    if (std::isnan(first)) return;  // EM has not moved, or one iteration
    report_.Subsection("Convergence plot: the direction in which EM converges most slowly");
    TABLE table;
    constexpr std::size_t kShownChains = 5;
    constexpr std::int64_t kPoints = 20;
    table.columns.push_back({"Iteration", false});
    const std::size_t shown = std::min(kShownChains, chains.size());
    for (std::size_t c = 0; c < shown; ++c)
      table.columns.push_back({"Chain " + std::to_string(c + 1), false});
    const std::int64_t length = line_.iterations;
    const std::int64_t points = std::min(kPoints, length);
    for (std::int64_t k = 1; k <= points; ++k) {
      const std::int64_t at = k * length / points;
      std::vector<CString> row = {std::to_string(at)};
      for (std::size_t c = 0; c < shown; ++c)
        row.push_back(report_.Number(chains[c].watched[static_cast<std::size_t>(at - 1)]));
      table.rows.push_back(std::move(row));
    }
    report_.Table(table);
    report_.Subsection("Its correlation with itself so many iterations later");
    TABLE lags;
    lags.columns = {{"Lag", false}, {"Correlation", false}};
    for (const std::size_t lag : {1, 2, 5, 10, 20, 50, 100}) {
      if (static_cast<std::int64_t>(2 * lag) > length) break;
      lags.rows.push_back(
          {std::to_string(lag), report_.Number(stats::Autocorrelation(chains, lag))});
    }
    report_.Table(lags);
  }

  void MakeCompletions() {
    values_->variables = sample_.Variables();
    values_->mean = sample_.Result().mean;
    values_->fillEmpty = line_.allMissing == MULTIPLEIMPUTATION::AllMissing::Mean;
    for (std::size_t chain = 0; chain < values_->chains.size(); ++chain) {
      CASEFUNCTION function;
      function.inputs = function.outputs = line_.variables;
      function.computeOfCase = [values = std::shared_ptr<const COMPLETEDVALUES>(values_), chain](
                                   std::int64_t number, const double* in, double* out) {
        values->Complete(chain, number, in, out);
      };
      completions_.push_back(std::move(function));
    }
    if (line_.allMissing == MULTIPLEIMPUTATION::AllMissing::Delete)
      run_.job.emptyIn = line_.variables;
  }

  // Means, standard deviations and correlations of one completed data set.
  bool Moments(const CASEFUNCTION& completion, stats::MomentMatrix& covariances, double& n,
               FAULT& fault) {
    JOB job = run_.job;
    job.transformations.emplace_back(completion);
    CCaseSource source(run_.file, job, run_.seed, run_.repetition, run_.threads);
    std::vector<CASECOLUMN> columns;
    for (const std::int32_t variable : line_.variables) columns.push_back({variable, {}});
    source.SetColumns(std::move(columns));
    source.SetListwise(true);
    stats::CMoments moments(static_cast<int>(line_.variables.size()), stats::EDeletion::Listwise,
                            run_.threads);
    if (!run_.Pass(
            source, [&moments](const CASEBLOCK& block) { moments.Add(block.cells); }, fault)) {
      return false;
    }
    covariances = stats::ComputeMoments(moments, stats::EMoments::Covariance);
    n = moments.N(0, 0);
    return true;
  }

  // Correlations are averaged on the scale on which they are nearly normal.
  static void AddFishersZ(const stats::MomentMatrix& moments, Eigen::MatrixXd& sums) {
    constexpr double kLargest = 1 - 1e-12;
    for (Index i = 0; i < sums.rows(); ++i) {
      for (Index j = 0; j < sums.cols(); ++j) {
        const double r = moments.matrix(i, j) / (moments.sd(i) * moments.sd(j));
        sums(i, j) += std::atanh(std::clamp(r, -kLargest, kLargest));
      }
    }
  }

  bool WritePooled(FAULT& fault) {
    const std::size_t p = sample_.Variables().size();
    std::vector<std::vector<double>> means(p), errors(p), deviations(p);
    Eigen::MatrixXd correlations =
        Eigen::MatrixXd::Zero(static_cast<Index>(p), static_cast<Index>(p));
    double n = 0;
    for (const CASEFUNCTION& completion : completions_) {
      stats::MomentMatrix one;
      if (!Moments(completion, one, n, fault)) return false;
      if (one.status != EStatus::Ok || !(one.sd.minCoeff() > 0)) return true;  // nothing to show
      AddFishersZ(one, correlations);
      for (std::size_t j = 0; j < p; ++j) {
        const auto at = static_cast<Index>(j);
        means[j].push_back(one.mean(at));
        errors[j].push_back(one.sd(at) / std::sqrt(n));
        deviations[j].push_back(one.sd(at));
      }
    }
    WritePooledMeans(means, errors, deviations, n);
    for (double& element : correlations.reshaped())
      element = std::tanh(element / static_cast<double>(completions_.size()));
    correlations.diagonal().setOnes();
    std::vector<CString> names;
    for (const INCOMPLETEVARIABLE& one : sample_.Variables()) names.push_back(one.name);
    report_.Subsection("Correlations of the completed data, averaged as Fisher's z");
    report_.Table(TriangleTable(report_, names, correlations));
    return true;
  }

  void WritePooledMeans(const std::vector<std::vector<double>>& means,
                        const std::vector<std::vector<double>>& errors,
                        const std::vector<std::vector<double>>& deviations, double n) {
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true},      {"Mean", false},    {"Std. error", false},
                     {"95% from", false},     {"to", false},      {"df", false},
                     {"Missing inf.", false}, {"St. dev.", false}};
    for (std::size_t j = 0; j < means.size(); ++j) {
      const stats::PooledEstimate pooled = stats::PoolEstimates(means[j], errors[j], n - 1);
      double variance = 0;
      for (const double sd : deviations[j])
        variance += sd * sd / static_cast<double>(deviations[j].size());
      table.rows.push_back(
          {sample_.Variables()[j].name, report_.Number(pooled.value), report_.Number(pooled.error),
           report_.Number(pooled.low), report_.Number(pooled.high), CReport::Number(pooled.df, 1),
           report_.Number(pooled.missingInformation), report_.Number(std::sqrt(variance))});
    }
    report_.Subsection("Means of the completed data, n = " + CReport::Count(n) +
                       (line_.dataSets > 1 ? ", pooled by Rubin's rules" : ""));
    if (line_.dataSets == 1) {
      report_.Paragraph(
          "One data set does not tell how uncertain the imputed values are: the standard errors "
          "are those of complete data.");
      report_.Gap();
    }
    report_.Table(table);
  }

  void WriteNotes() {
    using AllMissing = MULTIPLEIMPUTATION::AllMissing;
    report_.Gap();
    if (values_->sample->MissingValues() == 0) {
      report_.Warning("No value is missing: there is nothing to impute.");
    }
    if (run_.source.Counts().withoutWeight > 0) {
      report_.Warning(
          "Cases without a weight above zero are not imputed and keep their missing values.");
    }
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("The completed data are not saved: add RA=file to the output line.");
      return;
    }
    const std::vector<CString> names = SavedFileNames(run_.job);
    report_.Paragraph(CString("The completed data are saved in ") + names.front() +
                      (names.size() > 1 ? " to " + names.back() : CString()) +
                      ". Cases with all values missing are " +
                      (line_.allMissing == AllMissing::Delete ? "left out."
                       : line_.allMissing == AllMissing::Mean ? "kept with the means."
                                                              : "left as they are."));
  }

  static constexpr std::int64_t kFewestForWindows = 8;

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const MULTIPLEIMPUTATION& line_;
  CIncompleteSample sample_;
  std::shared_ptr<COMPLETEDVALUES> values_ = std::make_shared<COMPLETEDVALUES>();
  std::vector<CASEFUNCTION> completions_;
};

}  // namespace

bool RunMultipleImputation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CMultipleImputation(run, procedure).Run(fault);
}
