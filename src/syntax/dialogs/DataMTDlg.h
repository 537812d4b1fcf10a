// The dialog of normal scores.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataMTDlg final : public CChoicesDlgOf<NormalScoreChoices> {
 public:
  CDataMTDlg(CDataDoc& document, NormalScoreChoices last, QWidget* parent);
};
