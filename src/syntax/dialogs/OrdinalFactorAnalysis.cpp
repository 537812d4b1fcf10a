#include "syntax/dialogs/OrdinalFactorAnalysis.h"

COrdinalFactorAnalysis::COrdinalFactorAnalysis(CDataDoc& document, OrdinalFactorChoices last,
                                               QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList(
      Form().OnlyOrdinal({tr("Select a subset of  Variables (Optional):"), tr("Select >>")}),
      choices_.subset);
  Form().AddRadios(tr("Item response function:"), {tr("&Normal"), tr("&Logistic")},
                   choices_.proportionalOdds, "proportionalOdds");
  Form().AddText(tr("Number of &factors (optional):"), choices_.factors, "factors");
  Finish(tr(
      "Looks for the factors behind ordinal variables by full-information maximum likelihood. The "
      "response function is the normal ogive or the logistic one (proportional odds). Without a "
      "subset all variables are analysed."));
}
