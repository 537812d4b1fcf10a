#include "engine/procedures/FactorAnalysis.h"

#include <algorithm>
#include <cmath>

#include "engine/procedures/Eigenvalues.h"
#include "engine/procedures/LoadingTables.h"
#include "engine/run/Estimates.h"
#include "engine/screen/AnalysisMoments.h"
#include "engine/screen/CasesSections.h"
#include "engine/stats/FactorAnalysis.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Rotation.h"
#include "host/Numbers.h"

namespace {

using Eigen::Index;
using Eigen::MatrixXd;

constexpr int kChanceSamples = 100;

class CFactorAnalysis {
 public:
  CFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure)
      : run_(run),
        procedure_(procedure),
        report_(run.report),
        fa_(std::get<FACTORANALYSIS>(procedure.what)) {}

  bool Run(FAULT& fault) {
    std::vector<CString> warnings;
    if (!FindScreenVariables(run_, variables_, warnings, fault) ||
        !EstimateAnalysisMoments(run_, variables_, MOMENTS::Correlations, moments_, fault)) {
      return false;
    }
    WriteDataSection(run_, variables_);
    for (const CString& warning : warnings) report_.Warning(warning);
    report_.Section("Exploratory factor analysis");
    components_ = stats::EstimateComponents(moments_.matrix);
    if (run_.sampling == nullptr || !run_.sampling->isSample) {
      chance_ = stats::AnalyseParallel(static_cast<int>(moments_.matrix.rows()), moments_.smallestN,
                                       kChanceSamples, run_.seed, run_.threads);
    }
    for (const SCREENVARIABLE& variable : variables_.all) names_.push_back(variable.name);
    if (!ChooseFactors(fault)) return false;
    WriteHeading();
    WriteEigenvalues(run_, components_.eigenvalues, chance_);
    if (!Extract(fault)) return false;
    WriteFit();
    WriteWarnings();
    WriteSolutions();
    WriteResiduals();
    if (run_.sampling != nullptr) NoteEstimates();
    if (fa_.scores) SaveScores();
    return true;
  }

 private:
  bool ChooseFactors(FAULT& fault) {
    const Index p = moments_.matrix.rows();
    factors_ = static_cast<int>(fa_.factors);
    const bool chosen = factors_ > 0;
    if (!chosen && run_.sampling != nullptr && run_.sampling->settled) {
      factors_ = static_cast<int>(*run_.sampling->settled);
    } else if (!chosen) {
      factors_ = static_cast<int>((components_.eigenvalues.array() > 1).count());
      factors_ = std::max(factors_, 1);
    }
    if (factors_ < p && stats::FactorDegreesOfFreedom(static_cast<int>(p), factors_) >= 0) {
      return true;
    }
    int most = 0;
    while (most + 1 < p && stats::FactorDegreesOfFreedom(static_cast<int>(p), most + 1) >= 0) {
      ++most;
    }
    fault =
        ProcedureFault(procedure_,
                       CountText(factors_, "factor") + " of " + CountText(p, "variable") +
                           (factors_ == 1 ? " has" : " have") + " fewer than 0 degrees of freedom" +
                           (chosen ? CString() : " (as many eigenvalues are above 1)"),
                       most > 0 ? "Ask for at most " + std::to_string(most) +
                                      " factors (NF), or use more "
                                      "variables."
                                : CString("Use at least three variables."));
    return false;
  }

  // Bootstrapping keeps to the number of factors.
  void NoteEstimates() {
    run_.sampling->settled = factors_;
    run_.estimates->push_back(EigenvalueEstimates(components_.eigenvalues));
    run_.estimates->push_back(
        LoadingEstimates(CString(factors_ > 1 ? "VARIMAX-rotated loadings" : "Loadings") +
                             " (order and signs of the factors matched to all cases)",
                         names_, FactorNames(factors_), varimax_.loadings));
    ESTIMATES uniquenesses = MakeEstimates("Uniquenesses");
    for (std::size_t i = 0; i < names_.size(); ++i)
      AddEstimate(uniquenesses, names_[i], result_.uniqueness(static_cast<Index>(i)));
    run_.estimates->push_back(std::move(uniquenesses));
  }

