// The dialog of the test of equal thresholds.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataETDlg final : public CChoicesDlgOf<EqualThresholdChoices> {
 public:
  CDataETDlg(CDataDoc& document, EqualThresholdChoices last, QWidget* parent);
};
