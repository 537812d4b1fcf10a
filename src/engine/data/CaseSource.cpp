#include "engine/data/CaseSource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "engine/data/CaseStore.h"
#include "engine/stats/InOrder.h"
#include "engine/stats/Kernels.h"
#include "engine/stats/Parallel.h"

namespace {

constexpr std::size_t kPartBytes = std::size_t{1} << 18;  // so that a part stays in the cache
constexpr std::int64_t kMostPartCases = 4096;
constexpr std::size_t kPartsAtOnce = 16;

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

void AddTo(std::vector<std::int64_t>& sums, const std::vector<std::int64_t>& more) {
  sums.resize(std::max(sums.size(), more.size()), 0);
  for (std::size_t i = 0; i < more.size(); ++i) sums[i] += more[i];
}

}  // namespace

void CASECOUNTS::Add(const CASECOUNTS& other) {
  read += other.read;
  notSelected += other.notSelected;
  withoutWeight += other.withoutWeight;
  incomplete += other.incomplete;
  used += other.used;
  infinite += other.infinite;
  otherCells += other.otherCells;
  AddTo(otherValues, other.otherValues);
  AddTo(undefined, other.undefined);
}

// Cases ready to be handed out. Codes of one column are `capacity` apart from those of the next.
struct CCaseSource::Buffer {
  std::size_t capacity = 0;  // cases
  std::vector<double> cells;
  std::vector<std::uint8_t> codes;
  std::vector<double> weights;
  std::vector<std::int64_t> numbers;
};

// A run of cases that one thread decodes on its own.
struct CCaseSource::Part {
  Buffer* to = nullptr;
  std::int64_t first = 0;  // record, counted from 0
  std::int64_t cases = 0;
  std::size_t place = 0;  // of its first case in the buffer
  std::size_t used = 0;   // cases that it put there
  bool complete = true;   // these have no missing cell
  int error = 0;
  CASECOUNTS counts;
  std::vector<double> raw;    // the file's records; then those that are kept, all variables wide
  std::vector<double> clean;  // as above, missing cells as NaN where an expression needs them
  std::vector<std::int64_t> numbers;  // of the kept cases
  std::vector<double> results;        // of an expression
};

CCaseSource::~CCaseSource() = default;

CCaseSource::CCaseSource(const CDataFile& file, const JOB& job, std::uint64_t seed,
                         std::int64_t repetition, int threads)
    : file_(file),
      job_(job),
      seed_(seed),
      repetition_(repetition),
      threads_(stats::ThreadCount(threads)),
      width_(static_cast<std::size_t>(job.data.variables)),
      block_(std::make_unique<Buffer>()) {
  if (IsVariableNumber(file.Data(), job.data.weightVariable)) {
    weightVariable_ = job.data.weightVariable - 1;
  }
}

CCaseSource::CCaseSource(const CDataFile& file, const JOB& job, const CCaseStore& store,
                         const std::vector<double>& counts)
    : CCaseSource(file, job, 0, 0, 1) {
  store_ = &store;
  drawn_ = &counts;
}

void CCaseSource::NoteUse() {
  for (const CASECOLUMN& column : columns_) {
    const auto known = std::find_if(used_.begin(), used_.end(), [&](const CASECOLUMN& other) {
      return other.variable == column.variable;
    });
    if (known == used_.end()) {
      used_.push_back(column);
    } else if (!column.values.empty()) {
      known->values = column.values;
    }
  }
}

void CCaseSource::PrepareColumns() {
  // Procedures may have added variables since the last pass.
  width_ = static_cast<std::size_t>(job_.data.variables);
  missing_.clear();
  missing_.reserve(width_);
  for (std::size_t i = 0; i < width_; ++i) missing_.emplace_back(job_.data, i);
  columnMissing_.clear();
  columnCodes_.clear();
  columnVariables_.clear();
  sameMissing_ = !columns_.empty();
  neighbours_ = true;
  for (std::size_t j = 0; j < columns_.size(); ++j) {
    const std::int32_t variable = columns_[j].variable;
    columnVariables_.push_back(variable);
    columnMissing_.push_back(missing_[static_cast<std::size_t>(variable)]);
    sameMissing_ = sameMissing_ && columnMissing_.back() == columnMissing_.front();
    neighbours_ = neighbours_ && variable == columns_.front().variable + static_cast<int>(j);
    if (!columns_[j].values.empty()) columnCodes_.emplace_back(j, columns_[j].values);
  }
}

