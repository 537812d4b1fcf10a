#include "engine/bootstrap/MomentSamples.h"

#include <algorithm>

#include "engine/bootstrap/BootstrapReport.h"
#include "engine/run/Estimates.h"
#include "engine/screen/AnalysisMoments.h"
#include "engine/screen/Faults.h"
#include "engine/screen/NumberFile.h"
#include "engine/stats/InOrder.h"
#include "engine/stats/Parallel.h"
#include "host/Text.h"

namespace {

using Eigen::Index;

constexpr double kNoValue = -999999;

// Means and deviations alone.
bool EstimateMeans(ENGINERUN& run, const SCREENVARIABLES& variables, ANALYSISMOMENTS& moments,
                   FAULT& fault) {
  const auto numeric = static_cast<int>(variables.numeric.size());
  stats::CUnivariate univariate(numeric, variables.deletion, run.threads);
  const bool done = run.Pass(
      run.source,
      [&](const CASEBLOCK& block) {
        stats::CaseBlock cells = block.cells;
        cells.variables = numeric;
        if (numeric > 0) univariate.Add(cells);
      },
      fault);
  if (!done) return false;
  const auto p = static_cast<Index>(variables.all.size());
  moments.matrix.resize(0, 0);
  moments.means.setZero(p);
  moments.deviations.setOnes(p);
  for (const std::size_t i : variables.numeric) {
    const auto result = univariate.Result(variables.all[i].place);
    if (result.status == stats::EStatus::NoCases || result.status == stats::EStatus::TooFewCases) {
      fault = OutputFault(
          run, "variable " + variables.all[i].name + ": " + stats::StatusText(result.status), {});
      return false;
    }
    moments.means(static_cast<Index>(i)) = result.mean;
    moments.deviations(static_cast<Index>(i)) = result.sd;
  }
  return true;
}

bool Estimate(ENGINERUN& run, const SCREENVARIABLES& variables, ANALYSISMOMENTS& moments,
              FAULT& fault) {
  const MOMENTS kind = run.job.output.moments;
  return kind == MOMENTS::None ? EstimateMeans(run, variables, moments, fault)
                               : EstimateAnalysisMoments(run, variables, kind, moments, fault);
}

// Lower triangle by rows, means, deviations.
std::vector<double> Flat(const ANALYSISMOMENTS& moments) {
  std::vector<double> values;
  for (Index i = 0; i < moments.matrix.rows(); ++i) {
    for (Index j = 0; j <= i; ++j) values.push_back(moments.matrix(i, j));
  }
  values.insert(values.end(), moments.means.begin(), moments.means.end());
  values.insert(values.end(), moments.deviations.begin(), moments.deviations.end());
  return values;
}

// The sample's moments back from its values.
ANALYSISMOMENTS Unflat(const BOOTSTRAPSAMPLES& samples, std::int64_t sample,
                       const ANALYSISMOMENTS& shape) {
  ANALYSISMOMENTS moments = shape;
  if (samples.failed[static_cast<std::size_t>(sample)] != 0) {
    moments.matrix.setConstant(kNoValue);
    moments.means.setConstant(kNoValue);
    moments.deviations.setConstant(kNoValue);
    return moments;
  }
  std::size_t at = 0;
  for (Index i = 0; i < moments.matrix.rows(); ++i) {
    for (Index j = 0; j <= i; ++j) {
      moments.matrix(i, j) = moments.matrix(j, i) = samples.Value(sample, at++);
    }
  }
  for (double& mean : moments.means) mean = samples.Value(sample, at++);
  for (double& deviation : moments.deviations) deviation = samples.Value(sample, at++);
  return moments;
}

void SaveSamples(ENGINERUN& run, const BOOTSTRAPSAMPLES& samples, const ANALYSISMOMENTS& shape) {
  COutputFile* const matrices = run.files.Find("BM");
  COutputFile* const means = run.files.Find("ME");
  COutputFile* const deviations = run.files.Find("SD");
  if (matrices == nullptr && means == nullptr && deviations == nullptr) return;
  // The texts are made on all threads, and written in order.
  constexpr std::int64_t kPiece = 16;
  const auto makeWorker = [&]() -> stats::PieceWorker {
    return [&](std::int64_t piece) -> stats::FinishPiece {
      CString matrix, mean, deviation;
      const std::int64_t end = std::min(samples.samples, (piece + 1) * kPiece);
      for (std::int64_t s = piece * kPiece; s < end; ++s) {
        const ANALYSISMOMENTS moments = Unflat(samples, s, shape);
        if (matrices != nullptr) AppendTriangle(moments.matrix, matrix);
        if (means != nullptr) AppendVector(moments.means, mean);
        if (deviations != nullptr) AppendVector(moments.deviations, deviation);
      }
      return [=] {
        if (matrices != nullptr) matrices->Write(matrix);
        if (means != nullptr) means->Write(mean);
        if (deviations != nullptr) deviations->Write(deviation);
        return true;
      };
    };
  };
  stats::ForEachInOrder(stats::ThreadCount(run.threads), (samples.samples + kPiece - 1) / kPiece,
                        makeWorker);
}

const char* MatrixName(MOMENTS kind) {
  switch (kind) {
    case MOMENTS::Correlations:
      return "Correlations";
    case MOMENTS::Augmented:
      return "Augmented moments";
    case MOMENTS::AboutZero:
      return "Moments about zero";
    default:
      return "Covariances";
  }
}

// In the order of Flat; what no sample can change is fixed.
std::vector<ESTIMATES> NamedEstimates(const SCREENVARIABLES& variables, MOMENTS kind,
                                      const ANALYSISMOMENTS& moments) {
  std::vector<CString> names;
  for (const SCREENVARIABLE& variable : variables.all) names.push_back(variable.name);
  if (kind == MOMENTS::Augmented) names.emplace_back("CONST");
  const auto p = static_cast<Index>(variables.all.size());
  const auto isOrdinal = [&](Index i) {
    return i < p && variables.all[static_cast<std::size_t>(i)].IsOrdinal();
  };
  const auto add = [](ESTIMATES& to, CString name, double value, bool fixed) {
    AddEstimate(to, std::move(name), value);
    if (fixed) to.parameters.back().error = 0;
  };
  ESTIMATES matrix = MakeEstimates(MatrixName(kind));
  for (Index i = 0; i < moments.matrix.rows(); ++i) {
    for (Index j = 0; j <= i; ++j) {
      const bool one = i == j && (kind == MOMENTS::Correlations || isOrdinal(i) || i == p);
      add(matrix, names[static_cast<std::size_t>(i)] + "," + names[static_cast<std::size_t>(j)],
          moments.matrix(i, j), one || (i == p && isOrdinal(j)));
    }
  }
  ESTIMATES means = MakeEstimates("Means"), deviations = MakeEstimates("Standard deviations");
  for (Index i = 0; i < p; ++i) {
    add(means, names[static_cast<std::size_t>(i)], moments.means(i), isOrdinal(i));
    add(deviations, names[static_cast<std::size_t>(i)], moments.deviations(i), isOrdinal(i));
  }
  return {std::move(matrix), std::move(means), std::move(deviations)};
}

}  // namespace

