// Asks which cases are printed.
#pragma once

#include <QDialog>
#include <memory>

#include "dataview/table/TablePrinter.h"
#include "host/DataTable.h"

namespace Ui {
class PrintRangeDlg;
}
struct TableRange;

class CPrintRangeDlg final : public QDialog {
  Q_OBJECT

 public:
  // Of `cases` cases and `variables` variables, with what is selected.
  CPrintRangeDlg(std::int64_t cases, int variables, const TableRange& selection, bool labels,
                 QWidget* parent);
  ~CPrintRangeDlg() override;

  PrintChoice Choice() const;

 private:
  void Refresh();

  std::unique_ptr<Ui::PrintRangeDlg> ui_;
  std::int64_t cases_;
  int variables_;
  PrintChoice selection_;
};
