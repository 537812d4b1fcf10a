// The variables of a data set as an item model: one row a variable, in data set order.
#pragma once

#include <QAbstractListModel>
#include <QStringList>
#include <vector>

struct TORVIKSTRUCT;

class CVariableModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  // Takes names, descriptions and types over; the data set is not kept.
  void SetVariables(const TORVIKSTRUCT& data);
  // One name was changed.
  void SetName(int variable, const QString& name);

  QString Name(int variable) const { return names_.value(variable); }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  QStringList names_;
  QStringList descriptions_;
  std::vector<int> types_;
};
