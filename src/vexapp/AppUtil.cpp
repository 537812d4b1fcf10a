#include "vexapp/AppUtil.h"

#include <QFileInfo>
#include <QSettings>
#include <algorithm>

#include "host/Host.h"
#include "syntax/EngineRun.h"
#include "vexapp/Display.h"

namespace {

constexpr const char* kWidth = "display/width";
constexpr const char* kDecimals = "display/decimals";
constexpr const char* kAlignment = "display/alignment";
constexpr const char* kEngine = "engine/program";

constexpr int kWidestCell = 60;  // what the settings file may ask for

void WriteStatus(const CString& text) {
  CMainFrame* const frame = APPUTIL_GetMainFrame();
  CStatusBar* const bar = frame != nullptr ? frame->GetStatusBar() : nullptr;
  if (bar != nullptr) bar->SetPaneText(0, text);
}

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

QString CAppUtil::ChosenEngine() {
  return QSettings().value(kEngine).toString();
}

void CAppUtil::ChooseEngine(const QString& program) {
  QSettings().setValue(kEngine, program);
}

int CAppUtil::RunServer(const char* syntaxPath, const char* outputPath, unsigned int, int, int,
                        int) {
  CString reason;
  WriteStatus({});
  const CString engine = FindEngine(PathBytes(ChosenEngine()), reason);
  int result = -1;
  if (!engine.empty()) {
    const QFileInfo syntax(PathText(syntaxPath));
    const auto progress = Host().StartProgress("Running " + PathBytes(syntax.fileName()));
    result = RunEngine(engine, syntaxPath, outputPath, PathBytes(syntax.absolutePath()), *progress,
                       reason);
  }
  WriteStatus(reason);
  return result;
}

bool CAppUtil::OpenDocumentFile(const CString& pathName) {
  return opener_ && opener_(PathText(pathName));
}
