// The application object of a program that tests or draws windows: no screen, settings of its own
// that are gone at the end, numbers in the C locale.
#pragma once

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <clocale>

// Before the QApplication is made, which reads it.
class COffscreenPlatform {
 public:
  COffscreenPlatform() { qputenv("QT_QPA_PLATFORM", "offscreen"); }
};

class COffscreenApplication : private COffscreenPlatform, public QApplication {
 public:
  COffscreenApplication(int& argc, char** argv) : QApplication(argc, argv) {
    std::setlocale(LC_NUMERIC, "C");
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings_.path());
    setOrganizationName("Vex Data");
    setApplicationName("Vex Data");
  }

  // A file that is gone at the end.
  QString TemporaryFile(const QString& name) const { return settings_.filePath(name); }

 private:
  const QTemporaryDir settings_;
};
