// The output options of a document: which matrices and vectors the engine computes and saves, how
// it prints, and how it seeds its random numbers.
#pragma once

#include <cstdint>

#include "host/Types.h"

inline constexpr int kNoMatrixSelected = -1;  // TRVOUSTRUCT::nMatrixType
inline constexpr int kCovariances = 0;
inline constexpr int kCorrelations = 1;
inline constexpr int kAugmentedMoments = 2;
inline constexpr int kMomentsAboutZero = 3;
inline constexpr int kNoMatrix = 4;

inline constexpr int kDefaultWidth = 15;
inline constexpr int kDefaultDecimals = 6;

struct TRVOUSTRUCT {
  std::int32_t bSaveAC = 0;  // asymptotic covariance matrix
  CString strACFile;
  std::int32_t bSaveAV = 0;  // asymptotic variances
  CString strAVFile;
  std::int32_t nSeed = 123456;
  std::int32_t bSaveMatrix = 0;  // moment matrix
  std::int32_t nMatrixType = kNoMatrixSelected;
  CString strMatrixFile;
  std::int32_t bSaveMeans = 0;
  CString strMeansFile;
  std::int32_t bSaveSD = 0;
  CString strSDFile;
  std::int32_t bPrintAC = 0;
  std::int32_t bPK = 0;  // no control of the dialog sets it
  std::int32_t bPrintAV = 0;
  std::int32_t bSaveData = 0;                 // transformed data
  std::int32_t nSeedMode = 0;                 // 0: random seed, 1: nSeed
  std::int32_t nRepetitions = 1;              // at least 1
  std::int32_t bRewind = 0;                   // before each repetition
  std::int32_t nWidth = kDefaultWidth;        // of printed fields, 1 to 32
  std::int32_t nDecimals = kDefaultDecimals;  // 0 to 8
  std::int32_t bWidePrint = 0;
  std::int32_t bBivariateTables = 0;
  std::int32_t bMultivariateTests = 0;
  std::int32_t bBivariateTests = 0;
  CString strDataFile;
};

// The output line ("OU ..."): a fixed order of parts, each with a blank behind it, file names
// without quotes. The file of transformed data is left out unless `withData`. Width and decimals
// are written only when neither has its default, which is on purpose.
CString OutputLine(const TRVOUSTRUCT& options, bool withData);
