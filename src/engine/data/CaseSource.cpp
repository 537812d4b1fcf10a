#include "engine/data/CaseSource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>

#include "engine/stats/Parallel.h"

namespace {

constexpr std::size_t kPartBytes = std::size_t{1} << 19;  // so that a part stays in the cache
constexpr std::int64_t kMostPartCases = 4096;
constexpr std::int64_t kPartsAtOnce = 32;

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
  AddTo(otherValues, other.otherValues);
  AddTo(undefined, other.undefined);
}

// A run of cases that one thread decodes on its own.
struct CCaseSource::Part {
  std::int64_t first = 0;  // record, counted from 0
  std::int64_t cases = 0;
  int error = 0;
  CASECOUNTS counts;
  std::vector<double> raw;    // the file's records; then those that are kept, all variables wide
  std::vector<double> clean;  // as above, missing cells as NaN where an expression needs them
  std::vector<std::int64_t> numbers;  // of the kept cases
  std::vector<double> results;        // of an expression
  // What goes out.
  std::vector<double> cells;
  std::vector<std::uint8_t> codes;  // case after case here
  std::vector<double> weights;
  std::vector<std::int64_t> usedNumbers;
};

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
  missing_.reserve(width_);
  for (std::size_t i = 0; i < width_; ++i) missing_.emplace_back(job.data, i);
}

void CCaseSource::DecodePart(Part& part) const {
  const auto fileWidth = static_cast<std::size_t>(job_.fileVariables);
  part.counts = CASECOUNTS();
  part.counts.otherValues.assign(columns_.size(), 0);
  part.counts.undefined.assign(job_.transformations.size(), 0);
  part.counts.read = part.cases;
  for (auto* buffer : {&part.cells, &part.weights}) buffer->clear();
  part.codes.clear();
  part.numbers.clear();
  part.usedNumbers.clear();
  part.raw.resize(static_cast<std::size_t>(part.cases) * fileWidth);
  part.error = file_.ReadRecords(part.first, part.cases, part.raw.data()) ? 0 : errno;
  if (part.error != 0) return;
  std::size_t kept = 0;
  for (std::int64_t i = 0; i < part.cases; ++i) {
    const double* const row = part.raw.data() + static_cast<std::size_t>(i) * fileWidth;
    if (!job_.selection.IsEmpty() && !job_.selection.Keeps(row, part.first + i + 1)) {
      ++part.counts.notSelected;
      continue;
    }
    if (kept != static_cast<std::size_t>(i)) {
      std::copy_n(row, fileWidth, part.raw.data() + kept * fileWidth);
    }
    ++kept;
    part.numbers.push_back(part.first + i + 1);
  }
  if (!job_.transformations.empty()) Transform(part);
  const std::size_t stride = job_.transformations.empty() ? fileWidth : width_;
  part.cells.reserve(kept * columns_.size());
  for (std::size_t i = 0; i < kept; ++i) {
    PutRow(part, part.raw.data() + i * stride, part.numbers[i]);
  }
}

