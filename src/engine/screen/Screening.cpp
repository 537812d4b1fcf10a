#include "engine/screen/Screening.h"

#include <memory>
#include <optional>

#include "engine/screen/CasesSections.h"
#include "engine/screen/DataOutput.h"
#include "engine/screen/Faults.h"
#include "engine/screen/MomentMatrix.h"
#include "engine/screen/PairSections.h"
#include "engine/screen/SharedPairs.h"
#include "engine/stats/MixedAcov.h"
#include "engine/stats/Parallel.h"
#include "vexutils/FreeMemory.h"

namespace {

// With more of them the sums of a piece of the cases are larger than the piece.
constexpr std::size_t kMostVariablesInPieces = 64;

// What a screening computes beyond single variables.
struct NEEDS {
  bool tables = false;   // of pairs of ordinal variables
  bool moments = false;  // of the numeric variables
  bool mardia = false;
  bool polyserial = false;
  bool censored = false;
  bool asymptotic = false;
};

class CScreening {
 public:
  explicit CScreening(ENGINERUN& run) : run_(run), output_(run.job.output) {}

  bool Screen(FAULT& fault) {
    std::vector<CString> warnings;
    if (!FindScreenVariables(run_, variables_, warnings, fault)) return false;
    if (!FindNeeds(fault) || !CheckMemory(fault)) return false;
    run_.progress.Plan(StagesAhead());
    WriteDataSection(run_, variables_);
    WriteMissingSection(run_, variables_);
    for (const CString& warning : warnings) run_.report.Warning(warning);
    if (output_.pk) run_.report.Warning("PK on the output line has no effect in this engine.");
    if (!MainPass(fault)) return false;
    WriteSingleVariables();
    if (!WriteTogether(fault)) return false;
    if (!WriteMoments(fault)) return false;
    if (run_.job.procedures.empty()) SaveThresholds(run_, variables_, results_);
    return !run_.faults.empty() || (SaveData(run_, fault) && run_.files.CheckWritten(fault));
  }

 private:
  // The passes over the cases that follow the first one; polyserial correlations and those
  // with censored variables take one more stage each for their estimation.
  int StagesAhead() const {
    const auto one = [](bool needed) { return needed ? 1 : 0; };
    return one(needs_.tables || !variables_.numeric.empty()) + one(needs_.mardia) +
           2 * (one(needs_.polyserial) + one(needs_.censored)) + one(needs_.asymptotic) +
           one(!output_.dataFile.empty());
  }

  bool FindNeeds(FAULT& fault) {
    const bool matrix = output_.moments != MOMENTS::None;
    const std::size_t numeric = variables_.numeric.size();
    const std::size_t ordinal = variables_.ordinal.size();
    needs_.tables = ordinal > 1 && (matrix || output_.bivariateTables || output_.bivariateTests);
    needs_.moments = matrix && numeric > 0;
    needs_.mardia = output_.multivariateTests && variables_.continuous > 1;
    needs_.polyserial = matrix && numeric > 0 && ordinal > 0;
    needs_.censored = matrix && variables_.HasCensored();
    needs_.asymptotic = !output_.covarianceFile.empty() || !output_.varianceFile.empty() ||
                        output_.printCovariances || output_.printVariances;
    if (!matrix && (needs_.asymptotic || !output_.momentFile.empty())) {
      fault = OutputFault(run_, "SM, AC, AV, PA and PV need the matrix that they belong to",
                          "Add MA=CM or MA=KM to the output line.");
    } else if (needs_.asymptotic && output_.moments != MOMENTS::Covariances &&
               output_.moments != MOMENTS::Correlations) {
      fault = OutputFault(run_, "asymptotic covariances are those of covariances or correlations",
                          "Ask for MA=CM or MA=KM, or leave out AC, AV, PA and PV.");
    } else if (needs_.asymptotic && output_.moments == MOMENTS::Correlations &&
               numeric + ordinal < 2) {
      fault = OutputFault(run_, "one variable has no correlations, and so no AC, AV, PA or PV",
                          "Leave out AC, AV, PA and PV, or select more variables.");
    } else if (run_.job.procedures.empty() && !output_.thresholdFile.empty() && ordinal == 0) {
      fault = OutputFault(run_, "TH asks for thresholds, and no variable is ordinal",
                          "Leave out TH, or select ordinal variables.");
    } else if (!output_.sampleMomentFile.empty() && output_.samples == 0) {
      fault = OutputFault(run_, "BM belongs to bootstrapping (BS)", "Leave out BM.");
    }
    return !fault;
  }

