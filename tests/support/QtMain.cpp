// main() of the window tests: no screen, settings of their own, numbers in the C locale.
#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <clocale>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  QApplication::setOrganizationName("Vex Data");
  QApplication::setApplicationName("Vex Data");
  QApplication::setStyle("Fusion");
  return RUN_ALL_TESTS();
}
