#include "syntax/dialogs/VariableChooser.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <numeric>

#include "syntax/dialogs/VariableList.h"

namespace {

constexpr int kSourceColumn = 0;
constexpr int kButtonColumn = 1;
constexpr int kTargetColumn = 2;
constexpr int kListWidth = 200;
constexpr int kListRows = 4;  // shown at least

bool Holds(const std::vector<int>& variables, int variable) {
  return std::find(variables.begin(), variables.end(), variable) != variables.end();
}

}  // namespace

CVariableChooser::CVariableChooser(const TORVIKSTRUCT& dataSet, const QString& title,
                                   QWidget* parent)
    : QWidget(parent), data_(dataSet), grid_(new QGridLayout(this)) {
  grid_->setContentsMargins(0, 0, 0, 0);
  grid_->setColumnStretch(kSourceColumn, 1);
  grid_->setColumnStretch(kTargetColumn, 1);
  BuildSource(title);
}

void CVariableChooser::BuildSource(const QString& title) {
  auto* const label = new QLabel(title, this);
  // In the order of tabbing.
  source_ = new CVariableList(data_, this);
  source_->setObjectName("variableList");
  source_->setAccessibleName(QString(title).remove('&'));
  source_->setMinimumWidth(kListWidth);
  auto* const find = new QLineEdit(this);
  find->setObjectName("findEdit");
  find->setPlaceholderText(tr("Find a variable"));
  find->setClearButtonEnabled(true);
  find->setAccessibleName(tr("Find a variable"));
  std::vector<int> all(static_cast<std::size_t>(std::max(data_.variables, 0)));
  std::iota(all.begin(), all.end(), 0);
  source_->ShowVariables(all);
  label->setBuddy(source_);
  sourceBox_ = new QWidget(this);
  auto* const box = new QVBoxLayout(sourceBox_);
  box->setContentsMargins(0, 0, 0, 0);
  box->addWidget(source_);
  box->addWidget(find);
  grid_->addWidget(label, 0, kSourceColumn);
  grid_->addWidget(sourceBox_, 1, kSourceColumn);
  connect(find, &QLineEdit::textChanged, source_, &CVariableList::Filter);
  connect(find, &QLineEdit::textChanged, this, &CVariableChooser::RefreshButtons);
  connect(source_, &QListWidget::itemSelectionChanged, this, &CVariableChooser::RefreshButtons);
  connect(source_, &CVariableList::Activated, this, [this] {
    if (!targets_.empty()) AddSelected(lastTarget_);
  });
  connect(source_, &CVariableList::Dropped, this,
          [this](CVariableList* from, int) { DropOnSource(from); });
}

int CVariableChooser::AddTarget(const ChooserTarget& target, int group) {
  const int number = static_cast<int>(targets_.size());
  targets_.push_back({target, group, nullptr, nullptr, nullptr});
  BuildTarget(targets_.back(), 2 * number);
  grid_->removeWidget(sourceBox_);
  grid_->addWidget(sourceBox_, 1, kSourceColumn, 2 * number + 1, 1);
  const Target& added = targets_.back();
  connect(added.add, &QPushButton::clicked, this, [this, number] { AddSelected(number); });
  connect(added.remove, &QPushButton::clicked, this, [this, number] { RemoveSelected(number); });
  connect(added.list, &CVariableList::Activated, this, [this, number] { RemoveSelected(number); });
  connect(added.list, &CVariableList::RemoveAsked, this,
          [this, number] { RemoveSelected(number); });
  connect(added.list, &QListWidget::itemSelectionChanged, this, &CVariableChooser::RefreshButtons);
  connect(added.list, &CVariableList::Dropped, this,
          [this, number](CVariableList* from, int row) { Drop(number, from, row); });
  RefreshButtons();
  return number;
}

void CVariableChooser::BuildTarget(Target& target, int row) {
  auto* const label = new QLabel(target.what.title, this);
  const QString name = QString("list%1").arg(row / 2);
  // In the order of tabbing.
  target.add = new QPushButton(target.what.addText, this);
  target.add->setObjectName(name + "AddButton");
  target.remove = new QPushButton(tr("Remove"), this);
  target.remove->setObjectName(name + "RemoveButton");
  target.list = new CVariableList(data_, this);
  target.list->setObjectName(name);
  target.list->setAccessibleName(QString(target.what.title).remove('&'));
  target.list->SetItemText(target.what.itemText);
  target.list->setMinimumWidth(kListWidth);
  target.list->setMinimumHeight(kListRows * (target.list->fontMetrics().height() + 2));
  label->setBuddy(target.list);
  auto* const buttons = new QVBoxLayout;
  for (QPushButton* const button : {target.add, target.remove}) {
    button->setAutoDefault(false);
    buttons->addWidget(button);
  }
  buttons->addStretch(1);
  grid_->addWidget(label, row, kTargetColumn);
  grid_->addLayout(buttons, row + 1, kButtonColumn);
  grid_->addWidget(target.list, row + 1, kTargetColumn);
  grid_->setRowStretch(row + 1, 1);
}

