// The list of variables of a dialog, and the field that finds one of them by its name.
#pragma once

#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <cstdint>
#include <vector>

#include "dataview/dialogs/VariableModel.h"

// Names with their types. Typing goes to the first variable whose name begins with what
// was typed, or else contains it; case does not count. Several variables can be selected, with
// Ctrl, Shift and Ctrl+A, unless SetSingle() was called. Variables count from 0. Thirty thousand of
// them are no trouble.
//
// A .ui file promotes a QListView to it.
class CVariablePicker final : public QListView {
  Q_OBJECT

 public:
  explicit CVariablePicker(QWidget* parent = nullptr);

  void SetVariables(const TORVIKSTRUCT& dataSet);
  void SetSingle();
  void SetName(int variable, const QString& name) { model_->SetName(variable, name); }
  QString Name(int variable) const { return model_->Name(variable); }
  int Count() const { return model_->rowCount(); }

  std::vector<std::int32_t> Selected() const;  // ascending
  std::int32_t FirstSelected() const;          // negative: none
  // Selects these and shows the first one.
  void Select(const std::vector<std::int32_t>& variables);

  // Goes to the next variable that fits the text, from the current one on (or behind it, with
  // `onward`). False when there is none.
  bool FindName(const QString& text, bool onward = false);

  void keyboardSearch(const QString& typed) override;
  QSize sizeHint() const override;

 signals:
  void VariablesSelected();

 protected:
  void selectionChanged(const QItemSelection& selected, const QItemSelection& before) override;

 private:
  int Match(const QString& text, int from, bool atStart) const;

  CVariableModel* model_;
  QString typed_;
  QElapsedTimer sinceTyped_;
};

// A field above a list: what is typed there is found in the list, Enter goes to the next one that
// fits, and the arrow keys go to the list. It hides itself where the list is short.
//
// A .ui file promotes a QLineEdit to it.
class CVariableFinder final : public QLineEdit {
  Q_OBJECT

 public:
  explicit CVariableFinder(QWidget* parent = nullptr);
  void SetList(CVariablePicker* list);  // not owned

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Show(bool found);

  CVariablePicker* list_ = nullptr;
};
