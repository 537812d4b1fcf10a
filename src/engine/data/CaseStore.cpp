#include "engine/data/CaseStore.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>
#include <unordered_map>

namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kBlockCases = 16384;

}  // namespace

// The cases in certain columns, ready to be handed out.
struct CCaseStore::Decoded {
  std::vector<CASECOLUMN> columns;
  bool listwise = false;
  std::vector<double> cells;         // case after case
  std::vector<std::uint8_t> codes;   // case after case
  std::size_t coded = 0;             // columns with codes
  std::vector<std::int32_t> usable;  // cases that are not left out
};

// Finds rows that were there before; gives up when most of them are new.
class CCaseStore::CKnownRows {
 public:
  // The place of an equal row, or `next` when there is none.
  std::size_t PlaceOf(const std::vector<double>& cells, std::size_t width, const double* row,
                      std::size_t next) {
    if (!active_) return next;
    ++rows_;
    const std::string_view bytes(reinterpret_cast<const char*>(row), width * sizeof(double));
    const std::size_t hash = std::hash<std::string_view>()(bytes);
    const auto [first, last] = places_.equal_range(hash);
    for (auto at = first; at != last; ++at) {
      if (std::memcmp(cells.data() + at->second * width, row, bytes.size()) == 0) return at->second;
    }
    constexpr std::size_t kTried = 4096;
    if (rows_ > kTried && next > rows_ / 2) {
      active_ = false;
      places_.clear();
    } else {
      places_.emplace(hash, next);
    }
    return next;
  }

 private:
  bool active_ = true;
  std::size_t rows_ = 0;
  std::unordered_multimap<std::size_t, std::size_t> places_;
};

CCaseStore::CCaseStore() = default;
CCaseStore::~CCaseStore() = default;

std::int64_t CCaseStore::Bytes() const {
  return static_cast<std::int64_t>((cells_.size() + weights_.size()) * sizeof(double));
}

void CCaseStore::Add(const CASEBLOCK& block, CKnownRows& known) {
  const std::size_t width = variables_.size();
  std::vector<double> row(width);
  for (std::int64_t i = 0; i < block.cells.cases; ++i) {
    const double* const from = block.cells.cells + i * block.cells.stride;
    bool empty = true;
    for (std::size_t j = 0; j < width; ++j) {
      const bool none = std::isnan(from[j]);
      // Equal cells have equal bytes.
      row[j] = none ? kMissing : from[j] == 0 ? 0.0 : from[j];
      empty = empty && none;
    }
    if (empty) continue;
    const double weight = block.cells.weights != nullptr ? block.cells.weights[i] : 1;
    const std::size_t place = known.PlaceOf(cells_, width, row.data(), weights_.size());
    if (place < weights_.size()) {
      weights_[place] += weight;
      continue;
    }
    cells_.insert(cells_.end(), row.begin(), row.end());
    weights_.push_back(weight);
  }
}

bool CCaseStore::Read(CCaseSource& source, std::vector<CASECOLUMN> columns, bool listwise,
                      std::int64_t mostBytes, const CCaseSource::Progress& progress, FAULT& fault) {
  variables_.clear();
  cells_.clear();
  weights_.clear();
  decoded_.clear();
  for (const CASECOLUMN& column : columns) variables_.push_back(column.variable);
  source.SetColumns(std::move(columns));
  source.SetListwise(listwise);
  CKnownRows known;
  bool full = false;
  const bool done = source.ForEachBlock(
      [&](const CASEBLOCK& block) {
        // Growing takes twice the memory, and what is handed out once more.
        constexpr std::int64_t kCopies = 4;
        full = full || kCopies * Bytes() > mostBytes;
        if (!full) Add(block, known);
      },
      [&](double share) { return !full && (!progress || progress(share)); }, fault);
  if (full) {
    constexpr int kMegabyte = 20;
    fault.cause = "the cases do not fit into the " + std::to_string(mostBytes >> kMegabyte) +
                  " MB of memory that are free";
    return false;
  }
  return done;
}

namespace {

bool Same(const std::vector<CASECOLUMN>& a, const std::vector<CASECOLUMN>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const CASECOLUMN& x, const CASECOLUMN& y) {
                      return x.variable == y.variable && x.values == y.values;
                    });
}

}  // namespace

