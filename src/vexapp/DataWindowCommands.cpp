#include "vexapp/DataWindowCommands.h"

#include <QApplication>
#include <QClipboard>

#include "dataview/CommandRules.h"
#include "dataview/dialogs/ChooseVariableDlg.h"
#include "dataview/dialogs/DataDefDlg.h"
#include "dataview/dialogs/DataFormatDlg.h"
#include "dataview/dialogs/DataSelectDlg.h"
#include "dataview/dialogs/DeleteCasesDlg.h"
#include "dataview/dialogs/DeleteVariablesDlg.h"
#include "dataview/dialogs/InsertCasesDlg.h"
#include "dataview/dialogs/InsertVariablesDlg.h"
#include "dataview/dialogs/SortCasesDlg.h"
#include "dataview/operations/SelectionLines.h"
#include "dataview/table/DataGrid.h"
#include "host/Host.h"
#include "resources/Commands.h"
#include "vexapp/DataPrint.h"
#include "vexapp/DataWindow.h"
#include "vexapp/VexApp.h"

using namespace commands;

namespace {

constexpr int kZoomStep = 10;
constexpr int kUsualZoom = 100;

const TORVIKSTRUCT& Data(CDataWindow& window) {
  return *window.Document().GetTorvik();
}

CellRange SelectedCells(const CDataWindow& window) {
  const TableRange range = window.Table().Selection();
  return {range.rowBegin, range.rowEnd, range.columnBegin, range.columnEnd};
}

// --- Edit ---

void CopyCells(CDataWindow& window) {
  const CWaitCursor wait;
  const auto text = window.View().CopyBlock(SelectedCells(window));
  if (text) QApplication::clipboard()->setText(QString::fromStdString(*text));
}

// What was pasted is selected.
void PasteCells(CDataWindow& window) {
  const CellRange range = SelectedCells(window);
  const CString text = QApplication::clipboard()->text().toStdString();
  if (text.empty() || range.IsEmpty()) return;
  const CellRange pasted = window.View().PasteBlock({range.rowBegin, range.columnBegin}, text);
  if (pasted.IsEmpty()) return;
  window.Table().Grid().MoveTo({pasted.rowEnd - 1, pasted.columnEnd - 1});
  window.Table().Grid().MoveTo({pasted.rowBegin, pasted.columnBegin}, true);
}

void ClearCells(CDataWindow& window) {
  window.View().ClearCells(SelectedCells(window));
}

// --- Data ---

void DefineVariables(CDataWindow& window) {
  CdlgDataDef dialog(window.Document(), window.Table().GetCurrentCell().column, &window);
  if (dialog.Copy() != nullptr && dialog.exec() == QDialog::Accepted) {
    window.View().UpdateDefinition(*dialog.Copy());
  }
}

void InsertVariables(CDataWindow& window) {
  CdlgInsertVariables dialog(Data(window), window.Table().GetCurrentCell().column, &window);
  if (dialog.exec() == QDialog::Accepted) window.View().OnInsertVariables(dialog.Request());
}

void InsertCases(CDataWindow& window) {
  const std::int64_t cases = Data(window).records;
  const auto start = StartingCase(window.Table().GetCurrentCell().row, cases);
  if (!start) return;
  CdlgInsertCases dialog(*start, cases, &window);
  if (dialog.exec() == QDialog::Accepted) window.View().OnInsertCases(dialog.Request());
}

void DeleteVariables(CDataWindow& window) {
  CellRange range = SelectedCells(window);
  // Whole cases are selected: that does not single out variables.
  if (range.Columns() == Data(window).variables) {
    range.columnBegin = window.Table().GetCurrentCell().column;
    range.columnEnd = range.columnBegin + 1;
  }
  std::vector<std::int32_t> selected;
  for (int column = range.columnBegin; column < range.columnEnd; ++column) {
    selected.push_back(column);
  }
  CdlgDeleteVariables dialog(Data(window), selected, &window);
  if (dialog.exec() == QDialog::Accepted) window.View().DeleteVariables(dialog.Variables());
}

void DeleteCases(CDataWindow& window) {
  const std::int64_t cases = Data(window).records;
  const auto start = StartingCase(window.Table().GetCurrentCell().row, cases);
  if (!start || cases < 1) return;
  const CellRange range = SelectedCells(window);
  // Whole variables are selected: Enter must not delete every case then.
  const bool chosen = !range.IsEmpty() && range.Rows() < cases;
  CdlgDeleteCases dialog(chosen ? range.rowBegin + 1 : *start, chosen ? range.rowEnd : *start,
                         cases, &window);
  if (dialog.exec() == QDialog::Accepted) window.View().OnDeleteCases(dialog.Request());
}

void SortCases(CDataWindow& window) {
  CdlgDataSortCase dialog(Data(window), window.Table().GetCurrentCell().column, &window);
  if (dialog.exec() == QDialog::Accepted) window.View().OnSortCases(dialog.Request());
}

void ChooseWeight(CDataWindow& window) {
  CDataWeightDlg dialog(window.Document(), &window);
  if (dialog.exec() != QDialog::Accepted) return;
  const CBusy busy(window.App(), &window);
  window.View().ChooseWeightVariable(dialog.Variable());
}

void ChooseGroup(CDataWindow& window) {
  CdlgDataGroupVariable dialog(Data(window), &window);
  if (dialog.exec() != QDialog::Accepted) return;
  const CBusy busy(window.App(), &window);
  window.View().ChooseGroupVariable(dialog.Variable());
}

// Told before anything runs: which cases and variables go.
bool ConfirmSelection(CDataWindow& window, const CStringList& lines) {
  if (lines.empty()) return true;
  const auto effect = window.View().PreviewSelection(lines);
  if (!effect) return false;
  const CString question = DescribeSelection(*effect, Data(window));
  return AfxMessageBox(question, MessageButtons::YesNo) == MessageAnswer::Yes;
}

void SelectCases(CDataWindow& window) {
  CDataSelectDlg dialog(window.Document(), &window);
  dialog.SetConfirm(
      [&window](const CStringList& lines) { return ConfirmSelection(window, lines); });
  const ProcedureResult result = RunProcedureDialog(window.Document(), dialog);
  const CStringList lines = dialog.SelectionLines();
  if (result.state == ProcedureState::Done && !lines.empty()) window.View().ApplySelection(lines);
}

void ChooseFormat(CDataWindow& window) {
  CVexAppUtil& app = *Host().GetApp();
  CDataFormatDlg dialog(app.GetDisplaySettings(), &window);
  if (dialog.exec() == QDialog::Accepted) window.View().ApplyFormat(dialog.Settings());
}

// --- When they can be used ---

bool Always(const DataWindowState&) {
  return true;
}
bool HasCells(const DataWindowState& state) {
  return state.variables > 0 && state.cases > 0;
}
template <int kCommand>
bool AsRuled(const DataWindowState& state) {
  return IsCommandEnabled(kCommand, state);
}

constexpr DATAWINDOWCOMMAND kCommands[] = {
    {kFilePrint, HasCells, [](CDataWindow& window) { PrintData(window); }},
    {kFilePrintPreview, HasCells, [](CDataWindow& window) { PreviewData(window); }},
    {kEditUndo, AsRuled<kEditUndo>, [](CDataWindow& window) { window.View().Undo(); }},
    {kEditRedo, AsRuled<kEditRedo>, [](CDataWindow& window) { window.View().Redo(); }},
    {kEditCopy, AsRuled<kEditCopy>, [](CDataWindow& window) { window.View().OnEditCopy(); }},
    {kEditPaste, AsRuled<kEditPaste>, [](CDataWindow& window) { window.View().OnEditPaste(); }},
    {kEditCopyCells, AsRuled<kEditCopy>, CopyCells},
    {kEditPasteCells, AsRuled<kEditPaste>, PasteCells},
    {kEditClearCells, AsRuled<kEditPaste>, ClearCells},
    {kEditSelectAll, HasCells, [](CDataWindow& window) { window.Table().Grid().SelectAll(); }},
    {kEditFind, HasCells, [](CDataWindow& window) { window.AskForValue(); }},
    {kEditFindNext, HasCells, [](CDataWindow& window) { window.FindAgain(false); }},
    {kEditFindPrevious, HasCells, [](CDataWindow& window) { window.FindAgain(true); }},
    {kViewGoToCase, HasCells, [](CDataWindow& window) { window.AskForCase(); }},
    {kViewLabels, Always,
     [](CDataWindow& window) { window.Table().ShowLabels(!window.Table().ShowsLabels()); }},
    {kViewZoomIn, Always,
     [](CDataWindow& window) { window.Table().SetZoom(window.Table().Zoom() + kZoomStep); }},
    {kViewZoomOut, Always,
     [](CDataWindow& window) { window.Table().SetZoom(window.Table().Zoom() - kZoomStep); }},
    {kViewZoomReset, Always, [](CDataWindow& window) { window.Table().SetZoom(kUsualZoom); }},
    {kDataDefine, AsRuled<kDataDefine>, DefineVariables},
    {kDataSelect, AsRuled<kDataSelect>, SelectCases},
    {kDataInsertVariable, AsRuled<kDataInsertVariable>, InsertVariables},
    {kDataInsertCase, AsRuled<kDataInsertCase>, InsertCases},
    {kDataDeleteVariable, AsRuled<kDataDeleteVariable>, DeleteVariables},
    {kDataDeleteCase, AsRuled<kDataDeleteCase>, DeleteCases},
    {kDataSort, AsRuled<kDataSort>, SortCases},
    {kDataGroup, AsRuled<kDataGroup>, ChooseGroup},
    {kDataWeight, AsRuled<kDataWeight>, ChooseWeight},
    {kDataFormat, AsRuled<kDataFormat>, ChooseFormat},
};

}  // namespace

std::span<const DATAWINDOWCOMMAND> DataWindowCommands() {
  return kCommands;
}
