// The dialog of computed variables.
#pragma once

#include "syntax/dialogs/ChoicesDlg.h"

class CVariableList;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

// A list of computations; name and expression of the one that is current are edited beside it and
// checked, as the engine will read them, while they are typed.
class CDataComputeDlg final : public CChoicesDlgOf<ComputeChoices> {
 public:
  CDataComputeDlg(CDataDoc& document, ComputeChoices last, QWidget* parent);

 protected:
  void Refresh() override;
  std::optional<ChoiceProblem> Check() const override;

 private:
  void Build();
  QWidget* BuildNames();
  QWidget* BuildEditor();
  void AddComputation();
  void RemoveComputation();
  void ShowCurrent();
  void TakeEdits();
  void Insert(const QString& text, int cursorBack = 0);
  void ShowState();
  Computation& Current();

  QListWidget* list_ = nullptr;
  QPushButton* remove_ = nullptr;
  QLineEdit* target_ = nullptr;
  QPlainTextEdit* expression_ = nullptr;
  QLabel* state_ = nullptr;
};
