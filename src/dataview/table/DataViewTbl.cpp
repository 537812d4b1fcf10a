#include "dataview/table/DataViewTbl.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>

#include "dataview/table/DataGrid.h"

namespace {

constexpr int kUsualWidth = 78;
constexpr int kHeadingMargin = 12;
constexpr int kRowMargin = 6;
constexpr int kPoints = 10;
constexpr int kLeastZoom = 50;
constexpr int kGreatestZoom = 300;
constexpr int kZoomStep = 10;

QFont TableFont(QFont::Weight weight, int zoom) {
  QFont font;
  // The face of the package's own windows, or the desktop's where it is not installed.
  font.setFamilies({QStringLiteral("MS Sans Serif"), font.family()});
  font.setPointSizeF(kPoints * zoom / 100.0);
  font.setWeight(weight);
  return font;
}

}  // namespace

CDataViewTbl::CDataViewTbl(QWidget* parent)
    : QWidget(parent), grid_(new CDataGrid(this)), bar_(new QScrollBar(Qt::Vertical, this)) {
  grid_->setObjectName("dataGrid");
  bar_->setObjectName("caseScrollBar");
  bar_->setFocusPolicy(Qt::NoFocus);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(grid_);
  layout->addWidget(bar_);
  setFocusProxy(grid_);
  SetFonts();
  connect(grid_, &CDataGrid::WindowMoved, this, &CDataViewTbl::FollowWindow);
  connect(grid_, &CDataGrid::CursorMoved, this, &CDataViewTbl::CurrentCellChanged);
  connect(grid_, &CDataGrid::EditRefused, this, &CDataViewTbl::EditRefused);
  connect(grid_, &CDataGrid::ZoomAsked, this,
          [this](int steps) { SetZoom(zoom_ + steps * kZoomStep); });
  connect(bar_, &QScrollBar::actionTriggered, this, &CDataViewTbl::BarMoved);
}

void CDataViewTbl::SetFonts() {
  grid_->setFont(CellFont(false));
  for (QHeaderView* heading : {grid_->horizontalHeader(), grid_->verticalHeader()}) {
    heading->setFont(CellFont(true));
  }
  QHeaderView* side = grid_->verticalHeader();
  const int height = grid_->fontMetrics().height() + kRowMargin;
  side->setMinimumSectionSize(height);
  side->setDefaultSectionSize(height);
  grid_->horizontalHeader()->setFixedHeight(height + 2);
}

void CDataViewTbl::SetClient(CDataTableClient* client) {
  grid_->Model().SetClient(client);
  FitRowHeadings();
}

void CDataViewTbl::SetColumnCount(int columns) {
  columns_ = std::max(columns, 0);
  widths_.assign(static_cast<std::size_t>(columns_), 0);
  widthsChanged_ = true;
  grid_->Model().SetColumnCount(columns_);
  grid_->SetSize(rows_, columns_);
}

void CDataViewTbl::SetRowCount(std::int64_t rows) {
  rows_ = std::max<std::int64_t>(rows, 0);
  // Rows that were asked for past the old end are there now.
  grid_->Model().Forget();
  grid_->SetSize(rows_, columns_);
  FitRowHeadings();
  emit ContentChanged();
}

void CDataViewTbl::SetColumnWidth(int column, int width) {
  if (column < 0 || column >= columns_) return;
  widths_[static_cast<std::size_t>(column)] = std::max(width, 0);
  widthsChanged_ = true;
}

void CDataViewTbl::SetColumnAlignment(int column, int alignment) {
  grid_->Model().SetColumnAlignment(column, alignment);
}

void CDataViewTbl::SetColumnPattern(int column, const CString& pattern) {
  grid_->Model().SetColumnPattern(column, pattern);
}

void CDataViewTbl::SetColumnHeading(int column, const CString& heading) {
  grid_->Model().SetColumnHeading(column, heading);
}

void CDataViewTbl::SetRowHeadingWidth(int width) {
  rowHeadingWidth_ = std::max(width, 0);
  FitRowHeadings();
}

void CDataViewTbl::SetRowHeadingAlignment(int alignment) {
  grid_->Model().SetRowHeadingAlignment(alignment);
}

void CDataViewTbl::SetEditable(bool editable) {
  editable_ = editable;
  grid_->SetEditable(editable);
}

void CDataViewTbl::EndEdit() {
  grid_->EndEdit();
}

TableRange CDataViewTbl::Selection() const {
  return grid_->Cursor().Selected();
}

QFont CDataViewTbl::CellFont(bool heading) const {
  return TableFont(heading ? QFont::Bold : QFont::Normal, zoom_);
}

void CDataViewTbl::SetZoom(int percent) {
  percent = std::clamp(percent, kLeastZoom, kGreatestZoom);
  if (percent == zoom_) return;
  EndEdit();
  // Widths that were set by hand are kept.
  for (int column = 0; column < columns_; ++column) {
    int& width = widths_[static_cast<std::size_t>(column)];
    if (grid_->columnWidth(column) != Zoomed(width)) width = ColumnWidth(column);
  }
  zoom_ = percent;
  widthsChanged_ = true;
  SetFonts();
  ApplyWidths();
  FitRowHeadings();
  grid_->SetSize(rows_, columns_);
  emit ZoomChanged();
}

int CDataViewTbl::ColumnWidth(int column) const {
  return grid_->columnWidth(column) * 100 / zoom_;
}

