// The list of files that were used last, kept in the settings.
#pragma once

#include <QString>
#include <vector>

#include "datadoc/ExternData.h"

struct RECENTFILE {
  QString path;  // absolute
  EXTERNDATA kind;
};

class CRecentFiles {
 public:
  static constexpr std::size_t kMost = 9;

  CRecentFiles();  // reads the settings

  // Puts a file on top; one that was on the list moves there.
  void Add(const QString& path, const EXTERNDATA& kind);
  void Remove(const QString& path);
  void Clear();

  const std::vector<RECENTFILE>& Files() const { return files_; }
  // What is remembered about a file; null when it is not on the list.
  const RECENTFILE* Find(const QString& path) const;

 private:
  void Store() const;

  std::vector<RECENTFILE> files_;
};