bool AsksForMomentSamples(const JOB& job) {
  const OUTPUTLINE& output = job.output;
  return output.samples > 0 && (job.procedures.empty() || output.moments != MOMENTS::None ||
                                !output.meansFile.empty() || !output.deviationsFile.empty());
}

bool CheckBootstrap(const JOB& job, FAULT& fault) {
  const OUTPUTLINE& output = job.output;
  if (output.samples == 0 || output.sampleMomentFile.empty() || output.moments != MOMENTS::None) {
    return true;
  }
  fault = {output.line.number, CString(Trimmed(output.line.text)),
           "BM saves the matrix of MA of every sample, and there is no MA",
           "Add MA=CM, KM, AM or MM to the output line, or leave out BM."};
  return false;
}

bool BootstrapMoments(ENGINERUN& run, FAULT& fault) {
  if (!AsksForMomentSamples(run.job)) return true;
  const MOMENTS kind = run.job.output.moments;
  CReport unread;  // the screening has said it all
  ENGINERUN quiet{run.job,      run.file,    run.source,     unread,   run.files,
                  run.progress, run.threads, run.repetition, run.seed, {}};
  quiet.ranks = run.ranks;
  SCREENVARIABLES variables;
  std::vector<CString> warnings;
  ANALYSISMOMENTS moments;
  if (!FindScreenVariables(quiet, variables, warnings, fault)) return false;
  if (kind == MOMENTS::None && variables.numeric.empty()) {
    fault = OutputFault(run, "BS has nothing to compute: all variables are ordinal",
                        "Ask for their correlations with MA=KM, or for a procedure.");
    return false;
  }
  run.source.ForgetUse();
  if (!Estimate(quiet, variables, moments, fault)) return false;
  const std::vector<double> values = Flat(moments);
  run.progress.BeginLastPart();
  BOOTSTRAPSAMPLES samples;
  const SAMPLEPLAN plan{run.job, run.source.Used(), variables.IsListwise(), values.size()};
  const bool done = DrawSamples(
      run, plan,
      [&](ENGINERUN& sample, std::vector<double>& found, FAULT& problem) {
        ANALYSISMOMENTS own;
        std::vector<CASECOLUMN> columns = plan.columns;
        sample.source.SetColumns(std::move(columns));
        sample.source.SetListwise(plan.listwise);
        if (!Estimate(sample, variables, own, problem)) return false;
        found = Flat(own);
        return true;
      },
      samples, fault);
  if (!done) return false;
  WriteBootstrapHeading(run, "Bootstrap of the moments", samples);
  WriteBootstrapTables(run, NamedEstimates(variables, kind, moments), samples);
  SaveSamples(run, samples, moments);
  return true;
}
