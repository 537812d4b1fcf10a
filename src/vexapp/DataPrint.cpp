#include "vexapp/DataPrint.h"

#include <QCoreApplication>
#include <QPaintEngine>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <optional>

#include "dataview/dialogs/PrintRangeDlg.h"
#include "dataview/table/TablePrinter.h"
#include "host/Host.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Display.h"

namespace {

// A preview keeps a picture of every page.
constexpr std::int64_t kMostPreviewPages = 200;

void SetUp(QPrinter& printer, const CDataWindow& window) {
  printer.setDocName(window.FileName());
  printer.setPageOrientation(QPageLayout::Landscape);
}

// Whether so much is really to be printed.
bool ConfirmCount(const PrintChoice& choice) {
  const std::int64_t cases = choice.cases.end - choice.cases.begin;
  if (cases < kManyPrintedCases) return true;
  const QString question =
      QCoreApplication::translate("DataPrint", "%L1 cases make a very large print. Print them all?")
          .arg(cases);
  return AfxMessageBox(question.toStdString(), MessageButtons::YesNo) == MessageAnswer::Yes;
}

std::optional<PrintChoice> AskForRange(CDataWindow& window) {
  CDataViewTbl& table = window.Table();
  CPrintRangeDlg dialog(table.RowCount(), table.ColumnCount(), table.Selection(),
                        table.ShowsLabels(), &window);
  if (dialog.exec() != QDialog::Accepted || !ConfirmCount(dialog.Choice())) return std::nullopt;
  return dialog.Choice();
}

bool PrintOn(QPrinter& printer, const CTablePrinter& pages, std::int64_t most,
             const CDataWindow& window) {
  const auto progress = Host().StartProgress("Printing " + PathBytes(window.FileName()));
  return pages.Print(printer, most, [&](double done) { return progress->Advance(done); });
}

}  // namespace

void PrintData(CDataWindow& window) {
  const auto choice = AskForRange(window);
  if (!choice) return;
  QPrinter printer(QPrinter::HighResolution);
  SetUp(printer, window);
  QPrintDialog dialog(&printer, &window);
  dialog.setOption(QAbstractPrintDialog::PrintPageRange);
  if (dialog.exec() != QDialog::Accepted) return;
  PrintOn(printer, CTablePrinter(window.Table(), *choice, window.FileName()), 0, window);
}

void PreviewData(CDataWindow& window) {
  const auto choice = AskForRange(window);
  if (!choice) return;
  QPrinter printer(QPrinter::HighResolution);
  SetUp(printer, window);
  const CTablePrinter pages(window.Table(), *choice, window.FileName());
  QPrintPreviewDialog dialog(&printer, &window);
  dialog.resize(window.window()->size());
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, [&](QPrinter* target) {
    // The pages to look at are pictures; its Print button asks again, for paper.
    const bool looking = target->paintEngine()->type() == QPaintEngine::Picture;
    PrintOn(*target, pages, looking ? kMostPreviewPages : 0, window);
  });
  const std::int64_t count = pages.PageCount(printer);
  if (count > kMostPreviewPages) {
    dialog.setWindowTitle(QCoreApplication::translate("DataPrint", "The first %1 of %L2 pages")
                              .arg(kMostPreviewPages)
                              .arg(count));
  }
  dialog.exec();
}