std::int64_t CCaseSource::PartCases() const {
  const std::size_t width = std::max<std::size_t>(width_, 1) * sizeof(double);
  return std::clamp<std::int64_t>(static_cast<std::int64_t>(kPartBytes / width), 1, kMostPartCases);
}

void CCaseSource::MakeRoom(Buffer& buffer, std::size_t cases) const {
  buffer.capacity = cases;
  if (buffer.numbers.size() >= cases) return;
  buffer.cells.resize(cases * columns_.size());
  buffer.codes.resize(cases * columnCodes_.size());
  buffer.numbers.resize(cases);
  if (weightVariable_ >= 0) buffer.weights.resize(cases);
}

// Divides the records from `first` on among the parts and makes room for their cases.
void CCaseSource::PrepareBlock(std::vector<Part>& parts, std::int64_t first) {
  std::size_t capacity = 0;
  for (Part& part : parts) {
    part.to = block_.get();
    part.first = first;
    part.cases = std::clamp<std::int64_t>(file_.Records() - first, 0, PartCases());
    part.place = capacity;
    capacity += static_cast<std::size_t>(part.cases);
    first += part.cases;
  }
  MakeRoom(*block_, capacity);
}

void CCaseSource::DecodePart(Part& part) {
  const auto fileWidth = static_cast<std::size_t>(job_.fileVariables);
  part.counts = CASECOUNTS();
  part.counts.otherValues.assign(columns_.size(), 0);
  part.counts.undefined.assign(job_.transformations.size(), 0);
  part.counts.read = part.cases;
  part.used = 0;
  part.raw.resize(std::max(part.raw.size(), static_cast<std::size_t>(part.cases) * fileWidth));
  part.error = file_.ReadRecords(part.first, part.cases, part.raw.data()) ? 0 : errno;
  if (part.error != 0) return;
  const std::size_t kept = Select(part);
  if (!job_.transformations.empty()) Transform(part);
  PutRows(part, job_.transformations.empty() ? fileWidth : width_, kept);
  part.complete = CleanCells(part) == 0;
  if (!columnCodes_.empty()) PutCodes(part);
  if (listwise_ && !part.complete) DropIncomplete(part);
  part.counts.used = static_cast<std::int64_t>(part.used);
}

// Moves the selected records together and returns how many they are.
std::size_t CCaseSource::Select(Part& part) const {
  const auto fileWidth = static_cast<std::size_t>(job_.fileVariables);
  std::size_t kept = 0;
  part.numbers.resize(static_cast<std::size_t>(part.cases));
  for (std::int64_t i = 0; i < part.cases; ++i) {
    const double* const row = part.raw.data() + static_cast<std::size_t>(i) * fileWidth;
    if (!job_.selection.IsEmpty() && !job_.selection.Keeps(row, part.first + i + 1)) {
      ++part.counts.notSelected;
      continue;
    }
    if (kept != static_cast<std::size_t>(i)) {
      std::copy_n(row, fileWidth, part.raw.data() + kept * fileWidth);
    }
    part.numbers[kept++] = part.first + i + 1;
  }
  part.numbers.resize(kept);
  return kept;
}

bool CCaseSource::TakeWeight(Part& part, const double* row, std::size_t place) {
  const double weight = row[weightVariable_];
  if (missing_[static_cast<std::size_t>(weightVariable_)](weight) || !std::isfinite(weight) ||
      weight <= 0) {
    ++part.counts.withoutWeight;
    return false;
  }
  part.to->weights[place] = weight;
  return true;
}

