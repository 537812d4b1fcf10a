#include "transfer/dialogs/TextPreviewModel.h"

#include <QApplication>
#include <QPalette>

namespace {

using State = TextPreviewCell::State;

constexpr qsizetype kLongestShown = 200;

QString Hint(State state) {
  switch (state) {
    case State::Missing:
      return CTextPreviewModel::tr("missing");
    case State::Unreadable:
      return CTextPreviewModel::tr("no number, or only at its start");
    case State::LeftOut:
      return CTextPreviewModel::tr("not imported");
    case State::Value:
      break;
  }
  return {};
}

QVariant Colour(State state) {
  const QPalette& palette = QApplication::palette();
  if (state == State::Value) return {};
  if (state != State::Unreadable) return palette.color(QPalette::PlaceholderText);
  const bool dark = palette.color(QPalette::Base).lightness() < 128;
  return dark ? QColor(255, 140, 130) : QColor(190, 20, 20);
}

}  // namespace

QString CTextPreviewModel::Show(CTextConfirmation& confirmation) {
  beginResetModel();
  std::string problem;
  rows_ = confirmation.Preview(problem);
  names_.clear();
  for (const auto& variable : confirmation.Variables()) {
    if (names_.size() == static_cast<qsizetype>(CTextConfirmation::kPreviewColumns)) break;
    names_ << QString::fromStdString(variable.name);
  }
  endResetModel();
  return QString::fromStdString(problem);
}

int CTextPreviewModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CTextPreviewModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

QVariant CTextPreviewModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const TextPreviewCell& cell =
      rows_[static_cast<std::size_t>(index.row())][static_cast<std::size_t>(index.column())];
  if (role == Qt::DisplayRole) return QString::fromStdString(cell.text).left(kLongestShown);
  if (role == Qt::ForegroundRole) return Colour(cell.state);
  if (role == Qt::ToolTipRole) return Hint(cell.state);
  const bool right = cell.state == State::Value || cell.state == State::Missing;
  if (role == Qt::TextAlignmentRole) {
    return QVariant::fromValue((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  return {};
}

QVariant CTextPreviewModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  return orientation == Qt::Vertical ? QVariant(section + 1) : QVariant(names_.value(section));
}
