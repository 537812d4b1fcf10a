// Looking through the view's cells: finding values, statistics of a range, counting a selection.
#include <algorithm>
#include <cerrno>

#include "datadoc/CaseSelection.h"
#include "datadoc/DataDoc.h"
#include "datadoc/Missing.h"
#include "dataview/CellFile.h"
#include "dataview/DataView.h"
#include "host/Host.h"

namespace {

constexpr const char* kCannotRead = "Cannot read the temporary work file!";
constexpr std::int64_t kChunkCells = (std::int64_t{128} << 10) / 8;
// Progress is told after so many chunks.
constexpr int kChunksUntold = 64;

std::vector<CMissingTest> MissingTests(const TORVIKSTRUCT& data, int begin, int end) {
  std::vector<CMissingTest> tests;
  for (int column = begin; column < end; ++column) {
    tests.emplace_back(data, static_cast<std::size_t>(column));
  }
  return tests;
}

// The sums behind RangeStatistics.
class Summary {
 public:
  explicit Summary(std::vector<CMissingTest> missing) : missing_(std::move(missing)) {}

  void Add(const std::vector<double>& cells) {
    for (std::size_t i = 0; i < cells.size(); i += missing_.size()) {
      for (std::size_t column = 0; column < missing_.size(); ++column) {
        AddCell(cells[i + column], missing_[column]);
      }
    }
  }
  RangeStatistics Result() const {
    RangeStatistics result = result_;
    if (result.values > 0) {
      result.mean = static_cast<double>(sum_ / static_cast<long double>(result.values));
    }
    return result;
  }

 private:
  void AddCell(double value, const CMissingTest& missing) {
    if (missing(value)) {
      ++result_.missing;
      return;
    }
    result_.minimum = result_.values == 0 ? value : std::min(result_.minimum, value);
    result_.maximum = result_.values == 0 ? value : std::max(result_.maximum, value);
    ++result_.values;
    sum_ += value;
  }

  std::vector<CMissingTest> missing_;
  RangeStatistics result_;
  long double sum_ = 0;
};

}  // namespace

// The cells that are searched, as one sequence: case after case, in each the variables from left to
// right.
class CDataView::Search {
 public:
  Search(const CDataView& view, const FindRequest& request)
      : view_(view),
        request_(request),
        first_(std::max(request.column, 0)),
        width_(request.column < 0 ? view.document_.GetVarnum() : 1),
        cells_(std::int64_t{view.document_.GetRecnum()} * width_),
        missing_(MissingTests(*view.document_.GetTorvik(), first_, first_ + width_)) {}

  // From the start to the end, then round to the start, which comes last.
  FindResult Run(CProgress& progress, TableCell& cell) {
    progress_ = &progress;
    const std::int64_t start = Start();
    const std::int64_t split = request_.backward ? start : start + 1;
    const FindResult first = request_.backward ? Scan(0, split, cell) : Scan(split, cells_, cell);
    if (first != FindResult::NotFound) return first;
    return request_.backward ? Scan(split, cells_, cell) : Scan(0, split, cell);
  }

 private:
  // Forward the cell before the first one that is looked at, backward the one behind it.
  std::int64_t Start() const {
    const TableCell& from = request_.from;
    if (!view_.IsInTable(from)) return request_.backward ? cells_ : -1;
    if (request_.column >= 0) return from.row;
    return from.row * width_ + from.column;
  }

  bool Fits(double value, std::size_t column) const {
    if (request_.missing) return missing_[column](value);
    return request_.low <= value && value <= request_.high;
  }

