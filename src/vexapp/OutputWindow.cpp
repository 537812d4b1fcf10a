#include "vexapp/OutputWindow.h"

#include <QFileInfo>
#include <QSaveFile>

#include "host/Host.h"
#include "resources/DrawnIcon.h"
#include "vexapp/Display.h"

COutputWindow::COutputWindow(CVexApp& app, QWidget* parent)
    : CTextWindow(app, parent), view_(new COutputView(this)) {
  setWindowIcon(DrawnIcon(Picture::Output));
  SetBody(view_);
}

bool COutputWindow::Load(const CString& path, CString& reason) {
  COutputText text;
  if (!text.Read(path, reason)) return false;
  view_->ShowText(std::move(text), true);
  emit TitleChanged();
  return true;
}

QString COutputWindow::Description() const {
  return tr("%L1 lines").arg(view_->Text().LineCount());
}

CTextWindow::Found COutputWindow::FindText(const QString& text, bool matchCase, bool forward) {
  switch (view_->Find(text, matchCase, forward)) {
    case COutputView::Found::Yes:
      return Found::Yes;
    case COutputView::Found::FromTheOtherEnd:
      return Found::FromTheOtherEnd;
    default:
      return Found::No;
  }
}

TEXTTOPRINT COutputWindow::PrintedText() const {
  return {FileName(), view_->Text().LineCount(),
          [view = view_](std::int64_t line) { return view->LineText(line); },
          view_->Text().LongestLine()};
}

void COutputWindow::SaveAs() {
  FileDialogRequest request;
  request.save = true;
  request.flags = FileDialogRequest::kSaveFlags;
  request.title = tr("Save Output As").toStdString();
  request.folder = PathBytes(QFileInfo(Path()).path());
  request.fileName = PathBytes(QFileInfo(Path()).completeBaseName());
  request.rows = {{tr("Text (*.txt)").toStdString(), "*.txt", "txt"},
                  {tr("PDF (*.pdf)").toStdString(), "*.pdf", "pdf"}};
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return;
  QString path = PathText(choice.path);
  if (QFileInfo(path).suffix().isEmpty()) path += choice.row == 1 ? ".pdf" : ".txt";
  WriteTo(path);
}

bool COutputWindow::WriteTo(const QString& path) {
  QString reason;
  bool written = false;
  if (QFileInfo(path).suffix().compare("pdf", Qt::CaseInsensitive) == 0) {
    written = WritePdf(path, PrintedText(), reason);
  } else {
    const CString& bytes = view_->Text().Bytes();
    const auto size = static_cast<qint64>(bytes.size());
    QSaveFile file(path);
    written =
        file.open(QIODevice::WriteOnly) && file.write(bytes.data(), size) == size && file.commit();
    reason = file.errorString();
  }
  if (!written) AfxMessageBox("Cannot write to file!\n" + PathBytes(path + ": " + reason));
  return written;
}
