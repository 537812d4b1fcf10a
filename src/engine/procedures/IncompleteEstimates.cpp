#include "engine/procedures/IncompleteEstimates.h"

#include <cmath>

#include "engine/stats/IncompleteNormalErrors.h"

namespace {

using Eigen::Index;
using stats::EStatus;

class CIncompleteEstimates {
 public:
  CIncompleteEstimates(ENGINERUN& run, const CIncompleteSample& sample)
      : report_(run.report),
        sample_(sample),
        result_(sample.Result()),
        errors_(
            stats::ComputeIncompleteNormalErrors(sample.Patterns(), sample.Result(), run.threads)) {
    for (const INCOMPLETEVARIABLE& one : sample.Variables()) names_.push_back(one.name);
  }

  void Write() {
    WriteMeans();
    WriteMatrix("Covariance matrix (divisor n)", result_.covariance);
    if (HasAll()) WriteErrors("Standard errors of the covariances", errors_.covariance, true);
    const Eigen::VectorXd inverse = result_.covariance.diagonal().cwiseSqrt().cwiseInverse();
    WriteMatrix("Correlation matrix",
                inverse.asDiagonal() * result_.covariance * inverse.asDiagonal());
    if (HasAll()) WriteErrors("Standard errors of the correlations", errors_.correlation, false);
    WarnOfPairs();
  }

 private:
  bool HasMeans() const { return errors_.status == EStatus::Ok; }
  bool HasAll() const { return HasMeans() && !errors_.meansOnly; }

  void WriteMeans() {
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns = {{"Variable", true}, {"Missing", false}, {"Mean", false}};
    if (HasMeans()) table.columns.push_back({"Std. error", false});
    table.columns.push_back({"St. dev.", false});
    if (HasAll()) table.columns.push_back({"Std. error", false});
    for (std::size_t j = 0; j < names_.size(); ++j) {
      const auto at = static_cast<Index>(j);
      std::vector<CString> row = {names_[j], std::to_string(sample_.Variables()[j].missing)};
      AddEstimate(result_.mean(at), HasMeans() ? &errors_.mean(at) : nullptr, row);
      AddEstimate(std::sqrt(result_.covariance(at, at)), HasAll() ? &errors_.sd(at) : nullptr, row);
      table.rows.push_back(std::move(row));
    }
    report_.Subsection("Means and standard deviations (divisor n)");
    report_.Paragraph(Note());
    report_.Gap();
    report_.Table(table);
  }

  void AddEstimate(double value, const double* error, std::vector<CString>& row) const {
    row.push_back(error != nullptr ? report_.Estimate(value, *error) : report_.Number(value));
    if (error != nullptr) row.push_back(report_.Estimate(*error, *error));
  }

  CString Note() const {
    if (errors_.status == EStatus::NotConverged)
      return "Standard errors are left out: EM has not come to the maximum.";
    if (!HasMeans()) {
      return "Standard errors are left out: where EM ended the observed information is singular or "
             "not positive definite, the likelihood has no distinct maximum there.";
    }
    if (errors_.meansOnly) {
      return "Standard errors are given of means alone, since there are more than " +
             std::to_string(stats::IncompleteNormalErrors::kMostVariables) +
             " variables, and as if the covariances were known: they hold when values are missing "
             "completely at random. Bootstrapping (BS) gives those of all estimates.";
    }
    return "Standard errors come from the observed information on means and covariances together: "
           "they hold when values are missing at random.";
  }

  void WriteMatrix(const char* heading, const Eigen::MatrixXd& matrix) {
    report_.Subsection(heading);
    report_.Table(TriangleTable(report_, names_, matrix));
  }

  // The lower triangle, each number with two digits at least.
  void WriteErrors(const char* heading, const Eigen::MatrixXd& errors, bool diagonal) {
    const std::size_t below = diagonal ? 0 : 1;  // the first row; as many columns less
    if (names_.size() <= below) return;
    TABLE table;
    table.narrowest = static_cast<std::size_t>(report_.Numbers().width);
    table.columns.push_back({"", true});
    for (std::size_t j = 0; j + below < names_.size(); ++j)
      table.columns.push_back({names_[j], false});
    for (std::size_t i = below; i < names_.size(); ++i) {
      std::vector<CString>& row = table.rows.emplace_back(1, names_[i]);
      for (std::size_t j = 0; j + below <= i; ++j) {
        const double error = errors(static_cast<Index>(i), static_cast<Index>(j));
        row.push_back(report_.Estimate(error, error));
      }
    }
    report_.Subsection(heading);
    report_.Table(table);
  }

  void WarnOfPairs() {
    constexpr std::size_t kShown = 5;
    const auto& pairs = errors_.neverTogether;
    if (pairs.empty()) return;
    CString text;
    for (std::size_t k = 0; k < std::min(kShown, pairs.size()); ++k) {
      text += (k > 0 ? "; " : "") + names_[static_cast<std::size_t>(pairs[k].second)] + " and " +
              names_[static_cast<std::size_t>(pairs[k].first)];
    }
    if (pairs.size() > kShown)
      text += "; and " + CountText(static_cast<double>(pairs.size() - kShown), "pair") + " more";
    report_.Warning("Never observed together: " + text +
                    ". The likelihood does not depend on the covariance of such variables: what is "
                    "given for it, without a standard error, is what EM made of the start, 0.");
  }

  CReport& report_;
  const CIncompleteSample& sample_;
  const stats::IncompleteNormalResult& result_;
  const stats::IncompleteNormalErrors errors_;
  std::vector<CString> names_;
};

}  // namespace

void WriteIncompleteEstimates(ENGINERUN& run, const CIncompleteSample& sample) {
  CIncompleteEstimates(run, sample).Write();
}
