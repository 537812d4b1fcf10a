// The dialog of censored regression.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CdlgCensoredRegression final : public CChoicesDlgOf<CensoredChoices> {
 public:
  CdlgCensoredRegression(CDataDoc& document, CensoredChoices last, QWidget* parent);
};
