// The dialog of multiple imputation.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CdlgMultipleImputation final : public CChoicesDlgOf<MultipleImputationChoices> {
 public:
  CdlgMultipleImputation(CDataDoc& document, MultipleImputationChoices last, QWidget* parent);

 protected:
  void Refresh() override;

 private:
  QLineEdit* dataSets_ = nullptr;
};
