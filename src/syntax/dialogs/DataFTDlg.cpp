#include "syntax/dialogs/DataFTDlg.h"

CDataFTDlg::CDataFTDlg(CDataDoc& document, FixThresholdChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("Ordinal variables:"));
  Form().AddList(Form().OnlyOrdinal({{}, tr("Add >>"), tr("Fix threshold for %1")}),
                 choices_.variables);
  Form().AddFile(tr("File that contains thresholds"), choices_.thresholdFile, "thresholdFile");
  Finish(tr(
      "Fixes the thresholds of the variables to the values of a file, which an earlier run (Equal "
      "Thresholds, Save thresholds to) has written."));
}
