// Editing a cell of the grid.
#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>

#include "dataview/table/CellEditor.h"
#include "dataview/table/DataGrid.h"

namespace {
constexpr int kRoom = 24;  // for the cursor and the next characters
}

void CDataGrid::SetEditable(bool editable) {
  editable_ = editable;
  if (editable_) return;
  editing_ = false;
  editor_->hide();
}

bool CDataGrid::IsEditing() const {
  return editing_;
}

void CDataGrid::StartEdit() {
  CDataTableClient* const client = model_->Client();
  if (client == nullptr) return;
  OpenEditor(QString::fromStdString(client->GetCellText(cursor_.Current())), false);
}

void CDataGrid::StartEditWith(const QString& typed) {
  OpenEditor(typed, true);
}

void CDataGrid::OpenEditor(const QString& text, bool typed) {
  if (!editable_ || !cursor_.Current().IsValid()) return;
  rows_.Reveal(cursor_.Current().row);
  RevealColumn(cursor_.Current().column);
  UpdateWindow();
  edited_ = cursor_.Current();
  const int alignment = model_->ColumnAlignment(edited_.column);
  editor_->setAlignment(AlignmentOf(alignment));
  editing_ = true;
  editor_->Open(text, typed);
  PlaceEditor();
}

// Over its cell, wider where the text is; it leaves with its cell when that is scrolled away.
void CDataGrid::PlaceEditor() {
  if (!editing_) return;
  const std::int64_t row = edited_.row - rows_.First();
  if (row < 0 || row >= rows_.Drawn()) return EndEdit();
  const int height = verticalHeader()->defaultSectionSize();
  const int text = editor_->fontMetrics().horizontalAdvance(editor_->text()) + kRoom;
  const int left = columnViewportPosition(edited_.column);
  const int width = std::max(columnWidth(edited_.column), text);
  editor_->setGeometry(left, static_cast<int>(row) * height, width, height);
}

bool CDataGrid::Commit() {
  CDataTableClient* const client = model_->Client();
  const CString text = editor_->text().toStdString();
  if (client == nullptr) return false;
  // A value that was left alone is not written, so that looking at it changes nothing.
  return text == client->GetCellText(edited_) || client->CommitCell(edited_, text);
}

void CDataGrid::EndEdit() {
  if (!IsEditing()) return;
  editing_ = false;  // what follows may move the cell
  const bool committed = Commit();
  const bool hadFocus = editor_->hasFocus();
  editor_->hide();
  if (hadFocus) setFocus();
  if (!committed) emit EditRefused();
}

void CDataGrid::LeaveEditor(bool commit, int key) {
  if (!IsEditing()) return;
  if (key == 0) return EndEdit();
  editing_ = false;
  if (commit && !Commit()) {
    editing_ = true;
    editor_->Refuse();
    emit EditRefused();
    return;
  }
  editor_->hide();
  setFocus();
  if (!commit || !cursor_.Current().IsValid()) return;
  QKeyEvent move(QEvent::KeyPress, key, Qt::NoModifier);
  MoveByKey(&move);
}
