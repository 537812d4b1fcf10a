// Draws the program's windows into PNG files, for looking at them and for the documentation.
//   window_pictures FOLDER [FILE...]
// QT_SCALE_FACTOR=2 draws them for a fine screen.
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <clocale>
#include <cstdio>

#include "dataview/table/DataGrid.h"
#include "dataview/table/GoToCaseDlg.h"
#include "resources/Commands.h"
#include "resources/DrawnIcon.h"
#include "vexapp/AboutDlg.h"
#include "vexapp/AppFrame.h"
#include "vexapp/Appearance.h"
#include "vexapp/DataWindow.h"
#include "vexapp/ProgressDlg.h"
#include "vexapp/SampleData.h"
#include "vexapp/VexApp.h"

namespace {

QString folder;

void Draw(QWidget& window, const QString& name) {
  window.show();
  QApplication::processEvents();
  window.grab().save(QDir(folder).filePath(name + ".png"));
}

void PictureOfMenus(CAppFrame& frame) {
  for (const char* title : {"&File", "&View", "&Data", "&Statistics", "&Window"}) {
    QMenu* const menu = frame.Menus().Menu(title);
    menu->popup(QPoint(0, 0));
    Draw(*menu, QString("menu-%1").arg(QString(title).remove('&').toLower()));
    menu->close();
  }
}

void PictureOfDialogs(CAppFrame& frame, const QString& look) {
  CAboutDlg about(&frame);
  Draw(about, "about-" + look);
  about.close();
  CGoToCaseDlg goTo(2800, {"x1", "x2"}, {41, 1}, &frame);
  Draw(goTo, "goto-" + look);
  goTo.close();
  CProgressDlg progress("Importing /home/someone/surveys/of/a/longer/path/personality.sav", &frame);
  progress.ShowFraction(0.37);
  Draw(progress, "progress-" + look);
  progress.hide();
}

void PictureOfData(CAppFrame& frame, const QString& look) {
  CDataViewTbl& table = frame.CurrentWindow()->Table();
  frame.resize(1100, 700);
  Draw(frame, "window-" + look);
  table.Grid().MoveTo({3, 2});
  table.Grid().MoveTo({9, 5}, true);
  Draw(frame, "selection-" + look);
  table.Grid().MoveTo({6, 0}, false, CTableCursor::Shape::Rows);
  Draw(frame, "row-" + look);
  table.Grid().MoveTo({table.RowCount() - 1, table.ColumnCount() - 1});
  Draw(frame, "end-" + look);
  frame.resize(460, 340);
  Draw(frame, "narrow-" + look);
  frame.resize(1100, 700);
  table.Grid().MoveTo({0, 0});
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  const QTemporaryDir settings;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
  QApplication::setApplicationName("Vex Data");
  QApplication::setOrganizationName("Vex Data");
  if (argc < 2) {
    std::fputs("window_pictures FOLDER [FILE...]\n", stderr);
    return 2;
  }
  folder = QString::fromLocal8Bit(argv[1]);
  QStringList files = QApplication::arguments().mid(2);
  const QString sample = settings.filePath("sample.VSF");
  if (files.isEmpty()) {
    WriteSampleData(sample, 2000, 60);
    WriteSampleData(settings.filePath("second.VSF"), 20, 3);
    files << settings.filePath("second.VSF") << sample;
  }

  QApplication::setWindowIcon(DrawnIcon(Picture::Program));
  StartAppearance();
  CVexApp app;
  CAppFrame frame(app);
  Draw(frame, "start-empty");
  frame.OpenPaths(files);
  if (frame.CurrentWindow() == nullptr) return 1;
  for (const auto& [look, name] :
       {std::pair{Appearance::Light, "light"}, std::pair{Appearance::Dark, "dark"}}) {
    ChooseAppearance(look);
    PictureOfData(frame, name);
    PictureOfDialogs(frame, name);
  }
  ChooseAppearance(Appearance::Light);
  PictureOfMenus(frame);
  frame.Menus().Action(commands::kWindowTile)->trigger();
  Draw(frame, "tiled");
  frame.Menus().Action(commands::kWindowCloseAll)->trigger();
  QApplication::processEvents();
  Draw(frame, "start");
  ChooseAppearance(Appearance::Dark);
  Draw(frame, "start-dark");
  return 0;
}
