// Draws the dialogs of the data window, and the window while it is worked in, into PNG files, for
// looking at them and for the documentation.
//   dialog_pictures FOLDER [FILE.VSF]
// QT_SCALE_FACTOR=2 draws them for a fine screen.
#include <QAbstractButton>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <cstdio>

#include "datadoc/dialogs/Asc2VSFDlg.h"
#include "datadoc/dialogs/MatrixTextDlg.h"
#include "dataview/definition/CategoryItems.h"
#include "dataview/dialogs/ChooseVariableDlg.h"
#include "dataview/dialogs/DataDefAddDlg.h"
#include "dataview/dialogs/DataDefCatDlg.h"
#include "dataview/dialogs/DataDefDlg.h"
#include "dataview/dialogs/DataDefMissDlg.h"
#include "dataview/dialogs/DataDefTypeDlg.h"
#include "dataview/dialogs/DataFormatDlg.h"
#include "dataview/dialogs/DataSelectDlg.h"
#include "dataview/dialogs/DeleteCasesDlg.h"
#include "dataview/dialogs/DeleteVariablesDlg.h"
#include "dataview/dialogs/FindValueDlg.h"
#include "dataview/dialogs/InsertCasesDlg.h"
#include "dataview/dialogs/InsertVariablesDlg.h"
#include "dataview/dialogs/NewDataDlg.h"
#include "dataview/dialogs/PrintRangeDlg.h"
#include "dataview/dialogs/SortCasesDlg.h"
#include "dataview/dialogs/VariablePicker.h"
#include "dataview/table/DataGrid.h"
#include "resources/Commands.h"
#include "resources/DrawnIcon.h"
#include "support/OffscreenApplication.h"
#include "vexapp/AppFrame.h"
#include "vexapp/Appearance.h"
#include "vexapp/DataWindow.h"
#include "vexapp/SampleData.h"
#include "vexapp/SelectionStatistics.h"
#include "vexapp/VexApp.h"

