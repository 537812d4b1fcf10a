// The dialog of homogeneity tests.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CVariableList;
class QLabel;
class QListWidget;
class QPushButton;

// As soon as exactly two variables are selected, their test joins the list of commands.
class CDataHTDlg final : public CChoicesDlgOf<HomogeneityChoices> {
 public:
  CDataHTDlg(CDataDoc& document, HomogeneityChoices last, QWidget* parent);

 protected:
  void Refresh() override;

 private:
  void Build();
  void TakeSelection();
  void RemoveSelected();
  void ShowCommands();
  bool IsChosen(const CString& first, const CString& second) const;

  CVariableList* variables_ = nullptr;
  QListWidget* commands_ = nullptr;
  QPushButton* remove_ = nullptr;
  QLabel* shown_ = nullptr;  // what the current command is about
};
