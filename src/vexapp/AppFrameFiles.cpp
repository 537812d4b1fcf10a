// Files of the main window: open, import, save, drop, recovery.
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <limits>

#include "datadoc/DsfLayout.h"
#include "datadoc/SaveAsKinds.h"
#include "datadoc/dialogs/Asc2VSFDlg.h"
#include "datadoc/dialogs/MatrixTextDlg.h"
#include "dataview/ScratchFile.h"
#include "host/Host.h"
#include "resources/Commands.h"
#include "transfer/DataPort.h"
#include "transfer/FileContent.h"
#include "transfer/FileTypes.h"
#include "transfer/dialogs/ImportTextDataDlg.h"
#include "transfer/dialogs/SourceChoiceDlg.h"
#include "vexapp/AppFrame.h"
#include "vexapp/DataWindow.h"
#include "vexapp/Display.h"
#include "vexapp/TextWindow.h"
#include "vexapp/VexApp.h"

namespace {

bool HasExtension(const QString& path, const char* extension) {
  return QFileInfo(path).suffix().compare(QLatin1String(extension), Qt::CaseInsensitive) == 0;
}

// An output or a syntax?
bool IsTextFile(const QString& path) {
  return HasExtension(path, "OUT") || HasExtension(path, "TRK");
}

QStringList LocalFiles(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) paths << url.toLocalFile();
  }
  return paths;
}

}  // namespace

void CAppFrame::AskAndOpen() {
  FileDialogRequest request;
  request.title = tr("Open").toStdString();
  request.rows = OpenRows();
  request.rows.insert(
      request.rows.end() - 1,
      {tr("Syntax and output files (*.TRK;*.OUT)").toStdString(), "*.TRK;*.OUT", "TRK"});
  request.selectedRow = -1;  // before the first: system data files, not the last row of a long list
  const QString folderOf = current_ != nullptr       ? PathText(current_->Document().GetPathName())
                           : currentText_ != nullptr ? currentText_->Path()
                                                     : QString();
  if (!folderOf.isEmpty()) request.folder = PathBytes(QFileInfo(folderOf).path());
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return;
  const QString path = PathText(choice.path);
  const std::optional<EXTERNDATA> kind = KindOfOpenRow(choice.row, choice.path);
  if (!kind) {
    OpenPath(path);
    return;
  }
  const EXTERNDATA known = KindOf(path);
  const bool asBefore = known.data_type == kind->data_type && known.ma_type == kind->ma_type;
  OpenAs(path, asBefore ? known : *kind);
}

EXTERNDATA CAppFrame::KindOf(const QString& path) const {
  if (const RECENTFILE* known = recent_.Find(path)) return known->kind;
  EXTERNDATA kind;
  if (HasExtension(path, "DSF")) kind.data_type = kDsfFile;
  return kind;
}

bool CAppFrame::OpenPath(const QString& path) {
  if (app_.IsBusy()) return false;
  if (IsTextFile(path)) return OpenText(path);
  if (CDataWindow* const open = WindowOf(path)) {
    ActivateWindow(open);
    return true;
  }
  const EXTERNDATA kind = KindOf(path);
  if (kind.data_type != kSystemDataFile) return OpenAs(path, kind);
  const bool foreign = !HasExtension(path, "VSF") &&
                       STUtils::TypeOfFileName(PathBytes(path)) != STUtils::UNKNOWN_FILE_TYPE;
  return foreign ? ImportPath(path) : OpenDocument(path, kind, {});
}

// A text or DSF file.
bool CAppFrame::OpenAs(const QString& path, EXTERNDATA kind) {
  if (app_.IsBusy()) return false;
  if (CDataWindow* const open = WindowOf(path)) {
    ActivateWindow(open);
    return true;
  }
  std::optional<ASC2VSF> text;
  return AskAboutKind(path, kind, text) && OpenDocument(path, kind, text);
}

