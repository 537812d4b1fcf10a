// The dialog that looks for a value in the cells.
#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "dataview/DataView.h"

namespace Ui {
class FindValueDlg;
}

// Stays open while it looks: each press of a button asks for one search.
class CFindValueDlg final : public QDialog {
  Q_OBJECT

 public:
  explicit CFindValueDlg(QWidget* parent);
  ~CFindValueDlg() override;

  // The variable that "In this variable only" speaks of, counted from 0.
  void SetColumn(int column, const QString& name);
  // What is asked for now, without a place to start; empty when no number was typed.
  std::optional<FindRequest> Request() const;
  void ShowResult(const QString& text);

 signals:
  void FindAsked(bool backward);

 private:
  void Refresh();

  std::unique_ptr<Ui::FindValueDlg> ui_;
  int column_ = -1;
};
