// Fixed thresholds of a probit regression.
#pragma once

#include "syntax/dialogs/ProbitThresholdsDlg.h"

class CDataFTPRGDlg final : public CProbitThresholdsDlg {
 public:
  // A threshold file without a folder is one of `folder`.
  CDataFTPRGDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices, CString folder,
                QWidget* parent);

  void accept() override;

 private:
  CString folder_;
};
