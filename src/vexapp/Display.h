// Between the component's bytes and Qt's text.
#pragma once

#include <QFile>
#include <QString>

#include "host/Types.h"

// A text to show, line ends kept.
QString ShownText(const CString& bytes);

// File names are bytes of the file system.
inline QString PathText(const CString& path) {
  return QFile::decodeName(path.c_str());
}
inline CString PathBytes(const QString& path) {
  return QFile::encodeName(path).toStdString();
}
