#include "transfer/dialogs/TextVariablesModel.h"

void CTextVariablesModel::SetConfirmation(CTextConfirmation* confirmation) {
  beginResetModel();
  confirmation_ = confirmation;
  endResetModel();
}

void CTextVariablesModel::Refresh() {
  beginResetModel();
  endResetModel();
}

int CTextVariablesModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid() || confirmation_ == nullptr) return 0;
  return static_cast<int>(confirmation_->Variables().size());
}

int CTextVariablesModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

bool CTextVariablesModel::IsMarked(const QModelIndex& index) const {
  const auto row = static_cast<std::size_t>(index.row());
  switch (index.column()) {
    case kSelected:
      return confirmation_->Variables()[row].selected;
    case kNumeric:
      return confirmation_->IsNumeric(row);
    default:
      return !confirmation_->IsNumeric(row);
  }
}

QVariant CTextVariablesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || confirmation_ == nullptr) return {};
  const auto& variable = confirmation_->Variables()[static_cast<std::size_t>(index.row())];
  if (role == Qt::CheckStateRole && index.column() >= kSelected) {
    return IsMarked(index) ? Qt::Checked : Qt::Unchecked;
  }
  if (role == Qt::TextAlignmentRole && index.column() == kNumber) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole) return {};
  if (index.column() == kNumber) return role == Qt::DisplayRole ? index.row() + 1 : QVariant();
  if (index.column() == kName) return QString::fromStdString(variable.name);
  return {};
}

QVariant CTextVariablesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static const char* const kTitles[] = {"#", "Variables", "Sel", "Num", "Str"};
  static const char* const kHints[] = {"", "Name of the variable", "Is imported", "Holds numbers",
                                       "Holds texts, which are imported as missing values"};
  if (orientation != Qt::Horizontal || section >= kColumns) return {};
  if (role == Qt::DisplayRole) return QString::fromLatin1(kTitles[section]);
  if (role == Qt::ToolTipRole) return tr(kHints[section]);
  return {};
}

Qt::ItemFlags CTextVariablesModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (index.column() == kName) return plain | Qt::ItemIsEditable;
  return index.column() >= kSelected ? plain | Qt::ItemIsUserCheckable : plain;
}

bool CTextVariablesModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const auto row = static_cast<std::size_t>(index.row());
  if (role == Qt::EditRole && index.column() == kName) {
    std::string problem;
    if (!confirmation_->Rename(row, value.toString().toStdString(), problem)) {
      if (!problem.empty()) emit NameRefused(QString::fromStdString(problem));
      return false;
    }
  } else if (role == Qt::CheckStateRole && index.column() >= kSelected) {
    const bool marked = value.toInt() == Qt::Checked;
    if (index.column() == kSelected) {
      confirmation_->Select(row, marked);
    } else {
      confirmation_->SetNumeric(row, (index.column() == kNumeric) == marked);
    }
  } else {
    return false;
  }
  emit dataChanged(index.siblingAtColumn(kName), index.siblingAtColumn(kString));
  emit Changed();
  return true;
}
