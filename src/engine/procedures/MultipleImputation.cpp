#include "engine/procedures/MultipleImputation.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <thread>

#include "engine/procedures/ChainSections.h"
#include "engine/procedures/ImputedValues.h"
#include "engine/procedures/IncompleteSample.h"
#include "engine/procedures/PooledMoments.h"
#include "engine/procedures/SharedChains.h"
#include "engine/run/Interrupt.h"
#include "engine/screen/DataOutput.h"
#include "engine/stats/Parallel.h"
#include "vexutils/FreeMemory.h"

namespace {

using Eigen::Index;
using stats::EStatus;

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
    WriteChains(run_, line_, *values_);
    MakeCompletions();
    if (!WritePooledMoments(run_, line_, values_->variables, completions_, fault)) return false;
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
          CommaList(ordinal) + ".");
    }
    if (!censored.empty()) {
      report_.Warning("The values of the censored " + CommaList(censored) +
                      " are taken as those of normal variables.");
    }
    report_.Gap();
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
    values_->variables = sample_.Variables();
    values_->mean = sample_.Result().mean;
    values_->fillEmpty = line_.allMissing == MULTIPLEIMPUTATION::AllMissing::Mean;
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

  void MakeCompletions() {
    completions_ = CompletionsBy(values_, line_.variables);
    if (line_.allMissing == MULTIPLEIMPUTATION::AllMissing::Delete)
      run_.job.emptyIn = line_.variables;
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

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const MULTIPLEIMPUTATION& line_;
  CIncompleteSample sample_;
  std::shared_ptr<IMPUTEDVALUES> values_ = std::make_shared<IMPUTEDVALUES>();
  std::vector<CASEFUNCTION> completions_;
};

}  // namespace

bool RunMultipleImputation(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CMultipleImputation(run, procedure).Run(fault);
}
