#include "resources/Palettes.h"

namespace {

struct Shades {
  QRgb window, base, alternate, button, text, dimText, light, mid, dark, accent, link;
};

constexpr Shades kLight = {0xffeff1f4, 0xffffffff, 0xfff6f7f9, 0xffe9ecf0, 0xff1d2228, 0xff8b939d,
                           0xffffffff, 0xffc3c9d1, 0xff9aa3ae, 0xff2367b5, 0xff1d5fa8};
constexpr Shades kDark = {0xff2b2f35, 0xff181b1f, 0xff1f2226, 0xff363b42, 0xffe4e7eb, 0xff7d858f,
                          0xff454b53, 0xff1a1c20, 0xff121417, 0xff3f8ae0, 0xff78b4f5};

QPalette Made(const Shades& shades) {
  QPalette palette;
  const auto set = [&palette](QPalette::ColorRole role, QRgb color) {
    palette.setColor(role, QColor(color));
  };
  set(QPalette::Window, shades.window);
  set(QPalette::WindowText, shades.text);
  set(QPalette::Base, shades.base);
  set(QPalette::AlternateBase, shades.alternate);
  set(QPalette::ToolTipBase, shades.button);
  set(QPalette::ToolTipText, shades.text);
  set(QPalette::PlaceholderText, shades.dimText);
  set(QPalette::Text, shades.text);
  set(QPalette::Button, shades.button);
  set(QPalette::ButtonText, shades.text);
  set(QPalette::BrightText, 0xffffffff);
  set(QPalette::Light, shades.light);
  set(QPalette::Midlight, shades.button);
  set(QPalette::Mid, shades.mid);
  set(QPalette::Dark, shades.dark);
  set(QPalette::Shadow, 0xff000000);
  set(QPalette::Highlight, shades.accent);
  set(QPalette::HighlightedText, 0xffffffff);
  set(QPalette::Link, shades.link);
  set(QPalette::LinkVisited, shades.link);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(shades.dimText));
  }
  // A field that cannot be typed into looks so.
  palette.setColor(QPalette::Disabled, QPalette::Base, QColor(shades.button));
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(shades.mid));
  return palette;
}

}  // namespace

QPalette LightPalette() {
  return Made(kLight);
}

QPalette DarkPalette() {
  return Made(kDark);
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

QPalette PaletteFor(Appearance appearance, const QPalette& system) {
  const bool dark =
      appearance == Appearance::Dark || (appearance == Appearance::System && IsDark(system));
  return dark ? DarkPalette() : LightPalette();
}
