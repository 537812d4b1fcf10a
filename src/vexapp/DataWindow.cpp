#include "vexapp/DataWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QVBoxLayout>

#include "dataview/dialogs/FindValueDlg.h"
#include "dataview/table/GoToCaseDlg.h"
#include "resources/DrawnIcon.h"
#include "vexapp/Display.h"
#include "vexapp/SelectionStatistics.h"
#include "vexapp/VexApp.h"

CDataWindow::CDataWindow(CVexApp& app, QWidget* parent)
    : CFrameWindow(parent),
      app_(app),
      table_(new CDataViewTbl(this)),
      statistics_(new CSelectionStatistics(this)) {
  table_->setObjectName("dataTable");
  setWindowIcon(DrawnIcon(Picture::Variables));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(table_);
  setFocusProxy(table_);
  view_ = std::make_unique<CDataView>(document_);
  view_->AttachTable(table_);
  document_.onTitleChanged = [this] { ShowTitle(); };
  connect(table_, &CDataViewTbl::CurrentCellChanged, this, &CDataWindow::CellChanged);
  // The view may still be at work when the table hears of it.
  connect(table_, &CDataViewTbl::ContentChanged, this, &CDataWindow::CellChanged,
          Qt::QueuedConnection);
  connect(this, &CDataWindow::CellChanged, this, &CDataWindow::WatchSelection);
  connect(table_, &CDataViewTbl::ContextMenuAsked, this, &CDataWindow::ContextMenuAsked);
  connect(table_, &CDataViewTbl::EditRefused, this,
          [this] { document_.WriteStatusInfo("A cell takes a number; the value is as it was."); });
  connect(statistics_, &CSelectionStatistics::Changed, this, [this](const QString& text) {
    if (text == statisticsText_) return;
    statisticsText_ = text;
    emit StatisticsChanged();
  });
  ShowTitle();
}

CDataWindow::~CDataWindow() {
  statistics_->Watch(nullptr, {});
  document_.onTitleChanged = nullptr;
}

bool CDataWindow::Open(const QString& path, const EXTERNDATA& kind) {
  const CBusy busy(app_);
  const CWaitCursor wait;
  document_.SetExternData(kind);
  if (!document_.OnOpenDocument(PathBytes(QFileInfo(path).absoluteFilePath()))) return false;
  table_->SetCurrentCell({0, 0});
  return true;
}

bool CDataWindow::OpenText(const QString& path, const EXTERNDATA& kind, const ASC2VSF& choice) {
  const CBusy busy(app_);
  const CWaitCursor wait;
  const CString name = PathBytes(QFileInfo(path).absoluteFilePath());
  if (!document_.OpenFreeFormatFile(name, choice, kind)) return false;
  table_->SetCurrentCell({0, 0});
  return true;
}

bool CDataWindow::New(std::int32_t cases, std::int32_t variables) {
  const CBusy busy(app_);
  const CWaitCursor wait;
  document_.SetExtern(EXTERNDATA(), {}, cases, variables, false);
  if (!document_.OnNewExternFile()) return false;
  table_->SetCurrentCell({0, 0});
  return true;
}

bool CDataWindow::Recover(const LeftOverScratch& left) {
  const CBusy busy(app_);
  if (!view_->Recover(left)) return false;
  table_->SetCurrentCell({0, 0});
  return true;
}

bool CDataWindow::Save() {
  table_->EndEdit();
  const CBusy busy(app_, this);
  return document_.OnFileSave() != 0;
}

bool CDataWindow::SaveAs() {
  table_->EndEdit();
  const CBusy busy(app_, this);
  return document_.OnFileSaveAs() != 0;
}

bool CDataWindow::CanBeSaved() const {
  return document_.GetVarnum() > 0 && document_.GetRecnum() > 0;
}

bool CDataWindow::Holds(const QString& path) const {
  return IsSamePath(PathText(document_.GetPathName()), path);
}

QString CDataWindow::FileName() const {
  const CString& path = document_.GetPathName();
  return path.empty() ? tr("Untitled") : QFileInfo(PathText(path)).fileName();
}

QString CDataWindow::CellDescription() const {
  const TableCell cell = table_->GetCurrentCell();
  if (!cell.IsValid()) return {};
  return tr("Case %L1, %2 = %3")
      .arg(cell.row + 1)
      .arg(table_->ColumnHeading(cell.column), table_->ValueText(cell));
}

QString CDataWindow::SizeDescription() const {
  return tr("%L1 cases, %L2 variables").arg(document_.GetRecnum()).arg(document_.GetVarnum());
}

void CDataWindow::AskForCase() {
  QStringList variables;
  for (int column = 0; column < table_->ColumnCount(); ++column) {
    variables << table_->ColumnHeading(column);
  }
  CGoToCaseDlg dialog(table_->RowCount(), variables, table_->GetCurrentCell(), this);
  if (dialog.exec() == QDialog::Accepted) table_->SetCurrentCell(dialog.Chosen());
  table_->setFocus();
}

void CDataWindow::WatchSelection() {
  const TableRange range = table_->Selection();
  statistics_->Watch(view_.get(),
                     {range.rowBegin, range.rowEnd, range.columnBegin, range.columnEnd});
}

void CDataWindow::AskForValue() {
  if (findDialog_ == nullptr) {
    findDialog_ = new CFindValueDlg(this);
    connect(findDialog_, &CFindValueDlg::FindAsked, this, &CDataWindow::FindFromDialog);
  }
  const int column = table_->GetCurrentCell().column;
  findDialog_->SetColumn(column, table_->ColumnHeading(column));
  findDialog_->show();
  findDialog_->raise();
  findDialog_->activateWindow();
}

void CDataWindow::FindFromDialog(bool backward) {
  std::optional<FindRequest> request = findDialog_->Request();
  if (!request || app_.IsBusy()) return;
  request->backward = backward;
  lastFind_ = request;
  Find(*request);
}

void CDataWindow::FindAgain(bool backward) {
  if (!lastFind_) return AskForValue();
  lastFind_->backward = backward;
  Find(*lastFind_);
}

void CDataWindow::Find(FindRequest request) {
  const CWaitCursor wait;
  request.from = table_->GetCurrentCell();
  TableCell found;
  const FindResult result = view_->FindValue(request, found);
  if (result == FindResult::Found) table_->SetCurrentCell(found);
  const QString text = result == FindResult::Found      ? CellDescription()
                       : result == FindResult::NotFound ? tr("No cell fits.")
                                                        : QString();
  if (findDialog_ != nullptr) findDialog_->ShowResult(text);
  document_.WriteStatusInfo(result == FindResult::NotFound ? text.toStdString() : CString());
}

void CDataWindow::ShowTitle() {
  setWindowTitle(FileName() + "[*]");
  setWindowModified(document_.IsModified());
  emit TitleChanged();
}

void CDataWindow::closeEvent(QCloseEvent* event) {
  if (app_.IsBusy() || !MayClose()) {
    event->ignore();
    return;
  }
  document_.OnCloseDocument();
  event->accept();
}

bool CDataWindow::MayClose() {
  table_->EndEdit();
  if (!document_.IsModified()) return true;
  const auto answer = QMessageBox::warning(
      this, QCoreApplication::applicationName(), tr("Save changes to %1?").arg(FileName()),
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  if (answer == QMessageBox::Save) return Save();
  return answer == QMessageBox::Discard;
}