// Copies the columns of those cases that their weight and the variables that must not be empty
// leave in.
void CCaseSource::PutRows(Part& part, std::size_t stride, std::size_t kept) {
  const std::size_t count = columns_.size();
  const double* row = part.raw.data();
  std::int64_t* const numbers = part.to->numbers.data() + part.place;
  double* cells = part.to->cells.data() + part.place * count;
  if (weightVariable_ < 0 && job_.emptyIn.empty() && neighbours_ && stride == count) {
    std::copy_n(row, kept * count, cells);
    std::copy_n(part.numbers.begin(), kept, numbers);
    part.used = kept;
    return;
  }
  for (std::size_t i = 0; i < kept; ++i, row += stride) {
    if (weightVariable_ >= 0 && !TakeWeight(part, row, part.place + part.used)) continue;
    if (!job_.emptyIn.empty() && IsEmpty(row)) {
      ++part.counts.incomplete;
      continue;
    }
    if (neighbours_) {
      std::copy_n(row + columns_.front().variable, count, cells);
    } else {
      for (std::size_t j = 0; j < count; ++j) cells[j] = row[columnVariables_[j]];
    }
    numbers[part.used++] = part.numbers[i];
    cells += count;
  }
}

// Missing and infinite cells become NaN. Returns how many these are.
std::int64_t CCaseSource::CleanCells(Part& part) const {
  const std::size_t count = columns_.size();
  double* const cells = part.to->cells.data() + part.place * count;
  if (sameMissing_) {
    const CMissingTest& test = columnMissing_.front();
    const stats::CleanCounts counts = stats::ActiveKernels().clean(
        cells, static_cast<std::int64_t>(part.used * count),
        {test.Values().data(), static_cast<std::int64_t>(test.Values().size()), test.RangeLow(),
         test.RangeHigh()});
    part.counts.infinite += counts.infinite;
    return counts.missing;
  }
  std::int64_t missing = 0;
  for (std::size_t at = 0; at < part.used * count; at += count) {
    for (std::size_t j = 0; j < count; ++j) {
      double& cell = cells[at + j];
      const bool infinite = std::isinf(cell);
      if (!infinite && !columnMissing_[j](cell)) continue;
      part.counts.infinite += infinite ? 1 : 0;
      cell = kMissing;
      ++missing;
    }
  }
  return missing;
}

// Has the case no value in any of the variables that must not all be missing?
bool CCaseSource::IsEmpty(const double* row) const {
  return std::all_of(job_.emptyIn.begin(), job_.emptyIn.end(), [&](std::int32_t variable) {
    return missing_[static_cast<std::size_t>(variable)](row[variable]);
  });
}

// Cells with values that a column may not have become missing.
void CCaseSource::PutCodes(Part& part) const {
  const std::size_t count = columns_.size();
  std::uint8_t* code = part.to->codes.data() + part.place;
  for (const CColumnCodes& codes : columnCodes_) {
    double* cell = part.to->cells.data() + part.place * count + codes.Column();
    std::int64_t others = 0;
    for (std::size_t i = 0; i < part.used; ++i, cell += count) {
      code[i] = codes.CodeOf(*cell);
      if (code[i] != stats::kMissingCode || std::isnan(*cell)) continue;
      *cell = kMissing;
      ++others;
    }
    part.counts.otherValues[codes.Column()] += others;
    part.counts.otherCells += others;
    part.complete = part.complete && others == 0;
    code += part.to->capacity;
  }
}

// Moves the complete cases together.
void CCaseSource::DropIncomplete(Part& part) const {
  const std::size_t count = columns_.size();
  Buffer& buffer = *part.to;
  std::size_t to = part.place;
  for (std::size_t from = part.place; from < part.place + part.used; ++from) {
    const double* const cells = buffer.cells.data() + from * count;
    if (std::any_of(cells, cells + count, [](double cell) { return std::isnan(cell); })) {
      ++part.counts.incomplete;
      continue;
    }
    if (to != from) {
      std::copy_n(cells, count, buffer.cells.data() + to * count);
      for (std::size_t j = 0; j < columnCodes_.size(); ++j) {
        buffer.codes[j * buffer.capacity + to] = buffer.codes[j * buffer.capacity + from];
      }
      if (weightVariable_ >= 0) buffer.weights[to] = buffer.weights[from];
      buffer.numbers[to] = buffer.numbers[from];
    }
    ++to;
  }
  part.used = to - part.place;
  part.complete = true;
}

