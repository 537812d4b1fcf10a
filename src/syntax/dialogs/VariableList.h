// A list of variables: names with their types, found by typing, dragged to other lists.
#pragma once

#include <QListWidget>
#include <vector>

#include "datadoc/DataSet.h"

// Variables are counted from 0. The list changes nothing by itself when something is dropped on it
// or when a key asks for it: it tells, and its owner decides.
class CVariableList final : public QListWidget {
  Q_OBJECT

 public:
  // The data set must outlive the list.
  CVariableList(const TORVIKSTRUCT& dataSet, QWidget* parent);

  // How an item reads: "%1" stands for the variable's name.
  void SetItemText(const QString& pattern) { pattern_ = pattern; }
  void ShowVariables(const std::vector<int>& variables);
  std::vector<int> Variables() const;
  // In the order in which they stand.
  std::vector<int> SelectedVariables() const;

  // Shows the variable in a paler colour: it is chosen already.
  void SetUsed(int variable, bool used);
  // The variable cannot be selected; the tooltip says why.
  void SetUnusable(int variable, const QString& why);
  // Syntax lines name a variable by its name, which means the first of that name: makes the others
  // unusable.
  void SetEqualNamesUnusable();
  // Hides the variables whose names and descriptions do not hold this text.
  void Filter(const QString& text);

 signals:
  // A double click, or Enter.
  void Activated();
  // Delete or Backspace.
  void RemoveAsked();
  // Variables of `from` were dropped; the row that they come before, or the number of rows.
  void Dropped(CVariableList* from, int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QListWidgetItem* ItemOf(int variable) const;
  int RowAt(const QPoint& point) const;

  const TORVIKSTRUCT& data_;
  QString pattern_ = "%1";
};

// A text of the data set for people to read.
QString DisplayText(const CString& text);
// "ordinal", "continuous", "censored above", ...
QString TypeText(std::int32_t type);