// What the file does not say of itself: the group of a DSF file that has several, the order of a
// matrix file's parts, the number of variables in free format. False when a dialog was cancelled.
bool CAppFrame::AskAboutKind(const QString& path, EXTERNDATA& kind, std::optional<ASC2VSF>& text) {
  if (kind.data_type == kDsfFile) {
    const auto groups = static_cast<int>(std::min<std::int64_t>(
        CountDsfGroups(PathBytes(path)), std::numeric_limits<std::int32_t>::max()));
    if (groups < 2) return true;
    bool chosen = false;
    const int group = QInputDialog::getInt(
        this, tr("Group"), tr("The file holds %L1 groups. Group to open:").arg(groups),
        std::clamp(kind.group + 1, 1, groups), 1, groups, 1, &chosen);
    kind.group = group - 1;
    return chosen;
  }
  const TEXTFILELOOK look = LookAtTextFile(PathBytes(path));
  if (!look.readable) return true;  // the document says so
  const bool asks = !look.statement && kind.fixedFormat == 0;
  if (kind.ma_type >= 1) {
    CMatrixTextDlg dialog(kind, asks, look.proposal.variables, this);
    if (dialog.exec() != QDialog::Accepted) return false;
    kind = dialog.ChosenKind();
    if (asks) text = ASC2VSF{dialog.Variables(), false};
    return true;
  }
  if (!asks) return true;
  CAsc2VSFDlg dialog(look.proposal, true, this);
  if (dialog.exec() != QDialog::Accepted) return false;
  text = dialog.Chosen();
  return true;
}

void CAppFrame::OpenPaths(const QStringList& paths) {
  for (const QString& path : paths) OpenPath(path);
}

void CAppFrame::OpenRecent(const QString& path) {
  if (app_.IsBusy()) return;
  if (!QFileInfo::exists(path)) {
    recent_.Remove(path);
    ShowRecentFiles();
    QMessageBox::warning(this, QCoreApplication::applicationName(),
                         tr("%1 is no longer there. It was taken off the list.").arg(path));
    return;
  }
  OpenPath(path);
}

bool CAppFrame::OpenDocument(const QString& path, const EXTERNDATA& kind,
                             const std::optional<ASC2VSF>& text) {
  auto window = std::make_unique<CDataWindow>(app_);
  opening_ = window.get();
  const bool opened = text ? window->OpenText(path, kind, *text) : window->Open(path, kind);
  opening_ = nullptr;
  if (opened) AddDataWindow(std::move(window));
  return opened;
}

bool CAppFrame::ImportPath(const QString& path) {
  if (app_.IsBusy()) return false;
  CDataPort port(GetStatusBar());
  port.SetKeepLabels(menus_->Action(commands::kFileKeepLabels)->isChecked());
  port.SetTextConfirmer([this](CTextConfirmation& confirmation) {
    CdlgImportTextData dialog(confirmation, this);
    return app_.RunDialog(dialog) == QDialog::Accepted;
  });
  port.SetSourceChooser([this](CSourceChoice& choice) {
    CSourceChoiceDlg dialog(choice, this);
    return app_.RunDialog(dialog) == QDialog::Accepted;
  });
  std::string name = PathBytes(path.isEmpty() ? path : QFileInfo(path).absoluteFilePath());
  int type = STUtils::UNKNOWN_FILE_TYPE;
  if (!name.empty()) type = STUtils::AskAboutContent(name, STUtils::TypeOfFileName(name));
  std::string systemFile;
  STUtils::eRESULT result = STUtils::eFAILED;
  {
    const CBusy busy(app_);
    result = port.Import(name, type, systemFile);
  }
  if (result != STUtils::eOK) return false;
  if (!OpenImported(PathText(systemFile))) return false;
  if (!port.Notes().empty()) {
    QStringList notes;
    for (const std::string& note : port.Notes()) notes << ShownText(note);
    panes_->SetPaneText(CStatusBarPanes::kMessagePane, notes.join("  ").toStdString());
  }
  return true;
}

