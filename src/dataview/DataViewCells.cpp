// The view's cells: reading, editing, and the two clipboards.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "dataview/CellFile.h"
#include "dataview/DataView.h"
#include "host/Host.h"

namespace {

constexpr const char* kCannotWrite = "Cannot write to file!";
constexpr const char* kCannotRead = "Cannot read the temporary work file!";
constexpr std::int64_t kChunkCells = (std::int64_t{128} << 10) / 8;
constexpr std::int64_t kMostCopiedCells = 5'000'000;
// Rows that are longer than this are read and written piece by piece, shorter ones together.
constexpr std::int64_t kLongRowBytes = 8192;

// A range in pieces of a few rows each.
class Pieces {
 public:
  explicit Pieces(const CellRange& range)
      : range_(range), rows_(std::max<std::int64_t>(1, kChunkCells / range.Columns())) {
    At(range.rowBegin);
  }

  bool AtEnd() const { return piece_.rowBegin >= range_.rowEnd; }
  const CellRange& Piece() const { return piece_; }
  std::size_t Cells() const { return static_cast<std::size_t>(piece_.Cells()); }
  // Of the cells of the range, how many lie before the piece.
  std::int64_t Before() const { return (piece_.rowBegin - range_.rowBegin) * range_.Columns(); }
  void Next() { At(piece_.rowEnd); }

 private:
  void At(std::int64_t row) {
    piece_ = range_;
    piece_.rowBegin = row;
    piece_.rowEnd = std::min(row + rows_, range_.rowEnd);
  }

  CellRange range_;
  std::int64_t rows_;
  CellRange piece_;
};

std::int64_t PayloadAt(std::int64_t payload, std::int64_t cells) {
  return payload + cells * static_cast<std::int64_t>(kCellBytes);
}

}  // namespace

TableCell CDataView::GetCurrentCell() const {
  return table_ == nullptr ? TableCell() : table_->GetCurrentCell();
}

bool CDataView::IsInTable(const TableCell& cell) const {
  return cell.IsValid() && cell.row < document_.GetRecnum() && cell.column < document_.GetVarnum();
}

CellShape CDataView::Shape() const {
  return {document_.GetRecnum(), document_.GetVarnum()};
}

CellRange CDataView::ClippedToTable(const CellRange& range) const {
  const CellShape shape = Shape();
  CellRange clipped;
  clipped.rowBegin = std::clamp<std::int64_t>(range.rowBegin, 0, shape.records);
  clipped.rowEnd = std::clamp<std::int64_t>(range.rowEnd, clipped.rowBegin, shape.records);
  clipped.columnBegin = std::clamp(range.columnBegin, 0, shape.variables);
  clipped.columnEnd = std::clamp(range.columnEnd, clipped.columnBegin, shape.variables);
  return clipped;
}

// The rows of a range between its first and its last cell are one stretch of the file. It is moved
// as a whole unless most of it belongs to other columns.
bool CDataView::ReadCells(const CellRange& range, double* values) const {
  std::FILE* const stream = scratch_.Stream();
  if (stream == nullptr) return false;
  const CellShape shape = Shape();
  const auto columns = static_cast<std::size_t>(range.Columns());
  const auto rowAt = [&](std::int64_t row) {
    return CellBytes(row, shape.variables) + CellBytes(1, range.columnBegin);
  };
  const auto read = [&](std::int64_t row, double* to, std::size_t cells) {
    const std::size_t bytes = cells * kCellBytes;
    return ReadAt(fileno(stream), rowAt(row), to, bytes) == static_cast<std::int64_t>(bytes);
  };
  if (range.Columns() == shape.variables || range.Rows() == 1) {
    return read(range.rowBegin, values, static_cast<std::size_t>(range.Cells()));
  }
  const auto stride = static_cast<std::size_t>(shape.variables);
  const std::int64_t rowsAtOnce =
      shape.RecordBytes() > kLongRowBytes ? 1 : kChunkCells / shape.variables;
  std::vector<double> stretch;
  for (std::int64_t row = range.rowBegin; row < range.rowEnd; row += rowsAtOnce) {
    const auto rows = static_cast<std::size_t>(std::min(rowsAtOnce, range.rowEnd - row));
    stretch.resize((rows - 1) * stride + columns);
    if (!read(row, stretch.data(), stretch.size())) return false;
    for (std::size_t i = 0; i < rows; ++i, values += columns) {
      std::memcpy(values, stretch.data() + i * stride, columns * kCellBytes);
    }
  }
  return true;
}

