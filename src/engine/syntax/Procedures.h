// The procedures, as their lines ask for them. Variables are counted from 0.
#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "engine/syntax/SyntaxLine.h"

using VARIABLELIST = std::vector<std::int32_t>;

struct FACTORANALYSIS {      // FA
  std::int64_t factors = 0;  // 0: the number of eigenvalues above 1
  bool minres = false;
  bool scores = false;
};

struct ORDINALFACTORANALYSIS {  // OFA
  bool proportionalOdds = false;
  std::int64_t factors = 0;
};

struct PRINCIPALCOMPONENTS {    // PC
  std::int64_t components = 0;  // 0: all
  bool ofCorrelations = false;
  bool scores = false;
};

struct HOMOGENEITY {  // HT
  std::int32_t first = 0;
  std::int32_t second = 0;
};

struct EQUALTHRESHOLDS {  // ET
  VARIABLELIST variables;
};

struct FIXTHRESHOLDS {  // FT
  std::int32_t variable = 0;
};

struct MARGINALTHRESHOLDS {  // MT
  VARIABLELIST variables;
};

struct NORMALSCORES {  // NS
  VARIABLELIST variables;
};

struct IMPUTATION {  // IMPUTE
  enum class Listing { All, Successful, None };
  VARIABLELIST imputed;
  VARIABLELIST matching;
  double varianceRatio = 0.5;
  Listing listing = Listing::All;
};

struct MULTIPLEIMPUTATION {  // EM and MC
  enum class AllMissing { Delete = 0, Mean = 1, Leave = 2 };
  bool mcmc = false;
  VARIABLELIST variables;
  std::int64_t iterations = 200;
  double convergence = 0.00001;
  AllMissing allMissing = AllMissing::Delete;
  std::int64_t dataSets = 1;  // RP of MC
};

struct REGRESSION {  // RG, TS, PR, LO and CR
  enum class Method { LeastSquares, TwoStage, Probit, Logistic, Censored };
  Method method = Method::LeastSquares;
  VARIABLELIST y;
  VARIABLELIST x;
  VARIABLELIST instruments;            // of two-stage least squares
  bool alternativeParameters = false;  // AP
};

struct PROCEDURE {
  SyntaxLine line;
  std::variant<FACTORANALYSIS, ORDINALFACTORANALYSIS, PRINCIPALCOMPONENTS, HOMOGENEITY,
               EQUALTHRESHOLDS, FIXTHRESHOLDS, MARGINALTHRESHOLDS, NORMALSCORES, IMPUTATION,
               MULTIPLEIMPUTATION, REGRESSION>
      what;
};

// The variables that its line names.
VARIABLELIST VariablesOf(const PROCEDURE& procedure);

// The procedure's name as outputs show it: "Exploratory factor analysis (FA)".
CString ProcedureName(const PROCEDURE& procedure);
