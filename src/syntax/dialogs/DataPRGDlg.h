// The dialog of probit regression with fixed X variables.
#pragma once

#include "syntax/dialogs/ProbitDlg.h"

class CDataPRGDlg final : public CProbitDlg {
 public:
  CDataPRGDlg(CDataDoc& document, ProbitChoices last, QWidget* parent);
};
