// The controls of a procedure's dialog, each bound to the choice that it edits.
#pragma once

#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

#include "syntax/dialogs/VariableChooser.h"
#include "syntax/procedures/VariableNumbers.h"

class QFormLayout;
class QLineEdit;
class QVBoxLayout;

// Every control is filled from its choice and writes it as soon as the user changes something. The
// choices must outlive the form. `name` is the choice's name: the control's object name and what a
// problem calls it by.
class CChoiceForm final : public QWidget {
  Q_OBJECT

 public:
  // The data set must outlive the form too.
  CChoiceForm(const TORVIKSTRUCT& dataSet, QWidget* parent);

  // The list of all variables; lists that AddList makes stand beside it. At most one.
  CVariableChooser& AddChooser(const QString& title);
  // Lists of the same group share no variable.
  int AddList(const ChooserTarget& target, NameList& names, int group = 0);

  QWidget& AddCheck(const QString& text, bool& value, const char* name);
  QLineEdit& AddText(const QString& label, CString& value, const char* name);
  // A file name with a button to choose one that is there.
  void AddFile(const QString& label, CString& value, const char* name);
  // A file name with a button to choose a new one.
  void AddNewFile(const QString& label, CString& value, const char* name, const QString& pattern);
  // A file that is saved when its box is checked. `label` stands before the name.
  void AddSavedFile(const QString& text, bool& save, CString& value, const char* name,
                    const QString& label = {});
  // Radio buttons for the values 0, 1, ...
  template <typename Value>
  void AddRadios(const QString& label, const QStringList& texts, Value& value, const char* name) {
    AddRadioRow(label, texts, static_cast<int>(value), name,
                [&value](int chosen) { value = static_cast<Value>(chosen); });
  }
  template <typename Value>
  void AddBox(const QString& label, const QStringList& texts, Value& value, const char* name) {
    AddBoxRow(label, texts, static_cast<int>(value), name,
              [&value](int chosen) { value = static_cast<Value>(chosen); });
  }
  // Above everything else, growing with the dialog.
  void AddTop(QWidget* widget);
  void AddRow(QWidget* widget);
  void AddNote(const QString& text);

  // Puts the focus on the control of this choice.
  void ShowField(const char* name);
  // Tells of a change that was made without the form's controls.
  void TellChange();

  // Ordinal or censored variables only, with the reason for the others.
  ChooserTarget OnlyOrdinal(ChooserTarget target) const;
  ChooserTarget OnlyCensored(ChooserTarget target) const;
  CVariableChooser& Chooser() { return *chooser_; }

 signals:
  void Changed();

 private:
  QWidget* MakeRow(const std::vector<QWidget*>& widgets, bool stretch);
  QLineEdit* MakeEdit(CString& value, const char* name, bool isFile);
  QWidget* MakeFileButton(QLineEdit* edit, bool save, const QString& pattern);
  void AddRadioRow(const QString& label, const QStringList& texts, int value, const char* name,
                   std::function<void(int)> take);
  void AddBoxRow(const QString& label, const QStringList& texts, int value, const char* name,
                 std::function<void(int)> take);
  void ReadLists();

  const TORVIKSTRUCT& data_;
  QVBoxLayout* layout_;
  QFormLayout* form_;
  CVariableChooser* chooser_ = nullptr;
  std::vector<std::pair<int, NameList*>> lists_;
};

// File names are bytes of the file system.
QString FileNameText(const CString& name);
CString FileNameBytes(const QString& name);
