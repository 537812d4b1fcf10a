// The grid of a text import: a row for each variable, with its name and marks for what is taken and
// how.
#pragma once

#include <QTableView>

#include "transfer/TextConfirmation.h"

class CTextVariablesModel;

class CUGTextDataImportVariables final : public QTableView {
  Q_OBJECT

 public:
  explicit CUGTextDataImportVariables(QWidget* parent = nullptr);

  // The confirmation must outlive the grid.
  void SetConfirmation(CTextConfirmation* confirmation);
  void Refresh();

 signals:
  void Changed();
  // A name is in use already; the message says where.
  void NameRefused(const QString& problem);

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Do(TextVariableCommand command, int row);
  void ToggleSelectedRows();

  CTextVariablesModel* model_;
};