  void WriteHeading() {
    CFactTable facts;
    facts.Add("Method", fa_.minres ? "MINRES (unweighted least squares)" : "Maximum likelihood");
    const bool ordinal = !variables_.ordinal.empty();
    facts.Add("Correlations", !ordinal                     ? "Pearson"
                              : variables_.numeric.empty() ? "polychoric"
                                                           : "by type of the variables");
    facts.Add("n", CReport::Count(moments_.smallestN));
    facts.Add("Factors",
              std::to_string(factors_) + (fa_.factors > 0 ? "" : " (eigenvalues above 1)"));
    if (chance_.mean.size() > 0) {
      Index above = 0;
      while (above < chance_.mean.size() &&
             components_.eigenvalues(above) > chance_.percentile95(above)) {
        ++above;
      }
      facts.Add("Factors by parallel analysis", std::to_string(above));
    }
    facts.Write(report_);
    report_.Gap();
    report_.Paragraph("Parallel analysis: " + std::to_string(kChanceSamples) +
                      " samples of independent normal variables, seed " +
                      std::to_string(run_.seed) + ".");
  }

  bool Extract(FAULT& fault) {
    result_ = stats::EstimateFactors(
        moments_.matrix, moments_.smallestN, factors_,
        fa_.minres ? stats::EFactorMethod::Minres : stats::EFactorMethod::MaximumLikelihood);
    if (result_.status == stats::EStatus::Ok) return true;
    const double smallest = components_.eigenvalues(components_.eigenvalues.size() - 1);
    if (result_.status == stats::EStatus::NotPositiveDefinite) {
      fault = ProcedureFault(
          procedure_,
          "the correlation matrix is not positive definite (smallest eigenvalue " +
              CReport::Digits(smallest) + "), so that there is no likelihood",
          "Use MINRES (MR), leave out variables that are sums of others, or use listwise "
          "deletion.");
    } else {
      fault = ProcedureFault(
          procedure_,
          CString("the factors cannot be estimated: ") + stats::StatusText(result_.status),
          "Ask for fewer factors (NF), or use MINRES (MR).");
    }
    return false;
  }

  void WriteFit() {
    const stats::FactorFit& fit = result_.fit;
    TABLE table;
    table.columns = {{"Fit", true}, {"Value", false}, {"df", false}, {"p", false}};
    const auto add = [&](const CString& what, double value) {
      table.rows.push_back({what, report_.Number(value)});
    };
    const auto addTest = [&](const CString& what, double value, double df, double p) {
      table.rows.push_back({what, report_.Number(value), CReport::Count(df),
                            df > 0 ? CReport::Probability(p) : "."});
    };
    if (fit.likelihood) {
      addTest("Chi-square, (n - 1) F", fit.chiSquare, fit.df, fit.p);
      addTest("Chi-square, Bartlett's factor", fit.bartlett, fit.df, fit.pBartlett);
    }
    if (fit.likelihood && fit.df > 0) {
      add("RMSEA", fit.rmsea);
      add("Tucker-Lewis index", fit.tuckerLewis);
    }
    add("Root mean square residual", fit.rootMeanSquareResidual);
    report_.Subsection("Fit");
    report_.Table(table);
    if (!fit.likelihood) {
      report_.Gap();
      report_.Paragraph(
          "The correlation matrix is not positive definite: there is no likelihood, and so no test "
          "of fit.");
    } else if (!variables_.ordinal.empty()) {
      report_.Gap();
      report_.Paragraph(
          "The tests suppose a sample covariance matrix of normal variables; for polychoric and "
          "polyserial correlations they are descriptive.");
    }
  }

