// The list of a data set's variables beside the lists that some of them are chosen into.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "datadoc/DataSet.h"

class CVariableList;
class QBoxLayout;
class QGridLayout;
class QPushButton;

// One list that variables are chosen into. Variables are counted from 0.
struct ChooserTarget {
  QString title;                          // with its mnemonic; may be empty
  QString addText = "Add >>";             // of the button
  QString itemText = "%1";                // how a chosen variable reads; %1 is its name
  std::function<bool(int)> accepts = {};  // empty: every variable
  QString whyNot = {};                    // why a variable is not accepted, as a tooltip
  // Asked before variables are added, may take some of them out; false: none is added. When it is
  // set the button can always be pressed.
  std::function<bool(std::vector<int>&)> beforeAdding = {};
};

// Variables are added by buttons, by a double click or Enter (into the list that was added to last)
// and by dragging; the same ways back. The left list always shows all of them: those that are
// chosen are paler.
class CVariableChooser final : public QWidget {
  Q_OBJECT

 public:
  // `title` stands above the list of all variables. The data set must outlive the chooser.
  CVariableChooser(const TORVIKSTRUCT& dataSet, const QString& title, QWidget* parent);

  // Adds a list below those that are there; returns its number, from 0. A variable can be in only
  // one of the lists with the same `group`.
  int AddTarget(const ChooserTarget& target, int group = 0);

  std::vector<int> Variables(int target) const;
  void ShowVariables(int target, const std::vector<int>& variables);
  // Adds as the button does.
  void Add(int target, std::vector<int> variables, int row = -1);
  void SetUnusable(int variable, const QString& why);

  CVariableList& Source() { return *source_; }

 signals:
  void Changed();

 private:
  struct Target {
    ChooserTarget what;
    int group = 0;
    CVariableList* list = nullptr;
    QPushButton* add = nullptr;
    QPushButton* remove = nullptr;
  };

  void BuildSource(const QString& title);
  void BuildTarget(Target& target, int row);
  void AddSelected(int target);
  void RemoveSelected(int target);
  void Drop(int target, CVariableList* from, int row);
  void DropOnSource(CVariableList* from);
  void Erase(int target, const std::vector<int>& variables);
  bool Accepts(const Target& target, int variable) const;
  void Refresh();
  void RefreshButtons();

  const TORVIKSTRUCT& data_;
  QGridLayout* grid_;
  CVariableList* source_ = nullptr;
  QWidget* sourceBox_ = nullptr;
  std::vector<Target> targets_;
  int lastTarget_ = 0;  // the one that was added to last
};
