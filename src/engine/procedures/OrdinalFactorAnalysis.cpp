#include "engine/procedures/OrdinalFactorAnalysis.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/procedures/Eigenvalues.h"
#include "engine/procedures/LoadingTables.h"
#include "engine/procedures/OrdinalFactorSections.h"
#include "engine/run/Interrupt.h"
#include "engine/stats/Components.h"
#include "engine/stats/FactorAnalysis.h"
#include "host/Numbers.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using stats::EStatus;

// A communality from here on is worth a warning.
constexpr double kLargeCommunality = 0.95;

class COrdinalFactorAnalysis {
 public:
  COrdinalFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        ofa_(std::get<ORDINALFACTORANALYSIS>(procedure.what)),
        data_(run, procedure) {
    solution_.link = ofa_.proportionalOdds ? stats::ELink::Logistic : stats::ELink::Probit;
  }

  bool Run(FAULT& fault) {
    if (!data_.Read(fault)) return false;
    data_.Write();
    report_.Section("Factor analysis of ordinal variables");
    eigenvalues_ = stats::EstimateComponents(data_.Polychoric().correlation).eigenvalues;
    if (!ChooseFactors(fault)) return false;
    WriteHeading();
    if (ofa_.factors == 0) WriteEigenvalues(run_, eigenvalues_, {});
    const bool done = Estimate();
    run_.progress.NextStage();
    if (!done) return false;
    if (!Check(fault)) return false;
    if (run_.sampling != nullptr) NoteEstimates();
    if (IsSample()) return true;
    WriteWarnings();
    WriteOrdinalFactorHistory(report_, solution_.result);
    WriteOrdinalFactorFit(run_, data_, solution_);
    WriteOrdinalFactorEstimates(report_, data_, solution_, true);
    WriteScores();
    return true;
  }

 private:
  bool IsSample() const { return run_.sampling != nullptr && run_.sampling->isSample; }

  void NoteEstimates() {
    run_.sampling->settled = solution_.factors;
    NoteRotatedLoadings(run_, data_.Names(), solution_.varimax.loadings);
  }

  bool ChooseFactors(FAULT& fault) {
    const auto p = static_cast<int>(data_.Names().size());
    const bool chosen = ofa_.factors > 0;
    std::int64_t wanted = ofa_.factors;
    if (!chosen) wanted = std::max<std::int64_t>(1, (eigenvalues_.array() > 1).count());
    // A sample has as many factors as all cases.
    if (!chosen && run_.sampling != nullptr && run_.sampling->settled) {
      wanted = static_cast<std::int64_t>(*run_.sampling->settled);
    }
    int most = 0;
    while (most < stats::kMostFactors && most + 1 < p &&
           stats::FactorDegreesOfFreedom(p, most + 1) >= 0) {
      ++most;
    }
    solution_.factors = static_cast<int>(std::min<std::int64_t>(wanted, most));
    if (wanted <= most) return true;
    CString cause = std::to_string(wanted) + (wanted == 1 ? " factor of " : " factors of ") +
                    std::to_string(p) + " variables " +
                    (wanted == 1 ? "is not identified" : "are not identified");
    if (most == stats::kMostFactors) {
      cause = std::to_string(wanted) +
              " factors need more quadrature points than can be gone "
              "through";
    }
    fault = ProcedureFault(
        procedure_, cause + (chosen ? CString() : " (so many eigenvalues are above 1)"),
        most > 0 ? "Ask for at most " + CountText(most, "factor") + " (NF), or use more variables."
                 : CString("Use at least three variables."));
    return false;
  }

  void WriteHeading() {
    CFactTable facts;
    facts.Add("Response function",
              ofa_.proportionalOdds ? "proportional odds (POM)" : "normal ogive (NOR)");
    facts.Add("Method", "full-information maximum likelihood (EM, then Newton)");
    const int nodes = stats::DefaultNodes(solution_.factors);
    facts.Add("Quadrature",
              "adaptive Gauss-Hermite, " + std::to_string(nodes) + " points in each dimension");
    facts.Add("n", CReport::Count(data_.Patterns()->N()));
    facts.Add("Factors", std::to_string(solution_.factors) +
                             (ofa_.factors > 0 ? "" : " (polychoric eigenvalues above 1)"));
    facts.Write(report_);
  }

