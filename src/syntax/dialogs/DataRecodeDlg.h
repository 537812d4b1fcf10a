// The dialog of recoded variables.
#pragma once

#include <QTimer>

#include "syntax/dialogs/ChoicesDlg.h"

class QLabel;
class QPushButton;
class QTableWidget;

// Rules of old and new values in a table, which shows beside each how many cells it changes.
class CDataRecodeDlg final : public CChoicesDlgOf<RecodeChoices> {
 public:
  CDataRecodeDlg(CDataDoc& document, RecodeChoices last, QWidget* parent);

 protected:
  void Refresh() override;
  std::optional<ChoiceProblem> Check() const override;

 private:
  QWidget* BuildRules();
  void ShowRules();
  void TakeRule(int row);
  void AddRule();
  void RemoveRule();
  void Count();

  QTableWidget* rules_ = nullptr;
  QPushButton* remove_ = nullptr;
  QLabel* counted_ = nullptr;
  QTimer countLater_;
};
