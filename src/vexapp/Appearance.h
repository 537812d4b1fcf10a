// Light or dark: the user's choice, kept in the settings.
#pragma once

#include "resources/Palettes.h"

// Takes over from the desktop's own look; called once, right after the application object was made.
void StartAppearance();
Appearance ChosenAppearance();
void ChooseAppearance(Appearance appearance);
