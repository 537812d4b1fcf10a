// The dialog of exploratory factor analysis.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataFADlg final : public CChoicesDlgOf<FactorAnalysisChoices> {
 public:
  CDataFADlg(CDataDoc& document, FactorAnalysisChoices last, QWidget* parent);
};
