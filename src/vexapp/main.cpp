// vexapp: the desktop program.
#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <clocale>
#include <cstdio>

#include "resources/DrawnIcon.h"
#include "vexapp/AppFrame.h"
#include "vexapp/Appearance.h"
#include "vexapp/VexApp.h"

namespace {

void NameProgram() {
  QCoreApplication::setApplicationName("Vex Data");
  QCoreApplication::setOrganizationName("Vex Data");
  QCoreApplication::setApplicationVersion(VEX_VERSION);
}

// The files on the command line; answers --help and --version and ends the program then.
QStringList FilesToOpen(const QCoreApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QCoreApplication::translate("main", "Looks at data sets, imports and exports them."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(
      "files",
      QCoreApplication::translate("main",
                                  "Data sets, outputs and syntaxes to open; files of other "
                                  "programs are imported."),
      "[FILE...]");
  parser.process(application);
  return parser.positionalArguments();
}

bool HasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

int RunWithoutDisplay(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  NameProgram();
  FilesToOpen(application);
  std::fputs("vexapp needs a display; vexdata does the same work in a terminal.\n", stderr);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (!HasDisplay()) return RunWithoutDisplay(argc, argv);
  QApplication application(argc, argv);
  // Qt has set the user's locale; numbers in files and cells are those of the C locale.
  std::setlocale(LC_NUMERIC, "C");
  NameProgram();
  QApplication::setWindowIcon(DrawnIcon(Picture::Program));
  StartAppearance();
  const QStringList files = FilesToOpen(application);

  CVexApp app;
  CAppFrame frame(app);
  frame.show();
  QTimer::singleShot(0, &frame, [&frame, files] {
    frame.OfferRecovery();
    frame.OpenPaths(files);
  });
  return QApplication::exec();
}