// The file may be open already; what its window shows is then no longer what the file holds.
bool CAppFrame::OpenImported(const QString& path) {
  CDataWindow* const open = WindowOf(path);
  if (open == nullptr) return OpenPath(path);
  ActivateWindow(open);
  if (!open->Document().IsModified()) return open->Open(path, EXTERNDATA());
  AfxMessageBox(PathBytes(tr("%1 was replaced by the import. Its window still shows the data "
                             "before, with your changes; save them under another name.")
                              .arg(path)));
  return true;
}

// The file of one window is not to be written from another one. An import may put new data into the
// file of a window that has nothing to lose and is then read again.
QString CAppFrame::WhyNotWriteTo(const QString& path) const {
  const CDataWindow* const writer = app_.Writer();
  for (CDataWindow* window : DataWindows()) {
    if (window == writer || !window->Holds(path)) continue;
    if (writer != nullptr) {
      return tr("%1 is open in another window. Close it there first.").arg(window->FileName());
    }
    if (window->Document().IsModified()) {
      return tr("%1 is open in a window and has unsaved changes. Close it there first.")
          .arg(window->FileName());
    }
  }
  return {};
}

void CAppFrame::SaveCurrent() {
  if (current_ != nullptr) current_->Save();
  if (currentText_ != nullptr) currentText_->Save();
}

void CAppFrame::SaveCurrentAs() {
  if (current_ != nullptr) current_->SaveAs();
  if (currentText_ != nullptr) currentText_->SaveAs();
}

void CAppFrame::ExportCurrent() {
  if (current_ == nullptr) return;
  current_->Table().EndEdit();
  const CBusy busy(app_, current_);
  current_->Document().SetPasswordAsker([this](const CString& file, CString& password) {
    CSourceChoice choice(file, STUtils::TypeOfFileName(file));
    CSourceChoiceDlg dialog(choice, this);
    dialog.setWindowTitle(tr("Export to %1").arg(QFileInfo(PathText(file)).fileName()));
    if (app_.RunDialog(dialog) != QDialog::Accepted) return false;
    password = choice.password;
    return true;
  });
  current_->Document().OnFileExportVexmorData();
}

void CAppFrame::OfferRecovery() {
  for (const LeftOverScratch& left : FindLeftOverScratch()) {
    QMessageBox box(
        QMessageBox::Question, QCoreApplication::applicationName(),
        tr("The program ended while %1 was open. Its cells as they were are still "
           "there: %L2 cases, %L3 variables.")
            .arg(left.pathName.empty() ? tr("a data set without a name") : PathText(left.pathName))
            .arg(left.data.records)
            .arg(left.data.variables),
        QMessageBox::NoButton, this);
    box.setTextFormat(Qt::PlainText);
    const QPushButton* recover = box.addButton(tr("&Recover"), QMessageBox::AcceptRole);
    const QPushButton* discard = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    box.setEscapeButton(box.addButton(tr("&Later"), QMessageBox::RejectRole));
    box.exec();
    if (box.clickedButton() == discard) RemoveScratch(left.name);
    if (box.clickedButton() != recover) continue;
    auto window = std::make_unique<CDataWindow>(app_);
    if (!window->Recover(left)) continue;
    AddDataWindow(std::move(window));
    RemoveScratch(left.name);
  }
}

void CAppFrame::dragEnterEvent(QDragEnterEvent* event) {
  if (!app_.IsBusy() && !LocalFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CAppFrame::dropEvent(QDropEvent* event) {
  const QStringList paths = LocalFiles(*event->mimeData());
  event->acceptProposedAction();
  // The program that the files come from waits until this event has been handled.
  QTimer::singleShot(0, this, [this, paths] { OpenPaths(paths); });
}

void CAppFrame::closeEvent(QCloseEvent* event) {
  if (app_.IsBusy()) {
    event->ignore();
    return;
  }
  CloseAll();
  if (!Windows().empty()) {
    event->ignore();
    return;
  }
  StoreWindow();
  event->accept();
}
