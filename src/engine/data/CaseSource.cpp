#include "engine/data/CaseSource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "engine/data/CaseStore.h"
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

// A run of cases that one thread decodes on its own.
struct CCaseSource::Part {
  std::int64_t first = 0;  // record, counted from 0
  std::int64_t cases = 0;
  std::size_t place = 0;  // of its first case in the block
  std::size_t used = 0;   // cases that it put there
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
      width_(static_cast<std::size_t>(job.data.variables)) {
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
  sameMissing_ = true;
  neighbours_ = true;
  for (std::size_t j = 0; j < columns_.size(); ++j) {
    const std::int32_t variable = columns_[j].variable;
    columnMissing_.push_back(missing_[static_cast<std::size_t>(variable)]);
    sameMissing_ = sameMissing_ && columnMissing_.back() == columnMissing_.front();
    neighbours_ = neighbours_ && variable == columns_.front().variable + static_cast<int>(j);
    if (!columns_[j].values.empty()) columnCodes_.emplace_back(j, columns_[j].values);
  }
}

// Divides the records from `first` on among the parts and makes room for their cases.
void CCaseSource::PrepareBlock(std::vector<Part>& parts, std::int64_t first) {
  const std::int64_t partCases = std::clamp<std::int64_t>(
      static_cast<std::int64_t>(kPartBytes / (std::max<std::size_t>(width_, 1) * sizeof(double))),
      1, kMostPartCases);
  capacity_ = 0;
  for (Part& part : parts) {
    part.first = first;
    part.cases = std::clamp<std::int64_t>(file_.Records() - first, 0, partCases);
    part.place = capacity_;
    capacity_ += static_cast<std::size_t>(part.cases);
    first += part.cases;
  }
  if (numbers_.size() < capacity_) {
    cells_.resize(capacity_ * columns_.size());
    codes_.resize(capacity_ * columnCodes_.size());
    numbers_.resize(capacity_);
    if (weightVariable_ >= 0) weights_.resize(capacity_);
  }
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
  const std::size_t stride = job_.transformations.empty() ? fileWidth : width_;
  for (std::size_t i = 0; i < kept; ++i) {
    const std::size_t place = part.place + part.used;
    if (!PutRow(part, part.raw.data() + i * stride, place)) continue;
    numbers_[place] = part.numbers[i];
    ++part.used;
  }
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
  weights_[place] = weight;
  return true;
}

// Writes a case to its place in the block. Returns false when its weight or a missing value leaves
// it out.
bool CCaseSource::PutRow(Part& part, const double* row, std::size_t place) {
  if (weightVariable_ >= 0 && !TakeWeight(part, row, place)) return false;
  if (!job_.emptyIn.empty() && IsEmpty(row)) {
    ++part.counts.incomplete;
    return false;
  }
  const std::size_t count = columns_.size();
  double* const cells = cells_.data() + place * count;
  std::size_t missing = 0;
  if (sameMissing_ && neighbours_) {
    missing = columnMissing_.front().Copy(row + columns_.front().variable, count, cells);
  } else {
    for (std::size_t j = 0; j < count; ++j) {
      const double value = row[columns_[j].variable];
      const bool none = columnMissing_[j](value) || !std::isfinite(value);
      cells[j] = none ? kMissing : value;
      missing += none ? 1 : 0;
    }
  }
  if (missing > 0) {
    for (std::size_t j = 0; j < count; ++j) {
      part.counts.infinite += std::isinf(row[columns_[j].variable]) ? 1 : 0;
    }
  }
  const std::int64_t otherBefore = part.counts.otherCells;
  if (!columnCodes_.empty()) PutCodes(part, cells, place);
  if (listwise_ && (missing > 0 || part.counts.otherCells > otherBefore)) {
    ++part.counts.incomplete;
    return false;
  }
  return true;
}

// Has the case no value in any of the variables that must not all be missing?
bool CCaseSource::IsEmpty(const double* row) const {
  return std::all_of(job_.emptyIn.begin(), job_.emptyIn.end(), [&](std::int32_t variable) {
    return missing_[static_cast<std::size_t>(variable)](row[variable]);
  });
}

// Cells with values that a column may not have become missing.
void CCaseSource::PutCodes(Part& part, double* cells, std::size_t place) {
  std::uint8_t* code = codes_.data() + place;
  for (const CColumnCodes& codes : columnCodes_) {
    double& cell = cells[codes.Column()];
    *code = codes.CodeOf(cell);
    if (*code == stats::kMissingCode && !std::isnan(cell)) {
      cell = kMissing;
      ++part.counts.otherValues[codes.Column()];
      ++part.counts.otherCells;
    }
    code += capacity_;
  }
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
std::int64_t CCaseSource::Gather(const std::vector<Part>& parts) {
  const std::size_t columns = columns_.size();
  std::size_t cases = 0;
  for (const Part& part : parts) {
    counts_.Add(part.counts);
    if (part.place != cases) {
      const auto move = [&](auto& from, std::size_t size, std::size_t offset) {
        std::copy_n(from.begin() + static_cast<std::ptrdiff_t>(offset + part.place * size),
                    part.used * size,
                    from.begin() + static_cast<std::ptrdiff_t>(offset + cases * size));
      };
      move(cells_, columns, 0);
      move(numbers_, 1, 0);
      if (weightVariable_ >= 0) move(weights_, 1, 0);
      for (std::size_t j = 0; j < columnCodes_.size(); ++j) move(codes_, 1, j * capacity_);
    }
    cases += part.used;
  }
  return static_cast<std::int64_t>(cases);
}

bool CCaseSource::ForEachBlock(const std::function<void(const CASEBLOCK&)>& work,
                               const Progress& progress, FAULT& fault) {
  NoteUse();
  if (store_ != nullptr) return store_->ForEachBlock(columns_, listwise_, *drawn_, work, counts_);
  counts_ = CASECOUNTS();
  counts_.otherValues.assign(columns_.size(), 0);
  counts_.undefined.assign(job_.transformations.size(), 0);
  numbers_.clear();
  PrepareColumns();
  std::vector<Part> parts(kPartsAtOnce);
  const std::int64_t records = file_.Records();
  for (std::int64_t next = 0; next < records;) {
    PrepareBlock(parts, next);
    stats::ParallelFor(threads_, kPartsAtOnce,
                       [&](std::int64_t i) { DecodePart(parts[static_cast<std::size_t>(i)]); });
    for (const Part& part : parts) {
      next += part.cases;
      if (part.error == 0) continue;
      fault.cause =
          "the data file " + file_.Name() + " cannot be read: " + std::strerror(part.error);
      return false;
    }
    const std::int64_t cases = Gather(parts);
    const double* const weights = weightVariable_ >= 0 ? weights_.data() : nullptr;
    const auto variables = static_cast<int>(columns_.size());
    if (cases > 0) {
      work({{cells_.data(), cases, variables, variables, weights},
            {codes_.data(), cases, static_cast<int>(columnCodes_.size()),
             static_cast<std::int64_t>(capacity_), weights},
            numbers_.data()});
    }
    if (progress && !progress(static_cast<double>(next) / static_cast<double>(records))) {
      return false;
    }
  }
  return true;
}
