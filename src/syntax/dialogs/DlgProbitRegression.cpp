#include "syntax/dialogs/DlgProbitRegression.h"

#include <QMessageBox>
#include <algorithm>

CdlgProbitRegression::CdlgProbitRegression(CDataDoc& document, ProbitChoices last, QWidget* parent)
    : CProbitDlg(document, std::move(last), parent) {
  choices_.declareFixed = false;
  Form().AddChooser(tr("&Variable List"));
  ChooserTarget ordinal{tr("Or&dinal Variables:")};
  ordinal.beforeAdding = [this](std::vector<int>& variables) { return KeepOrdinal(variables); };
  Form().AddList(ordinal, choices_.y);
  Form().AddList({tr("&Covariates:")}, choices_.x);
  AddThresholdButtons(tr("&Marginal Thresholds..."), tr("&Fix Thresholds..."));
  Form().AddCheck(tr("Alternative &Parameterization "), choices_.alternative, "alternative");
  Finish(tr(
      "Regresses each ordinal variable on the covariates, probit. Thresholds can be marginal ones "
      "or "
      "be fixed to the values of a file. The alternative parameterization has an intercept and its "
      "first threshold is 0."));
}

bool CdlgProbitRegression::KeepOrdinal(std::vector<int>& variables) {
  const auto isOther = [this](int variable) {
    return Data().variable[static_cast<std::size_t>(variable)].type != kOrdinal;
  };
  const auto others = std::count_if(variables.begin(), variables.end(), isOther);
  if (others == 0) return true;
  if (others == static_cast<std::ptrdiff_t>(variables.size())) {
    QMessageBox::warning(this, kNotOrdinalCaption, kNotOrdinal);
    return false;
  }
  variables.erase(std::remove_if(variables.begin(), variables.end(), isOther), variables.end());
  return QMessageBox::question(this, kSomeNotOrdinalCaption, kSomeNotOrdinal,
                               QMessageBox::Ok | QMessageBox::Cancel,
                               QMessageBox::Ok) == QMessageBox::Ok;
}
