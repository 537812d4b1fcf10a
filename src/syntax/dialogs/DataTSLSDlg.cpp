#include "syntax/dialogs/DataTSLSDlg.h"

CDataTSLSDlg::CDataTSLSDlg(CDataDoc& document, TwoStageChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Y variables")}, choices_.y);
  Form().AddList({tr("X Variables")}, choices_.x);
  // An exogenous X variable is an instrument too.
  constexpr int kInstruments = 1;
  Form().AddList({tr("Instrumental Variables")}, choices_.instruments, kInstruments);
  Finish(tr(
      "Regresses each Y variable on the X variables with the help of instrumental variables. An X "
      "variable that is exogenous stands in both lists. There are at least as many instruments as "
      "X variables."));
}
