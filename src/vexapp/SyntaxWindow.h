// A syntax: an editor that saves and runs it.
#pragma once

#include <QHash>

#include "vexapp/SyntaxEdit.h"
#include "vexapp/TextWindow.h"

class QFrame;
class QLabel;

class CSyntaxWindow final : public CTextWindow {
  Q_OBJECT

 public:
  explicit CSyntaxWindow(CVexApp& app, QWidget* parent = nullptr);

  CSyntaxEdit& Edit() { return *edit_; }
  bool IsModified() const override { return edit_->document()->isModified(); }
  bool CanReplace() const override { return true; }
  bool Save() override;
  void SaveAs() override;
  // Saves what was changed and runs the engine on the file; a line that the run failed at is marked
  // then.
  void Run();
  QString Description() const override;
  TEXTTOPRINT PrintedText() const override;

 protected:
  bool Load(const CString& path, CString& reason) override;
  void FileChanged() override;
  Found FindText(const QString& text, bool matchCase, bool forward) override;
  void Replace() override;
  void ReplaceAll() override;
  QString SelectedText() const override { return edit_->textCursor().selectedText(); }
  void SetPointSize(qreal points) override { edit_->SetPointSize(points); }
  bool MayClose() override;

 private:
  void BuildNotice();
  bool WriteTo(const QString& path);
  QByteArray Bytes() const;
  void MarkFailedLine();

  CSyntaxEdit* edit_;
  QFrame* notice_;
  // Lines of the file whose bytes are no UTF-8, by how they are shown: they are written as they
  // were.
  QHash<QString, QByteArray> otherBytes_;
};
