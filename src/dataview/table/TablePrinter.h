// Prints the grid: headings of variables and cases on each page, and a line above them.
#pragma once

#include <QFont>
#include <QString>
#include <functional>

#include "dataview/operations/PrintPages.h"

class CDataViewTbl;
class QFontMetricsF;
class QPainter;
class QPrinter;
class QRectF;

struct PrintChoice {
  CaseRange cases;  // counted from 0
  int columnBegin = 0;
  int columnEnd = 0;
  bool labels = false;  // category labels instead of values
};

class CTablePrinter {
 public:
  // `title` stands at the left of each page's header.
  CTablePrinter(CDataViewTbl& table, const PrintChoice& choice, QString title);

  // How many pages that makes on this printer.
  std::int64_t PageCount(QPrinter& printer) const;

  // Draws the pages that the printer asks for, at most `mostPages` of them (0: all). Told the
  // fraction that is done; returns false, with the job aborted, when `goOn` did or the printer
  // failed.
  bool Print(QPrinter& printer, std::int64_t mostPages,
             const std::function<bool(double)>& goOn) const;

 private:
  struct Paper;

  double RowHeadingWidth(const QFontMetricsF& metrics) const;
  Paper Measured(QPrinter& printer) const;
  void DrawHeader(QPainter& painter, const Paper& paper, std::int64_t page,
                  std::int64_t pages) const;
  void DrawPage(QPainter& painter, const Paper& paper, const PrintPage& page) const;
  void DrawCell(QPainter& painter, const Paper& paper, const QRectF& cell, int alignment,
                const QString& text) const;

  CDataViewTbl& table_;
  PrintChoice choice_;
  QString title_;
};
