#include "dataview/table/TablePrinter.h"

#include <QCoreApplication>
#include <QDate>
#include <QLocale>
#include <QPainter>
#include <QPrinter>
#include <algorithm>

#include "dataview/table/DataGrid.h"
#include "dataview/table/DataViewTbl.h"

namespace {

constexpr double kScreenDots = 96;  // the column widths count in them
constexpr double kPoints = 9;
constexpr double kRowLeading = 1.35;
constexpr double kHeaderRows = 2;
constexpr std::int64_t kMeasuredHeadings = 500;

QString Translated(const char* text) {
  return QCoreApplication::translate("CTablePrinter", text);
}

// While the labels are shown as the print wants them.
class LabelsShown {
 public:
  LabelsShown(CDataViewTbl& table, bool labels) : table_(table), before_(table.ShowsLabels()) {
    if (labels != before_) table_.ShowLabels(labels);
  }
  ~LabelsShown() {
    if (table_.ShowsLabels() != before_) table_.ShowLabels(before_);
  }
  LabelsShown(const LabelsShown&) = delete;
  LabelsShown& operator=(const LabelsShown&) = delete;

 private:
  CDataViewTbl& table_;
  bool before_;
};

}  // namespace

// The page in the printer's dots.
struct CTablePrinter::Paper {
  QRectF area;  // that can be drawn on
  QFont cellFont;
  QFont headingFont;
  double dot = 1;  // a point of a line
  PrintSheet sheet;
  double top = 0;  // where the grid begins
};

CTablePrinter::CTablePrinter(CDataViewTbl& table, const PrintChoice& choice, QString title)
    : table_(table), choice_(choice), title_(std::move(title)) {}

// Room for the longest case number, and for the names that head the rows of a moment matrix.
double CTablePrinter::RowHeadingWidth(const QFontMetricsF& metrics) const {
  const QString digits(QString::number(choice_.cases.end).size(), QLatin1Char('8'));
  double width = metrics.horizontalAdvance(digits);
  const std::int64_t end = std::min(choice_.cases.end, choice_.cases.begin + kMeasuredHeadings);
  for (std::int64_t row = choice_.cases.begin; row < end; ++row) {
    width = std::max(width, metrics.horizontalAdvance(table_.Grid().Model().RowHeading(row)));
  }
  return width + 2 * metrics.horizontalAdvance(QLatin1Char('8'));
}

CTablePrinter::Paper CTablePrinter::Measured(QPrinter& printer) const {
  Paper paper;
  paper.area = QRectF(QPointF(0, 0), printer.pageRect(QPrinter::DevicePixel).size());
  paper.dot = printer.resolution() / 72.0;
  paper.cellFont = table_.CellFont(false);
  paper.headingFont = table_.CellFont(true);
  paper.cellFont.setPointSizeF(kPoints);
  paper.headingFont.setPointSizeF(kPoints);
  const QFontMetricsF metrics(paper.headingFont, &printer);
  const double scale = printer.resolution() / kScreenDots;
  PrintSheet& sheet = paper.sheet;
  sheet.rowHeight = metrics.height() * kRowLeading;
  paper.top = sheet.rowHeight * kHeaderRows;
  sheet.pageWidth = paper.area.width();
  sheet.pageHeight = paper.area.height() - paper.top;
  sheet.rowHeadingWidth = RowHeadingWidth(metrics);
  sheet.cases = choice_.cases;
  for (int column = choice_.columnBegin; column < choice_.columnEnd; ++column) {
    sheet.columnWidths.push_back(table_.ColumnWidth(column) * scale);
  }
  return paper;
}

std::int64_t CTablePrinter::PageCount(QPrinter& printer) const {
  return CPrintPages(Measured(printer).sheet).Count();
}

