// The dialog of regression by least squares.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataRGDlg final : public CChoicesDlgOf<RegressionChoices> {
 public:
  CDataRGDlg(CDataDoc& document, RegressionChoices last, QWidget* parent);
};
