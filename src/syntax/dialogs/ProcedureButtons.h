// The row of buttons at the foot of a procedure's dialog: Output Options, Syntax and Help at the
// left, Run (the default button) and Cancel at the right. A .ui file promotes a QWidget to it.
#pragma once

#include <QWidget>

class QPushButton;

class CProcedureButtons final : public QWidget {
  Q_OBJECT

 public:
  explicit CProcedureButtons(QWidget* parent = nullptr);

  void HideOutputOptions();
  void HideHelp();
  void SetOutputOptionsEnabled(bool enabled);
  // Run and Syntax can be pressed when the dialog's choice is complete.
  void SetComplete(bool complete);

 signals:
  void RunAsked();
  void CancelAsked();
  void OutputOptionsAsked();
  void SyntaxAsked();
  void HelpAsked();

 private:
  QPushButton* output_;
  QPushButton* syntax_;
  QPushButton* help_;
  QPushButton* run_;
  QPushButton* cancel_;
};
