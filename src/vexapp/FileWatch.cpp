#include "vexapp/FileWatch.h"

#include <QFileInfo>

#include <sys/stat.h>

CFileWatch::CFileWatch(QObject* parent) : QObject(parent) {
  constexpr int kQuietMilliseconds = 200;
  quiet_.setSingleShot(true);
  quiet_.setInterval(kQuietMilliseconds);
  const auto wait = [this] { quiet_.start(); };
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, wait);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, wait);
  connect(&quiet_, &QTimer::timeout, this, &CFileWatch::Tell);
}

void CFileWatch::Watch(const QString& path) {
  if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
  if (!watcher_.directories().isEmpty()) watcher_.removePaths(watcher_.directories());
  path_ = path;
  // The folder too: a file that is replaced is no longer the one that is watched.
  watcher_.addPaths({path_, QFileInfo(path_).absolutePath()});
  Accept();
}

void CFileWatch::Accept() {
  accepted_ = Look();
  if (QFileInfo::exists(path_) && !watcher_.files().contains(path_)) watcher_.addPath(path_);
}

CFileWatch::State CFileWatch::Look() const {
  const QFileInfo info(path_);
  struct stat status {};
  if (stat(QFile::encodeName(path_).constData(), &status) != 0) return {};
  return {info.size(), info.lastModified(), static_cast<quint64>(status.st_ino)};
}

void CFileWatch::Tell() {
  const State now = Look();
  if (now.size < 0 || now == accepted_) return;
  Accept();
  emit Changed();
}
