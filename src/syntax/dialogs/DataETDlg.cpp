#include "syntax/dialogs/DataETDlg.h"

CDataETDlg::CDataETDlg(CDataDoc& document, EqualThresholdChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("Select at least two ordinal variables:"));
  Form().AddList(Form().OnlyOrdinal({tr("Selected variables:"), tr("Select >>")}),
                 choices_.variables);
  Form().AddSavedFile(tr("Save thresholds to"), choices_.save, choices_.thresholdFile,
                      "thresholdFile");
  Finish(tr(
      "Estimates thresholds that are equal over the variables and tests this against thresholds of "
      "their own. The variables have the same categories. Saved thresholds can be used in Fix "
      "Thresholds."));
}
