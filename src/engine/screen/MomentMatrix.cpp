#include "engine/screen/MomentMatrix.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include "engine/screen/ColumnStore.h"
#include "engine/screen/Faults.h"
#include "engine/screen/SharedPairs.h"
#include "engine/stats/Parallel.h"

namespace {

using Index = Eigen::Index;

Index At(std::size_t i) {
  return static_cast<Index>(i);
}

stats::EMoments KindOf(MOMENTS moments) {
  switch (moments) {
    case MOMENTS::Correlations:
      return stats::EMoments::Correlation;
    case MOMENTS::Augmented:
    case MOMENTS::AboutZero:
      return stats::EMoments::Raw;
    default:
      return stats::EMoments::Covariance;
  }
}

// What an element with an ordinal variable is made of.
class CMomentBuilder {
 public:
  CMomentBuilder(MOMENTS kind, const SCREENVARIABLES& variables, const stats::MomentMatrix& numeric,
                 const std::vector<stats::UnivariateResult>& univariate,
                 const stats::PolychoricMatrix* polychoric, const POLYSERIALRESULTS& polyserial,
                 const stats::NormalPairs& censored)
      : kind_(kind),
        variables_(variables),
        numeric_(numeric),
        univariate_(univariate),
        polychoric_(polychoric),
        polyserial_(polyserial),
        censored_(censored) {}

  double Element(std::size_t i, std::size_t j) const {
    const SCREENVARIABLE& a = variables_.all[i];
    const SCREENVARIABLE& b = variables_.all[j];
    if (censored_.Has(i, j)) return CensoredElement(i, j);
    if (!a.IsOrdinal() && !b.IsOrdinal()) return numeric_.matrix(a.place, b.place);
    if (a.IsOrdinal() && b.IsOrdinal()) {
      return i == j ? 1 : polychoric_->correlation(a.place, b.place);
    }
    const SCREENVARIABLE& ordinal = a.IsOrdinal() ? a : b;
    const SCREENVARIABLE& other = a.IsOrdinal() ? b : a;
    const std::size_t at = static_cast<std::size_t>(ordinal.place) * variables_.numeric.size() +
                           static_cast<std::size_t>(other.place);
    return polyserial_[at].r * Scale(other);
  }

  double Mean(std::size_t i) const {
    const SCREENVARIABLE& variable = variables_.all[i];
    if (variable.IsCensored()) return censored_.margins[i].Mean();
    return variable.IsOrdinal() ? 0 : numeric_.mean(variable.place);
  }
  double Deviation(std::size_t i) const {
    const SCREENVARIABLE& variable = variables_.all[i];
    if (variable.IsCensored()) return censored_.margins[i].Deviation();
    return variable.IsOrdinal() ? 1 : numeric_.sd(variable.place);
  }

 private:
  // A correlation times the standard deviations, plus the means where they are asked for. A
  // censored variable has its maximum likelihood estimates.
  double CensoredElement(std::size_t i, std::size_t j) const {
    const double r = i == j ? 1 : censored_.Pair(i, j).r;
    if (kind_ == MOMENTS::Correlations) return r;
    const double covariance = r * ScaleOf(i) * ScaleOf(j);
    return kind_ == MOMENTS::Covariances ? covariance : covariance + Mean(i) * Mean(j);
  }
  double ScaleOf(std::size_t i) const {
    const SCREENVARIABLE& variable = variables_.all[i];
    return variable.IsOrdinal() || variable.IsCensored() ? Deviation(i) : Scale(variable);
  }

  // The factor from a correlation with an underlying variable to the element: moments about zero
  // and augmented ones have the divisor n.
  double Scale(const SCREENVARIABLE& numeric) const {
    switch (kind_) {
      case MOMENTS::Correlations:
        return 1;
      case MOMENTS::Covariances:
        return numeric_.sd(numeric.place);
      default:
        return std::sqrt(univariate_[static_cast<std::size_t>(numeric.place)].m2);
    }
  }

  MOMENTS kind_;
  const SCREENVARIABLES& variables_;
  const stats::MomentMatrix& numeric_;
  const std::vector<stats::UnivariateResult>& univariate_;
  const stats::PolychoricMatrix* polychoric_;
  const POLYSERIALRESULTS& polyserial_;
  const stats::NormalPairs& censored_;
};

const SCREENVARIABLE& Numeric(const SCREENVARIABLES& variables, int place) {
  return variables.all[variables.numeric[static_cast<std::size_t>(place)]];
}

const SCREENVARIABLE& OrdinalAt(const SCREENVARIABLES& variables, std::size_t place) {
  return variables.all[variables.ordinal[place]];
}

// The first pair of ordinal variables without a correlation.
bool CheckPolychorics(const ENGINERUN& run, const SCREENVARIABLES& variables,
                      const stats::PolychoricMatrix& matrix, FAULT& fault) {
  for (std::size_t i = 1; i < variables.ordinal.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const auto& pair = matrix.pairs[static_cast<std::size_t>(
          stats::PairIndex(static_cast<int>(i), static_cast<int>(j)))];
      if (pair.status == stats::EStatus::Ok) continue;
      fault =
          OutputFault(run,
                      "the correlation of " + OrdinalAt(variables, j).name + " and " +
                          OrdinalAt(variables, i).name +
                          " cannot be estimated: " + PairStatusText(pair.status, pair.r),
                      "Leave one of the two variables out with SE, or join categories with RC.");
      return false;
    }
  }
  return true;
}

