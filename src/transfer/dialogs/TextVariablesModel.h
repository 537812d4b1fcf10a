// The variables of a text file as a table.
#pragma once

#include <QAbstractTableModel>

#include "transfer/TextConfirmation.h"

class CTextVariablesModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kNumber, kName, kSelected, kNumeric, kString, kColumns };

  explicit CTextVariablesModel(QObject* parent) : QAbstractTableModel(parent) {}

  // The confirmation must outlive the model.
  void SetConfirmation(CTextConfirmation* confirmation);
  CTextConfirmation* Confirmation() const { return confirmation_; }
  // Everything may have changed.
  void Refresh();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // A name as EditRole; a mark as CheckStateRole.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  void Changed();
  void NameRefused(const QString& problem);

 private:
  bool IsMarked(const QModelIndex& index) const;

  CTextConfirmation* confirmation_ = nullptr;
};
