#include "dataview/table/TableColors.h"

namespace {

// `share` of 0 gives `a`, of 1 gives `b`.
QColor Mixed(const QColor& a, const QColor& b, double share) {
  const auto mix = [share](int x, int y) { return qRound(x + (y - x) * share); };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

}  // namespace

TableColors::TableColors(const QPalette& palette) {
  const QColor base = palette.color(QPalette::Base);
  const QColor text = palette.color(QPalette::Text);
  const QColor accent = palette.color(QPalette::Highlight);
  heading = palette.color(QPalette::Button);
  touchedHeading = Mixed(heading, accent, 0.3);
  line = Mixed(base, text, 0.16);
  selected = Mixed(base, accent, 0.22);
  currentFrame = accent;
}
