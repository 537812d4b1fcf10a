// The output line, OU.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/Fault.h"
#include "engine/syntax/SyntaxLine.h"

enum class MOMENTS { None, Covariances, Correlations, Augmented, AboutZero };

struct OUTPUTLINE {
  SyntaxLine line;
  MOMENTS moments = MOMENTS::None;    // MA
  CString momentFile;                 // SM; empty: not saved. The same holds for every file
  CString dataFile;                   // RA
  std::int64_t width = 15;            // WI
  std::int64_t decimals = 6;          // ND
  bool fieldsGiven = false;           // WI or ND stands on the line
  CString meansFile;                  // ME
  CString deviationsFile;             // SD
  std::optional<std::int64_t> seed;   // IX
  std::int64_t repetitions = 0;       // RP; 0: not given
  CString covarianceFile;             // AC
  bool printCovariances = false;      // PA
  CString varianceFile;               // AV
  bool printVariances = false;        // PV
  bool pk = false;                    // PK, without effect
  bool wide = false;                  // WP
  bool bivariateTables = false;       // BT
  bool bivariateTests = true;         // XT leaves them out
  bool multivariateTests = true;      // XM leaves them out
  std::int64_t samples = 0;           // BS; 0: no bootstrapping
  std::int64_t sampleFraction = 100;  // SF, percent of the cases
  CString sampleMomentFile;           // BM
  CString thresholdFile;              // TH

  int Columns() const { return wide ? 132 : 80; }
};

// Is the word a keyword of the output line, or does it begin as one with a value does ("SM=")?
bool IsOutputKeyword(std::string_view word);

// Reads the line. Returns false with the reason in `fault` when it is not understood.
bool ParseOutputLine(const SyntaxLine& line, OUTPUTLINE& output, FAULT& fault);
