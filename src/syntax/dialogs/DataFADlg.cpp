#include "syntax/dialogs/DataFADlg.h"

CDataFADlg::CDataFADlg(CDataDoc& document, FactorAnalysisChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Select a subset of  Variables (Optional):"), tr("Select >>")},
                 choices_.subset);
  Form().AddRadios({}, {tr("ML Factor Analysis "), tr("MINRES Factor Analysis")}, choices_.minres,
                   "minres");
  Form().AddText(tr("&Number of factors (optional):"), choices_.factors, "factors");
  Form()
      .AddCheck(tr("Factor Scores"), choices_.scores, "scores")
      .setToolTip(tr("Written with the data: Output Options, Save the transformed data to file"));
  Finish(tr(
      "Looks for the factors behind continuous variables, by maximum likelihood or by minimum "
      "residuals. Without a subset all variables are analysed, without a number of factors as many "
      "as the correlation matrix has eigenvalues above 1. Factor scores are written with the data: "
      "Output Options, Save the transformed data to file."));
}
