#include "engine/procedures/PooledMoments.h"

#include <algorithm>
#include <cmath>

#include "engine/procedures/DataSets.h"
#include "engine/run/Interrupt.h"
#include "engine/stats/Moments.h"
#include "engine/stats/Pooling.h"

namespace {

using Eigen::Index;
using stats::EStatus;

class CPooledMoments {
 public:
  CPooledMoments(ENGINERUN& run, const MULTIPLEIMPUTATION& line,
                 const std::vector<INCOMPLETEVARIABLE>& variables,
                 const std::vector<CASEFUNCTION>& completions)
      : run_(run), report_(run.report), line_(line), completions_(completions) {
    for (const INCOMPLETEVARIABLE& one : variables) names_.push_back(one.name);
    const std::size_t p = names_.size();
    means_.resize(p);
    errors_.resize(p);
    deviations_.resize(p);
    correlations_.setZero(static_cast<Index>(p), static_cast<Index>(p));
  }

  bool Write(FAULT& fault) {
    // So that not all matrices are held at the same time.
    constexpr std::size_t kRound = 32;
    for (std::size_t first = 0; first < completions_.size(); first += kRound) {
      std::vector<MOMENTS> round(std::min(kRound, completions_.size() - first));
      const bool done = ForDataSets(
          run_, round.size(),
          [&](std::size_t i, int threads, FAULT& why) {
            return Compute(completions_[first + i], threads, round[i], why);
          },
          fault);
      if (!done) return false;
      for (const MOMENTS& one : round) {
        if (!Add(one)) return true;  // nothing to show
      }
    }
    run_.progress.NextStage();
    WriteMeans();
    WriteCorrelations();
    return true;
  }

 private:
  // Of one completed data set.
  struct MOMENTS {
    stats::MomentMatrix covariances;
    double n = 0;
  };

  bool Compute(const CASEFUNCTION& completion, int threads, MOMENTS& moments, FAULT& fault) const {
    JOB job = run_.job;
    job.transformations.emplace_back(completion);
    CCaseSource source(run_.file, job, run_.seed, run_.repetition, threads);
    std::vector<CASECOLUMN> columns;
    for (const std::int32_t variable : line_.variables) columns.push_back({variable, {}});
    source.SetColumns(std::move(columns));
    source.SetListwise(true);
    stats::CMoments sums(static_cast<int>(line_.variables.size()), stats::EDeletion::Listwise,
                         threads);
    const bool done =
        source.ForEachBlock([&sums](const CASEBLOCK& block) { sums.Add(block.cells); },
                            [](double) { return !IsInterrupted(); }, fault);
    if (!done) return false;
    moments.covariances = stats::ComputeMoments(sums, stats::EMoments::Covariance);
    moments.n = sums.N(0, 0);
    return true;
  }

  bool Add(const MOMENTS& moments) {
    const stats::MomentMatrix& one = moments.covariances;
    n_ = moments.n;
    if (one.status != EStatus::Ok || !(one.sd.minCoeff() > 0)) return false;
    AddFishersZ(one, correlations_);
    for (std::size_t j = 0; j < names_.size(); ++j) {
      const auto at = static_cast<Index>(j);
      means_[j].push_back(one.mean(at));
      errors_[j].push_back(one.sd(at) / std::sqrt(n_));
      deviations_[j].push_back(one.sd(at));
    }
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

  void WriteCorrelations() {
    for (double& element : correlations_.reshaped())
      element = std::tanh(element / static_cast<double>(completions_.size()));
    correlations_.diagonal().setOnes();
    report_.Subsection("Correlations of the completed data, averaged as Fisher's z");
    report_.Table(TriangleTable(report_, names_, correlations_));
  }

  void WriteMeans() {
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true},      {"Mean", false},    {"Std. error", false},
                     {"95% from", false},     {"to", false},      {"df", false},
                     {"Missing inf.", false}, {"St. dev.", false}};
    for (std::size_t j = 0; j < means_.size(); ++j) {
      const stats::PooledEstimate pooled = stats::PoolEstimates(means_[j], errors_[j], n_ - 1);
      double variance = 0;
      for (const double sd : deviations_[j])
        variance += sd * sd / static_cast<double>(deviations_[j].size());
      const auto shown = [&](double value) { return report_.Estimate(value, pooled.error); };
      table.rows.push_back({names_[j], shown(pooled.value), shown(pooled.error), shown(pooled.low),
                            shown(pooled.high), CReport::Number(pooled.df, 1),
                            report_.Number(pooled.missingInformation), shown(std::sqrt(variance))});
    }
    report_.Subsection("Means of the completed data, n = " + CReport::Count(n_) +
                       (line_.dataSets > 1 ? ", pooled by Rubin's rules" : ""));
    if (line_.dataSets == 1) {
      report_.Paragraph(
          "One data set does not tell how uncertain the imputed values are: the standard errors "
          "are those of complete data.");
      report_.Gap();
    }
    report_.Table(table);
  }

  ENGINERUN& run_;
  CReport& report_;
  const MULTIPLEIMPUTATION& line_;
  const std::vector<CASEFUNCTION>& completions_;
  std::vector<CString> names_;
  std::vector<std::vector<double>> means_, errors_, deviations_;  // by variable, of all data sets
  Eigen::MatrixXd correlations_;                                  // sums of Fisher's z
  double n_ = 0;
};

}  // namespace

bool WritePooledMoments(ENGINERUN& run, const MULTIPLEIMPUTATION& line,
                        const std::vector<INCOMPLETEVARIABLE>& variables,
                        const std::vector<CASEFUNCTION>& completions, FAULT& fault) {
  return CPooledMoments(run, line, variables, completions).Write(fault);
}
