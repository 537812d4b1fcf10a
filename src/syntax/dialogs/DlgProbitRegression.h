// The dialog of probit regression.
#pragma once

#include "syntax/dialogs/ProbitDlg.h"

class CdlgProbitRegression final : public CProbitDlg {
 public:
  CdlgProbitRegression(CDataDoc& document, ProbitChoices last, QWidget* parent);

 private:
  // Takes the variables that are not ordinal out, after asking. False: add none.
  bool KeepOrdinal(std::vector<int>& variables);
};
