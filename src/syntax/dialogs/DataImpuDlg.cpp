#include "syntax/dialogs/DataImpuDlg.h"

CDataImpuDlg::CDataImpuDlg(CDataDoc& document, ImputationChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Imputed variables:")}, choices_.imputed);
  Form().AddList({tr("Matching variables:")}, choices_.matching);
  Form().AddText(tr("Variance ratio"), choices_.varianceRatio, "varianceRatio");
  Form().AddRadios({},
                   {tr("List all"), tr("List only successful imputations"),
                    tr("Skip the entire listing of cases")},
                   choices_.listing, "listing");
  Finish(
      tr("Takes a missing value from the case that is nearest on the matching variables. Where "
         "several "
         "cases are equally near, their mean is taken if the variance of their values is small "
         "against that of the variable (the variance ratio; 0.5 when the field is empty). The new "
         "values are written with the data: Output Options, Save the transformed data to file."));
}
