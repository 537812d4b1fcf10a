#include "vexapp/TextWindow.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSettings>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>

#include "vexapp/Display.h"
#include "vexapp/FindBar.h"
#include "vexapp/VexApp.h"

namespace {

constexpr const char* kPoints = "text/pointSize";
constexpr qreal kSmallest = 5;
constexpr qreal kLargest = 48;

qreal UsualPoints() {
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  return fixed.pointSizeF() > 0 ? fixed.pointSizeF() : 10;
}

}  // namespace

CTextWindow::CTextWindow(CVexApp& app, QWidget* parent)
    : CFrameWindow(parent),
      app_(app),
      layout_(new QVBoxLayout(this)),
      findBar_(new CFindBar(this)),
      points_(std::clamp(QSettings().value(kPoints, UsualPoints()).toReal(), kSmallest, kLargest)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(0);
  layout_->addWidget(findBar_);
  connect(&watch_, &CFileWatch::Changed, this, [this] { FileChanged(); });
  connect(findBar_, &CFindBar::FindAsked, this, &CTextWindow::FindNext);
  connect(findBar_, &CFindBar::ReplaceAsked, this, [this] { Replace(); });
  connect(findBar_, &CFindBar::ReplaceAllAsked, this, [this] { ReplaceAll(); });
  connect(findBar_, &CFindBar::Closed, this, [this] {
    findBar_->hide();
    body_->setFocus();
  });
}

void CTextWindow::SetBody(QAbstractScrollArea* body) {
  body_ = body;
  layout_->insertWidget(layout_->count() - 1, body, 1);
  setFocusProxy(body);
  body->viewport()->installEventFilter(this);
  SetPointSize(points_);
}

void CTextWindow::AddAbove(QWidget* widget) {
  layout_->insertWidget(0, widget);
}

void CTextWindow::SetPath(const QString& path) {
  path_ = QFileInfo(path).absoluteFilePath();
  watch_.Watch(path_);
  ShowTitle();
}

bool CTextWindow::Open(const QString& path) {
  SetPath(path);
  return Reload();
}

bool CTextWindow::Reload() {
  watch_.Accept();
  CString reason;
  if (Load(PathBytes(path_), reason)) return true;
  AfxMessageBox(reason);
  return false;
}

QString CTextWindow::FileName() const {
  return QFileInfo(path_).fileName();
}

void CTextWindow::ShowTitle() {
  setWindowTitle(FileName() + "[*]");
  setWindowModified(IsModified());
  emit TitleChanged();
}

void CTextWindow::OpenFindBar(bool withReplace) {
  QString text = SelectedText();
  if (text.contains('\n') || text.contains(QChar::ParagraphSeparator)) text.clear();
  findBar_->Open(text, withReplace && CanReplace());
}

void CTextWindow::FindNext(bool forward) {
  if (findBar_->Text().isEmpty()) return OpenFindBar(false);
  switch (FindText(findBar_->Text(), findBar_->MatchCase(), forward)) {
    case Found::Yes:
      return findBar_->ShowResult({}, false);
    case Found::No:
      return findBar_->ShowResult(tr("Not found"), true);
    case Found::FromTheOtherEnd:
      return findBar_->ShowResult(
          forward ? tr("Continued from the beginning") : tr("Continued from the end"), false);
  }
}

void CTextWindow::Zoom(int steps) {
  SetZoom(points_ + steps);
}

void CTextWindow::ResetZoom() {
  SetZoom(UsualPoints());
}

void CTextWindow::SetZoom(qreal points) {
  points_ = std::clamp(points, kSmallest, kLargest);
  QSettings().setValue(kPoints, points_);
  SetPointSize(points_);
}

bool CTextWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel) {
    const auto& wheel = static_cast<const QWheelEvent&>(*event);
    const int turned = wheel.angleDelta().y();
    if ((wheel.modifiers() & Qt::ControlModifier) != 0 && turned != 0) {
      Zoom(turned > 0 ? 1 : -1);
      return true;
    }
  }
  return CFrameWindow::eventFilter(watched, event);
}

void CTextWindow::Print() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(FileName());
  QPrintDialog dialog(&printer, this);
  if (dialog.exec() != QDialog::Accepted) return;
  if (!PrintChosenPages(printer, PrintedText())) {
    AfxMessageBox(tr("%1 could not be printed.").arg(FileName()).toStdString());
  }
}

void CTextWindow::PrintPreview() {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(FileName());
  QPrintPreviewDialog preview(&printer, this);
  preview.resize(900, 700);
  connect(&preview, &QPrintPreviewDialog::paintRequested, this,
          [this](QPrinter* pages) { PrintChosenPages(*pages, PrintedText()); });
  preview.exec();
}

void CTextWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(!app_.IsBusy() && MayClose());
}
