#include "dataview/table/DataTableModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "datadoc/DataSet.h"
#include "dataview/DisplayPattern.h"
#include "host/Numbers.h"
#include "host/Text.h"

namespace {
constexpr double kFirstInexactInteger = 9007199254740992.0;  // 2^53
}

CDataTableModel::CDataTableModel(QObject* parent) : QAbstractTableModel(parent) {
  SetColumnCount(0);
}

void CDataTableModel::SetClient(CDataTableClient* client) {
  client_ = client;
  cache_.SetClient(client);
  Forget();
}

void CDataTableModel::SetColumnCount(int columns) {
  beginResetModel();
  const auto count = static_cast<std::size_t>(std::max(columns, 0));
  columns_.assign(count, Column());
  headings_.assign(count, CString());
  patterns_.assign(1, CString());
  cache_.SetColumnCount(columns);
  endResetModel();
}

void CDataTableModel::SetColumnAlignment(int column, int alignment) {
  if (!HasColumn(column)) return;
  columns_[static_cast<std::size_t>(column)].alignment = static_cast<std::int8_t>(alignment);
}

void CDataTableModel::SetColumnPattern(int column, const CString& pattern) {
  if (HasColumn(column))
    columns_[static_cast<std::size_t>(column)].pattern = PatternNumber(pattern);
}

void CDataTableModel::SetColumnHeading(int column, const CString& heading) {
  if (HasColumn(column)) headings_[static_cast<std::size_t>(column)] = heading;
}

std::uint16_t CDataTableModel::PatternNumber(const CString& pattern) {
  const auto at = std::find(patterns_.rbegin(), patterns_.rend(), pattern);
  if (at != patterns_.rend()) {
    return static_cast<std::uint16_t>(std::distance(at, patterns_.rend()) - 1);
  }
  if (patterns_.size() > std::numeric_limits<std::uint16_t>::max()) return 0;
  patterns_.push_back(pattern);
  return static_cast<std::uint16_t>(patterns_.size() - 1);
}

void CDataTableModel::SetWindow(std::int64_t firstRow, int rows) {
  const bool moved = firstRow != firstRow_;
  firstRow_ = firstRow;
  if (rows > rows_) {
    beginInsertRows({}, rows_, rows - 1);
    rows_ = rows;
    endInsertRows();
  } else if (rows < rows_) {
    beginRemoveRows({}, rows, rows_ - 1);
    rows_ = rows;
    endRemoveRows();
  }
  if (!moved || rows_ == 0 || columns_.empty()) return;
  emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1));
  emit headerDataChanged(Qt::Vertical, 0, rows_ - 1);
}

void CDataTableModel::Forget() {
  cache_.Clear();
  if (columns_.empty()) return;
  emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
  if (rows_ == 0) return;
  emit headerDataChanged(Qt::Vertical, 0, rows_ - 1);
  emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1));
}

QString CDataTableModel::ColumnHeading(int column) const {
  if (!HasColumn(column)) return {};
  return QString::fromStdString(TextForDisplay(headings_[static_cast<std::size_t>(column)]));
}

QString CDataTableModel::RowHeading(std::int64_t row) const {
  if (client_ == nullptr) return {};
  return QString::fromStdString(TextForDisplay(client_->GetRowHeading(row)));
}

void CDataTableModel::ShowLabels(bool labels) {
  labels_ = labels;
  Forget();
}

QString CDataTableModel::ShownText(std::int64_t row, int column) const {
  const std::span<const double> values = cache_.Row(row);
  if (!HasColumn(column) || values.empty()) return {};
  const double value = values[static_cast<std::size_t>(column)];
  if (labels_ && client_ != nullptr) {
    const CString label = client_->GetValueLabel(column, value);
    if (!label.empty()) return QString::fromStdString(TextForDisplay(label));
  }
  const CString& pattern = patterns_[columns_[static_cast<std::size_t>(column)].pattern];
  return QString::fromStdString(CellText(value, pattern));
}

int CDataTableModel::ColumnAlignment(int column) const {
  return HasColumn(column) ? columns_[static_cast<std::size_t>(column)].alignment : 2;
}

bool CDataTableModel::IsMissing(std::int64_t row, int column) const {
  const std::span<const double> values = cache_.Row(row);
  return HasColumn(column) && !values.empty() &&
         values[static_cast<std::size_t>(column)] <= kMissingCode;
}

QString CDataTableModel::ValueText(std::int64_t row, int column) const {
  const std::span<const double> values = cache_.Row(row);
  if (!HasColumn(column) || values.empty()) return {};
  return QString::fromStdString(ExactText(values[static_cast<std::size_t>(column)]));
}

int CDataTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int CDataTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant CDataTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !HasColumn(index.column())) return {};
  const auto column = static_cast<std::size_t>(index.column());
  const std::int64_t row = firstRow_ + index.row();
  switch (role) {
    case Qt::DisplayRole:
      return ShownText(row, index.column());
    case Qt::ToolTipRole:
    case Qt::EditRole:
      return ValueText(row, index.column());
    case Qt::TextAlignmentRole:
      return int(AlignmentOf(columns_[column].alignment));
    default:
      return {};
  }
}

QVariant CDataTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role == Qt::TextAlignmentRole) {
    return int(orientation == Qt::Vertical ? AlignmentOf(rowHeadingAlignment_) : Qt::AlignCenter);
  }
  if (orientation == Qt::Vertical) {
    return role == Qt::DisplayRole ? QVariant(RowHeading(firstRow_ + section)) : QVariant();
  }
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return ColumnHeading(section);
  return {};
}

CString ExactText(double value) {
  return std::isfinite(value) ? FormatShortest(value) : FormatByPattern(value, {});
}

CString CellText(double value, const CString& pattern) {
  const bool full = pattern.empty() || !(std::fabs(value) < kFirstInexactInteger);
  return full ? ExactText(value) : FormatByPattern(value, pattern);
}

Qt::Alignment AlignmentOf(int code) {
  const Qt::Alignment across = code == 0   ? Qt::AlignLeft
                               : code == 1 ? Qt::AlignHCenter
                                           : Qt::AlignRight;
  return across | Qt::AlignVCenter;
}