std::shared_ptr<const CCaseStore::Decoded> CCaseStore::MakeDecoded(
    const std::vector<CASECOLUMN>& columns, bool listwise) const {
  auto decoded = std::make_shared<Decoded>();
  decoded->columns = columns;
  decoded->listwise = listwise;
  std::vector<std::size_t> places;
  std::vector<CColumnCodes> codes;
  for (std::size_t j = 0; j < columns.size(); ++j) {
    places.push_back(static_cast<std::size_t>(
        std::find(variables_.begin(), variables_.end(), columns[j].variable) - variables_.begin()));
    if (!columns[j].values.empty()) codes.emplace_back(j, columns[j].values);
  }
  decoded->coded = codes.size();
  decoded->cells.reserve(weights_.size() * columns.size());
  decoded->codes.reserve(weights_.size() * codes.size());
  std::vector<double> row(columns.size());
  for (std::size_t i = 0; i < weights_.size(); ++i) {
    const double* const from = cells_.data() + i * variables_.size();
    for (std::size_t j = 0; j < places.size(); ++j) {
      row[j] = places[j] < variables_.size() ? from[places[j]] : kMissing;
    }
    for (const CColumnCodes& column : codes) {
      double& cell = row[column.Column()];
      decoded->codes.push_back(column.CodeOf(cell));
      if (decoded->codes.back() == stats::kMissingCode) cell = kMissing;
    }
    decoded->cells.insert(decoded->cells.end(), row.begin(), row.end());
    const bool incomplete =
        listwise && std::any_of(row.begin(), row.end(), [](double x) { return std::isnan(x); });
    if (!incomplete) decoded->usable.push_back(static_cast<std::int32_t>(i));
  }
  return decoded;
}

// Samples that lack a category ask for columns of their own; those are not worth keeping.
std::shared_ptr<const CCaseStore::Decoded> CCaseStore::Decode(
    const std::vector<CASECOLUMN>& columns, bool listwise) const {
  constexpr std::size_t kMostKept = 8;
  {
    const std::lock_guard<std::mutex> hold(lock_);
    for (const auto& known : decoded_) {
      if (known->listwise == listwise && Same(known->columns, columns)) return known;
    }
    if (decoded_.size() < kMostKept) {
      decoded_.push_back(MakeDecoded(columns, listwise));
      return decoded_.back();
    }
  }
  return MakeDecoded(columns, listwise);
}

bool CCaseStore::ForEachBlock(const std::vector<CASECOLUMN>& columns, bool listwise,
                              const std::vector<double>& counts,
                              const std::function<void(const CASEBLOCK&)>& work,
                              CASECOUNTS& result) const {
  const auto decoded = Decode(columns, listwise);
  const std::size_t width = columns.size(), coded = decoded->coded;
  const std::size_t capacity = std::min(kBlockCases, decoded->usable.size());
  std::vector<double> cells(capacity * width), weights(capacity);
  std::vector<std::uint8_t> codes(capacity * coded);
  std::vector<std::int64_t> numbers(capacity);
  result = CASECOUNTS();
  result.otherValues.assign(width, 0);
  std::size_t used = 0;
  const auto handOut = [&] {
    const auto cases = static_cast<std::int64_t>(used);
    const auto variables = static_cast<int>(width);
    if (used > 0) {
      work({{cells.data(), cases, variables, variables, weights.data()},
            {codes.data(), cases, static_cast<int>(coded), static_cast<std::int64_t>(capacity),
             weights.data()},
            numbers.data()});
    }
    result.read += cases;
    result.used += cases;
    used = 0;
  };
  for (const std::int32_t index : decoded->usable) {
    const auto i = static_cast<std::size_t>(index);
    if (!(counts[i] > 0)) continue;
    std::copy_n(decoded->cells.data() + i * width, width, cells.data() + used * width);
    for (std::size_t j = 0; j < coded; ++j) {
      codes[j * capacity + used] = decoded->codes[i * coded + j];
    }
    weights[used] = counts[i];
    numbers[used] = index + 1;
    if (++used == capacity) handOut();
  }
  handOut();
  return true;
}
