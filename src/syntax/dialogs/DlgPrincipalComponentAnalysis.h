// The dialog of principal component analysis.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CdlgPrincipalComponentAnalysis final : public CChoicesDlgOf<PrincipalComponentChoices> {
 public:
  CdlgPrincipalComponentAnalysis(CDataDoc& document, PrincipalComponentChoices last,
                                 QWidget* parent);
};