  // Whole rows are read; of the first and the last one only a part may belong to the stretch.
  FindResult Scan(std::int64_t begin, std::int64_t end, TableCell& cell) {
    const std::int64_t rows = std::max<std::int64_t>(1, kChunkCells / width_);
    while (begin < end) {
      const std::int64_t rowBegin = request_.backward
                                        ? std::max(begin / width_, (end - 1) / width_ + 1 - rows)
                                        : begin / width_;
      const std::int64_t rowEnd = request_.backward
                                      ? (end - 1) / width_ + 1
                                      : std::min(begin / width_ + rows, (end - 1) / width_ + 1);
      const std::int64_t from = std::max(begin, rowBegin * width_);
      const std::int64_t to = std::min(end, rowEnd * width_);
      const FindResult result = ScanRows(rowBegin, rowEnd, from, to, cell);
      if (result != FindResult::NotFound) return result;
      (request_.backward ? end : begin) = request_.backward ? from : to;
    }
    return FindResult::NotFound;
  }

  FindResult ScanRows(std::int64_t rowBegin, std::int64_t rowEnd, std::int64_t from,
                      std::int64_t to, TableCell& cell) {
    done_ += to - from;
    if (++untold_ >= kChunksUntold) {
      untold_ = 0;
      const double fraction = static_cast<double>(done_) / static_cast<double>(cells_);
      if (!progress_->Advance(fraction)) return FindResult::Stopped;
    }
    const std::int64_t base = rowBegin * width_;
    values_.resize(static_cast<std::size_t>((rowEnd - rowBegin) * width_));
    if (!view_.ReadCells({rowBegin, rowEnd, first_, first_ + width_}, values_.data())) {
      return FindResult::Failed;
    }
    for (std::int64_t k = from; k < to; ++k) {
      const std::int64_t index = request_.backward ? to - 1 - (k - from) : k;
      const auto column = static_cast<std::size_t>(index % width_);
      if (!Fits(values_[static_cast<std::size_t>(index - base)], column)) continue;
      cell = {index / width_, first_ + static_cast<int>(column)};
      return FindResult::Found;
    }
    return FindResult::NotFound;
  }

  const CDataView& view_;
  const FindRequest& request_;
  int first_;
  int width_;
  std::int64_t cells_;
  std::vector<CMissingTest> missing_;
  std::vector<double> values_;
  CProgress* progress_ = nullptr;
  std::int64_t done_ = 0;
  int untold_ = 0;
};

FindResult CDataView::FindValue(const FindRequest& request, TableCell& cell) {
  if (document_.GetVarnum() < 1 || request.column >= document_.GetVarnum()) {
    return FindResult::NotFound;
  }
  Search search(*this, request);
  const auto progress = Host().StartProgress("Finding");
  const FindResult result = search.Run(*progress, cell);
  if (result == FindResult::Failed) AfxMessageBox(kCannotRead);
  return result;
}

std::optional<RangeStatistics> CDataView::GetStatistics(const CellRange& range,
                                                        const KeepGoing& keepGoing) const {
  const CellRange cells = ClippedToTable(range);
  if (cells.IsEmpty()) return RangeStatistics();
  Summary summary(MissingTests(*document_.GetTorvik(), cells.columnBegin, cells.columnEnd));
  const std::int64_t rows = std::max<std::int64_t>(1, kChunkCells / cells.Columns());
  std::vector<double> values;
  for (CellRange piece = cells; piece.rowBegin < cells.rowEnd; piece.rowBegin = piece.rowEnd) {
    piece.rowEnd = std::min(piece.rowBegin + rows, cells.rowEnd);
    values.resize(static_cast<std::size_t>(piece.Cells()));
    if (!ReadCells(piece, values.data())) return std::nullopt;
    summary.Add(values);
    if (keepGoing && !keepGoing()) return std::nullopt;
  }
  return summary.Result();
}

bool CDataView::CountSelected(const CCaseSelection& selection, std::int64_t& kept) const {
  std::FILE* const stream = scratch_.Stream();
  kept = 0;
  if (document_.GetRecnum() == 0) return true;
  const auto progress = Host().StartProgress("Counting the selected cases");
  const auto told = [&](double fraction) { return progress->Advance(fraction); };
  if (stream != nullptr && CopySelected(fileno(stream), Shape(), selection, {}, -1, kept, told)) {
    return true;
  }
  if (stream == nullptr || errno != ECANCELED) AfxMessageBox(kCannotRead);
  return false;
}
