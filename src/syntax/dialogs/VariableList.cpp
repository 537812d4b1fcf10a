#include "syntax/dialogs/VariableList.h"

#include <QDropEvent>
#include <QKeyEvent>

#include "host/Text.h"
#include "syntax/dialogs/VariableDelegate.h"
#include "syntax/procedures/VariableNumbers.h"

namespace {

constexpr int kVariableRole = Qt::UserRole;
constexpr int kFindRole = Qt::UserRole + 3;

}  // namespace

CVariableList::CVariableList(const TORVIKSTRUCT& dataSet, QWidget* parent)
    : QListWidget(parent), data_(dataSet) {
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::CopyAction);
  setDropIndicatorShown(true);
  setUniformItemSizes(true);
  setItemDelegate(new CVariableDelegate(this));
  connect(this, &QListWidget::itemDoubleClicked, this, &CVariableList::Activated);
}

void CVariableList::ShowVariables(const std::vector<int>& variables) {
  clear();
  for (const int number : variables) {
    const VARSTRUCT& variable = data_.variable[static_cast<std::size_t>(number)];
    const QString name = DisplayText(variable.name);
    const QString description = DisplayText(variable.description);
    auto* const item = new QListWidgetItem(QString(pattern_).replace("%1", name), this);
    item->setData(kVariableRole, number);
    item->setData(kVariableTypeRole, TypeText(variable.type));
    item->setData(kFindRole, name + ' ' + description);
    const QString tip = description.isEmpty() ? name : name + ": " + description;
    item->setToolTip(tip + " (" + TypeText(variable.type) + ')');
  }
}

std::vector<int> CVariableList::Variables() const {
  std::vector<int> variables;
  for (int row = 0; row < count(); ++row)
    variables.push_back(item(row)->data(kVariableRole).toInt());
  return variables;
}

std::vector<int> CVariableList::SelectedVariables() const {
  std::vector<int> variables;
  for (int row = 0; row < count(); ++row) {
    if (!item(row)->isSelected() || item(row)->isHidden()) continue;
    variables.push_back(item(row)->data(kVariableRole).toInt());
  }
  return variables;
}

void CVariableList::SetUsed(int variable, bool used) {
  QListWidgetItem* const item = ItemOf(variable);
  if (item != nullptr && item->data(kVariableUsedRole).toBool() != used)
    item->setData(kVariableUsedRole, used);
}

void CVariableList::SetUnusable(int variable, const QString& why) {
  QListWidgetItem* const item = ItemOf(variable);
  if (item == nullptr) return;
  item->setFlags(Qt::NoItemFlags);
  item->setToolTip(why);
}

void CVariableList::SetEqualNamesUnusable() {
  const CVariableNumbers numbers(data_);
  for (const int variable : Variables()) {
    if (numbers.Of(data_.variable[static_cast<std::size_t>(variable)].name) == variable + 1)
      continue;
    SetUnusable(variable, tr("Another variable before this one has the same name: rename it"));
  }
}

void CVariableList::Filter(const QString& text) {
  const QString wanted = text.trimmed();
  for (int row = 0; row < count(); ++row) {
    item(row)->setHidden(
        !item(row)->data(kFindRole).toString().contains(wanted, Qt::CaseInsensitive));
  }
}

// In a list of all variables each stands at its own number.
QListWidgetItem* CVariableList::ItemOf(int variable) const {
  const auto is = [variable](const QListWidgetItem* item) {
    return item != nullptr && item->data(kVariableRole).toInt() == variable;
  };
  if (is(item(variable))) return item(variable);
  for (int row = 0; row < count(); ++row) {
    if (is(item(row))) return item(row);
  }
  return nullptr;
}

void CVariableList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      emit Activated();
      break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      emit RemoveAsked();
      break;
    default:
      QListWidget::keyPressEvent(event);
      return;
  }
  event->accept();
}

int CVariableList::RowAt(const QPoint& point) const {
  const QModelIndex index = indexAt(point);
  if (!index.isValid()) return count();
  return index.row() + (point.y() > visualRect(index).center().y() ? 1 : 0);
}

void CVariableList::dragEnterEvent(QDragEnterEvent* event) {
  QListWidget::dragEnterEvent(event);
  event->setAccepted(qobject_cast<CVariableList*>(event->source()) != nullptr);
}

void CVariableList::dragMoveEvent(QDragMoveEvent* event) {
  QListWidget::dragMoveEvent(event);  // scrolls, and draws the mark of the place
  event->setAccepted(qobject_cast<CVariableList*>(event->source()) != nullptr);
}

void CVariableList::dropEvent(QDropEvent* event) {
  auto* const from = qobject_cast<CVariableList*>(event->source());
  if (from == nullptr) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
  setState(NoState);
  emit Dropped(from, RowAt(event->position().toPoint()));
  viewport()->update();
}

QString DisplayText(const CString& text) {
  return QString::fromStdString(TextForDisplay(text)).trimmed();
}

QString TypeText(std::int32_t type) {
  switch (type) {
    case kOrdinal:
      return CVariableList::tr("ordinal");
    case kContinuous:
      return CVariableList::tr("continuous");
    case kCensoredAbove:
      return CVariableList::tr("censored above");
    case kCensoredBelow:
      return CVariableList::tr("censored below");
    case kCensoredBoth:
      return CVariableList::tr("censored");
    default:
      return {};
  }
}
