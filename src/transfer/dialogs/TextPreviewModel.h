// The first records of a text file as they would be imported.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "transfer/TextConfirmation.h"

class CTextPreviewModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit CTextPreviewModel(QObject* parent) : QAbstractTableModel(parent) {}

  // Returns why it ends early; empty when it does not.
  QString Show(CTextConfirmation& confirmation);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<std::vector<TextPreviewCell>> rows_;
  QStringList names_;
};
