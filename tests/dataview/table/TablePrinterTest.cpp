// Printing the grid into a file.
#include <QFile>
#include <QPrinter>

#include <gtest/gtest.h>

#include "dataview/table/FakeClient.h"
#include "dataview/table/TablePrinter.h"
#include "support/TempFolder.h"

namespace {

struct Printed {
  bool done = false;
  int pages = 0;  // in the file
  double fraction = 0;
};

Printed Print(CDataViewTbl& table, const PrintChoice& choice, std::int64_t most = 0,
              int stopAfter = -1) {
  const TempFolder folder;
  const QString file = QString::fromStdString(folder / "grid.pdf");
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(file);
  printer.setPageOrientation(QPageLayout::Landscape);
  Printed result;
  int asked = 0;
  result.done = CTablePrinter(table, choice, "grid").Print(printer, most, [&](double fraction) {
    result.fraction = fraction;
    return asked++ != stopAfter;
  });
  QFile pdf(file);
  if (pdf.open(QFile::ReadOnly)) result.pages = pdf.readAll().count("/Type /Page\n");
  return result;
}

TEST(TablePrinter, PrintsAsManyPagesAsItSays) {
  ShownTable shown(500, 30);
  QPrinter paper(QPrinter::HighResolution);
  paper.setOutputFormat(QPrinter::PdfFormat);
  paper.setPageOrientation(QPageLayout::Landscape);
  const PrintChoice all{{0, 500}, 0, 30, false};
  const std::int64_t pages = CTablePrinter(shown.table, all, "grid").PageCount(paper);
  EXPECT_GT(pages, 10);
  const Printed printed = Print(shown.table, all);
  EXPECT_TRUE(printed.done);
  EXPECT_EQ(printed.pages, pages);
  EXPECT_EQ(Print(shown.table, {{100, 110}, 2, 5, false}).pages, 1);
}

TEST(TablePrinter, StopsWhenItIsToldTo) {
  ShownTable shown(50'000'000, 30);
  const PrintChoice all{{0, 50'000'000}, 0, 30, false};
  EXPECT_FALSE(Print(shown.table, all, 0, 3).done);
  const Printed first = Print(shown.table, all, 4);
  EXPECT_TRUE(first.done);
  EXPECT_EQ(first.pages, 4);
  EXPECT_LT(shown.client.asked.size(), 1000U) << "only what is printed is read";
}

}  // namespace
