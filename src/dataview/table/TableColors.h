// The grid's colours, mixed from a palette.
#pragma once

#include <QPalette>

struct TableColors {
  explicit TableColors(const QPalette& palette);

  QColor heading;
  QColor touchedHeading;
  QColor line;
  QColor selected;
  QColor currentFrame;
};
