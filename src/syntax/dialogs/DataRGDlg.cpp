#include "syntax/dialogs/DataRGDlg.h"

CDataRGDlg::CDataRGDlg(CDataDoc& document, RegressionChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Y variables:")}, choices_.y);
  Form().AddList({tr("X variables:")}, choices_.x);
  Finish(tr("Regresses each Y variable on all X variables by ordinary least squares."));
}
