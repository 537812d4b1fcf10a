#include "vexapp/SelectionStatistics.h"

#include <algorithm>

#include "dataview/CellText.h"
#include "dataview/operations/MergeStatistics.h"
#include "host/Numbers.h"

namespace {

constexpr int kPause = 120;  // milliseconds; a selection that is still growing is let alone
// A slice takes some ten milliseconds: so many cells, and no more reads than that.
constexpr std::int64_t kSliceCells = 400'000;
constexpr std::int64_t kSliceRows = 20'000;
constexpr int kDecimals = 4;

QString NumberText(double value) {
  CString text = FormatFixed(value, 0, kDecimals);
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return QString::fromStdString(text.size() > 14 ? FormatShortest(value) : text);
}

}  // namespace

CSelectionStatistics::CSelectionStatistics(QObject* parent) : QObject(parent) {
  pause_.setSingleShot(true);
  pause_.setInterval(kPause);
  connect(&pause_, &QTimer::timeout, &idle_, qOverload<>(&QTimer::start));
  connect(&idle_, &QTimer::timeout, this, &CSelectionStatistics::Slice);
}

void CSelectionStatistics::Watch(const CDataView* view, const CellRange& range) {
  pause_.stop();
  idle_.stop();
  view_ = view;
  range_ = range;
  row_ = range.rowBegin;
  sum_ = RangeStatistics();
  if (view_ == nullptr || range.Cells() < 2) {
    emit Changed({});
  } else {
    pause_.start();
  }
}

void CSelectionStatistics::Finish() {
  if (!pause_.isActive() && !idle_.isActive()) return;
  pause_.stop();
  idle_.start();
  while (idle_.isActive()) Slice();
}

void CSelectionStatistics::Slice() {
  CellRange slice = range_;
  slice.rowBegin = row_;
  const std::int64_t rows = std::clamp<std::int64_t>(kSliceCells / range_.Columns(), 1, kSliceRows);
  slice.rowEnd = std::min(row_ + rows, range_.rowEnd);
  const auto part = view_->GetStatistics(slice);
  if (!part) {
    idle_.stop();
    emit Changed({});
    return;
  }
  sum_ = MergeStatistics(sum_, *part);
  row_ = slice.rowEnd;
  const bool complete = row_ >= range_.rowEnd;
  if (complete) idle_.stop();
  Show(complete);
}

void CSelectionStatistics::Show(bool complete) {
  if (!complete) {
    const auto percent = (row_ - range_.rowBegin) * 100 / range_.Rows();
    emit Changed(tr("%L1 cells: %2 % looked at").arg(range_.Cells()).arg(percent));
    return;
  }
  QString text = tr("Count %L1").arg(sum_.values);
  if (sum_.missing > 0) text += tr("   Missing %L1").arg(sum_.missing);
  if (sum_.values > 0) {
    text += tr("   Mean %1   Min %2   Max %3")
                .arg(NumberText(sum_.mean), NumberText(sum_.minimum), NumberText(sum_.maximum));
  }
  emit Changed(text);
}
