#include "dataview/dialogs/VariablePicker.h"

#include <QKeyEvent>
#include <algorithm>

#include "syntax/dialogs/VariableDelegate.h"

namespace {

constexpr int kShortList = 12;
constexpr qint64 kTypingPause = 1200;  // milliseconds; then another name begins
constexpr int kUsualWidth = 230;
constexpr int kUsualRows = 10;

}  // namespace

CVariablePicker::CVariablePicker(QWidget* parent)
    : QListView(parent), model_(new CVariableModel(this)) {
  setModel(model_);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setUniformItemSizes(true);
  setVerticalScrollMode(ScrollPerItem);
  setTabKeyNavigation(false);
  setItemDelegate(new CVariableDelegate(this));
}

void CVariablePicker::SetVariables(const TORVIKSTRUCT& dataSet) {
  model_->SetVariables(dataSet);
}

void CVariablePicker::SetSingle() {
  setSelectionMode(SingleSelection);
}

std::vector<std::int32_t> CVariablePicker::Selected() const {
  std::vector<std::int32_t> variables;
  for (const QModelIndex& index : selectionModel()->selectedRows()) {
    variables.push_back(index.row());
  }
  std::sort(variables.begin(), variables.end());
  return variables;
}

std::int32_t CVariablePicker::FirstSelected() const {
  const std::vector<std::int32_t> selected = Selected();
  return selected.empty() ? -1 : selected.front();
}

void CVariablePicker::Select(const std::vector<std::int32_t>& variables) {
  QItemSelection selection;
  for (const std::int32_t variable : variables) {
    const QModelIndex index = model_->index(variable);
    if (index.isValid()) selection.append(QItemSelectionRange(index));
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  if (variables.empty()) return;
  const QModelIndex first = model_->index(variables.front());
  selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
  scrollTo(first);
}

int CVariablePicker::Match(const QString& text, int from, bool atStart) const {
  const int count = Count();
  for (int step = 0; step < count; ++step) {
    const int variable = (from + step) % count;
    const QString name = Name(variable);
    if (atStart ? name.startsWith(text, Qt::CaseInsensitive)
                : name.contains(text, Qt::CaseInsensitive)) {
      return variable;
    }
  }
  return -1;
}

bool CVariablePicker::FindName(const QString& text, bool onward) {
  if (text.isEmpty() || Count() == 0) return false;
  const int from = std::max(currentIndex().row(), 0) + (onward ? 1 : 0);
  int found = Match(text, from, true);
  if (found < 0) found = Match(text, from, false);
  if (found >= 0) Select({found});
  return found >= 0;
}

void CVariablePicker::keyboardSearch(const QString& typed) {
  const bool afresh = !sinceTyped_.isValid() || sinceTyped_.elapsed() > kTypingPause;
  typed_ = afresh ? typed : typed_ + typed;
  sinceTyped_.start();
  FindName(typed_);
}

QSize CVariablePicker::sizeHint() const {
  const int row = std::max(sizeHintForRow(0), fontMetrics().height() + 4);
  return {kUsualWidth, row * kUsualRows + 2 * frameWidth()};
}

void CVariablePicker::selectionChanged(const QItemSelection& selected,
                                       const QItemSelection& before) {
  QListView::selectionChanged(selected, before);
  emit VariablesSelected();
}

CVariableFinder::CVariableFinder(QWidget* parent) : QLineEdit(parent) {
  setPlaceholderText(tr("Find a variable"));
  setAccessibleName(tr("Find a variable"));
  setClearButtonEnabled(true);
  connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (list_ != nullptr) Show(text.isEmpty() || list_->FindName(text));
  });
}

void CVariableFinder::SetList(CVariablePicker* list) {
  list_ = list;
  setVisible(list_ != nullptr && list_->Count() > kShortList);
}

void CVariableFinder::Show(bool found) {
  QPalette colors;
  if (!found) colors.setColor(QPalette::Text, QColor(0xd0, 0x40, 0x40));
  setPalette(colors);
}

void CVariableFinder::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && list_ != nullptr && !text().isEmpty()) {
    Show(list_->FindName(text(), true));
    event->accept();
    return;
  }
  if ((event->key() == Qt::Key_Down || event->key() == Qt::Key_Up) && list_ != nullptr) {
    list_->setFocus(Qt::TabFocusReason);
    return;
  }
  QLineEdit::keyPressEvent(event);
}