  void WriteWarnings() {
    for (Index i = 0; i < result_.heywood.size(); ++i) {
      if (result_.heywood(i) == 0) continue;
      report_.Warning("Heywood case: the uniqueness of " + names_[static_cast<std::size_t>(i)] +
                      " is at its lower bound, " + FormatShortest(stats::kSmallestUniqueness) +
                      ". Fewer factors, or more variables for each, may help.");
    }
    constexpr double kNearlySingular = 1e-6;
    const double smallest = components_.eigenvalues(components_.eigenvalues.size() - 1);
    if (smallest < kNearlySingular) {
      report_.Warning(CString("The correlation matrix is ") +
                      (smallest < 0 ? "not positive definite" : "nearly singular") +
                      ": its smallest eigenvalue is " + CReport::Digits(smallest) + ".");
    }
  }

  void WriteSolutions() {
    WriteLoadings(report_, "Unrotated loadings", names_, result_.loadings, result_.uniqueness);
    varimax_ = stats::RotateVarimax(result_.loadings);
    if (factors_ < 2) return;
    WriteLoadings(report_, "VARIMAX-rotated loadings (rows normalised)", names_, varimax_.loadings,
                  result_.uniqueness);
    const auto promax = stats::RotatePromax(varimax_.loadings);
    WriteLoadings(report_, "PROMAX-rotated loadings (power 4)", names_, promax.loadings,
                  result_.uniqueness);
    report_.Subsection("Correlations of the PROMAX factors");
    report_.Table(TriangleTable(report_, FactorNames(factors_), promax.correlation));
  }

  void WriteResiduals() {
    constexpr std::size_t kShown = 10;
    struct Residual {
      Index i, j;
      double value;
    };
    std::vector<Residual> all;
    for (Index i = 0; i < result_.residual.rows(); ++i) {
      for (Index j = 0; j < i; ++j) all.push_back({j, i, result_.residual(i, j)});
    }
    std::stable_sort(all.begin(), all.end(), [](const Residual& a, const Residual& b) {
      return std::fabs(a.value) > std::fabs(b.value);
    });
    all.resize(std::min(all.size(), kShown));
    TABLE table;
    table.columns = {
        {"Variable", true}, {"Variable", true}, {"Correlation", false}, {"Residual", false}};
    for (const Residual& one : all) {
      table.rows.push_back(
          {names_[static_cast<std::size_t>(one.i)], names_[static_cast<std::size_t>(one.j)],
           report_.Number(moments_.matrix(one.i, one.j)), report_.Number(one.value)});
    }
    report_.Subsection("Largest residual correlations");
    report_.Table(table);
  }

  void SaveScores() {
    if (run_.files.Find("RA") == nullptr) {
      report_.Warning("FS: the scores are not saved. Add RA=file to the output line.");
      return;
    }
    if (stats::CheckPositiveDefinite(moments_.matrix).status != stats::EStatus::Ok) {
      report_.Warning("FS: there are no scores, because the matrix is not positive definite.");
      return;
    }
    const MatrixXd weights = stats::RegressionScoreWeights(moments_.matrix, varimax_.loadings);
    const VARIABLELIST outputs =
        AddVariables(run_.job, "FACTOR", static_cast<std::size_t>(factors_));
    AddScoreVariables(run_, variables_, moments_, weights, outputs);
    report_.Gap();
    report_.Paragraph(
        CString("Regression scores of the ") +
        (factors_ > 1 ? "VARIMAX-rotated factors" : "factor") + " are saved with the data as " +
        NameList(run_.job.data, outputs) + ". A case with a missing value has none." +
        (variables_.ordinal.empty() ? ""
                                    : " An ordinal variable enters by the mean of its underlying "
                                      "variable within the category."));
  }

  ENGINERUN& run_;
  const PROCEDURE& procedure_;
  CReport& report_;
  const FACTORANALYSIS& fa_;
  SCREENVARIABLES variables_;
  ANALYSISMOMENTS moments_;
  stats::ComponentsResult components_;
  stats::ParallelAnalysisResult chance_;
  std::vector<CString> names_;
  int factors_ = 0;
  stats::FactorResult result_;
  stats::VarimaxResult varimax_;
};

}  // namespace

bool RunFactorAnalysis(ENGINERUN& run, const PROCEDURE& procedure, FAULT& fault) {
  return CFactorAnalysis(run, procedure).Run(fault);
}
