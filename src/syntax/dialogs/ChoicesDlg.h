// A procedure's dialog as a form over its choices: the common base of all of them.
#pragma once

#include "syntax/dialogs/ChoiceForm.h"
#include "syntax/dialogs/ProcedureDlg.h"
#include "syntax/procedures/Procedures.h"

class CProcedureButtons;
class QPlainTextEdit;

// A dialog fills Form() in its constructor and calls Finish(). Run and Syntax look at the choices
// first; what is wrong is told and the control to blame gets the focus. A field below the form
// shows the lines that will be written.
class CChoicesDlg : public CProcedureDlg {
  Q_OBJECT

 public:
  // What stands in the controls.
  virtual ProcedureChoices Choices() const = 0;

  ProcedureJob Job() const override;

 protected:
  CChoicesDlg(CDataDoc& document, const ProcedureEntry& procedure, QWidget* parent);

  CChoiceForm& Form() { return *form_; }
  CProcedureButtons& Buttons() { return *buttons_; }
  const TORVIKSTRUCT& Data() const;
  // Of the data file: names of files without a folder are looked for there.
  CString Folder() const;
  // `help` says what the procedure does, for the Help button.
  void Finish(const QString& help);
  // After any change of the choices.
  virtual void Refresh();

  // What is wrong with the choices.
  virtual std::optional<ChoiceProblem> Check() const;

  void EndWith(int endCode) override;
  int OutputTests() const override;

 private:
  bool MayReplaceNewData() const;
  void ShowHelp();

  CChoiceForm* form_;
  QPlainTextEdit* lines_;
  CProcedureButtons* buttons_;
  QString help_;
};

// With the choices themselves. They are the dialog's own until it ends.
template <typename T>
class CChoicesDlgOf : public CChoicesDlg {
 public:
  ProcedureChoices Choices() const override { return choices_; }

 protected:
  CChoicesDlgOf(CDataDoc& document, T choices, QWidget* parent)
      : CChoicesDlg(document, EntryOf(choices), parent), choices_(std::move(choices)) {}

  T choices_;
};