// Writes one case to what goes out, unless its weight or a missing value leaves it out.
void CCaseSource::PutRow(Part& part, const double* row, std::int64_t number) const {
  double weight = 1;
  if (weightVariable_ >= 0) {
    weight = row[weightVariable_];
    if (missing_[static_cast<std::size_t>(weightVariable_)](weight) || !std::isfinite(weight) ||
        weight <= 0) {
      ++part.counts.withoutWeight;
      return;
    }
  }
  const std::size_t cellCount = part.cells.size();
  const std::size_t codeCount = part.codes.size();
  bool complete = true;
  for (std::size_t j = 0; j < columns_.size(); ++j) {
    const CASECOLUMN& column = columns_[j];
    double value = row[column.variable];
    if (missing_[static_cast<std::size_t>(column.variable)](value)) {
      value = kMissing;
    } else if (std::isinf(value)) {
      ++part.counts.infinite;
      value = kMissing;
    }
    if (!column.values.empty()) {
      std::uint8_t code = stats::kMissingCode;
      if (!std::isnan(value)) {
        const auto at = std::lower_bound(column.values.begin(), column.values.end(), value);
        if (at != column.values.end() && *at == value) {
          code = static_cast<std::uint8_t>(at - column.values.begin());
        } else {
          ++part.counts.otherValues[j];
          value = kMissing;
        }
      }
      part.codes.push_back(code);
    }
    complete = complete && !std::isnan(value);
    part.cells.push_back(value);
  }
  if (listwise_ && !complete) {
    part.cells.resize(cellCount);
    part.codes.resize(codeCount);
    ++part.counts.incomplete;
    return;
  }
  ++part.counts.used;
  if (weightVariable_ >= 0) part.weights.push_back(weight);
  part.usedNumbers.push_back(number);
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

// Joins the parts to the block that is handed out, in their order.
void CCaseSource::Gather(std::vector<Part>& parts) {
  std::size_t cases = 0;
  for (const Part& part : parts) cases += part.usedNumbers.size();
  const auto coded = static_cast<std::size_t>(
      std::count_if(columns_.begin(), columns_.end(),
                    [](const CASECOLUMN& column) { return !column.values.empty(); }));
  cells_.clear();
  weights_.clear();
  numbers_.clear();
  codes_.resize(coded * cases);
  std::size_t first = 0;
  for (const Part& part : parts) {
    cells_.insert(cells_.end(), part.cells.begin(), part.cells.end());
    weights_.insert(weights_.end(), part.weights.begin(), part.weights.end());
    numbers_.insert(numbers_.end(), part.usedNumbers.begin(), part.usedNumbers.end());
    const std::size_t count = part.usedNumbers.size();
    for (std::size_t j = 0; j < coded; ++j) {
      std::uint8_t* const to = codes_.data() + j * cases + first;
      for (std::size_t i = 0; i < count; ++i) to[i] = part.codes[i * coded + j];
    }
    first += count;
    counts_.Add(part.counts);
  }
}

bool CCaseSource::ForEachBlock(const std::function<void(const CASEBLOCK&)>& work,
                               const Progress& progress, FAULT& fault) {
  counts_ = CASECOUNTS();
  counts_.otherValues.assign(columns_.size(), 0);
  counts_.undefined.assign(job_.transformations.size(), 0);
  const std::int64_t records = file_.Records();
  const std::int64_t partCases = std::clamp<std::int64_t>(
      static_cast<std::int64_t>(kPartBytes / (std::max<std::size_t>(width_, 1) * sizeof(double))),
      1, kMostPartCases);
  std::vector<Part> parts;
  for (std::int64_t next = 0; next < records;) {
    const std::int64_t left = (records - next + partCases - 1) / partCases;
    parts.resize(static_cast<std::size_t>(std::min(left, kPartsAtOnce)));
    for (Part& part : parts) {
      part.first = next;
      part.cases = std::min(partCases, records - next);
      next += part.cases;
    }
    stats::ParallelFor(threads_, static_cast<std::int64_t>(parts.size()),
                       [&](std::int64_t i) { DecodePart(parts[static_cast<std::size_t>(i)]); });
    for (const Part& part : parts) {
      if (part.error == 0) continue;
      fault.cause =
          "the data file " + file_.Name() + " cannot be read: " + std::strerror(part.error);
      return false;
    }
    Gather(parts);
    const auto cases = static_cast<std::int64_t>(numbers_.size());
    const double* const weights = weightVariable_ >= 0 ? weights_.data() : nullptr;
    const auto variables = static_cast<int>(columns_.size());
    const auto coded = cases == 0 ? 0 : static_cast<int>(codes_.size() / numbers_.size());
    if (cases > 0) {
      work({{cells_.data(), cases, variables, variables, weights},
            {codes_.data(), cases, coded, cases, weights},
            numbers_.data()});
    }
    if (progress && !progress(static_cast<double>(next) / static_cast<double>(records))) {
      return false;
    }
  }
  return true;
}
