// The dialog of two-stage least squares.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataTSLSDlg final : public CChoicesDlgOf<TwoStageChoices> {
 public:
  CDataTSLSDlg(CDataDoc& document, TwoStageChoices last, QWidget* parent);
};
