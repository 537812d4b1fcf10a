// The cells of a data set that is exported, read a block of records at a time.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "datadoc/DataSet.h"
#include "datadoc/Missing.h"
#include "vexutils/BlockIo.h"

struct VsfContents;

// Use: Start, then records in their order. Records count from 0. The cells lie in the scratch file,
// or, where nothing else is done with them, in the system data file that they come from.
class CExportCells {
 public:
  // From a system data file, which is owned from now on.
  void TakeFile(int file, const VsfContents& contents);
  bool HasFile() const { return file_.IsOpen(); }

  // `data` must live and keep its definitions; `scratch` holds its cells unless there is a file.
  void Start(const TORVIKSTRUCT& data, int scratch);
  // Gives the memory back.
  void End();

  // The cells of one record, valid until the next call. Null behind the last one, and with the
  // reason in errno when it cannot be read.
  const double* Record(std::int64_t record);
  bool IsMissing(double cell, std::size_t variable) const { return missing_[variable](cell); }
  // The cells of this record and of those behind it that are at hand, NaN where they are missing.
  // Empty where Record gives nothing, and without variables.
  std::span<const double> Numbers(std::int64_t record);

 private:
  bool Read(std::int64_t record);

  CDescriptor file_;
  int from_ = -1;
  std::int64_t offset_ = 0;      // of the first cell
  std::int64_t wholeCells_ = 0;  // those behind them are missing; -1: there are none
  const TORVIKSTRUCT* data_ = nullptr;
  std::vector<CMissingTest> missing_;  // of each variable
  bool alike_ = true;                  // are these tests all the same?
  std::vector<double> block_;          // records from begin_ on
  std::int64_t begin_ = 0;
};