  // MINRES of the polychoric correlations, or their components when that has no solution.
  stats::OrdinalFactorParameters Start() const {
    const MatrixXd& correlation = data_.Polychoric().correlation;
    const auto factors = stats::EstimateFactors(correlation, data_.Patterns()->N(),
                                                solution_.factors, stats::EFactorMethod::Minres);
    MatrixXd loadings = factors.loadings;
    if (factors.status != EStatus::Ok || !loadings.allFinite()) {
      loadings = stats::EstimateComponents(correlation).loadings.leftCols(solution_.factors);
    }
    std::vector<std::vector<double>> thresholds;
    for (int j = 0; j < data_.Patterns()->Variables(); ++j)
      thresholds.push_back(stats::EstimateThresholds(data_.Patterns()->Margin(j)).threshold);
    return stats::StartingParameters(loadings, thresholds, solution_.link);
  }

  bool Estimate() {
    stats::OrdinalFactorOptions options;
    options.threads = run_.threads;
    options.goOn = [] { return !IsInterrupted(); };
    options.told = [&](const stats::OrdinalFactorStep& step) {
      // The gradient falls from about 0.1 to where the steps end.
      const double all = std::log(kFirstGradient / options.gradient);
      run_.progress.Tell(std::log(kFirstGradient / step.largestGradient) / all);
    };
    solution_.result =
        stats::EstimateOrdinalFactors(*data_.Patterns(), solution_.link, Start(), options);
    if (solution_.result.stopped) return false;
    if (solution_.result.parameters.Variables() == 0) return true;
    stats::COrdinalFactorPass pass(*data_.Patterns(), solution_.link, solution_.factors,
                                   solution_.result.nodes, run_.threads);
    solution_.residualVariance = pass.Response().ResidualVariance();
    const auto& parameters = solution_.result.parameters;
    solution_.loadings = stats::StandardisedLoadings(parameters.slopes, solution_.residualVariance);
    solution_.varimax = stats::RotateVarimax(solution_.loadings);
    if (IsSample()) return true;
    stats::OrdinalFactorParameters rotated = parameters;
    rotated.slopes *= solution_.varimax.transformation;
    return solution_.result.status != EStatus::Ok ||
           pass.Scores(rotated, options.goOn, solution_.scores);
  }

  bool Check(FAULT& fault) {
    const stats::OrdinalFactorResult& result = solution_.result;
    if (result.status == EStatus::Ok) return true;
    if (!result.history.empty() && solution_.loadings.allFinite()) {
      report_.Gap();
      report_.Paragraph(
          "The estimation has not come to its end. What follows are the last values, which are "
          "no estimates.");
      WriteOrdinalFactorHistory(report_, result);
      WriteOrdinalFactorEstimates(report_, data_, solution_, false);
    }
    const CString fewer =
        "Ask for fewer factors (NF), leave the variable out with SE, or join "
        "its categories with RC.";
    if (result.status == EStatus::Boundary) {
      fault = ProcedureFault(procedure_,
                             "Heywood case: the factors explain variable " +
                                 data_.Names()[static_cast<std::size_t>(result.variable)] + " to " +
                                 report_.Number(Communality(result.variable)) +
                                 ", and the likelihood has no maximum (last log-likelihood " +
                                 report_.Number(result.logLikelihood) + ")",
                             fewer);
    } else if (result.status == EStatus::NotConverged) {
      fault = ProcedureFault(procedure_,
                             "the estimation has not converged in " +
                                 std::to_string(result.history.size()) + " steps" + Halt() +
                                 ": the last log-likelihood is " +
                                 report_.Number(result.logLikelihood) + ", its gradient " +
                                 FormatShortest(result.largestGradient) + NearHeywood(),
                             fewer);
    } else {
      fault = ProcedureFault(
          procedure_,
          CString("the factors cannot be estimated: ") + stats::StatusText(result.status),
          "Ask for fewer factors (NF), or use more cases or fewer categories (RC).");
    }
    return false;
  }

  double Communality(Index variable) const {
    return solution_.loadings.row(variable).squaredNorm();
  }

  // Why an estimation ended before its last step.
  CString Halt() const {
    const auto most = static_cast<std::size_t>(stats::OrdinalFactorOptions().mostSteps);
    if (solution_.result.history.size() >= most) return {};
    return ", where the quadrature, with " + std::to_string(solution_.result.nodes) +
           " points in each dimension, could not follow the likelihood and would have had too many "
           "points with more";
  }

