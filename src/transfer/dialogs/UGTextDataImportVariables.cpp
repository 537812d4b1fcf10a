#include "transfer/dialogs/UGTextDataImportVariables.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include "transfer/dialogs/TextVariablesModel.h"

namespace {

// Draws a mark in the middle of its cell: a check box for "Sel", round ones for what excludes each
// other. A click anywhere in the cell changes it.
class MarkDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    const QStyle& style = *option.widget->style();
    style.drawControl(QStyle::CE_ItemViewItem, &background, painter, option.widget);

    const bool round = index.column() != CTextVariablesModel::kSelected;
    const auto width = round ? QStyle::PM_ExclusiveIndicatorWidth : QStyle::PM_IndicatorWidth;
    const auto height = round ? QStyle::PM_ExclusiveIndicatorHeight : QStyle::PM_IndicatorHeight;
    QStyleOptionButton mark;
    mark.palette = option.palette;
    // The style takes the frame of a mark from this colour, which a dark one would not show.
    if (option.palette.color(QPalette::Base).lightness() < 128) {
      mark.palette.setColor(QPalette::Window, option.palette.color(QPalette::Text));
    }
    mark.rect =
        QStyle::alignedRect(option.direction, Qt::AlignCenter,
                            {style.pixelMetric(width), style.pixelMetric(height)}, option.rect);
    mark.state = (option.state & QStyle::State_Enabled) |
                 (index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStyle::State_On
                                                                        : QStyle::State_Off);
    style.drawPrimitive(round ? QStyle::PE_IndicatorRadioButton : QStyle::PE_IndicatorCheckBox,
                        &mark, painter);
  }

  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem&,
                   const QModelIndex& index) override {
    if (event->type() != QEvent::MouseButtonRelease ||
        static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton) {
      return false;
    }
    return model->setData(index, Toggled(index), Qt::CheckStateRole);
  }

  // A round mark is set, not taken away.
  static Qt::CheckState Toggled(const QModelIndex& index) {
    const bool marked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    const bool round = index.column() != CTextVariablesModel::kSelected;
    return marked && !round ? Qt::Unchecked : Qt::Checked;
  }
};

}  // namespace

CUGTextDataImportVariables::CUGTextDataImportVariables(QWidget* parent)
    : QTableView(parent), model_(new CTextVariablesModel(this)) {
  setModel(model_);
  auto* const marks = new MarkDelegate(this);
  for (int column = CTextVariablesModel::kSelected; column < CTextVariablesModel::kColumns;
       ++column) {
    setItemDelegateForColumn(column, marks);
  }
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  const int narrow = fontMetrics().horizontalAdvance("Num") + 24;
  for (int column = 0; column < CTextVariablesModel::kColumns; ++column) {
    horizontalHeader()->setSectionResizeMode(
        column, column == CTextVariablesModel::kName ? QHeaderView::Stretch : QHeaderView::Fixed);
    if (column != CTextVariablesModel::kName) setColumnWidth(column, narrow);
  }
  setSelectionBehavior(QAbstractItemView::SelectItems);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  setTabKeyNavigation(false);
  connect(model_, &CTextVariablesModel::Changed, this, &CUGTextDataImportVariables::Changed);
  connect(model_, &CTextVariablesModel::NameRefused, this, &CUGTextDataImportVariables::NameRefused,
          Qt::QueuedConnection);
}

void CUGTextDataImportVariables::SetConfirmation(CTextConfirmation* confirmation) {
  model_->SetConfirmation(confirmation);
  setCurrentIndex(model_->index(0, CTextVariablesModel::kName));
}

void CUGTextDataImportVariables::Refresh() {
  const QModelIndex current = currentIndex();
  model_->Refresh();
  setCurrentIndex(model_->index(current.row(), current.column()));
}

void CUGTextDataImportVariables::contextMenuEvent(QContextMenuEvent* event) {
  constexpr TextVariableCommand kCommands[] = {
      TextVariableCommand::Rename,         TextVariableCommand::UseImportName,
      TextVariableCommand::UseDefaultName, TextVariableCommand::UseNamesFromFile,
      TextVariableCommand::AllNumeric,     TextVariableCommand::AllString,
      TextVariableCommand::SelectAll,      TextVariableCommand::UnselectAll};
  const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
  const QModelIndex index =
      byMouse ? indexAt(viewport()->mapFromGlobal(event->globalPos())) : currentIndex();
  if (!index.isValid()) return;
  const auto row = static_cast<std::size_t>(index.row());
  QMenu menu(this);
  for (const TextVariableCommand command : kCommands) {
    if (command == TextVariableCommand::AllNumeric || command == TextVariableCommand::SelectAll) {
      menu.addSeparator();
    }
    QAction* const action =
        menu.addAction(QString::fromStdString(model_->Confirmation()->CommandText(command, row)),
                       this, [this, command, row = index.row()] { Do(command, row); });
    action->setEnabled(model_->Confirmation()->CanDo(command, row));
  }
  menu.exec(byMouse ? event->globalPos() : viewport()->mapToGlobal(visualRect(index).bottomLeft()));
}

void CUGTextDataImportVariables::Do(TextVariableCommand command, int row) {
  if (command == TextVariableCommand::Rename) {
    const QModelIndex name = model_->index(row, CTextVariablesModel::kName);
    setCurrentIndex(name);
    return edit(name);
  }
  std::string problem;
  const bool done = model_->Confirmation()->Do(command, static_cast<std::size_t>(row), problem);
  if (!done && !problem.empty()) emit NameRefused(QString::fromStdString(problem));
  if (!done) return;
  Refresh();
  emit Changed();
}

// Space changes the mark of the current cell, and gives it to the selected rows.
void CUGTextDataImportVariables::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && currentIndex().column() >= CTextVariablesModel::kSelected) {
    return ToggleSelectedRows();
  }
  QTableView::keyPressEvent(event);
}

void CUGTextDataImportVariables::ToggleSelectedRows() {
  const QModelIndex current = currentIndex();
  const Qt::CheckState state = MarkDelegate::Toggled(current);
  for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
    if (index.column() == current.column()) model_->setData(index, state, Qt::CheckStateRole);
  }
  model_->setData(current, state, Qt::CheckStateRole);
}