  // Memory grows with the variables; what there is must be enough before it is taken.
  bool CheckMemory(FAULT& fault) {
    const auto p = static_cast<std::int64_t>(variables_.all.size());
    const auto numeric = static_cast<std::int64_t>(variables_.numeric.size());
    const auto ordinal = static_cast<std::int64_t>(variables_.ordinal.size());
    const auto word = static_cast<std::int64_t>(sizeof(double));
    std::int64_t bytes = 0;
    if (needs_.tables) {
      const auto categories = static_cast<std::int64_t>(kCategorySlots);
      bytes += ordinal * (ordinal - 1) / 2 * categories * categories * word;
    }
    constexpr std::int64_t kMatrices = 8;
    if (needs_.moments || needs_.mardia) {
      bytes += kMatrices * (stats::ThreadCount(run_.threads) + 1) * numeric * numeric * word;
    }
    if (needs_.mardia) bytes += stats::CMardia::MemoryFor(static_cast<int>(variables_.continuous));
    if (output_.moments != MOMENTS::None) bytes += kMatrices * p * p * word;
    if (needs_.asymptotic) {
      const auto kind = output_.moments == MOMENTS::Covariances ? stats::EMoments::Covariance
                                                                : stats::EMoments::Correlation;
      bytes += stats::CMixedAcov::MemoryFor(static_cast<int>(p), kind);
    }
    if (bytes <= FreeMemoryBytes()) return true;
    constexpr int kMegabyte = 20;
    fault = OutputFault(run_,
                        "the run needs about " + std::to_string(bytes >> kMegabyte) +
                            " MB of memory for " + std::to_string(p) + " variables",
                        "Select fewer variables with SE, or leave out tests with XT and XM.");
    return false;
  }

  static stats::CaseBlock FirstColumns(const CASEBLOCK& block, std::size_t columns) {
    stats::CaseBlock cells = block.cells;
    cells.variables = static_cast<int>(columns);
    return cells;
  }

  // What one pass collects of the numeric variables.
  struct NUMERICSUMS {
    std::optional<stats::CUnivariate> univariate;
    std::optional<stats::CMoments> moments;
    std::optional<stats::CMoments> complete;  // of the continuous variables, complete cases

    void Merge(const NUMERICSUMS& other) {
      if (univariate) univariate->Merge(*other.univariate);
      if (moments) moments->Merge(*other.moments);
      if (complete) complete->Merge(*other.complete);
    }
  };

  NUMERICSUMS EmptySums(int threads) const {
    const auto numeric = static_cast<int>(variables_.numeric.size());
    NUMERICSUMS sums;
    if (numeric > 0) sums.univariate.emplace(numeric, variables_.deletion, threads);
    if (needs_.moments) sums.moments.emplace(numeric, variables_.deletion, threads);
    if (needs_.mardia) {
      sums.complete.emplace(static_cast<int>(variables_.continuous), stats::EDeletion::Listwise,
                            threads);
    }
    return sums;
  }

  void AddNumeric(NUMERICSUMS& sums, const CASEBLOCK& block) const {
    const stats::CaseBlock cells = FirstColumns(block, variables_.numeric.size());
    if (sums.univariate) sums.univariate->Add(cells);
    if (sums.moments) sums.moments->Add(cells);
    if (sums.complete) sums.complete->Add(FirstColumns(block, variables_.continuous));
  }

