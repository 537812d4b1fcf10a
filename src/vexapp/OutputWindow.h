// An output of the engine.
#pragma once

#include "vexapp/OutputView.h"
#include "vexapp/TextWindow.h"

class COutputWindow final : public CTextWindow {
  Q_OBJECT

 public:
  explicit COutputWindow(CVexApp& app, QWidget* parent = nullptr);

  COutputView& View() { return *view_; }
  // Asks for a name; as text, or as PDF by the name's extension.
  void SaveAs() override;
  bool WriteTo(const QString& path);
  QString Description() const override;
  TEXTTOPRINT PrintedText() const override;

 protected:
  bool Load(const CString& path, CString& reason) override;
  Found FindText(const QString& text, bool matchCase, bool forward) override;
  QString SelectedText() const override { return view_->SelectedText(); }
  void SetPointSize(qreal points) override { view_->SetPointSize(points); }

 private:
  COutputView* view_;
};