bool CDataView::WriteCells(const CellRange& range, const double* values) const {
  std::FILE* const stream = scratch_.Stream();
  if (stream == nullptr) return false;
  const CellShape shape = Shape();
  const auto columns = static_cast<std::size_t>(range.Columns());
  const auto write = [&](std::int64_t row, const double* from, std::size_t cells) {
    const std::int64_t at = CellBytes(row, shape.variables) + CellBytes(1, range.columnBegin);
    return WriteAt(fileno(stream), at, from, cells * kCellBytes);
  };
  if (range.Columns() == shape.variables || range.Rows() == 1) {
    return write(range.rowBegin, values, static_cast<std::size_t>(range.Cells()));
  }
  const auto stride = static_cast<std::size_t>(shape.variables);
  const std::int64_t rowsAtOnce =
      shape.RecordBytes() > kLongRowBytes ? 1 : kChunkCells / shape.variables;
  std::vector<double> stretch;
  for (std::int64_t row = range.rowBegin; row < range.rowEnd; row += rowsAtOnce) {
    CellRange whole = range;
    whole.rowBegin = row;
    whole.rowEnd = std::min(row + rowsAtOnce, range.rowEnd);
    const auto rows = static_cast<std::size_t>(whole.Rows());
    if (rows == 1) {
      if (!write(row, values, columns)) return false;
      values += columns;
      continue;
    }
    whole.columnBegin = 0;
    whole.columnEnd = shape.variables;
    stretch.resize(rows * stride);
    if (!ReadCells(whole, stretch.data())) return false;
    double* cell = stretch.data() + range.columnBegin;
    for (std::size_t i = 0; i < rows; ++i, values += columns, cell += stride) {
      std::memcpy(cell, values, columns * kCellBytes);
    }
    const std::size_t used = (rows - 1) * stride + columns;
    if (!write(row, stretch.data() + range.columnBegin, used)) return false;
  }
  return true;
}

std::optional<double> CDataView::GetCellValue(const TableCell& cell) const {
  double value = 0;
  if (!IsInTable(cell)) return std::nullopt;
  if (!ReadCells({cell.row, cell.row + 1, cell.column, cell.column + 1}, &value)) {
    return std::nullopt;
  }
  return value;
}

CString CDataView::GetCellText(const TableCell& cell) const {
  const auto value = GetCellValue(cell);
  return value ? ExactCellText(*value) : CString();
}

bool CDataView::CommitCell(const TableCell& cell, const CString& text) {
  // An editor that was left as it opened keeps every bit, also of what is no number.
  if (const auto old = GetCellValue(cell); old && ExactCellText(*old) == text) {
    return CommitValue(cell, *old);
  }
  const auto value = ParseCellText(text);
  return value && CommitValue(cell, *value);
}

bool CDataView::CommitValue(const TableCell& cell, double value) {
  bool done = true;
  if (IsInTable(cell) && document_.HoldsRawData()) {
    committed_ = cell;
    done = ChangeCells({cell.row, cell.row + 1, cell.column, cell.column + 1}, {&value, 1});
    if (table_ != nullptr) {
      table_->SetEditable(true);
      table_->SetRowCount(document_.GetRecnum());
    }
  }
  document_.SetModifiedFlag();
  if (table_ != nullptr) {
    table_->Redraw();
    table_->SetCurrentCell(cell);
  }
  return done;
}

void CDataView::OnEditCopy() {
  if (table_ != nullptr) table_->EndEdit();
  const TableCell cell = GetCurrentCell();
  const auto value = GetCellValue(cell);
  if (!value) return;
  table_->SetCurrentCell(cell);
  valueClipboard_ = *value;
}

void CDataView::OnEditPaste() {
  const TableCell cell = GetCurrentCell();
  if (!IsInTable(cell)) return;
  CommitValue(cell, valueClipboard_);
}

std::optional<CString> CDataView::CopyBlock(const CellRange& range) const {
  const CellRange cells = ClippedToTable(range);
  if (cells.Cells() > kMostCopiedCells) {
    AfxMessageBox(
        "The selection is too large for the clipboard: it takes 5,000,000 cells at most.");
    return std::nullopt;
  }
  CString text;
  if (cells.IsEmpty()) return text;
  std::vector<double> values;
  const auto columns = static_cast<std::size_t>(cells.Columns());
  for (Pieces pieces(cells); !pieces.AtEnd(); pieces.Next()) {
    values.resize(pieces.Cells());
    if (!ReadCells(pieces.Piece(), values.data())) {
      AfxMessageBox(kCannotRead);
      return std::nullopt;
    }
    for (std::size_t i = 0; i < values.size(); i += columns) {
      AppendRowText(values.data() + i, columns, text);
    }
  }
  return text;
}

