// What an empty main window shows: how to begin.
#pragma once

#include <QWidget>
#include <memory>

#include "vexapp/RecentFiles.h"

namespace Ui {
class StartPage;
}

class CStartPage final : public QWidget {
  Q_OBJECT

 public:
  explicit CStartPage(QWidget* parent = nullptr);
  ~CStartPage() override;

  void ShowRecentFiles(const std::vector<RECENTFILE>& files);

 signals:
  void OpenAsked();
  void ImportAsked();
  void FileAsked(QString path);  // a recent file, or the example

 private:
  std::unique_ptr<Ui::StartPage> ui_;
};

// The survey that comes with the program; empty when it is not there.
QString ExampleFile();