// Widens the kept records by the variables that the job makes, and works on them in the order of
// the lines. Without RE a repetition goes on from the data that the one before it left.
void CCaseSource::Transform(Part& part) const {
  const auto fileWidth = static_cast<std::size_t>(job_.fileVariables);
  const std::size_t cases = part.numbers.size();
  if (width_ > fileWidth) {
    part.raw.resize(std::max(part.raw.size(), cases * width_));
    for (std::size_t i = cases; i-- > 0;) {
      double* const from = part.raw.data() + i * fileWidth;
      double* const to = part.raw.data() + i * width_;
      std::copy_backward(from, from + fileWidth, to + fileWidth);
      std::fill(to + fileWidth, to + width_, kMissing);
    }
  }
  const auto last = static_cast<std::uint64_t>(repetition_);
  for (std::uint64_t r = job_.header.rewind ? last : 0; r <= last; ++r) TransformOnce(part, r);
}

void CCaseSource::TransformOnce(Part& part, std::uint64_t repetition) const {
  const std::size_t cases = part.numbers.size();
  for (std::size_t t = 0; t < job_.transformations.size(); ++t) {
    if (const auto* const recode = std::get_if<RECODE>(&job_.transformations[t])) {
      for (const std::int32_t variable : recode->variables) {
        const CMissingTest& missing = missing_[static_cast<std::size_t>(variable)];
        double* cell = part.raw.data() + variable;
        for (std::size_t i = 0; i < cases; ++i, cell += width_) {
          *cell = recode->NewValue(*cell, missing(*cell));
        }
      }
      continue;
    }
    if (const auto* const function = std::get_if<CASEFUNCTION>(&job_.transformations[t])) {
      if (repetition == static_cast<std::uint64_t>(repetition_)) Apply(*function, part);
      continue;
    }
    const auto& compute = std::get<COMPUTE>(job_.transformations[t]);
    part.clean.resize(part.raw.size());
    for (const std::int32_t variable : compute.expression.Variables()) {
      const CMissingTest& missing = missing_[static_cast<std::size_t>(variable)];
      for (std::size_t i = 0; i < cases; ++i) {
        const std::size_t at = i * width_ + static_cast<std::size_t>(variable);
        part.clean[at] = missing(part.raw[at]) ? kMissing : part.raw[at];
      }
    }
    part.results.resize(cases);
    part.counts.undefined[t] +=
        compute.expression.Evaluate({part.clean.data(), width_, cases, part.numbers.data()},
                                    {seed_, repetition, t}, part.results.data());
    for (std::size_t i = 0; i < cases; ++i) {
      part.raw[i * width_ + static_cast<std::size_t>(compute.target)] = part.results[i];
    }
  }
}

// What is no finite number becomes missing.
void CCaseSource::Apply(const CASEFUNCTION& function, Part& part) const {
  std::vector<double> inputs(function.inputs.size());
  std::vector<double> outputs(function.outputs.size());
  for (std::size_t i = 0; i < part.numbers.size(); ++i) {
    double* const row = part.raw.data() + i * width_;
    for (std::size_t j = 0; j < inputs.size(); ++j) {
      const auto variable = static_cast<std::size_t>(function.inputs[j]);
      const bool none = missing_[variable](row[variable]) || !std::isfinite(row[variable]);
      inputs[j] = none ? kMissing : row[variable];
    }
    if (function.computeOfCase) {
      function.computeOfCase(part.numbers[i], inputs.data(), outputs.data());
    } else {
      function.compute(inputs.data(), outputs.data());
    }
    for (std::size_t j = 0; j < outputs.size(); ++j) {
      row[function.outputs[j]] = std::isfinite(outputs[j]) ? outputs[j] : kMissing;
    }
  }
}

// Closes the gaps that left-out cases made between the parts. Returns the number of cases.
std::size_t CCaseSource::Gather(const std::vector<Part>& parts) {
  const std::size_t columns = columns_.size();
  Buffer& block = *block_;
  std::size_t cases = 0;
  for (const Part& part : parts) {
    counts_.Add(part.counts);
    if (part.place != cases) {
      const auto move = [&](auto& from, std::size_t size, std::size_t offset) {
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(offset + part.place * size),
                    part.used * size,
                    from.begin() + static_cast<std::ptrdiff_t>(offset + cases * size));
      };
      move(block.cells, columns, 0);
      move(block.numbers, 1, 0);
      if (weightVariable_ >= 0) move(block.weights, 1, 0);
      for (std::size_t j = 0; j < columnCodes_.size(); ++j) {
        move(block.codes, 1, j * block.capacity);
      }
    }
    cases += part.used;
  }
  return cases;
}

