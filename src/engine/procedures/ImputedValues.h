// The values that multiple imputation put in place of the missing ones.
#pragma once

#include <memory>

#include "engine/procedures/IncompleteSample.h"
#include "engine/stats/Augmentation.h"

// Shared by the functions of all completed data sets, and read from several threads.
struct IMPUTEDVALUES {
  std::vector<INCOMPLETEVARIABLE> variables;
  std::unique_ptr<stats::CAugmentationSample> sample;
  std::vector<stats::AugmentationChain> chains;  // one for each data set
  Eigen::VectorXd mean;                          // expected values
  bool fillEmpty = false;  // cases without any value get the means; else they stay as they are

  // Copies a case of the data file, in units of the data, with the missing values (NaN, categories
  // that are none) of this chain; `number` counts the cases from 1.
  void Complete(std::size_t chain, std::int64_t number, const double* in, double* out) const;

 private:
  double ValueOf(std::size_t j, double drawn) const;
  bool IsMissing(std::size_t j, double value) const;
};

// The functions that make a completed data set each of the variables of the list.
std::vector<CASEFUNCTION> CompletionsBy(const std::shared_ptr<const IMPUTEDVALUES>& values,
                                        const VARIABLELIST& list);
