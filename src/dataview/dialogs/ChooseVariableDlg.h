// The dialogs that choose one variable of the data set, or none: for weights and for groups.
#pragma once

#include <QDialog>
#include <memory>

#include "datadoc/DataSet.h"

class CDataDoc;

namespace Ui {
class ChooseVariableDlg;
}

class CChooseVariableDlg : public QDialog {
  Q_OBJECT

 public:
  ~CChooseVariableDlg() override;

  std::int32_t Variable() const;  // counted from 1; 0: none

 protected:
  struct Texts {
    QString title;
    QString none;
    QString one;
    QString hint;
  };
  // Starts with `chosen`, a number of a variable counted from 1; others mean none.
  CChooseVariableDlg(const TORVIKSTRUCT& dataSet, std::int32_t chosen, const Texts& texts,
                     QWidget* parent);

  std::unique_ptr<Ui::ChooseVariableDlg> ui_;

 private:
  void Refresh();
};

// "Weight Cases"; the document's output options can be edited from here.
class CDataWeightDlg final : public CChooseVariableDlg {
  Q_OBJECT

 public:
  CDataWeightDlg(CDataDoc& document, QWidget* parent);
};

// "Group Variable".
class CdlgDataGroupVariable final : public CChooseVariableDlg {
  Q_OBJECT

 public:
  CdlgDataGroupVariable(const TORVIKSTRUCT& dataSet, QWidget* parent);
};
