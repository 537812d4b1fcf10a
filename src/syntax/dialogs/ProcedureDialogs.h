// The dialogs of the procedures, by what is chosen in them.
#pragma once

#include <memory>

#include "syntax/dialogs/ChoicesDlg.h"

// The dialog for these choices, filled with them. Variables that the data set does not have are
// left out. Of the two probit dialogs it is the one with fixed X variables when the choices
// declare these.
std::unique_ptr<CChoicesDlg> MakeProcedureDialog(CDataDoc& document, ProcedureChoices last,
                                                 QWidget* parent);
