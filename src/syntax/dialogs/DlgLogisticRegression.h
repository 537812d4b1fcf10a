// The dialog of logistic regression.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CdlgLogisticRegression final : public CChoicesDlgOf<LogisticChoices> {
 public:
  CdlgLogisticRegression(CDataDoc& document, LogisticChoices last, QWidget* parent);
};
