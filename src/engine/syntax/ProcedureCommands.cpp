#include <algorithm>
#include <limits>

#include "engine/syntax/Commands.h"
#include "host/Text.h"

namespace {

constexpr std::int64_t kMostFactors = 32767;

template <typename Procedure>
void Add(COMMANDCONTEXT& context, Procedure procedure) {
  if (context.words.Ok()) context.job.procedures.push_back({context.line, std::move(procedure)});
}

void ReadFA(COMMANDCONTEXT& context) {
  CWords& words = context.words;
  FACTORANALYSIS fa;
  while (!words.AtEnd()) {
    if (!(words.TakeWhole("NF=", 1, kMostFactors, fa.factors) || words.TakeFlag("MR", fa.minres) ||
          words.TakeFlag("FS", fa.scores))) {
      words.Expected("NF=k, MR or FS");
    }
  }
  Add(context, fa);
}

void ReadOFA(COMMANDCONTEXT& context) {
  CWords& words = context.words;
  ORDINALFACTORANALYSIS ofa;
  bool response = false;
  while (!words.AtEnd()) {
    const bool odds = words.TakeFlag("POM", ofa.proportionalOdds);
    if (odds || words.TakeKeyword("NOR")) {
      if (response) words.Fail("NOR and POM are given together, or one of them twice");
      response = true;
    } else if (!words.TakeWhole("NF=", 1, kMostFactors, ofa.factors)) {
      words.Expected("NOR, POM or NF=k");
    }
  }
  if (!response) words.Expected("NOR or POM");
  Add(context, ofa);
}

void ReadPC(COMMANDCONTEXT& context) {
  CWords& words = context.words;
  PRINCIPALCOMPONENTS pc;
  while (!words.AtEnd()) {
    if (!(words.TakeWhole("NC=", 1, kMostFactors, pc.components) ||
          words.TakeFlag("KM", pc.ofCorrelations) || words.TakeFlag("PS", pc.scores))) {
      words.Expected("NC=k, KM or PS");
    }
  }
  Add(context, pc);
}

void ReadHT(COMMANDCONTEXT& context) {
  CWords& words = context.words;
  HOMOGENEITY ht;
  ht.first = words.TakeVariable("the first of two variables");
  ht.second = words.TakeVariable("the second of two variables");
  words.TakeEnd("the end of the line behind two variables");
  if (words.Ok() && ht.first == ht.second) words.Fail("the two variables are the same");
  Add(context, ht);
}

void ReadET(COMMANDCONTEXT& context) {
  Add(context, EQUALTHRESHOLDS{context.words.TakeVariables("variables", {}, 2)});
}

void ReadFT(COMMANDCONTEXT& context) {
  const FIXTHRESHOLDS ft{context.words.TakeVariable("a variable")};
  context.words.TakeEnd("the end of the line behind one variable");
  Add(context, ft);
}

void ReadMT(COMMANDCONTEXT& context) {
  Add(context, MARGINALTHRESHOLDS{context.words.TakeVariables("variables")});
}

void ReadNS(COMMANDCONTEXT& context) {
  Add(context, NORMALSCORES{context.words.TakeVariables("variables")});
}

VARIABLELIST TakeBracketed(CWords& words, std::string_view what) {
  if (!words.TakeKeyword("(")) words.Expected("( before the " + CString(what));
  VARIABLELIST list = words.TakeVariables(what, {")"});
  if (!words.TakeKeyword(")")) words.Expected(") behind the " + CString(what));
  return list;
}

void ReadIMPUTE(COMMANDCONTEXT& context) {
  CWords& words = context.words;
  IMPUTATION imputation;
  imputation.imputed = TakeBracketed(words, "variables to impute");
  imputation.matching = TakeBracketed(words, "matching variables");
  constexpr double kMostRatio = std::numeric_limits<double>::max();
  while (!words.AtEnd()) {
    if (words.TakeReal("VR=", 0, kMostRatio, imputation.varianceRatio)) continue;
    if (words.TakeKeyword("XL")) {
      imputation.listing = IMPUTATION::Listing::None;
    } else if (words.TakeKeyword("XN")) {
      imputation.listing = IMPUTATION::Listing::Successful;
    } else {
      words.Expected("VR=v, XL or XN");
    }
  }
  Add(context, imputation);
}

void ReadMultipleImputation(COMMANDCONTEXT& context, bool mcmc) {
  constexpr std::int64_t kMostIterations = 10000;
  constexpr std::int64_t kMostDataSets = 1000;
  constexpr double kSmallestCriterion = 0.0000001;
  constexpr double kLargestCriterion = 0.01;
  CWords& words = context.words;
  MULTIPLEIMPUTATION imputation;
  imputation.mcmc = mcmc;
  imputation.variables = words.TakeVariables("variables", {"IT=", "CC=", "TC=", "RP="});
  std::int64_t allMissing = 0;
  while (!words.AtEnd()) {
    if (words.TakeWhole("IT=", 1, kMostIterations, imputation.iterations) ||
        words.TakeReal("CC=", kSmallestCriterion, kLargestCriterion, imputation.convergence) ||
        words.TakeWhole("TC=", 0, 2, allMissing) ||
        (mcmc && words.TakeWhole("RP=", 1, kMostDataSets, imputation.dataSets))) {
      continue;
    }
    words.Expected(mcmc ? "IT=n, CC=c, TC=t or RP=m" : "IT=n, CC=c or TC=t");
  }
  imputation.allMissing = static_cast<MULTIPLEIMPUTATION::AllMissing>(allMissing);
  Add(context, imputation);
}

void ReadEM(COMMANDCONTEXT& context) {
  ReadMultipleImputation(context, false);
}

void ReadMC(COMMANDCONTEXT& context) {
  ReadMultipleImputation(context, true);
}

void RefuseSharedVariables(COMMANDCONTEXT& context, const REGRESSION& regression) {
  const VARIABLELIST& x = regression.x;
  for (const std::int32_t variable : regression.y) {
    if (std::find(x.begin(), x.end(), variable) == x.end()) continue;
    const CString& name = context.job.data.variable[static_cast<std::size_t>(variable)].name;
    context.words.Fail("variable " + (name.empty() ? std::to_string(variable + 1) : name) +
                       " stands on both sides of ON");
  }
}

void ReadRegression(COMMANDCONTEXT& context, REGRESSION::Method method, bool mayBeAlternative) {
  CWords& words = context.words;
  const bool twoStage = method == REGRESSION::Method::TwoStage;
  REGRESSION regression;
  regression.method = method;
  regression.y = words.TakeVariables("y variables before ON", {"ON", "WITH"});
  if (!words.TakeKeyword("ON")) words.Expected("ON behind the y variables");
  regression.x = twoStage           ? words.TakeVariables("x variables", {"WITH"})
                 : mayBeAlternative ? words.TakeVariables("x variables", {"AP"})
                                    : words.TakeVariables("x variables");
  if (twoStage) {
    if (!words.TakeKeyword("WITH")) words.Expected("WITH behind the x variables");
    regression.instruments = words.TakeVariables("instrumental variables");
  } else {
    RefuseSharedVariables(context, regression);
  }
  if (mayBeAlternative) words.TakeFlag("AP", regression.alternativeParameters);
  words.TakeEnd("the end of the line");
  Add(context, regression);
}

void ReadRG(COMMANDCONTEXT& context) {
  ReadRegression(context, REGRESSION::Method::LeastSquares, false);
}
void ReadTS(COMMANDCONTEXT& context) {
  ReadRegression(context, REGRESSION::Method::TwoStage, false);
}
void ReadPR(COMMANDCONTEXT& context) {
  ReadRegression(context, REGRESSION::Method::Probit, true);
}
void ReadLO(COMMANDCONTEXT& context) {
  ReadRegression(context, REGRESSION::Method::Logistic, true);
}
void ReadCR(COMMANDCONTEXT& context) {
  ReadRegression(context, REGRESSION::Method::Censored, false);
}

constexpr COMMAND kProcedures[] = {
    {"FA", ReadFA, {}, "NF= MR FS", "FA NF=k MR FS"},
    {"OFA", ReadOFA, {}, "NOR POM NF=", "OFA NOR NF=k or OFA POM NF=k"},
    {"PC", ReadPC, {}, "NC= KM PS", "PC NC=k KM PS"},
    {"HT", ReadHT, {}, {}, "HT variable variable"},
    {"ET", ReadET, {}, {}, "ET list"},
    {"FT", ReadFT, {}, {}, "FT variable"},
    {"MT", ReadMT, {}, {}, "MT list"},
    {"NS", ReadNS, {}, {}, "NS list"},
    {"EM", ReadEM, {}, "IT= CC= TC=", "EM list IT=n CC=c TC=t"},
    {"MC", ReadMC, {}, "IT= CC= TC= RP=", "MC list IT=n CC=c TC=t RP=m"},
    {"RG", ReadRG, {}, "ON", "RG y list ON x list"},
    {"TS", ReadTS, {}, "ON WITH", "TS y list ON x list WITH list of instruments"},
    {"PR", ReadPR, {}, "ON AP", "PR y list ON x list AP"},
    {"LO", ReadLO, {}, "ON AP", "LO y list ON x list AP"},
    {"CR", ReadCR, {}, "ON", "CR y list ON x list"},
    {"IMPUTE", ReadIMPUTE, "()", "VR= XL XN", "IMPUTE (list) (list) VR=v XL or XN"},
};

struct VariablesIn {
  template <typename Procedure>
  VARIABLELIST operator()(const Procedure& procedure) const {
    if constexpr (requires { procedure.variables; }) return procedure.variables;
    return {};
  }
  VARIABLELIST operator()(const HOMOGENEITY& ht) const { return {ht.first, ht.second}; }
  VARIABLELIST operator()(const FIXTHRESHOLDS& ft) const { return {ft.variable}; }
  VARIABLELIST operator()(const IMPUTATION& imputation) const {
    return Joined({imputation.imputed, imputation.matching});
  }
  VARIABLELIST operator()(const REGRESSION& regression) const {
    return Joined({regression.y, regression.x, regression.instruments});
  }

