// The dialog of fixing thresholds.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataFTDlg final : public CChoicesDlgOf<FixThresholdChoices> {
 public:
  CDataFTDlg(CDataDoc& document, FixThresholdChoices last, QWidget* parent);
};
