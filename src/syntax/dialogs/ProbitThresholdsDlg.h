// What the two dialogs have in common that the probit dialogs open for thresholds.
#pragma once

#include <QDialog>

#include "syntax/dialogs/ChoiceForm.h"
#include "syntax/procedures/Regressions.h"

// "<< Previous" goes back with the choice, Cancel without it.
class CProbitThresholdsDlg : public QDialog {
  Q_OBJECT

 public:
  const ProbitChoices& Choices() const { return choices_; }

 protected:
  // The data set must outlive the dialog.
  CProbitThresholdsDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices, const QString& title,
                       QWidget* parent);

  CChoiceForm& Form() { return *form_; }
  // The ordinal variables of the regression, chosen into `names`.
  void AddVariables(const QString& itemText, NameList& names);

  ProbitChoices choices_;

 private:
  const TORVIKSTRUCT& data_;
  CChoiceForm* form_;
};