void CDataViewTbl::ShowLabels(bool labels) {
  EndEdit();
  grid_->Model().ShowLabels(labels);
}

bool CDataViewTbl::ShowsLabels() const {
  return grid_->Model().ShowsLabels();
}

TableCell CDataViewTbl::GetCurrentCell() const {
  return grid_->Cursor().Current();
}

void CDataViewTbl::SetCurrentCell(const TableCell& cell) {
  if (cell.IsValid()) grid_->MoveTo(cell);
}

std::int64_t CDataViewTbl::GetFirstVisibleRow() const {
  return grid_->Rows().First();
}

int CDataViewTbl::GetVisibleRowCount() const {
  return static_cast<int>(std::min<std::int64_t>(grid_->Rows().Visible(), rows_));
}

void CDataViewTbl::ScrollToRow(std::int64_t row) {
  grid_->RevealRow(row);
}

void CDataViewTbl::ScrollToColumn(int column) {
  ApplyWidths();
  grid_->RevealColumn(column);
}

void CDataViewTbl::Redraw() {
  ApplyWidths();
  grid_->Model().Forget();
  FitRowHeadings();
  grid_->viewport()->update();
  emit ContentChanged();
}

QString CDataViewTbl::ColumnHeading(int column) const {
  return grid_->Model().ColumnHeading(column);
}

QString CDataViewTbl::ValueText(const TableCell& cell) const {
  return grid_->Model().ValueText(cell.row, cell.column);
}

// Resizing sections one by one takes time with the square of their number, the usual size for all
// of them does not: only columns of another width than the first are resized by themselves.
void CDataViewTbl::ApplyWidths() {
  if (!widthsChanged_ || widths_.empty()) return;
  widthsChanged_ = false;
  QHeaderView* top = grid_->horizontalHeader();
  const int usual = Zoomed(widths_[0] > 0 ? widths_[0] : kUsualWidth);
  top->setDefaultSectionSize(usual);
  for (std::size_t i = 0; i < widths_.size(); ++i) {
    const int section = static_cast<int>(i);
    const int width = widths_[i] > 0 ? Zoomed(widths_[i]) : usual;
    if (top->sectionSize(section) != width) top->resizeSection(section, width);
  }
}

// Wide enough for the longest case number and for the headings now on the screen (names, in a
// moment matrix).
void CDataViewTbl::FitRowHeadings() {
  const QFontMetrics metrics(grid_->verticalHeader()->font());
  const QString digits(QString::number(rows_).size(), QLatin1Char('8'));
  int width =
      std::max(Zoomed(rowHeadingWidth_), metrics.horizontalAdvance(digits) + kHeadingMargin);
  for (int row = 0; row < grid_->Rows().Drawn(); ++row) {
    const QString text = grid_->Model().RowHeading(grid_->Rows().First() + row);
    width = std::max(width, metrics.horizontalAdvance(text) + kHeadingMargin);
  }
  grid_->verticalHeader()->setFixedWidth(width);
}

void CDataViewTbl::FollowWindow() {
  const CRowWindow& rows = grid_->Rows();
  const QSignalBlocker quiet(bar_);
  bar_->setRange(0, rows.BarMaximum());
  bar_->setPageStep(rows.Visible());
  bar_->setValue(rows.ToBar(rows.First()));
  bar_->setEnabled(rows.LastFirst() > 0);
}

// Steps and pages move by whole rows also where a step of the bar stands for several of them.
void CDataViewTbl::BarMoved(int action) {
  const int page = std::max(grid_->Rows().Visible() - 1, 1);
  switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
      return grid_->ScrollRows(1);
    case QAbstractSlider::SliderSingleStepSub:
      return grid_->ScrollRows(-1);
    case QAbstractSlider::SliderPageStepAdd:
      return grid_->ScrollRows(page);
    case QAbstractSlider::SliderPageStepSub:
      return grid_->ScrollRows(-page);
    default:
      grid_->SetFirstRow(grid_->Rows().FromBar(bar_->sliderPosition()));
  }
}

void CDataViewTbl::contextMenuEvent(QContextMenuEvent* event) {
  EndEdit();
  TableCell cell = grid_->Cursor().Current();
  TableArea area = TableArea::Cell;
  if (event->reason() != QContextMenuEvent::Keyboard) {
    area = grid_->AreaAt(grid_->mapFromGlobal(event->globalPos()), cell);
    const auto shape = area == TableArea::RowHeading      ? CTableCursor::Shape::Rows
                       : area == TableArea::ColumnHeading ? CTableCursor::Shape::Columns
                                                          : CTableCursor::Shape::Cells;
    if (area == TableArea::ColumnHeading) cell.row = grid_->Rows().First();
    if (area != TableArea::None &&
        !grid_->Cursor().IsSelected(cell.row, std::max(cell.column, 0))) {
      grid_->MoveTo(cell, false, shape);
    }
  }
  event->accept();
  CDataTableClient* const client = grid_->Model().Client();
  if (client == nullptr) return;
  client->OnRightClick(area);
  const int type = client->OnMessage(kQueryMenuType);
  if (type >= 0) emit ContextMenuAsked(type, event->globalPos());
}

void CDataViewTbl::showEvent(QShowEvent* event) {
  ApplyWidths();
  QWidget::showEvent(event);
}

void CDataViewTbl::changeEvent(QEvent* event) {
  if (event->type() == QEvent::StyleChange) SetFonts();
  QWidget::changeEvent(event);
}