CellRange CDataView::PasteBlock(const TableCell& at, std::string_view text) {
  if (!IsInTable(at)) return {};
  if (!document_.HoldsRawData()) {
    document_.SetModifiedFlag();
    return {};
  }
  const auto block =
      ParseBlockText(text, document_.GetRecnum() - at.row, document_.GetVarnum() - at.column);
  if (!block) {
    AfxMessageBox("The clipboard does not hold a block of cells.");
    return {};
  }
  if (block->values.empty()) return {};
  const CellRange range{at.row, at.row + block->rows, at.column, at.column + block->columns};
  if (block->ignoredFields > 0) {
    const CString question = std::to_string(block->ignoredFields) + " of " +
                             std::to_string(block->values.size()) +
                             " cells are no numbers and would become missing (-999999). Paste all "
                             "the same?";
    if (AfxMessageBox(question, MessageButtons::YesNo) != MessageAnswer::Yes) return {};
  }
  if (!ChangeCells(range, block->values)) return {};
  document_.SetModifiedFlag();
  if (table_ != nullptr) table_->Redraw();
  return range;
}

bool CDataView::ClearCells(const CellRange& range) {
  const CellRange cells = ClippedToTable(range);
  if (cells.IsEmpty() || !document_.HoldsRawData()) return false;
  if (!ChangeCells(cells, {})) return false;
  document_.SetModifiedFlag();
  if (table_ != nullptr) table_->Redraw();
  return true;
}

// Writes `values`, or the missing-data code where there are none, and keeps what was there.
bool CDataView::ChangeCells(const CellRange& range, std::span<const double> values) {
  EditStep step;
  step.kind = EditKind::Cells;
  step.first = range.rowBegin;
  step.count = range.Rows();
  step.firstColumn = range.columnBegin;
  step.columns = range.Columns();
  const bool kept = KeepCells(range, values, step);
  if (!kept && errno == ECANCELED) return false;
  if (!WriteRange(range, values)) {
    const bool restored = kept && UndoCells(step, false);
    if (kept && restored) journal_.Abandon();
    if (!kept || !restored) TellThatUndoEnds();
    AfxMessageBox(kCannotWrite);
    return false;
  }
  if (!kept || !journal_.Finish(step, {}, {})) TellThatUndoEnds();
  return true;
}

bool CDataView::WriteRange(const CellRange& range, std::span<const double> values) const {
  std::vector<double> constant;
  for (Pieces pieces(range); !pieces.AtEnd(); pieces.Next()) {
    if (values.empty()) constant.resize(pieces.Cells(), kMissingCode);
    const double* const from = values.empty() ? constant.data() : values.data() + pieces.Before();
    if (!WriteCells(pieces.Piece(), from)) return false;
  }
  return true;
}

// The payload: the cells as they are, then those that are written, unless these are all missing.
// False, with ECANCELED for a stop, when they could not be kept.
bool CDataView::KeepCells(const CellRange& range, std::span<const double> values, EditStep& step) {
  constexpr std::int64_t kMany = 1 << 20;
  errno = 0;
  if (!undoable_ || !journal_.Begin(false)) return false;
  step.payload = journal_.PayloadOffset();
  step.payloadBytes = range.Cells() * static_cast<std::int64_t>(kCellBytes);
  const auto progress =
      range.Cells() > kMany ? Host().StartProgress("Changing cells") : std::unique_ptr<CProgress>();
  std::vector<double> before;
  for (Pieces pieces(range); !pieces.AtEnd(); pieces.Next()) {
    before.resize(pieces.Cells());
    const std::int64_t at = PayloadAt(step.payload, pieces.Before());
    const bool going = !progress || progress->Advance(static_cast<double>(pieces.Before()) /
                                                      static_cast<double>(range.Cells()));
    if (!going || !ReadCells(pieces.Piece(), before.data()) ||
        !WriteAt(journal_.Descriptor(), at, before.data(), before.size() * kCellBytes)) {
      journal_.Abandon();
      errno = going ? EIO : ECANCELED;
      return false;
    }
  }
  if (values.empty()) return true;
  const std::int64_t behind = step.payload + step.payloadBytes;
  step.payloadBytes *= 2;
  return WriteAt(journal_.Descriptor(), behind, values.data(), values.size() * kCellBytes);
}

// Puts the cells of a step back as they were before or after it.
bool CDataView::UndoCells(const EditStep& step, bool after) {
  const CellRange range{step.first, step.first + step.count, static_cast<int>(step.firstColumn),
                        static_cast<int>(step.firstColumn + step.columns)};
  const std::int64_t half = range.Cells() * static_cast<std::int64_t>(kCellBytes);
  if (after && step.payloadBytes == half) return WriteRange(range, {});
  std::vector<double> values;
  for (Pieces pieces(range); !pieces.AtEnd(); pieces.Next()) {
    values.resize(pieces.Cells());
    const std::int64_t at = PayloadAt(step.payload + (after ? half : 0), pieces.Before());
    const std::size_t bytes = values.size() * kCellBytes;
    if (ReadAt(journal_.Descriptor(), at, values.data(), bytes) !=
            static_cast<std::int64_t>(bytes) ||
        !WriteCells(pieces.Piece(), values.data())) {
      return false;
    }
  }
  return true;
}
