// Cases in memory, for methods that go through them again and again with other weights.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "engine/data/CaseSource.h"

class CCaseStore {
 public:
  CCaseStore();
  ~CCaseStore();

  // Keeps the cases of `source` in these columns, missing cells as NaN; equal cases are kept once
  // where that saves at least half of them. Takes the cases without a value in any column not.
  // Returns false with the reason in `fault`, also when they need more than `mostBytes` (the fault
  // then has no remedy) and when `progress` asked to stop (it has no cause).
  bool Read(CCaseSource& source, std::vector<CASECOLUMN> columns, bool listwise,
            std::int64_t mostBytes, const CCaseSource::Progress& progress, FAULT& fault);

  // How many cases each kept case stands for.
  const std::vector<double>& Weights() const { return weights_; }
  std::int64_t Bytes() const;  // that the cases take

  // As a source does, case i with the weight counts[i] and left out where that is 0. The columns
  // are among those that were read. For several threads at once.
  bool ForEachBlock(const std::vector<CASECOLUMN>& columns, bool listwise,
                    const std::vector<double>& counts,
                    const std::function<void(const CASEBLOCK&)>& work, CASECOUNTS& result) const;

 private:
  struct Decoded;
  class CKnownRows;

  void Add(const CASEBLOCK& block, CKnownRows& known);
  std::shared_ptr<const Decoded> Decode(const std::vector<CASECOLUMN>& columns,
                                        bool listwise) const;
  std::shared_ptr<const Decoded> MakeDecoded(const std::vector<CASECOLUMN>& columns,
                                             bool listwise) const;

  std::vector<std::int32_t> variables_;  // of the columns
  std::vector<double> cells_;            // case after case
  std::vector<double> weights_;
  // The same cases in other columns, as they were asked for.
  mutable std::mutex lock_;
  mutable std::vector<std::shared_ptr<const Decoded>> decoded_;
};
