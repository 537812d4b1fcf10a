#include "syntax/dialogs/DlgPrincipalComponentAnalysis.h"

CdlgPrincipalComponentAnalysis::CdlgPrincipalComponentAnalysis(CDataDoc& document,
                                                               PrincipalComponentChoices last,
                                                               QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Select a subset of  Variables (Optional):"), tr("Select >>")},
                 choices_.subset);
  Form().AddCheck(tr("Use &Correlation Matrix"), choices_.correlations, "correlations");
  Form()
      .AddCheck(tr("&Principal Component Scores"), choices_.scores, "scores")
      .setToolTip(tr("Written with the data: Output Options, Save the transformed data to file"));
  Form().AddText(tr("&Number of Components:"), choices_.components, "components");
  Finish(tr(
      "Finds the principal components of the covariance matrix, or of the correlation matrix, of "
      "the variables of the subset; without one, of all variables. Without a number all components "
      "are taken. Scores are written with the data: Output Options, Save the transformed data to "
      "file."));
}
