#include "vexapp/DataWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QVBoxLayout>

#include "dataview/table/GoToCaseDlg.h"
#include "resources/DrawnIcon.h"
#include "vexapp/Display.h"
#include "vexapp/VexApp.h"

CDataWindow::CDataWindow(CVexApp& app, QWidget* parent)
    : CFrameWindow(parent), app_(app), table_(new CDataViewTbl(this)) {
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
  connect(table_, &CDataViewTbl::ContextMenuAsked, this, &CDataWindow::AskForMenu);
  ShowTitle();
}

CDataWindow::~CDataWindow() {
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

bool CDataWindow::Recover(const LeftOverScratch& left) {
  const CBusy busy(app_);
  if (!view_->Recover(left)) return false;
  table_->SetCurrentCell({0, 0});
  return true;
}

bool CDataWindow::Save() {
  const CBusy busy(app_, this);
  return document_.OnFileSave() != 0;
}

bool CDataWindow::SaveAs() {
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
  if (!document_.IsModified()) return true;
  const auto answer = QMessageBox::warning(
      this, QCoreApplication::applicationName(), tr("Save changes to %1?").arg(FileName()),
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  if (answer == QMessageBox::Save) return Save();
  return answer == QMessageBox::Discard;
}

void CDataWindow::AskForMenu(TableArea area, const QPoint& globalPoint) {
  if (area == TableArea::Cell) menuType_ = 0;
  if (area == TableArea::RowHeading) menuType_ = 1;
  if (area == TableArea::ColumnHeading) menuType_ = 2;
  if (menuType_ >= 0) emit ContextMenuAsked(menuType_, globalPoint);
}