  bool PrepareTables(FAULT& fault) {
    std::vector<int> categories;
    for (const std::size_t i : variables_.ordinal) {
      categories.push_back(static_cast<int>(variables_.all[i].values.values.size()));
      if (categories.back() > 0) continue;
      fault = OutputFault(run_, "variable " + variables_.all[i].name + " has no value in any case",
                          "Leave the variable out with SE.");
      return false;
    }
    tables_.emplace(std::move(categories), variables_.deletion, run_.threads);
    return true;
  }

  // Tables of pairs and matrices of many variables are large next to a piece of the cases: there is
  // one of each, and blocks go to it one after the other.
  bool SumsAreLarge() const {
    const bool matrices = needs_.moments || needs_.mardia;
    return needs_.tables || (matrices && variables_.numeric.size() > kMostVariablesInPieces);
  }

  bool MainPass(FAULT& fault) {
    sums_ = EmptySums(run_.threads);
    if (needs_.tables && !PrepareTables(fault)) return false;
    if (SumsAreLarge()) {
      return run_.Pass(
          run_.source,
          [this](const CASEBLOCK& block) {
            AddNumeric(sums_, block);
            if (tables_) tables_->Add(block.codes);
          },
          fault);
    }
    if (variables_.numeric.empty()) return true;
    return run_.PassInPieces(
        run_.source,
        [this](const CASEBLOCK& block) {
          auto sums = std::make_shared<NUMERICSUMS>(EmptySums(1));
          AddNumeric(*sums, block);
          return [this, sums] { sums_.Merge(*sums); };
        },
        fault);
  }

  void WriteSingleVariables() {
    results_ = DescribeVariables(variables_, sums_.univariate ? &*sums_.univariate : nullptr);
    WriteOrdinalSection(run_, variables_, results_);
    WriteContinuousSection(run_, variables_, results_);
    WriteCensoredSection(run_, variables_, results_);
  }

  bool TestMultivariate(FAULT& fault) {
    stats::CMardia mardia(*sums_.complete, run_.threads);
    const auto cells = [this](const CASEBLOCK& block) {
      return FirstColumns(block, variables_.continuous);
    };
    const auto addBlock = [&](const CASEBLOCK& block) { mardia.Add(cells(block)); };
    const auto addPiece = [&](const CASEBLOCK& block) {
      auto piece = std::make_shared<stats::CMardia>(mardia.WithoutCases());
      piece->Add(cells(block));
      return [&mardia, piece] { mardia.Merge(*piece); };
    };
    if (!(variables_.continuous > kMostVariablesInPieces
              ? run_.Pass(run_.source, addBlock, fault)
              : run_.PassInPieces(run_.source, addPiece, fault))) {
      return false;
    }
    WriteMultivariateTests(run_, mardia.Result());
    return true;
  }

  bool WriteTogether(FAULT& fault) {
    if (needs_.mardia && !TestMultivariate(fault)) return false;
    if (!needs_.tables) return true;
    if (output_.bivariateTables) WriteBivariateTables(run_, variables_, *tables_);
    if (output_.bivariateTests || output_.moments != MOMENTS::None) {
      if (!EstimatePairs(run_, *tables_, polychoric_.emplace(), fault)) return false;
    }
    if (output_.bivariateTests) WriteBivariateTests(run_, variables_, *tables_, *polychoric_);
    return true;
  }

  bool WriteMoments(FAULT& fault) {
    if (output_.moments == MOMENTS::None) {
      SaveOneVariableMoments();
      return true;
    }
    if ((needs_.polyserial && !EstimatePolyserials(run_, variables_, polyserial_, fault)) ||
        !EstimateCensoredPairs(run_, variables_, results_, tables_ ? &*tables_ : nullptr, censored_,
                               fault)) {
      return false;
    }
    ANALYSISMOMENTS moments;
    if (!BuildMoments(
            run_, variables_, output_.moments, results_, sums_.moments ? &*sums_.moments : nullptr,
            polychoric_ ? &*polychoric_ : nullptr, polyserial_, censored_, moments, fault)) {
      return false;
    }
    WriteMomentSection(run_, variables_, moments);
    SaveMoments(run_, moments);
    return !needs_.asymptotic || WriteAsymptotic(fault);
  }

