// The cases of a run on their way from the file to the procedures: selected, transformed, with
// missing cells as NaN, and weighted.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "engine/data/ColumnCodes.h"
#include "engine/data/DataFile.h"
#include "engine/stats/Blocks.h"
#include "engine/syntax/Job.h"

// One of the variables that are asked for.
struct CASECOLUMN {
  std::int32_t variable = 0;  // of the job's data, counted from 0
  // When not empty: the values that the variable may have, ascending. Any other one counts as
  // missing.
  std::vector<double> values;
};

// What became of the cases and cells in one pass. Cases that a rule leaves out are not asked for
// the next one.
struct CASECOUNTS {
  std::int64_t read = 0;
  std::int64_t notSelected = 0;
  std::int64_t withoutWeight = 0;  // missing, negative, zero or infinite
  std::int64_t incomplete = 0;     // left out because listwise deletion was asked for
  std::int64_t used = 0;
  std::int64_t infinite = 0;    // cells that hold no finite number, and so count as missing
  std::int64_t otherCells = 0;  // cells with a value not among their column's `values`
  std::vector<std::int64_t> otherValues;  // the same, by column
  std::vector<std::int64_t> undefined;    // by transformation: results that are no finite number

  void Add(const CASECOUNTS& other);
};

// Cells: case after case, in the order of the columns. Codes: for the columns with `values`, in
// their order, the value's index. Nothing of it outlives the call.
struct CASEBLOCK {
  stats::CaseBlock cells;
  stats::CodeBlock codes;
  const std::int64_t* numbers = nullptr;  // the cases' numbers in the file, counted from 1
  bool complete = false;                  // no cell is missing
};

class CCaseStore;

class CCaseSource {
 public:
  // File and job must outlive the source. `repetition` counts from 0. Threads: 0 for all
  // processors.
  CCaseSource(const CDataFile& file, const JOB& job, std::uint64_t seed, std::int64_t repetition,
              int threads);
  // Gives the cases of a store, as often as `counts` says; both outlive the source.
  CCaseSource(const CDataFile& file, const JOB& job, const CCaseStore& store,
              const std::vector<double>& counts);
  ~CCaseSource();
  CCaseSource(const CCaseSource&) = delete;
  CCaseSource& operator=(const CCaseSource&) = delete;

  // What the blocks hold from now on.
  void SetColumns(std::vector<CASECOLUMN> columns) { columns_ = std::move(columns); }
  // Leave out the cases that have a missing value in any of the columns?
  void SetListwise(bool listwise) { listwise_ = listwise; }
  bool IsListwise() const { return listwise_; }

  // Every case counts 1 from now on, and none is left out for its weight.
  void IgnoreWeights() { weightVariable_ = -1; }

  bool HasWeights() const { return weightVariable_ >= 0; }
  // The number of the weight variable, counted from 0; -1 for none.
  std::int32_t WeightVariable() const { return weightVariable_; }

  // Told the share of the cases that is done, 0 to 1; returns false to stop.
  using Progress = std::function<bool(double)>;

  // Gives all cases to `work`, block after block in the order of the file and on the calling
  // thread. The blocks are the same for any number of threads. Returns false with the reason in
  // `fault`, also when `progress` asked to stop (the fault has then no cause). May be called again
  // and again.
  bool ForEachBlock(const std::function<void(const CASEBLOCK&)>& work, const Progress& progress,
                    FAULT& fault);

  // What is to be done with a piece in its turn: one after the other, in the order of the file.
  using PieceResult = std::function<void()>;
  // Called for several pieces at the same time, on any thread.
  using PieceWork = std::function<PieceResult(const CASEBLOCK&)>;

  // The same in pieces that stay in the processor's cache from the file to the sums: `work` is
  // called on the threads that read, and what it returns in order, while no other is. The pieces
  // are the same for any number of threads. `progress` is called on any thread.
  bool ForEachPiece(const PieceWork& work, const Progress& progress, FAULT& fault);

  // Of the last pass.
  const CASECOUNTS& Counts() const { return counts_; }

  // The columns that passes have asked for since the last ForgetUse, each variable once, with the
  // last `values` that it had.
  const std::vector<CASECOLUMN>& Used() const { return used_; }
  void ForgetUse() { used_.clear(); }

 private:
  struct Buffer;
  struct Part;

  void NoteUse();
  void BeginPass();
  FAULT ReadFault(int error) const;
  void PrepareColumns();
  std::int64_t PartCases() const;
  void MakeRoom(Buffer& buffer, std::size_t cases) const;
  void PrepareBlock(std::vector<Part>& parts, std::int64_t first);
  void DecodePart(Part& part);
  std::size_t Select(Part& part) const;
  void Transform(Part& part) const;
  void TransformOnce(Part& part, std::uint64_t repetition) const;
  void Apply(const CASEFUNCTION& function, Part& part) const;
  void PutRows(Part& part, std::size_t stride, std::size_t kept);
  bool IsEmpty(const double* row) const;
  bool TakeWeight(Part& part, const double* row, std::size_t place);
  std::int64_t CleanCells(Part& part) const;
  void PutCodes(Part& part) const;
  void DropIncomplete(Part& part) const;
  std::size_t Gather(const std::vector<Part>& parts);
  CASEBLOCK View(const Buffer& buffer, std::size_t cases, bool complete) const;

  const CDataFile& file_;
  const JOB& job_;
  std::uint64_t seed_;
  std::int64_t repetition_;
  int threads_;
  std::int32_t weightVariable_ = -1;
  std::size_t width_ = 0;              // cells of a case with the variables that the job makes
  std::vector<CMissingTest> missing_;  // by variable
  std::vector<CASECOLUMN> columns_;
  bool listwise_ = false;
  CASECOUNTS counts_;
  std::vector<CASECOLUMN> used_;
  const CCaseStore* store_ = nullptr;
  const std::vector<double>* drawn_ = nullptr;
  // What the columns need, prepared for the pass.
  std::vector<std::int32_t> columnVariables_;
  std::vector<CMissingTest> columnMissing_;
  bool sameMissing_ = false;  // one test for all columns
  bool neighbours_ = false;   // the columns are variables that stand side by side
  std::vector<CColumnCodes> columnCodes_;
  std::unique_ptr<Buffer> block_;  // that is handed out; the parts write into it side by side
};
