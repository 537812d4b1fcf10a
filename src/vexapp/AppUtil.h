// The application services that the component asks for: display settings, kept for the next start.
#pragma once

#include "host/Framework.h"

class CAppUtil final : public CVexAppUtil {
 public:
  DisplaySettings GetDisplaySettings() const override;
  void SetDisplaySettings(const DisplaySettings& settings) override;
  // There is no engine to run yet: always -1.
  int RunServer(const CString& syntaxFile, const CString& outputFile) override;
};
