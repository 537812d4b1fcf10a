// The dialog of bootstrapping.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CDataBootDlg final : public CChoicesDlgOf<BootstrappingChoices> {
 public:
  CDataBootDlg(CDataDoc& document, BootstrappingChoices last, QWidget* parent);
};
