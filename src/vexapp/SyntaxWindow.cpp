#include "vexapp/SyntaxWindow.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QTextBlock>

#include "host/Host.h"
#include "host/Text.h"
#include "resources/DrawnIcon.h"
#include "syntax/OutputText.h"
#include "syntax/PathNames.h"
#include "syntax/ProcedureRun.h"
#include "vexapp/Display.h"
#include "vexapp/FindBar.h"

namespace {

// A run that fails at a line of its syntax says little else.
constexpr qint64 kLargestFailedOutput = qint64{1} << 20;

QTextDocument::FindFlags FlagsOf(bool matchCase, bool forward) {
  QTextDocument::FindFlags flags;
  if (matchCase) flags |= QTextDocument::FindCaseSensitively;
  if (!forward) flags |= QTextDocument::FindBackward;
  return flags;
}

}  // namespace

CSyntaxWindow::CSyntaxWindow(CVexApp& app, QWidget* parent)
    : CTextWindow(app, parent), edit_(new CSyntaxEdit(this)), notice_(new QFrame(this)) {
  setWindowIcon(DrawnIcon(Picture::Syntax));
  BuildNotice();
  SetBody(edit_);
  AddAbove(notice_);
  connect(edit_, &QPlainTextEdit::modificationChanged, this, [this] { ShowTitle(); });
  connect(edit_, &QPlainTextEdit::cursorPositionChanged, this, &CFrameWindow::TitleChanged);
}

// What is shown when the file changes under changes of the user's.
void CSyntaxWindow::BuildNotice() {
  notice_->setObjectName("changedNotice");
  notice_->setAutoFillBackground(true);
  notice_->setBackgroundRole(QPalette::AlternateBase);
  auto* const label = new QLabel(tr("The file has changed on disk."), notice_);
  auto* const load = new QPushButton(tr("&Load It"), notice_);
  auto* const keep = new QPushButton(tr("&Keep Mine"), notice_);
  auto* const row = new QHBoxLayout(notice_);
  row->setContentsMargins(10, 5, 8, 5);
  row->addWidget(label, 1);
  row->addWidget(load);
  row->addWidget(keep);
  connect(load, &QPushButton::clicked, this, &CSyntaxWindow::Reload);
  connect(keep, &QPushButton::clicked, notice_, &QWidget::hide);
  notice_->hide();
}

void CSyntaxWindow::FileChanged() {
  if (IsModified()) {
    notice_->show();
  } else {
    Reload();
  }
}

