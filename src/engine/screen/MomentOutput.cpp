#include <algorithm>
#include <cmath>

#include "engine/screen/Faults.h"
#include "engine/screen/MomentMatrix.h"
#include "engine/screen/NumberFile.h"
#include "engine/screen/ThresholdFile.h"
#include "host/Numbers.h"

namespace {

using Index = Eigen::Index;

const char* MatrixHeading(MOMENTS moments) {
  switch (moments) {
    case MOMENTS::Correlations:
      return "Correlation matrix";
    case MOMENTS::Augmented:
      return "Augmented moment matrix";
    case MOMENTS::AboutZero:
      return "Matrix of moments about zero";
    default:
      return "Covariance matrix";
  }
}

TABLE LowerTriangle(const CReport& report, const Eigen::MatrixXd& matrix,
                    const std::vector<CString>& names) {
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns.push_back({"", true});
  for (const CString& name : names) table.columns.push_back({name, false});
  for (Index i = 0; i < matrix.rows(); ++i) {
    std::vector<CString> row = {names[static_cast<std::size_t>(i)]};
    for (Index j = 0; j <= i; ++j) row.push_back(report.Number(matrix(i, j)));
    table.rows.push_back(std::move(row));
  }
  return table;
}

void WriteKinds(CReport& report, const SCREENVARIABLES& variables) {
  if (variables.HasCensored()) {
    report.Paragraph(
        "Censored variables stand for the normal variables behind them: means, standard deviations "
        "and correlations are maximum likelihood estimates.");
    report.Gap();
  }
  if (variables.ordinal.empty()) return;
  report.Paragraph(
      "Ordinal variables stand for underlying normal variables with mean 0 and "
      "standard deviation 1: their correlations are polychoric, those with continuous "
      "variables polyserial.");
  report.Gap();
}

void CheckMatrix(ENGINERUN& run, const SCREENVARIABLES& variables, const Eigen::MatrixXd& matrix) {
  const stats::Definiteness definite = stats::CheckPositiveDefinite(matrix);
  if (definite.status == stats::EStatus::Ok) {
    run.report.Gap();
    run.report.Line("  Smallest eigenvalue: " + run.report.Number(definite.smallest));
    return;
  }
  CString cause = "the matrix of MA is not positive definite: its smallest eigenvalue is " +
                  FormatShortest(definite.smallest);
  const auto p = static_cast<double>(variables.all.size());
  CString remedy =
      "Leave out variables that are sums of others or nearly equal to each other, or use listwise "
      "deletion. The matrix is never changed by the engine.";
  if (variables.Weight() <= p) {
    cause += " (there are " + CReport::Count(variables.Weight()) + " cases for " +
             std::to_string(variables.all.size()) + " variables)";
    remedy = "Select fewer variables than cases with an SE line.";
  }
  run.report.Warning(
      "The matrix is not positive definite; " + std::to_string(definite.notAboveZero) +
      (definite.notAboveZero == 1 ? " eigenvalue is" : " eigenvalues are") + " not above zero.");
  NoteOutputFault(run, cause, remedy);
}

void WriteCount(COutputFile& file, Index elements) {
  const auto count = static_cast<std::int32_t>(elements);
  file.Write(&count, sizeof count);
}

// What the elements of the matrix are called, in their order.
std::vector<CString> ElementNames(const ENGINERUN& run, const SCREENVARIABLES& variables) {
  const bool correlations = run.job.output.moments == MOMENTS::Correlations;
  std::vector<CString> names;
  for (std::size_t i = 0; i < variables.all.size(); ++i) {
    for (std::size_t j = 0; j < i + (correlations ? 0 : 1); ++j) {
      names.push_back(variables.all[i].name + "," + variables.all[j].name);
    }
  }
  return names;
}

}  // namespace

void WriteMomentSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                        const ANALYSISMOMENTS& moments) {
  CReport& report = run.report;
  std::vector<CString> names;
  for (const SCREENVARIABLE& variable : variables.all) names.push_back(variable.name);
  report.Section(MatrixHeading(run.job.output.moments));
  WriteKinds(report, variables);
  std::vector<CString> rows = names;
  if (run.job.output.moments == MOMENTS::Augmented) rows.emplace_back("CONST");
  report.Table(LowerTriangle(report, moments.matrix, rows));
  CheckMatrix(run, variables, moments.matrix);
  report.Section("Means and standard deviations");
  TABLE table;
  table.narrowest = static_cast<std::size_t>(report.Numbers().width);
  table.columns = {{"Variable", true}, {"Mean", false}, {"St. dev.", false}};
  for (Index i = 0; i < moments.means.size(); ++i) {
    table.rows.push_back({names[static_cast<std::size_t>(i)], report.Number(moments.means(i)),
                          report.Number(moments.deviations(i))});
  }
  report.Table(table);
}

void WriteAsymptoticSection(ENGINERUN& run, const SCREENVARIABLES& variables,
                            const stats::AsymptoticCovarianceResult& result) {
  const OUTPUTLINE& output = run.job.output;
  if (!output.printCovariances && !output.printVariances) return;
  // Such numbers are small; as many decimals more as the number of cases has digits.
  CReport& report = run.report;
  const NUMBERFORMAT plain = report.Numbers();
  if (!output.fieldsGiven) report.SetNumbers({plain.width, plain.decimals + 4});
  const std::vector<CString> names = ElementNames(run, variables);
  if (output.printCovariances) {
    report.Section("Asymptotic covariance matrix of the elements");
    report.Table(LowerTriangle(report, result.matrix, names));
  }
  if (output.printVariances) {
    report.Section("Asymptotic variances of the elements");
    TABLE table;
    table.columns = {{"Element", true}, {"Variance", false}, {"Standard error", false}};
    for (Index i = 0; i < result.matrix.rows(); ++i) {
      table.rows.push_back({names[static_cast<std::size_t>(i)], report.Number(result.matrix(i, i)),
                            report.Number(std::sqrt(result.matrix(i, i)))});
    }
    report.Table(table);
  }
  report.SetNumbers(plain);
}

void SaveMoments(ENGINERUN& run, const ANALYSISMOMENTS& moments) {
  SaveTriangle(run.files.Find("SM"), moments.matrix);
  if (run.job.output.samples > 0) return;  // ME and SD hold those of the samples
  SaveVector(run.files.Find("ME"), moments.means);
  SaveVector(run.files.Find("SD"), moments.deviations);
}

void SaveAsymptotic(ENGINERUN& run, const stats::AsymptoticCovarianceResult& result) {
  const Eigen::MatrixXd& matrix = result.matrix;
  if (COutputFile* const file = run.files.Find("AC")) {
    WriteCount(*file, matrix.rows());
    for (Index i = 0; i < matrix.rows(); ++i) {
      for (Index j = 0; j <= i; ++j) {
        const double value = matrix(i, j);
        file->Write(&value, sizeof value);
      }
    }
  }
  if (COutputFile* const file = run.files.Find("AV")) {
    WriteCount(*file, matrix.rows());
    for (Index i = 0; i < matrix.rows(); ++i) {
      const double value = matrix(i, i);
      file->Write(&value, sizeof value);
    }
  }
}

void SaveThresholds(ENGINERUN& run, const SCREENVARIABLES& variables,
                    const ONEVARIABLERESULTS& results) {
  COutputFile* const file = run.files.Find("TH");
  if (file == nullptr) return;
  for (std::size_t i = 0; i < results.thresholds.size(); ++i) {
    WriteThresholdLine(*file, variables.all[variables.ordinal[i]].name,
                       results.thresholds[i].threshold);
  }
}
