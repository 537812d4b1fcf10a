#include "dataview/dialogs/VariableModel.h"

#include "datadoc/DataSet.h"
#include "dataview/dialogs/DialogLook.h"
#include "syntax/dialogs/VariableDelegate.h"

void CVariableModel::SetVariables(const TORVIKSTRUCT& data) {
  beginResetModel();
  names_.clear();
  descriptions_.clear();
  types_.clear();
  for (std::int32_t i = 0; i < data.variables; ++i) {
    const VARSTRUCT& variable = data.variable[static_cast<std::size_t>(i)];
    names_ << DisplayText(variable.name);
    descriptions_ << DisplayText(variable.description);
    types_.push_back(variable.type);
  }
  endResetModel();
}

void CVariableModel::SetName(int variable, const QString& name) {
  if (variable < 0 || variable >= names_.size()) return;
  names_[variable] = name;
  emit dataChanged(index(variable), index(variable));
}

int CVariableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

QVariant CVariableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= names_.size()) return {};
  switch (role) {
    case Qt::DisplayRole:
      return names_.at(index.row());
    case Qt::ToolTipRole:
      return descriptions_.at(index.row());
    case kVariableTypeRole:
      return TypeText(types_[static_cast<std::size_t>(index.row())]);
    default:
      return {};
  }
}
