// What all dialogs of the data window share: margins, the default button, texts of the file.
#pragma once

#include <QString>

#include "host/Types.h"
#include "syntax/dialogs/VariableList.h"

class QDialog;

// Gives a dialog whose controls are made its margins and spacing, makes OK (or the one marked so)
// the only button that Enter presses, and gives it a sensible width.
void DressDialog(QDialog& dialog, int width = 0);

// What was typed, as the data set keeps it. (DisplayText() goes the other way.)
CString TypedText(const QString& text);
