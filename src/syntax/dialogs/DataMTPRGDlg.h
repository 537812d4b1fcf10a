// Marginal thresholds of a probit regression.
#pragma once

#include "syntax/dialogs/ProbitThresholdsDlg.h"

class CDataMTPRGDlg final : public CProbitThresholdsDlg {
 public:
  CDataMTPRGDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices, QWidget* parent);
};