std::vector<int> CVariableChooser::Variables(int target) const {
  return targets_[static_cast<std::size_t>(target)].list->Variables();
}

void CVariableChooser::ShowVariables(int target, const std::vector<int>& variables) {
  targets_[static_cast<std::size_t>(target)].list->ShowVariables(variables);
  Refresh();
}

bool CVariableChooser::Accepts(const Target& target, int variable) const {
  return !target.what.accepts || target.what.accepts(variable);
}

void CVariableChooser::Add(int target, std::vector<int> variables, int row) {
  Target& to = targets_[static_cast<std::size_t>(target)];
  if (to.what.beforeAdding && !to.what.beforeAdding(variables)) return;
  lastTarget_ = target;
  std::vector<int> list = to.list->Variables();
  std::vector<int> added;
  for (const int variable : variables) {
    if (Accepts(to, variable) && !Holds(list, variable)) added.push_back(variable);
  }
  const auto place = row < 0 ? list.end() : list.begin() + std::min<int>(row, to.list->count());
  list.insert(place, added.begin(), added.end());
  for (std::size_t other = 0; other < targets_.size(); ++other) {
    const bool exclusive = static_cast<int>(other) != target && targets_[other].group == to.group;
    if (exclusive) Erase(static_cast<int>(other), added);
  }
  ShowVariables(target, list);
  emit Changed();
}

void CVariableChooser::Erase(int target, const std::vector<int>& variables) {
  CVariableList& list = *targets_[static_cast<std::size_t>(target)].list;
  std::vector<int> kept = list.Variables();
  kept.erase(std::remove_if(kept.begin(), kept.end(),
                            [&](int variable) { return Holds(variables, variable); }),
             kept.end());
  if (static_cast<int>(kept.size()) != list.count()) list.ShowVariables(kept);
}

void CVariableChooser::AddSelected(int target) {
  Add(target, source_->SelectedVariables());
}

void CVariableChooser::RemoveSelected(int target) {
  CVariableList& list = *targets_[static_cast<std::size_t>(target)].list;
  const int row = list.currentRow();
  Erase(target, list.SelectedVariables());
  list.setCurrentRow(std::min(row, list.count() - 1));
  Refresh();
  emit Changed();
}

void CVariableChooser::Drop(int target, CVariableList* from, int row) {
  CVariableList* const to = targets_[static_cast<std::size_t>(target)].list;
  const std::vector<int> variables = from->SelectedVariables();
  const auto source = std::find_if(targets_.begin(), targets_.end(),
                                   [from](const Target& other) { return other.list == from; });
  if (from != source_ && source == targets_.end()) return;  // of another dialog
  if (from == to) {
    const std::vector<int> before = to->Variables();
    row -= static_cast<int>(std::count_if(before.begin(), before.begin() + row, [&](int variable) {
      return Holds(variables, variable);
    }));
    Erase(target, variables);
  }
  Add(target, variables, row);
  if (from == to || source == targets_.end()) return;
  const std::vector<int> there = to->Variables();
  const bool moved = std::all_of(variables.begin(), variables.end(),
                                 [&](int variable) { return Holds(there, variable); });
  if (moved) Erase(static_cast<int>(source - targets_.begin()), variables);
  Refresh();
  emit Changed();
}

void CVariableChooser::DropOnSource(CVariableList* from) {
  for (std::size_t target = 0; target < targets_.size(); ++target) {
    if (targets_[target].list == from) RemoveSelected(static_cast<int>(target));
  }
}

void CVariableChooser::SetUnusable(int variable, const QString& why) {
  source_->SetUnusable(variable, why);
}

void CVariableChooser::Refresh() {
  std::vector<bool> used(static_cast<std::size_t>(std::max(data_.variables, 0)), false);
  for (const Target& target : targets_) {
    for (const int variable : target.list->Variables()) {
      used[static_cast<std::size_t>(variable)] = true;
    }
  }
  for (std::size_t variable = 0; variable < used.size(); ++variable) {
    source_->SetUsed(static_cast<int>(variable), used[variable]);
  }
  RefreshButtons();
}

void CVariableChooser::RefreshButtons() {
  const std::vector<int> selected = source_->SelectedVariables();
  for (const Target& target : targets_) {
    const std::vector<int> there = target.list->Variables();
    const bool accepted = std::any_of(selected.begin(), selected.end(),
                                      [&](int variable) { return Accepts(target, variable); });
    const bool isNew = std::any_of(selected.begin(), selected.end(), [&](int variable) {
      return Accepts(target, variable) && !Holds(there, variable);
    });
    target.add->setEnabled(target.what.beforeAdding ? !selected.empty() : isNew);
    QString why;
    if (selected.empty()) {
      why = tr("Select variables in the list at the left");
    } else if (!accepted && !target.what.beforeAdding) {
      why = target.what.whyNot;
    } else if (!isNew && !target.what.beforeAdding) {
      why = tr("The selected variables are in the list already");
    }
    target.add->setToolTip(why);
    target.remove->setEnabled(!target.list->SelectedVariables().empty());
    target.remove->setToolTip(
        target.remove->isEnabled() ? QString() : tr("Select variables in the list at the right"));
  }
}
