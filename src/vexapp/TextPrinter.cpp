#include "vexapp/TextPrinter.h"

#include <QFontDatabase>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QSaveFile>
#include <algorithm>

namespace {

constexpr std::int64_t kFewestColumns = 80;
constexpr std::int64_t kMostColumns = 132;
constexpr qreal kLargestPoints = 10;
constexpr qreal kMarginMillimetres = 15;

// The geometry of a page in the device's pixels.
class CPages {
 public:
  CPages(const QPagedPaintDevice& device, const TEXTTOPRINT& text)
      : text_(text),
        columns_(std::clamp(text.longest, kFewestColumns, kMostColumns)),
        width_(device.width()),
        height_(device.height()),
        font_(QFontDatabase::systemFont(QFontDatabase::FixedFont)) {
    font_.setPointSizeF(kLargestPoints);
    const qreal wanted = Metrics(device).horizontalAdvance('0') * static_cast<qreal>(columns_);
    if (wanted > width_) font_.setPointSizeF(kLargestPoints * width_ / wanted * 0.995);
    lineHeight_ = Metrics(device).lineSpacing();
    // Two lines each for head and foot.
    linesOnPage_ = std::max<std::int64_t>(1, static_cast<std::int64_t>(height_ / lineHeight_) - 4);
  }

  std::int64_t Count() const {
    std::int64_t rows = 0;
    for (std::int64_t line = 0; line < text_.lines; ++line) rows += RowsOf(text_.line(line));
    return std::max<std::int64_t>(1, (rows + linesOnPage_ - 1) / linesOnPage_);
  }

  // Calls `row` for every row of the text: page and row on it from 0, and the text.
  template <typename Row>
  void ForEach(const Row& row) const {
    std::int64_t at = 0;
    for (std::int64_t line = 0; line < text_.lines; ++line) {
      const QString all = text_.line(line);
      for (std::int64_t part = 0; part < RowsOf(all); ++part, ++at) {
        row(at / linesOnPage_, at % linesOnPage_, all.mid(part * columns_, columns_));
      }
    }
  }

  void DrawRow(QPainter& painter, std::int64_t row, const QString& text) const {
    painter.drawText(QPointF(0, BaseOf(painter, row + 2)), text);
  }
  void DrawHeadAndFoot(QPainter& painter, const QString& foot) const {
    painter.drawText(QPointF(0, BaseOf(painter, 0)), text_.title);
    const QRectF line(0, height_ - lineHeight_, width_, lineHeight_);
    painter.drawText(line, Qt::AlignRight | Qt::AlignBottom, foot);
  }
  const QFont& Font() const { return font_; }

 private:
  QFontMetricsF Metrics(const QPagedPaintDevice& device) const {
    return QFontMetricsF(font_, const_cast<QPagedPaintDevice*>(&device));
  }
  qreal BaseOf(const QPainter& painter, std::int64_t row) const {
    return static_cast<qreal>(row) * lineHeight_ + QFontMetricsF(painter.fontMetrics()).ascent();
  }
  std::int64_t RowsOf(const QString& line) const {
    return std::max<std::int64_t>(1, (line.size() + columns_ - 1) / columns_);
  }

  const TEXTTOPRINT& text_;
  std::int64_t columns_;
  qreal width_;
  qreal height_;
  QFont font_;
  qreal lineHeight_ = 1;
  std::int64_t linesOnPage_ = 1;
};

}  // namespace

bool PrintText(QPagedPaintDevice& device, const TEXTTOPRINT& text, int first, int last) {
  device.setPageMargins(
      QMarginsF(kMarginMillimetres, kMarginMillimetres, kMarginMillimetres, kMarginMillimetres),
      QPageLayout::Millimeter);
  QPainter painter;
  if (!painter.begin(&device)) return false;
  const CPages pages(device, text);
  painter.setFont(pages.Font());
  const std::int64_t count = pages.Count();
  const auto begin = static_cast<std::int64_t>(first > 0 ? first - 1 : 0);
  const std::int64_t end = last > 0 ? std::min<std::int64_t>(last, count) : count;
  std::int64_t shown = -1;
  const auto goTo = [&](std::int64_t page) {
    if (page == shown) return;
    if (shown >= 0) device.newPage();
    shown = page;
    pages.DrawHeadAndFoot(painter, QString("%1 / %2").arg(page + 1).arg(count));
  };
  pages.ForEach([&](std::int64_t page, std::int64_t row, const QString& part) {
    if (page < begin || page >= end) return;
    goTo(page);
    pages.DrawRow(painter, row, part);
  });
  return painter.end();
}

bool PrintChosenPages(QPrinter& printer, const TEXTTOPRINT& text) {
  return PrintText(printer, text, printer.fromPage(), printer.toPage());
}

bool WritePdf(const QString& path, const TEXTTOPRINT& text, QString& reason) {
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly)) {
    QPdfWriter pdf(&file);
    pdf.setTitle(text.title);
    if (PrintText(pdf, text) && file.commit()) return true;
  }
  reason = file.errorString();
  return false;
}