bool CTablePrinter::Print(QPrinter& printer, std::int64_t mostPages,
                          const std::function<bool(double)>& goOn) const {
  const LabelsShown labels(table_, choice_.labels);
  const Paper paper = Measured(printer);
  const CPrintPages pages(paper.sheet);
  std::int64_t begin = 0;
  std::int64_t end = pages.Count();
  if (printer.fromPage() > 0) {
    begin = std::min<std::int64_t>(printer.fromPage() - 1, end);
    end = std::clamp<std::int64_t>(printer.toPage(), begin, end);
  }
  if (mostPages > 0) end = std::min(end, begin + mostPages);
  QPainter painter;
  if (!painter.begin(&printer)) return false;
  for (std::int64_t page = begin; page < end; ++page) {
    const double done = static_cast<double>(page - begin) / static_cast<double>(end - begin);
    if (!goOn(done) || (page > begin && !printer.newPage())) {
      printer.abort();
      return false;
    }
    DrawHeader(painter, paper, page, pages.Count());
    DrawPage(painter, paper, pages.Page(page));
  }
  return true;
}

void CTablePrinter::DrawHeader(QPainter& painter, const Paper& paper, std::int64_t page,
                               std::int64_t pages) const {
  const QRectF line(paper.area.topLeft(), QSizeF(paper.area.width(), paper.sheet.rowHeight));
  painter.setFont(paper.cellFont);
  painter.setPen(Qt::black);
  const QString number = Translated("Page %L1 of %L2").arg(page + 1).arg(pages);
  const QString date = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);
  const QFontMetricsF metrics(paper.cellFont, painter.device());
  const double side = metrics.horizontalAdvance(number + date) + 4 * metrics.height();
  painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                   metrics.elidedText(title_, Qt::ElideMiddle, line.width() - side));
  painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, date + "    " + number);
  painter.setPen(QPen(Qt::black, paper.dot));
  painter.drawLine(line.bottomLeft(), line.bottomRight());
}

void CTablePrinter::DrawCell(QPainter& painter, const Paper& paper, const QRectF& cell,
                             int alignment, const QString& text) const {
  const QFontMetricsF metrics(painter.font(), painter.device());
  const double margin = metrics.height() / 4;
  const QRectF inner = cell.adjusted(margin, 0, -margin, 0);
  painter.setPen(Qt::black);
  painter.drawText(inner, int(AlignmentOf(alignment)) | Qt::TextSingleLine,
                   metrics.elidedText(text, Qt::ElideRight, inner.width()));
  painter.setPen(QPen(QColor(0xb0, 0xb0, 0xb0), paper.dot / 2));
  painter.drawRect(cell);
}

void CTablePrinter::DrawPage(QPainter& painter, const Paper& paper, const PrintPage& page) const {
  const CDataTableModel& model = table_.Grid().Model();
  const PrintSheet& sheet = paper.sheet;
  QRectF cell(sheet.rowHeadingWidth, paper.top, 0, sheet.rowHeight);
  const auto widthOf = [&](int i) { return sheet.columnWidths[static_cast<std::size_t>(i)]; };
  painter.setFont(paper.headingFont);
  for (int i = page.columnBegin; i < page.columnEnd; ++i) {
    cell.setWidth(widthOf(i));
    DrawCell(painter, paper, cell, 1, model.ColumnHeading(choice_.columnBegin + i));
    cell.moveLeft(cell.right());
  }
  for (std::int64_t row = page.cases.begin; row < page.cases.end; ++row) {
    cell.moveTo(0, cell.bottom());
    cell.setWidth(sheet.rowHeadingWidth);
    painter.setFont(paper.headingFont);
    DrawCell(painter, paper, cell, 1, model.RowHeading(row));
    painter.setFont(paper.cellFont);
    for (int i = page.columnBegin; i < page.columnEnd; ++i) {
      const int column = choice_.columnBegin + i;
      cell.moveLeft(cell.right());
      cell.setWidth(widthOf(i));
      DrawCell(painter, paper, cell, model.ColumnAlignment(column), model.ShownText(row, column));
    }
  }
}