bool CSyntaxWindow::Load(const CString& path, CString& reason) {
  COutputText file;
  if (!file.Read(path, reason)) return false;
  QStringList lines;
  otherBytes_.clear();
  for (std::int64_t line = 0; line < file.LineCount(); ++line) {
    const std::string_view bytes = file.Line(line);
    QString text = QString::fromStdString(TextForDisplay(bytes));
    const QByteArray kept(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (text.toUtf8() != kept) otherBytes_[text] = kept;
    lines << std::move(text);
  }
  // The editor shows what stands behind the last line end as a line of its own.
  if (file.Bytes().ends_with('\n')) lines << QString();
  const int top = edit_->FirstVisibleLine();
  edit_->setPlainText(lines.join('\n'));
  edit_->ScrollToLine(top);
  notice_->hide();
  ShowTitle();
  MarkFailedLine();
  return true;
}

QByteArray CSyntaxWindow::Bytes() const {
  QByteArray bytes;
  for (QTextBlock block = edit_->document()->begin(); block.isValid(); block = block.next()) {
    const QString text = block.text();
    const auto other = otherBytes_.find(text);
    bytes += other != otherBytes_.end() ? *other : text.toUtf8();
    if (block.next().isValid()) bytes += '\n';
  }
  return bytes;
}

bool CSyntaxWindow::WriteTo(const QString& path) {
  const QByteArray bytes = Bytes();
  QSaveFile file(path);
  const bool written =
      file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
  if (!written) {
    AfxMessageBox("Cannot write to file!\n" + PathBytes(path + ": " + file.errorString()));
  }
  return written;
}

bool CSyntaxWindow::Save() {
  if (!WriteTo(Path())) return false;
  FileWatch().Accept();
  notice_->hide();
  edit_->document()->setModified(false);
  return true;
}

void CSyntaxWindow::SaveAs() {
  FileDialogRequest request;
  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.title = tr("Save Syntax As").toStdString();
  request.folder = PathBytes(QFileInfo(Path()).path());
  request.fileName = PathBytes(FileName());
  request.rows = {{tr("Syntax (*.TRK)").toStdString(), "*.TRK", "TRK"}};
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return;
  QString path = PathText(choice.path);
  if (QFileInfo(path).suffix().isEmpty()) path += ".TRK";
  if (!WriteTo(path)) return;
  SetPath(path);
  edit_->document()->setModified(false);
  ShowTitle();
}

void CSyntaxWindow::Run() {
  if (IsModified() && !Save()) return;
  edit_->MarkLine(0, {});
  RunSyntaxFile(PathBytes(Path()));
  MarkFailedLine();
}

// By the output of the last run, unless the syntax was written after it.
void CSyntaxWindow::MarkFailedLine() {
  const CString name = ReplaceExtension(PathBytes(Path()), ".OUT");
  const QFileInfo output(PathText(name));
  COutputText text;
  CString reason;
  const bool newer = output.isFile() && output.lastModified() >= QFileInfo(Path()).lastModified();
  if (!newer || output.size() > kLargestFailedOutput || !text.Read(name, reason)) return;
  const int line = ErrorLineIn(text.Bytes());
  if (line > 0) edit_->MarkLine(line, tr("The last run failed at this line; its output says why."));
}

QString CSyntaxWindow::Description() const {
  const QTextCursor cursor = edit_->textCursor();
  return tr("Line %L1, column %L2").arg(cursor.blockNumber() + 1).arg(cursor.columnNumber() + 1);
}

TEXTTOPRINT CSyntaxWindow::PrintedText() const {
  TEXTTOPRINT text;
  text.title = FileName();
  text.lines = edit_->blockCount();
  text.line = [document = edit_->document()](std::int64_t line) {
    return document->findBlockByNumber(static_cast<int>(line)).text();
  };
  for (QTextBlock block = edit_->document()->begin(); block.isValid(); block = block.next()) {
    text.longest = std::max<std::int64_t>(text.longest, block.length());
  }
  return text;
}

CTextWindow::Found CSyntaxWindow::FindText(const QString& text, bool matchCase, bool forward) {
  const auto flags = FlagsOf(matchCase, forward);
  if (edit_->find(text, flags)) return Found::Yes;
  const QTextCursor before = edit_->textCursor();
  edit_->moveCursor(forward ? QTextCursor::Start : QTextCursor::End);
  if (edit_->find(text, flags)) return Found::FromTheOtherEnd;
  edit_->setTextCursor(before);
  return Found::No;
}

void CSyntaxWindow::Replace() {
  QTextCursor cursor = edit_->textCursor();
  const auto letters = FindBar().MatchCase() ? Qt::CaseSensitive : Qt::CaseInsensitive;
  if (!FindBar().Text().isEmpty() &&
      cursor.selectedText().compare(FindBar().Text(), letters) == 0) {
    cursor.insertText(FindBar().Replacement());
  }
  FindNext(true);
}

void CSyntaxWindow::ReplaceAll() {
  if (FindBar().Text().isEmpty()) return;
  const auto flags = FlagsOf(FindBar().MatchCase(), true);
  QTextCursor edit(edit_->document());
  edit.beginEditBlock();
  int count = 0;
  QTextCursor found = edit_->document()->find(FindBar().Text(), 0, flags);
  while (!found.isNull()) {
    found.insertText(FindBar().Replacement());
    ++count;
    found = edit_->document()->find(FindBar().Text(), found, flags);
  }
  edit.endEditBlock();
  FindBar().ShowResult(tr("%L1 replaced").arg(count), count == 0);
}

bool CSyntaxWindow::MayClose() {
  if (!IsModified()) return true;
  const auto answer = QMessageBox::warning(
      this, QCoreApplication::applicationName(), tr("Save changes to %1?").arg(FileName()),
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  if (answer == QMessageBox::Save) return Save();
  return answer == QMessageBox::Discard;
}
