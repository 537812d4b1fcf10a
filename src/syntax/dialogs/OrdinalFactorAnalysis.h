// The dialog of factor analysis of ordinal variables.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class COrdinalFactorAnalysis final : public CChoicesDlgOf<OrdinalFactorChoices> {
 public:
  COrdinalFactorAnalysis(CDataDoc& document, OrdinalFactorChoices last, QWidget* parent);
};
