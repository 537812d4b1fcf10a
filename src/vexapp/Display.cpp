#include "vexapp/Display.h"

#include <QStringList>

#include "host/Text.h"

QString ShownText(const CString& bytes) {
  QStringList lines;
  for (const QByteArray& line : QByteArray::fromStdString(bytes).split('\n')) {
    lines << QString::fromStdString(TextForDisplay(line.toStdString()));
  }
  return lines.join('\n');
}
