#include "vexdata/ProcedureArguments.h"

#include <memory>

#include "datadoc/Selections.h"
#include "host/Host.h"
#include "host/Text.h"

namespace {

// The options of one procedure.
class CProcedureOptions {
 public:
  explicit CProcedureOptions(CLI::App& command) : command_(command) {}

  CLI::Option* List(const char* name, NameList& list, const char* what) {
    return command_.add_option(name, list, CString(what) + ", for example A1-A5,age or 3-7")
        ->delimiter(',')
        ->take_all()
        ->allow_extra_args(false);
  }
  CLI::Option* Subset(NameList& list) {
    return List("--variables", list, "The variables of the analysis (all)");
  }
  CLI::Option* Text(const char* name, CString& text, const char* what) {
    return command_.add_option(name, text, what)->capture_default_str();
  }
  CLI::Option* Flag(const char* name, bool& flag, const char* what) {
    return command_.add_flag(name, flag, what);
  }
  // A file that is saved when its option is given.
  void Save(const char* name, bool& save, CString& file, const char* what) {
    const auto take = [&save, &file](const CString& text) {
      save = true;
      file = text;
    };
    command_.add_option_function<CString>(name, take, what);
  }
  template <typename Value>
  void Choice(const char* name, Value& value, const std::map<CString, Value>& words,
              const char* what) {
    command_.add_option(name, value, what)
        ->transform(CLI::CheckedTransformer(words, CLI::ignore_case));
  }
  void Sides(NameList& y, const char* yWhat, NameList& x, const char* xWhat) {
    List("--y", y, yWhat)->required();
    List("--x", x, xWhat)->required();
  }
  // Entries "left = right", cut at one of the equals signs.
  void Equations(const char* name, const std::function<void(CString, CString)>& take, bool atLast,
                 const char* what) {
    const auto cut = [name, take, atLast](const std::vector<CString>& entries) {
      for (const CString& entry : entries) {
        const std::size_t equals = atLast ? entry.rfind('=') : entry.find('=');
        if (equals == CString::npos) throw CLI::ValidationError(name, "no = in " + entry);
        take(entry.substr(0, equals), entry.substr(equals + 1));
      }
    };
    command_.add_option_function<std::vector<CString>>(name, cut, what)->required();
  }
  void NewData(CString& file) {
    command_.add_option("--to", file, "The new system data file (*.VSF)")->required();
  }

 private:
  CLI::App& command_;
};

using Options = CProcedureOptions;

void Bind(Options& o, FactorAnalysisChoices& c) {
  o.Subset(c.subset);
  o.Text("--factors", c.factors, "Number of factors; else that of eigenvalues above 1");
  o.Flag("--minres", c.minres, "MINRES in place of maximum likelihood");
  o.Flag("--scores", c.scores, "Factor scores, saved with the data (--save-data)");
}

void Bind(Options& o, OrdinalFactorChoices& c) {
  o.Subset(c.subset);
  o.Text("--factors", c.factors, "Number of factors");
  o.Flag("--logistic", c.proportionalOdds, "Logistic response function in place of the normal");
}

void Bind(Options& o, PrincipalComponentChoices& c) {
  o.Subset(c.subset);
  o.Text("--components", c.components, "Number of components (all)");
  o.Flag("--correlations", c.correlations, "Of the correlation matrix");
  o.Flag("--scores", c.scores, "Component scores, saved with the data (--save-data)");
}

void Bind(Options& o, EqualThresholdChoices& c) {
  o.List("--variables", c.variables, "Two ordinal variables or more")->required();
  o.Save("--save-thresholds", c.save, c.thresholdFile, "File for the thresholds");
}

void Bind(Options& o, FixThresholdChoices& c) {
  o.List("--variables", c.variables, "Ordinal variables")->required();
  o.Text("--thresholds", c.thresholdFile, "File that contains thresholds")->required();
}

void Bind(Options& o, HomogeneityChoices& c) {
  o.List("--variables", c.pairs, "Two ordinal variables for each test")->required();
}

void Bind(Options& o, NormalScoreChoices& c) {
  o.List("--variables", c.variables, "Variables")->required();
}

void Bind(Options& o, ImputationChoices& c) {
  o.List("--imputed", c.imputed, "Imputed variables")->required();
  o.List("--matching", c.matching, "Matching variables")->required();
  o.Text("--variance-ratio", c.varianceRatio, "Largest variance ratio of the donors");
  o.Choice<ImputationListing>("--list", c.listing,
                              {{"all", ImputationListing::All},
                               {"successful", ImputationListing::Successful},
                               {"none", ImputationListing::None}},
                              "Cases to list");
}

void Bind(Options& o, MultipleImputationChoices& c) {
  o.List("--variables", c.variables, "Variables")->required();
  o.Text("--iterations", c.iterations, "Number of iterations, 1 to 10000");
  o.Text("--convergence", c.convergence, "Convergence criterion, 0.0000001 to 0.01");
  o.Choice<AllMissingCases>("--all-missing", c.allMissing,
                            {{"delete", AllMissingCases::Delete},
                             {"mean", AllMissingCases::Mean},
                             {"leave", AllMissingCases::Leave}},
                            "Cases with all values missing");
  if (c.mcmc) o.Text("--data-sets", c.dataSets, "Number of imputed data sets, 1 to 1000");
}

void Bind(Options& o, BootstrappingChoices& c) {
  o.Text("--samples", c.samples, "Number of bootstrap samples");
  o.Text("--fraction", c.fraction, "Sample fraction in percent of the cases");
  o.Save("--sample-matrices", c.saveMatrices, c.matricesFile, "File for all the MA-matrices");
  o.Save("--sample-means", c.saveMeans, c.meansFile, "File for all the mean vectors");
  o.Save("--sample-deviations", c.saveDeviations, c.deviationsFile,
         "File for all the standard deviations");
}

void Bind(Options& o, RegressionChoices& c) {
  o.Sides(c.y, "Y variables", c.x, "X variables");
}

void Bind(Options& o, TwoStageChoices& c) {
  o.Sides(c.y, "Y variables", c.x, "X variables");
  o.List("--instruments", c.instruments, "Instrumental variables")->required();
}

void Bind(Options& o, ProbitChoices& c) {
  o.Sides(c.y, "Ordinal variables", c.x, "Covariates");
  o.Flag("--alternative", c.alternative, "Alternative parameterization");
  o.Flag("--declare-fixed", c.declareFixed, "Write an FI line for the covariates");
  o.List("--fix", c.fixedThresholds, "Variables whose thresholds are fixed");
  o.Text("--thresholds", c.thresholdFile, "File that contains thresholds");
  o.List("--marginal", c.marginalThresholds, "Variables whose thresholds are marginal ones");
}

void Bind(Options& o, LogisticChoices& c) {
  o.Sides(c.y, "Ordinal variables", c.x, "Covariates");
  o.Flag("--alternative", c.alternative, "Alternative parameterization");
}

void Bind(Options& o, CensoredChoices& c) {
  o.Sides(c.y, "Censored variables", c.x, "Covariates");
}

void Bind(Options& o, ComputeChoices& c) {
  const auto take = [&c](CString left, CString right) {
    c.computations.push_back({std::move(left), std::move(right)});
  };
  o.Equations("EQUATION", take, false, "\"name = expression\"; may be repeated");
  o.NewData(c.newData);
}

void Bind(Options& o, RecodeChoices& c) {
  const auto take = [&c](CString left, CString right) {
    c.rules.push_back({std::move(left), std::move(right)});
  };
  o.List("--variables", c.variables, "Variables to recode")->required();
  o.Equations("RULE", take, true, "\"1,3-5 = 0\": old values and the new one; may be repeated");
  o.NewData(c.newData);
}

class CProcedureCommands {
 public:
  CProcedureCommands(CLI::App& run, std::optional<ProcedureChoices>& chosen)
      : run_(run), chosen_(chosen) {}

