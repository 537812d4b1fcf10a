#include "syntax/dialogs/DataPRGDlg.h"

CDataPRGDlg::CDataPRGDlg(CDataDoc& document, ProbitChoices last, QWidget* parent)
    : CProbitDlg(document, std::move(last), parent) {
  choices_.declareFixed = true;
  Form().AddChooser(tr("&Variables:"));
  Form().AddList(Form().OnlyOrdinal({tr("Ordinal variables:")}), choices_.y);
  Form().AddList({tr("Fixed X variables:"), tr("Add >>"), tr("Fix %1")}, choices_.x);
  AddThresholdButtons(tr("Marginal Thresholds..."), tr("Fix Thresholds..."));
  Finish(
      tr("Regresses each ordinal variable on the fixed X variables, probit. Thresholds can be "
         "marginal ones or be fixed to the values of a file."));
}
