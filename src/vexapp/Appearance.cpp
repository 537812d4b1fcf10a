#include "vexapp/Appearance.h"

#include <QApplication>
#include <QSettings>
#include <algorithm>

namespace {

constexpr const char* kKey = "appearance";

QPalette& SystemPalette() {
  static QPalette palette;
  return palette;
}

}  // namespace

void StartAppearance() {
  SystemPalette() = QApplication::palette();
  QApplication::setStyle("Fusion");
  QApplication::setPalette(PaletteFor(ChosenAppearance(), SystemPalette()));
}

Appearance ChosenAppearance() {
  const int value = QSettings().value(kKey, static_cast<int>(Appearance::System)).toInt();
  return static_cast<Appearance>(
      std::clamp(value, static_cast<int>(Appearance::System), static_cast<int>(Appearance::Dark)));
}

void ChooseAppearance(Appearance appearance) {
  QSettings().setValue(kKey, static_cast<int>(appearance));
  QApplication::setPalette(PaletteFor(appearance, SystemPalette()));
}
