#include "vexapp/RecentFiles.h"

#include <QFileInfo>
#include <QSettings>
#include <algorithm>

namespace {

constexpr const char* kGroup = "recentFiles";

std::uint8_t ByteSetting(const QSettings& settings, const char* key) {
  return static_cast<std::uint8_t>(settings.value(key).toUInt());
}

RECENTFILE Loaded(const QSettings& settings) {
  RECENTFILE file;
  file.path = settings.value("path").toString();
  file.kind.data_type = settings.value("dataType").toInt();
  file.kind.ma_type = settings.value("matrixType").toInt();
  file.kind.matrixPosition = ByteSetting(settings, "matrixPosition");
  file.kind.firstVectorPosition = ByteSetting(settings, "firstVectorPosition");
  file.kind.secondVectorPosition = ByteSetting(settings, "secondVectorPosition");
  file.kind.fixedFormat = ByteSetting(settings, "fixedFormat");
  file.kind.fullMatrix = settings.value("fullMatrix").toInt();
  file.kind.group = settings.value("group").toInt();
  file.kind.formatStatement = settings.value("formatStatement").toByteArray().toStdString();
  return file;
}

void StoreOne(QSettings& settings, const RECENTFILE& file) {
  settings.setValue("path", file.path);
  settings.setValue("dataType", file.kind.data_type);
  settings.setValue("matrixType", file.kind.ma_type);
  settings.setValue("matrixPosition", file.kind.matrixPosition);
  settings.setValue("firstVectorPosition", file.kind.firstVectorPosition);
  settings.setValue("secondVectorPosition", file.kind.secondVectorPosition);
  settings.setValue("fixedFormat", file.kind.fixedFormat);
  settings.setValue("fullMatrix", file.kind.fullMatrix);
  settings.setValue("group", file.kind.group);
  settings.setValue("formatStatement", QByteArray::fromStdString(file.kind.formatStatement));
}

}  // namespace

CRecentFiles::CRecentFiles() {
  QSettings settings;
  const int count = settings.beginReadArray(kGroup);
  for (int i = 0; i < count && files_.size() < kMost; ++i) {
    settings.setArrayIndex(i);
    RECENTFILE file = Loaded(settings);
    if (!file.path.isEmpty()) files_.push_back(std::move(file));
  }
}

void CRecentFiles::Add(const QString& path, const EXTERNDATA& kind) {
  const QString absolute = QFileInfo(path).absoluteFilePath();
  std::erase_if(files_, [&](const RECENTFILE& file) { return file.path == absolute; });
  files_.insert(files_.begin(), {absolute, kind});
  if (files_.size() > kMost) files_.resize(kMost);
  Store();
}

void CRecentFiles::Remove(const QString& path) {
  std::erase_if(files_, [&](const RECENTFILE& file) { return file.path == path; });
  Store();
}

void CRecentFiles::Clear() {
  files_.clear();
  Store();
}

const RECENTFILE* CRecentFiles::Find(const QString& path) const {
  const QString absolute = QFileInfo(path).absoluteFilePath();
  const auto at = std::find_if(files_.begin(), files_.end(),
                               [&](const RECENTFILE& file) { return file.path == absolute; });
  return at == files_.end() ? nullptr : &*at;
}

void CRecentFiles::Store() const {
  QSettings settings;
  settings.remove(kGroup);
  settings.beginWriteArray(kGroup, static_cast<int>(files_.size()));
  for (std::size_t i = 0; i < files_.size(); ++i) {
    settings.setArrayIndex(static_cast<int>(i));
    StoreOne(settings, files_[i]);
  }
  settings.endArray();
}
