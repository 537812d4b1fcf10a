#include "vexapp/AppUtil.h"

#include <QSettings>
#include <algorithm>

namespace {

constexpr const char* kWidth = "display/width";
constexpr const char* kDecimals = "display/decimals";
constexpr const char* kAlignment = "display/alignment";

constexpr int kWidestCell = 60;  // what the settings file may ask for

}  // namespace

DisplaySettings CAppUtil::GetDisplaySettings() const {
  const QSettings settings;
  DisplaySettings display;
  display.width = std::clamp(settings.value(kWidth, display.width).toInt(), 1, kWidestCell);
  display.decimals =
      std::clamp(settings.value(kDecimals, display.decimals).toInt(), 0, kWidestCell);
  display.alignment = std::clamp(settings.value(kAlignment, display.alignment).toInt(), 0, 2);
  return display;
}

void CAppUtil::SetDisplaySettings(const DisplaySettings& display) {
  QSettings settings;
  settings.setValue(kWidth, display.width);
  settings.setValue(kDecimals, display.decimals);
  settings.setValue(kAlignment, display.alignment);
}

int CAppUtil::RunServer(const char*, const char*, unsigned int, int, int, int) {
  return -1;
}

bool CAppUtil::OpenDocumentFile(const CString&) {
  return false;
}
