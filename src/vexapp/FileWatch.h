// Tells when a file has changed on disk, also when another one took its place under the name.
#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QTimer>

class CFileWatch final : public QObject {
  Q_OBJECT

 public:
  explicit CFileWatch(QObject* parent = nullptr);

  void Watch(const QString& path);
  // What is on disk now is what its owner has read or written.
  void Accept();

 signals:
  // The file is there and is not what was last accepted. Told once it has been quiet for a moment.
  void Changed();

 private:
  struct State {
    qint64 size = -1;
    QDateTime time;
    quint64 identity = 0;
    bool operator==(const State&) const = default;
  };
  State Look() const;
  void Tell();

  QString path_;
  State accepted_;
  QFileSystemWatcher watcher_;
  QTimer quiet_;
};
