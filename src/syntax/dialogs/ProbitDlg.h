// What both dialogs of probit regression have in common: the thresholds.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class QLabel;
class QPushButton;

class CProbitDlg : public CChoicesDlgOf<ProbitChoices> {
 protected:
  using CChoicesDlgOf::CChoicesDlgOf;

  void AddThresholdButtons(const QString& marginal, const QString& fix);
  // Says which covariates and thresholds are chosen, and forgets thresholds of variables that were
  // taken out of the regression.
  void Refresh() override;

 private:
  void AskForMarginal();
  void AskForFixed();

  QPushButton* marginalButton_ = nullptr;
  QPushButton* fixButton_ = nullptr;
  QLabel* summary_ = nullptr;
};
