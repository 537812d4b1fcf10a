// Draws the program's windows into PNG files, for looking at them and for the documentation.
//   window_pictures FOLDER [FILE...]
// QT_SCALE_FACTOR=2 draws them for a fine screen.
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTimer>
#include <cstdio>

#include "dataview/table/DataGrid.h"
#include "dataview/table/GoToCaseDlg.h"
#include "resources/Commands.h"
#include "resources/DrawnIcon.h"
#include "support/OffscreenApplication.h"
#include "syntax/dialogs/DataOutDlg.h"
#include "transfer/FileTypes.h"
#include "transfer/SourceChoice.h"
#include "transfer/TextScan.h"
#include "transfer/dialogs/ImportTextDataDlg.h"
#include "transfer/dialogs/SourceChoiceDlg.h"
#include "vexapp/AboutDlg.h"
#include "vexapp/AppFrame.h"
#include "vexapp/Appearance.h"
#include "vexapp/DataWindow.h"
#include "vexapp/EngineDlg.h"
#include "vexapp/OutputWindow.h"
#include "vexapp/ProgressDlg.h"
#include "vexapp/SampleData.h"
#include "vexapp/SyntaxWindow.h"
#include "vexapp/VexApp.h"

namespace {

QString folder;

void Draw(QWidget& window, const QString& name) {
  window.show();
  QApplication::processEvents();
  window.grab().save(QDir(folder).filePath(name + ".png"));
}

void PictureOfMenus(CAppFrame& frame) {
  for (const char* title : {"&File", "&Edit", "&View", "&Data", "&Statistics", "&Window"}) {
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

// A syntax and the output of its run, as the engine writes them.
void PictureOfTexts(CAppFrame& frame, const QString& look, const QString& data) {
  frame.resize(1000, 720);
  frame.OpenPath(data);
  frame.Menus().Action(commands::kStatisticsScreening)->trigger();
  Draw(frame, "output-" + look);
  if (auto* const output = dynamic_cast<COutputWindow*>(frame.CurrentText())) {
    output->OpenFindBar(false);
    output->findChild<QLineEdit*>("findEdit")->setText("skewness");
    output->FindNext(true);
    Draw(frame, "output-find-" + look);
    QTimer::singleShot(500, output, [look] {
      auto* const preview = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      Draw(*preview, "preview-" + look);
      preview->reject();
    });
    output->PrintPreview();
    output->View().ScrollTo(output->View().Text().LineCount());
    Draw(frame, "output-end-" + look);
  }
  const QString name = QFileInfo(data).path() + '/' + QFileInfo(data).completeBaseName() + ".TRK";
  QFile file(name);
  if (file.open(QIODevice::Append)) {
    file.write(
        "!\n! A line that the engine does not know\nSE 1-5 age\nFA NF=2 MRX\nOU MA=KM "
        "SM=survey one.km XM\n");
  }
  file.close();
  frame.OpenPath(name);
  if (auto* const syntax = dynamic_cast<CSyntaxWindow*>(frame.CurrentText())) {
    syntax->OpenFindBar(true);
    QApplication::processEvents();
    syntax->Edit().MarkLine(syntax->Edit().blockCount() - 2, {});
    Draw(frame, "syntax-" + look);
  }
  frame.resize(1100, 700);
  frame.OpenPath(data);
}

void PictureOfEngine(CAppFrame& frame, const QString& look) {
  CEngineDlg dialog(&frame);
  Draw(dialog, "engine-" + look);
  dialog.close();
}

void PictureOfOutputOptions(CAppFrame& frame, const QString& look) {
  TRVOUSTRUCT options;
  options.nMatrixType = kCorrelations;
  options.bSaveMatrix = 1;
  options.strMatrixFile = "survey.km";
  CDataOutDlg dialog(&frame, &options, kOutputFromMenu, kTestsWithOrdinal);
  Draw(dialog, "output-options-" + look);
  dialog.close();
}

void PictureOfTextImport(CAppFrame& frame, const QString& look) {
  const QString name = QDir(folder).filePath("survey of 2024.csv");
  QFile file(name);
  if (!file.open(QIODevice::WriteOnly)) return;
  file.write("id;age;height;city;answer 1;;answer 3\n");
  for (int i = 1; i <= 60; ++i) {
    file.write(QString("%1;%2;1,%3;Town %1;%4;%5;%6\n")
                   .arg(i)
                   .arg(20 + i % 50)
                   .arg(50 + i % 40)
                   .arg(i % 6)
                   .arg(i % 9 == 0 ? QString("NA") : QString::number(i % 5))
                   .arg(i % 11 == 4 ? QString("12x") : QString::number(i))
                   .toUtf8());
  }
  file.close();
  STUtils::basic_text_import_t<char> reader;
  STUtils::var_name_template_t names;
  std::vector<STUtils::variable_info_t> variables;
  bool hasNames = false;
  reader.Open(name.toStdString(), STUtils::COMMA_TEXT_FILE_TYPE);
  STUtils::TextSettings settings;
  settings.delimiter = ';';
  settings.decimalMark = ',';
  reader.Configure(settings);
  STUtils::SenseTextData(reader, hasNames, variables, names);
  CTextConfirmation confirmation(reader, name.toStdString(), variables, names);
  confirmation.Select(0, false);
  confirmation.SetNumeric(6, true);
  CdlgImportTextData dialog(confirmation, &frame);
  Draw(dialog, "textimport-" + look);
  dialog.resize(dialog.minimumSizeHint());
  Draw(dialog, "textimport-small-" + look);
  dialog.close();
}

// A table of dBASE that does not name its encoding.
void PictureOfSourceChoice(CAppFrame& frame, const QString& look) {
  constexpr int kDbf = 6;
  const QTemporaryDir tables;
  const QString name = tables.filePath("towns.dbf");
  QByteArray bytes(65, '\0');
  bytes[0] = 3, bytes[1] = 100, bytes[2] = 1, bytes[3] = 1, bytes[4] = 3;
  bytes[8] = 65, bytes[10] = 11;
  bytes.replace(32, 4, "TOWN");
  bytes[43] = 'C', bytes[48] = 10, bytes[64] = '\r';
  QFile file(name);
  if (!file.open(QIODevice::WriteOnly)) return;
  file.write(bytes + " K\x94ln       M\x81nchen    Z\x81rich    ");
  file.close();
  CSourceChoice choice(name.toStdString(), kDbf);
  CSourceChoiceDlg dialog(choice, &frame);
  Draw(dialog, "sourcechoice-" + look);
  dialog.findChild<QComboBox*>("encodingBox")->setCurrentIndex(4);
  Draw(dialog, "sourcechoice-850-" + look);
  dialog.close();
}

void PictureOfPassword(CAppFrame& frame, const QString& look) {
  constexpr int kMsSql = 28;
  const QTemporaryDir files;
  QFile file(files.filePath("people.sql"));
  if (!file.open(QIODevice::WriteOnly)) return;
  file.write("[ODBC]\nDRIVER=none\n");
  file.close();
  CSourceChoice choice(file.fileName().toStdString(), kMsSql);
  CSourceChoiceDlg dialog(choice, &frame);
  Draw(dialog, "password-" + look);
  dialog.close();
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
  const COffscreenApplication application(argc, argv);
  if (argc < 2) {
    std::fputs("window_pictures FOLDER [FILE...]\n", stderr);
    return 2;
  }
  folder = QString::fromLocal8Bit(argv[1]);
  QStringList files = QApplication::arguments().mid(2);
  const QString sample = application.TemporaryFile("sample.VSF");
  if (files.isEmpty()) {
    WriteSampleData(sample, 2000, 60);
    WriteSampleData(application.TemporaryFile("second.VSF"), 20, 3);
    files << application.TemporaryFile("second.VSF") << sample;
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
    PictureOfOutputOptions(frame, name);
    PictureOfEngine(frame, name);
    PictureOfTexts(frame, name, files.last());
    PictureOfTextImport(frame, name);
    PictureOfSourceChoice(frame, name);
    PictureOfPassword(frame, name);
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