namespace {

QString folder;
QString look;

void Draw(QWidget& window, const QString& name) {
  window.show();
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
  window.grab().save(QDir(folder).filePath(name + '-' + look + ".png"));
}

void DrawAndClose(QDialog& dialog, const QString& name) {
  Draw(dialog, name);
  dialog.close();
}

template <typename Widget>
Widget& Find(QWidget& parent, const char* name) {
  return *parent.findChild<Widget*>(name);
}

void PictureOfDefinition(CAppFrame& frame, CDataDoc& document) {
  TORVIKSTRUCT& data = *document.GetTorvik();
  CdlgDataDef define(document, 1, &frame);
  Find<CVariablePicker>(define, "variableList").Select({1, 2, 3});
  Draw(define, "define");
  Find<QAbstractButton>(define, "renameButton").click();
  DrawAndClose(define, "define-rename");

  CdlgDataDefAdd add(data.variables, &frame);
  Find<QLineEdit>(add, "nameEdit").setText("var1 - var5");
  DrawAndClose(add, "define-add");
  CDataDefTypeDlg type(data.variable[0], &frame);
  DrawAndClose(type, "define-type");
  CDataDefMissDlg missing(data.variable[0], data, &frame);
  DrawAndClose(missing, "define-missing");
  VARSTRUCT some = data.variable[0];
  some.missing = {9, kNotSet, kNotSet, 90, 99};
  CDataDefMissDlg set(some, data, &frame);
  DrawAndClose(set, "define-missing-set");
  CDataDefCatDlg categories(data, 1, &frame);
  DrawAndClose(categories, "define-categories");
}

void PictureOfOperations(CAppFrame& frame, CDataDoc& document) {
  const TORVIKSTRUCT& data = *document.GetTorvik();
  CdlgInsertCases insertCases(42, data.records, &frame);
  DrawAndClose(insertCases, "insert-cases");
  CdlgInsertVariables insertVariables(data, 2, &frame);
  DrawAndClose(insertVariables, "insert-variables");
  CdlgDeleteCases deleteCases(42, 44, data.records, &frame);
  DrawAndClose(deleteCases, "delete-cases");
  CdlgDeleteVariables deleteVariables(data, {1, 2}, &frame);
  DrawAndClose(deleteVariables, "delete-variables");
  CdlgDataSortCase sort(data, 3, &frame);
  DrawAndClose(sort, "sort");
  CDataWeightDlg weight(document, &frame);
  DrawAndClose(weight, "weight");
  CdlgDataGroupVariable group(data, &frame);
  DrawAndClose(group, "group");
  CDataFormatDlg format({13, 3, 2}, &frame);
  DrawAndClose(format, "format");
  CNewDataDlg fresh(&frame);
  DrawAndClose(fresh, "new");
  CFindValueDlg find(&frame);
  find.SetColumn(2, "x3");
  Find<QLineEdit>(find, "lowEdit").setText("4");
  DrawAndClose(find, "find");
  CPrintRangeDlg print(data.records, data.variables, {3, 9, 1, 4}, false, &frame);
  DrawAndClose(print, "print");
}

void PictureOfSelection(CAppFrame& frame, CDataDoc& document) {
  CDataSelectDlg select(document, &frame);
  auto& page = Find<QWidget>(select, "casePage");
  Find<QAbstractButton>(page, "addNumberButton").click();
  Find<CVariablePicker>(page, "variableList").Select({1, 4});
  Find<QAbstractButton>(page, "equalRadio").click();
  Find<QLineEdit>(page, "valueEdit").setText("9");
  Find<QAbstractButton>(page, "deleteCheck").setChecked(true);
  Find<QAbstractButton>(page, "addValueButton").click();
  Draw(select, "select-cases");
  Find<QTabWidget>(select, "tabs").setCurrentIndex(0);
  DrawAndClose(select, "select-variables");
}

void PictureOfTextOpening(CAppFrame& frame) {
  CAsc2VSFDlg text({12, true}, true, &frame);
  DrawAndClose(text, "open-text");
  EXTERNDATA kind;
  kind.ma_type = 1;
  CMatrixTextDlg matrix(kind, true, 12, &frame);
  DrawAndClose(matrix, "open-matrix");
}

void PictureOfWork(CAppFrame& frame) {
  CDataWindow& window = *frame.CurrentWindow();
  CDataViewTbl& table = window.Table();
  frame.resize(1100, 700);
  table.Grid().MoveTo({12, 4});
  table.Grid().MoveTo({3, 2}, true);
  window.findChild<CSelectionStatistics*>()->Finish();
  Draw(frame, "work-selection");
  table.Grid().MoveTo({5, 3});
  table.Grid().StartEditWith("3.14159265358979");
  Draw(frame, "work-edit");
  table.Grid().StartEdit();
  table.ShowLabels(true);
  table.SetZoom(150);
  Draw(frame, "work-labels-zoom");
  table.SetZoom(100);
  table.ShowLabels(false);
}

}  // namespace

int main(int argc, char** argv) {
  const COffscreenApplication application(argc, argv);
  if (argc < 2) {
    std::fputs("dialog_pictures FOLDER [FILE.VSF]\n", stderr);
    return 2;
  }
  folder = QString::fromLocal8Bit(argv[1]);
  QString file = QApplication::arguments().value(2);
  if (file.isEmpty()) {
    file = application.TemporaryFile("sample.VSF");
    WriteSampleData(file, 2000, 60);
  }
  QApplication::setWindowIcon(DrawnIcon(Picture::Program));
  StartAppearance();
  CVexApp app;
  CAppFrame frame(app);
  frame.show();
  frame.OpenPath(file);
  if (frame.CurrentWindow() == nullptr) return 1;
  CDataDoc& document = frame.CurrentWindow()->Document();
  CString problem;
  TakeCategoryItems({"1 = low", "2 = mid", "3 = high"}, *document.GetTorvik(), 1, problem);
  document.GetTorvik()->variable[1].categories = 3;
  document.GetTorvik()->variable[3].type = kContinuous;
  document.GetTorvik()->variable[5].type = kCensoredAbove;
  for (const auto& [appearance, name] :
       {std::pair{Appearance::Light, "light"}, std::pair{Appearance::Dark, "dark"}}) {
    look = name;
    ChooseAppearance(appearance);
    PictureOfWork(frame);
    PictureOfDefinition(frame, document);
    PictureOfOperations(frame, document);
    PictureOfSelection(frame, document);
    PictureOfTextOpening(frame);
  }
  document.SetModifiedFlag(false);
  return 0;
}
