#include "datadoc/ExportCells.h"

#include <algorithm>
#include <cerrno>

#include "datadoc/VsfLayout.h"
#include "datadoc/VsfReader.h"
#include "transfer/TextTransfer.h"
#include "transfer/TransferTypes.h"

void CExportCells::TakeFile(int file, const VsfContents& contents) {
  file_.Take(file);
  offset_ = contents.cellsOffset;
  wholeCells_ = contents.wholeCells;
}

void CExportCells::Start(const TORVIKSTRUCT& data, int scratch) {
  if (!HasFile()) wholeCells_ = -1;
  from_ = HasFile() ? file_.Get() : scratch;
  data_ = &data;
  End();
  missing_.clear();
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) {
    missing_.emplace_back(data, i);
  }
  alike_ = std::all_of(missing_.begin(), missing_.end(),
                       [&](const CMissingTest& test) { return test == missing_.front(); });
}

void CExportCells::End() {
  block_ = {};
  begin_ = 0;
}

const double* CExportCells::Record(std::int64_t record) {
  if (record >= data_->records || !Read(record)) return nullptr;
  return block_.data() + static_cast<std::size_t>(record - begin_) * missing_.size();
}

// What is missing becomes NaN in the block itself, and stays missing for IsMissing.
std::span<const double> CExportCells::Numbers(std::int64_t record) {
  if (missing_.empty() || Record(record) == nullptr) return {};
  const auto begin = static_cast<std::size_t>(record - begin_) * missing_.size();
  const std::span<double> cells = std::span(block_).subspan(begin);
  if (alike_) {
    missing_.front().Blank(cells.data(), cells.size(), 1);
    return cells;
  }
  for (std::size_t i = 0; i < missing_.size(); ++i) {
    missing_[i].Blank(&cells[i], cells.size() - i, missing_.size());
  }
  return cells;
}

// Makes the block hold `record`.
bool CExportCells::Read(std::int64_t record) {
  const std::size_t variables = std::max<std::size_t>(missing_.size(), 1);
  const auto held = static_cast<std::int64_t>(block_.size() / variables);
  if (record >= begin_ && record < begin_ + held) return true;
  const std::int64_t atOnce = std::clamp<std::int64_t>(
      static_cast<std::int64_t>(STUtils::kTransferBytes / (variables * kCellBytes)), 1,
      STUtils::kRecordsPerStep);
  const std::int64_t count = std::min<std::int64_t>(atOnce, data_->records - record);
  const std::int64_t cells = count * data_->variables;
  const std::int64_t first = record * data_->variables;
  const std::int64_t present =
      wholeCells_ < 0 ? cells : std::clamp<std::int64_t>(wholeCells_ - first, 0, cells);
  block_.resize(static_cast<std::size_t>(count) * variables);
  begin_ = record;
  errno = EIO;  // the reason where the file is only too short
  const std::int64_t bytes = CellBytes(present, 1);
  const std::int64_t got =
      ReadAt(from_, offset_ + CellBytes(first, 1), block_.data(), static_cast<std::size_t>(bytes));
  if (got != bytes) {
    block_.clear();
    return false;
  }
  std::fill(block_.begin() + present, block_.end(), kMissingCode);
  return true;
}
