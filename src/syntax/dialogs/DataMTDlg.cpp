#include "syntax/dialogs/DataMTDlg.h"

CDataMTDlg::CDataMTDlg(CDataDoc& document, NormalScoreChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("Variable List:"));
  Form().AddList({{}, tr("Add >>"), tr("Normal Scores for %1")}, choices_.variables);
  Finish(tr(
      "Replaces the values of the variables by normal scores with the same mean and standard "
      "deviation. The new values are written with the data: Output Options, Save the transformed "
      "data to file."));
}