  template <typename Choices>
  void Add(const char* word, const char* what, Choices initial) {
    // Lives as long as the command's callback.
    const auto choices = std::make_shared<Choices>(std::move(initial));
    CLI::App* const command = run_.add_subcommand(word, what)->group("Procedures");
    Options options(*command);
    Bind(options, *choices);
    command->callback([choices, &chosen = chosen_] { chosen = *choices; });
  }

 private:
  CLI::App& run_;
  std::optional<ProcedureChoices>& chosen_;
};

}  // namespace

void AddProcedures(CLI::App& run, std::optional<ProcedureChoices>& chosen) {
  MultipleImputationChoices mcmc;
  mcmc.mcmc = true;
  CProcedureCommands commands(run, chosen);
  commands.Add("fa", "Exploratory factor analysis", FactorAnalysisChoices());
  commands.Add("ofa", "Factor analysis of ordinal variables", OrdinalFactorChoices());
  commands.Add("pc", "Principal components", PrincipalComponentChoices());
  commands.Add("et", "Equal thresholds", EqualThresholdChoices());
  commands.Add("ft", "Fix thresholds", FixThresholdChoices());
  commands.Add("ht", "Homogeneity tests", HomogeneityChoices());
  commands.Add("ns", "Normal scores", NormalScoreChoices());
  commands.Add("impute", "Impute missing values from similar cases", ImputationChoices());
  commands.Add("em", "Multiple imputation, EM algorithm", MultipleImputationChoices());
  commands.Add("mc", "Multiple imputation, MCMC", mcmc);
  commands.Add("bs", "Bootstrapping", BootstrappingChoices());
  commands.Add("rg", "Regression by least squares", RegressionChoices());
  commands.Add("ts", "Two-stage least squares", TwoStageChoices());
  commands.Add("pr", "Probit regression", ProbitChoices());
  commands.Add("lo", "Logistic regression", LogisticChoices());
  commands.Add("cr", "Censored regression", CensoredChoices());
  commands.Add("compute", "Compute variables and write new data", ComputeChoices());
  commands.Add("recode", "Give values new values and write new data", RecodeChoices());
}

bool FindChosenVariables(const TORVIKSTRUCT& data, ProcedureChoices& choices) {
  for (NameList* list : ListsOf(choices)) {
    NameList names;
    for (const CString& typed : *list) {
      CString problem;
      const auto variables = ParseVariableList(data, typed, problem);
      if (!variables) {
        AfxMessageBox("there is no variable " + problem);
        return false;
      }
      for (const std::int32_t variable : *variables) {
        names.push_back(data.variable[static_cast<std::size_t>(variable)].name);
      }
    }
    *list = names;
  }
  return true;
}