  // ME and SD do not need a matrix.
  void SaveOneVariableMoments() {
    ANALYSISMOMENTS moments;
    const auto p = static_cast<Eigen::Index>(variables_.all.size());
    moments.means.setZero(p);
    moments.deviations.setOnes(p);
    for (Eigen::Index i = 0; i < p; ++i) {
      const SCREENVARIABLE& variable = variables_.all[static_cast<std::size_t>(i)];
      if (variable.IsOrdinal()) continue;
      const auto& one = results_.numeric[static_cast<std::size_t>(variable.place)];
      const auto& censored = results_.censored[static_cast<std::size_t>(variable.place)];
      const bool likelihood = variable.IsCensored() && censored.status == stats::EStatus::Ok;
      moments.means(i) = likelihood ? censored.mean : one.mean;
      moments.deviations(i) = likelihood ? censored.sd : one.sd;
    }
    SaveMoments(run_, moments);
  }

  template <typename Accumulator, typename Add>
  bool Accumulate(Accumulator& accumulator, Add add, stats::AsymptoticCovarianceResult& result,
                  FAULT& fault) {
    const bool done = run_.Pass(
        run_.source, [&](const CASEBLOCK& block) { add(accumulator, block); }, fault);
    if (done) result = accumulator.Result();
    return done;
  }

  bool WriteAsymptotic(FAULT& fault) {
    stats::AsymptoticCovarianceResult result;
    bool done = false;
    const bool correlations = output_.moments == MOMENTS::Correlations;
    const auto kind = correlations ? stats::EMoments::Correlation : stats::EMoments::Covariance;
    if (variables_.ordinal.empty() && censored_.censored.empty()) {
      stats::CProductMomentAcov acov(*sums_.moments, kind, run_.threads);
      done = Accumulate(
          acov,
          [this](auto& sum, const CASEBLOCK& block) {
            sum.Add(FirstColumns(block, variables_.numeric.size()));
          },
          result, fault);
    } else if (variables_.numeric.empty() && correlations) {
      stats::CPolychoricAcov acov(*tables_, *polychoric_, variables_.deletion, run_.threads);
      done = Accumulate(
          acov, [](auto& sum, const CASEBLOCK& block) { sum.Add(block.codes); }, result, fault);
    } else {
      std::vector<stats::MixedVariable> all;
      for (const SCREENVARIABLE& variable : variables_.all) {
        all.push_back({variable.IsOrdinal(), variable.place});
      }
      stats::CMixedAcov acov(
          std::move(all),
          {sums_.moments ? &*sums_.moments : nullptr, tables_ ? &*tables_ : nullptr,
           polychoric_ ? &*polychoric_ : nullptr, &polyserial_, &censored_},
          kind, variables_.deletion, run_.threads);
      done = Accumulate(
          acov,
          [this](auto& sum, const CASEBLOCK& block) {
            sum.Add(FirstColumns(block, variables_.numeric.size()), block.codes);
          },
          result, fault);
    }
    if (!done) return false;
    if (result.status != stats::EStatus::Ok) {
      fault = OutputFault(run_,
                          CString("the asymptotic covariances cannot be computed: ") +
                              stats::StatusText(result.status),
                          "Leave out AC, AV, PA and PV, or select other variables.");
      return false;
    }
    WriteAsymptoticSection(run_, variables_, result);
    SaveAsymptotic(run_, result);
    return true;
  }

  ENGINERUN& run_;
  const OUTPUTLINE& output_;
  SCREENVARIABLES variables_;
  NEEDS needs_;
  NUMERICSUMS sums_;
  std::optional<stats::CPairTables> tables_;
  std::optional<stats::PolychoricMatrix> polychoric_;
  POLYSERIALRESULTS polyserial_;
  stats::NormalPairs censored_;
  ONEVARIABLERESULTS results_;
};

}  // namespace

bool ScreenData(ENGINERUN& run, FAULT& fault) {
  return CScreening(run).Screen(fault);
}
