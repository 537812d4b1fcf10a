#include "syntax/dialogs/DlgCensoredRegression.h"

CdlgCensoredRegression::CdlgCensoredRegression(CDataDoc& document, CensoredChoices last,
                                               QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList(Form().OnlyCensored({tr("&Censored Variables:")}), choices_.y);
  Form().AddList({tr("Co&variates:")}, choices_.x);
  Finish(tr(
      "Regresses each censored variable on the covariates. Data > Define Variables says whether a "
      "variable is censored above, below or on both sides."));
}
