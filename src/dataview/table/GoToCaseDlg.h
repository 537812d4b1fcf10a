// Asks for a case and a variable to go to.
#pragma once

#include <QDialog>
#include <cstdint>
#include <memory>

#include "host/DataTable.h"

namespace Ui {
class GoToCaseDlg;
}

class CGoToCaseDlg final : public QDialog {
  Q_OBJECT

 public:
  // `cases` is the number of cases, `current` the cell that the dialog starts at.
  CGoToCaseDlg(std::int64_t cases, const QStringList& variables, const TableCell& current,
               QWidget* parent);
  ~CGoToCaseDlg() override;

  TableCell Chosen() const;  // counted from 0; the case is 0 when none was typed

 private:
  void Refresh();

  std::unique_ptr<Ui::GoToCaseDlg> ui_;
  std::int64_t cases_;
};

// A case number as typed, with or without marks between thousands. Counted from 1; -1 when it is no
// number of one of `cases` cases.
std::int64_t CaseNumberFromText(const QString& text, std::int64_t cases);
