// The application services that the component asks for: display settings, kept for the next start,
// the engine, and windows for the files that it writes.
#pragma once

#include <QString>
#include <functional>

#include "host/Framework.h"

class CAppUtil final : public CVexAppUtil {
 public:
  // Opens a file in a window of its kind; false, with a message, when that was not possible.
  using Opener = std::function<bool(const QString& path)>;
  void SetOpener(Opener opener) { opener_ = std::move(opener); }

  DisplaySettings GetDisplaySettings() const override;
  void SetDisplaySettings(const DisplaySettings& settings) override;
  // The engine's program as the user chose it; empty: the one beside this program.
  static QString ChosenEngine();
  static void ChooseEngine(const QString& program);
  // Shows the engine's progress, with Cancel. The window lives on meanwhile; documents are locked.
  int RunServer(const char* syntaxPath, const char* outputPath, unsigned int server, int option1,
                int option2, int option3) override;
  bool OpenDocumentFile(const CString& pathName) override;

 private:
  Opener opener_;
};
