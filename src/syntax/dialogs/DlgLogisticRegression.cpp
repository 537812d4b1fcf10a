#include "syntax/dialogs/DlgLogisticRegression.h"

CdlgLogisticRegression::CdlgLogisticRegression(CDataDoc& document, LogisticChoices last,
                                               QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList(Form().OnlyOrdinal({tr("Or&dinal Variables:")}), choices_.y);
  Form().AddList({tr("&Covariates:")}, choices_.x);
  Form().AddCheck(tr("Alternative &Parameterization "), choices_.alternative, "alternative");
  Finish(tr(
      "Regresses each ordinal variable on the covariates: binary for two categories, proportional "
      "odds for more. The alternative parameterization has an intercept and its first threshold "
      "is 0."));
}
