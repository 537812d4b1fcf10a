// The dialog of imputation by matching.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataImpuDlg final : public CChoicesDlgOf<ImputationChoices> {
 public:
  CDataImpuDlg(CDataDoc& document, ImputationChoices last, QWidget* parent);
};
