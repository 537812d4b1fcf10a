#include "syntax/dialogs/DlgMultipleImputation.h"

#include <QLineEdit>

CdlgMultipleImputation::CdlgMultipleImputation(CDataDoc& document, MultipleImputationChoices last,
                                               QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Selected variables:"), tr("Select >>")}, choices_.variables);
  Form().AddRadios({}, {tr("&EM Algorithm"), tr("&MCMC")}, choices_.mcmc, "mcmc");
  Form().AddText(tr("Number of &Iterations:"), choices_.iterations, "iterations");
  dataSets_ = &Form().AddText(tr("RP:"), choices_.dataSets, "dataSets");
  Form().AddText(tr("&Convergence Criterion:"), choices_.convergence, "convergence");
  Form().AddBox(tr("Treatment of cases with all values missing:"),
                {tr("Delete the case"), tr("Impute the means"), tr("Leave the values missing")},
                choices_.allMissing, "allMissing");
  Finish(tr(
      "Fills missing values from an incomplete multivariate normal sample: once from the estimates "
      "of the EM algorithm, or RP times by data augmentation (MCMC). The completed data are "
      "written to the file of Output Options, Save the transformed data to file."));
}

void CdlgMultipleImputation::Refresh() {
  if (dataSets_ != nullptr) {
    dataSets_->setEnabled(choices_.mcmc);
    dataSets_->setToolTip(choices_.mcmc ? tr("Number of completed data sets")
                                        : tr("Only MCMC makes several data sets"));
  }
  CChoicesDlgOf::Refresh();
}
