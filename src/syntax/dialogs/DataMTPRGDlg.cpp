#include "syntax/dialogs/DataMTPRGDlg.h"

CDataMTPRGDlg::CDataMTPRGDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices, QWidget* parent)
    : CProbitThresholdsDlg(dataSet, std::move(choices), tr("Marginal Thresholds"), parent) {
  AddVariables(tr("Marginal threshold for ") + "%1", choices_.marginalThresholds);
}