CASEBLOCK CCaseSource::View(const Buffer& buffer, std::size_t cases, bool complete) const {
  const auto count = static_cast<std::int64_t>(cases);
  const auto variables = static_cast<int>(columns_.size());
  const double* const weights = weightVariable_ >= 0 ? buffer.weights.data() : nullptr;
  return {{buffer.cells.data(), count, variables, variables, weights},
          {buffer.codes.data(), count, static_cast<int>(columnCodes_.size()),
           static_cast<std::int64_t>(buffer.capacity), weights},
          buffer.numbers.data(),
          complete};
}

void CCaseSource::BeginPass() {
  counts_ = CASECOUNTS();
  counts_.otherValues.assign(columns_.size(), 0);
  counts_.undefined.assign(job_.transformations.size(), 0);
  PrepareColumns();
}

FAULT CCaseSource::ReadFault(int error) const {
  FAULT fault;
  fault.cause = "the data file " + file_.Name() + " cannot be read: " + std::strerror(error);
  return fault;
}

bool CCaseSource::ForEachBlock(const std::function<void(const CASEBLOCK&)>& work,
                               const Progress& progress, FAULT& fault) {
  NoteUse();
  if (store_ != nullptr) return store_->ForEachBlock(columns_, listwise_, *drawn_, work, counts_);
  BeginPass();
  *block_ = Buffer();
  std::vector<Part> parts(kPartsAtOnce);
  const std::int64_t records = file_.Records();
  for (std::int64_t next = 0; next < records;) {
    PrepareBlock(parts, next);
    stats::ParallelFor(threads_, kPartsAtOnce,
                       [&](std::int64_t i) { DecodePart(parts[static_cast<std::size_t>(i)]); });
    bool complete = true;
    for (const Part& part : parts) {
      next += part.cases;
      complete = complete && part.complete;
      if (part.error == 0) continue;
      fault = ReadFault(part.error);
      return false;
    }
    const std::size_t cases = Gather(parts);
    if (cases > 0) work(View(*block_, cases, complete));
    if (progress && !progress(static_cast<double>(next) / static_cast<double>(records))) {
      return false;
    }
  }
  return true;
}

bool CCaseSource::ForEachPiece(const PieceWork& work, const Progress& progress, FAULT& fault) {
  NoteUse();
  if (store_ != nullptr) {
    const auto take = [&work](const CASEBLOCK& block) {
      if (const PieceResult result = work(block)) result();
    };
    return store_->ForEachBlock(columns_, listwise_, *drawn_, take, counts_);
  }
  BeginPass();
  const std::int64_t records = file_.Records(), pieceCases = PartCases();
  struct Own {
    Buffer buffer;
    Part part;
  };
  const auto makeWorker = [&] {
    const auto own = std::make_shared<Own>();
    own->part.to = &own->buffer;
    return [&, own](std::int64_t piece) {
      Part& part = own->part;
      part.first = piece * pieceCases;
      part.cases = std::min(pieceCases, records - part.first);
      MakeRoom(own->buffer, static_cast<std::size_t>(part.cases));
      DecodePart(part);
      PieceResult result;
      if (part.error == 0 && part.used > 0) {
        result = work(View(own->buffer, part.used, part.complete));
      }
      const std::int64_t end = part.first + part.cases;
      return [&, end, result, error = part.error, counts = std::move(part.counts)] {
        if (error != 0) {
          fault = ReadFault(error);
          return false;
        }
        counts_.Add(counts);
        if (result) result();
        return !progress || progress(static_cast<double>(end) / static_cast<double>(records));
      };
    };
  };
  return stats::ForEachInOrder(threads_, (records + pieceCases - 1) / pieceCases, makeWorker);
}
