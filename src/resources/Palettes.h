// The program's two sets of colours.
#pragma once

#include <QPalette>

enum class Appearance { System, Light, Dark };

QPalette LightPalette();
QPalette DarkPalette();

// Is light text on a dark ground what this palette has?
bool IsDark(const QPalette& palette);

// The palette for a choice; `system` is the desktop's own.
QPalette PaletteFor(Appearance appearance, const QPalette& system);