  // What an estimation that does not converge probably suffers from.
  CString NearHeywood() const {
    Index variable = 0;
    const Eigen::VectorXd communalities = solution_.loadings.rowwise().squaredNorm();
    if (!(communalities.maxCoeff(&variable) > kLargeCommunality)) return {};
    return ", and the factors explain variable " +
           data_.Names()[static_cast<std::size_t>(variable)] + " to " +
           report_.Number(communalities(variable)) + ", close to a Heywood case";
  }

  void WriteWarnings() {
    for (Index j = 0; j < solution_.loadings.rows(); ++j) {
      const double communality = solution_.loadings.row(j).squaredNorm();
      if (communality < kLargeCommunality) continue;
      report_.Warning("The factors explain variable " + data_.Names()[static_cast<std::size_t>(j)] +
                      " to " + report_.Number(communality) +
                      ", nearly all. Fewer factors, or more variables for each, may help.");
    }
  }

  void WriteReliability() {
    const stats::OrdinalFactorScores& scores = solution_.scores;
    const stats::COrdinalPatterns& patterns = *data_.Patterns();
    TABLE table;
    table.columns = {{"", true}, {"St. dev. of scores", false}, {"Reliability", false}};
    for (Index k = 0; k < scores.means.cols(); ++k) {
      double mean = 0, square = 0, variance = 0;
      for (std::int64_t i = 0; i < patterns.Patterns(); ++i) {
        const double share = patterns.Frequency(i) / patterns.N();
        mean += share * scores.means(i, k);
        square += share * scores.means(i, k) * scores.means(i, k);
        variance += share * scores.variances(i, k);
      }
      const double between = square - mean * mean;
      table.rows.push_back({"Factor " + std::to_string(k + 1), report_.Number(std::sqrt(between)),
                            report_.Number(between / (between + variance))});
    }
    report_.Subsection(solution_.factors > 1 ? "Scores of the VARIMAX-rotated factors"
                                             : "Scores of the factor");
    report_.Table(table);
  }

  void WriteScores() {
    WriteReliability();
    report_.Gap();
    if (run_.files.Find("RA") == nullptr) {
      report_.Paragraph("The scores are not saved: RA=file on the output line saves them.");
      return;
    }
    const VARIABLELIST outputs =
        AddVariables(run_.job, "FACTOR", static_cast<std::size_t>(solution_.factors));
    CASEFUNCTION function;
    std::vector<std::vector<double>> values;
    for (const SCREENVARIABLE& variable : data_.Variables().all) {
      function.inputs.push_back(variable.variable);
      values.push_back(variable.values.values);
    }
    function.outputs = outputs;
    function.compute = [values, patterns = data_.Patterns(), means = solution_.scores.means](
                           const double* in, double* out) {
      static thread_local std::vector<std::uint8_t> codes;
      codes.clear();
      for (std::size_t j = 0; j < values.size(); ++j) {
        const auto at = std::lower_bound(values[j].begin(), values[j].end(), in[j]);
        const bool known = at != values[j].end() && *at == in[j];
        codes.push_back(known ? static_cast<std::uint8_t>(at - values[j].begin())
                              : stats::kMissingCode);
      }
      const std::int64_t pattern = patterns->Find(codes.data());
      for (Index k = 0; k < means.cols(); ++k)
        out[k] = pattern >= 0 ? means(pattern, k) : std::numeric_limits<double>::quiet_NaN();
    };
    run_.job.transformations.emplace_back(std::move(function));
    report_.Paragraph(CString("Expected a posteriori scores of the ") +
                      (solution_.factors > 1 ? "VARIMAX-rotated factors" : "factor") +
                      " are saved with the data as " + NameList(run_.job.data, outputs) +
                      ". A case without any answer has none.");
  }

  static constexpr double kFirstGradient = 0.1;

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const ORDINALFACTORANALYSIS& ofa_;
  COrdinalFactorData data_;
  Eigen::VectorXd eigenvalues_;
  ORDINALFACTORSOLUTION solution_;
};

}  // namespace

bool RunOrdinalFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return COrdinalFactorAnalysis(run, procedure).Run(fault);
}