bool ComputeNumeric(const ENGINERUN& run, const SCREENVARIABLES& variables,
                    const stats::CMoments& moments, MOMENTS kind, stats::MomentMatrix& numeric,
                    FAULT& fault) {
  numeric = stats::ComputeMoments(moments, KindOf(kind));
  if (numeric.status == stats::EStatus::Ok) return true;
  CString whom;
  if (numeric.variable >= 0) whom = " (" + Numeric(variables, numeric.variable).name + ")";
  if (numeric.other >= 0 && numeric.other != numeric.variable) {
    whom = " (" + Numeric(variables, numeric.variable).name + " and " +
           Numeric(variables, numeric.other).name + ")";
  }
  fault = OutputFault(
      run,
      CString("the moment matrix cannot be computed: ") + stats::StatusText(numeric.status) + whom,
      "Leave the variables out with an SE line that names the others, or ask for "
      "another matrix with MA.");
  return false;
}

}  // namespace

bool EstimatePolyserials(ENGINERUN& run, const SCREENVARIABLES& variables,
                         POLYSERIALRESULTS& results, FAULT& fault) {
  const auto part = static_cast<std::size_t>(run.Part());
  const auto parts = static_cast<std::size_t>(run.Parts());
  const std::size_t numeric = variables.numeric.size();
  const std::size_t ordinal = variables.ordinal.size();
  COLUMNSTORE store;
  std::int64_t megabytes = 0;
  if (!HoldColumns(run, variables, "correlations of ordinal with continuous variables", store,
                   megabytes, fault)) {
    return false;
  }
  results.assign(ordinal * numeric, {});
  std::mutex telling;
  std::size_t estimated = 0;
  stats::ParallelFor(run.threads, static_cast<std::int64_t>(results.size()), [&](std::int64_t k) {
    const auto pair = static_cast<std::size_t>(k);
    const std::size_t i = pair / numeric;
    const std::size_t j = pair % numeric;
    if (pair % parts != part) return;
    if (Numeric(variables, static_cast<int>(j)).IsCensored()) return;
    results[pair] = stats::EstimatePolyserial(
        store.cells[j].data(), store.codes[i].data(), store.Cases(),
        static_cast<int>(OrdinalAt(variables, i).values.values.size()), store.Weights());
    const std::lock_guard<std::mutex> hold(telling);
    run.progress.Tell(static_cast<double>(++estimated) / static_cast<double>(results.size()));
  });
  run.progress.NextStage();
  if (!SharePolyserials(run, results, fault)) return false;
  run.report.Gap();
  run.report.Paragraph("For the polyserial correlations " + std::to_string(megabytes) +
                       " MB of cases were held in memory.");
  for (std::size_t pair = 0; pair < results.size(); ++pair) {
    if (results[pair].status == stats::EStatus::Ok ||
        Numeric(variables, static_cast<int>(pair % numeric)).IsCensored()) {
      continue;
    }
    fault = OutputFault(
        run,
        "the correlation of " + OrdinalAt(variables, pair / numeric).name + " and " +
            Numeric(variables, static_cast<int>(pair % numeric)).name +
            " cannot be estimated: " + PairStatusText(results[pair].status, results[pair].r),
        "Leave one of the two variables out with SE.");
    return false;
  }
  return true;
}

bool BuildMoments(ENGINERUN& run, const SCREENVARIABLES& variables, MOMENTS kind,
                  const ONEVARIABLERESULTS& results, const stats::CMoments* moments,
                  const stats::PolychoricMatrix* polychoric, const POLYSERIALRESULTS& polyserial,
                  const stats::NormalPairs& censored, ANALYSISMOMENTS& out, FAULT& fault) {
  stats::MomentMatrix numeric;
  if (polychoric != nullptr && !CheckPolychorics(run, variables, *polychoric, fault)) return false;
  if (moments != nullptr && !ComputeNumeric(run, variables, *moments, kind, numeric, fault))
    return false;
  const CMomentBuilder builder(kind, variables, numeric, results.numeric, polychoric, polyserial,
                               censored);
  const std::size_t p = variables.all.size();
  const std::size_t rows = p + (kind == MOMENTS::Augmented ? 1 : 0);
  out.matrix.setZero(At(rows), At(rows));
  out.means.setZero(At(p));
  out.deviations.setZero(At(p));
  for (std::size_t i = 0; i < p; ++i) {
    out.means(At(i)) = builder.Mean(i);
    out.deviations(At(i)) = builder.Deviation(i);
    for (std::size_t j = 0; j <= i; ++j) {
      out.matrix(At(i), At(j)) = out.matrix(At(j), At(i)) = builder.Element(i, j);
    }
  }
  out.margins = censored.margins;
  out.smallestN = variables.Weight();
  if (moments != nullptr) out.smallestN = std::min(out.smallestN, numeric.smallestN);
  if (polychoric != nullptr) {
    for (const auto& pair : polychoric->pairs) out.smallestN = std::min(out.smallestN, pair.n);
  }
  for (const auto& pair : polyserial) {
    if (pair.status == stats::EStatus::Ok) out.smallestN = std::min(out.smallestN, pair.n);
  }
  for (const auto& pair : censored.pairs) {
    if (pair.status == stats::EStatus::Ok) out.smallestN = std::min(out.smallestN, pair.n);
  }
  if (kind == MOMENTS::Augmented) {
    out.matrix.row(At(p)).head(At(p)) = out.means;
    out.matrix.col(At(p)).head(At(p)) = out.means;
    out.matrix(At(p), At(p)) = 1;
  }
  return true;
}