 private:
  static VARIABLELIST Joined(std::initializer_list<VARIABLELIST> lists) {
    VARIABLELIST all;
    for (const VARIABLELIST& list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
  }
};

struct NameOf {
  const char* operator()(const FACTORANALYSIS&) const { return "Exploratory factor analysis (FA)"; }
  const char* operator()(const ORDINALFACTORANALYSIS&) const {
    return "Factor analysis of ordinal variables (OFA)";
  }
  const char* operator()(const PRINCIPALCOMPONENTS&) const {
    return "Principal component analysis (PC)";
  }
  const char* operator()(const HOMOGENEITY&) const { return "Homogeneity test (HT)"; }
  const char* operator()(const EQUALTHRESHOLDS&) const { return "Equal thresholds test (ET)"; }
  const char* operator()(const FIXTHRESHOLDS&) const { return "Fixing of thresholds (FT)"; }
  const char* operator()(const MARGINALTHRESHOLDS&) const { return "Marginal thresholds (MT)"; }
  const char* operator()(const NORMALSCORES&) const { return "Normal scores (NS)"; }
  const char* operator()(const IMPUTATION&) const { return "Imputation by matching (IMPUTE)"; }
  const char* operator()(const MULTIPLEIMPUTATION& procedure) const {
    return procedure.mcmc ? "Multiple imputation by MCMC (MC)" : "Multiple imputation by EM (EM)";
  }
  const char* operator()(const REGRESSION& procedure) const {
    switch (procedure.method) {
      case REGRESSION::Method::TwoStage:
        return "Two-stage least squares (TS)";
      case REGRESSION::Method::Probit:
        return "Probit regression (PR)";
      case REGRESSION::Method::Logistic:
        return "Logistic regression (LO)";
      case REGRESSION::Method::Censored:
        return "Censored regression (CR)";
      default:
        return "Regression (RG)";
    }
  }
};

}  // namespace

std::span<const COMMAND> ProcedureCommandTable() {
  return kProcedures;
}

VARIABLELIST VariablesOf(const PROCEDURE& procedure) {
  return std::visit(VariablesIn(), procedure.what);
}

CString ProcedureName(const PROCEDURE& procedure) {
  return std::visit(NameOf(), procedure.what);
}
