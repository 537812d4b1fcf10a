// The application services that the component asks for: display settings, kept for the next start.
#pragma once

#include "host/Framework.h"

class CAppUtil final : public CVexAppUtil {
 public:
  DisplaySettings GetDisplaySettings() const override;
  void SetDisplaySettings(const DisplaySettings& settings) override;
  // The window runs no engine yet: always -1.
  int RunServer(const char* syntaxPath, const char* outputPath, unsigned int server, int option1,
                int option2, int option3) override;
  // There is no window for syntax and output files yet: always false.
  bool OpenDocumentFile(const CString& pathName) override;
};
