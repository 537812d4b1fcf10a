// The page of the selection dialog that selects cases, by their number or by values.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "dataview/operations/SelectionLines.h"

namespace Ui {
class CaseSelectPage;
}

class CCaseSelectPage final : public QWidget {
  Q_OBJECT

 public:
  explicit CCaseSelectPage(QWidget* parent = nullptr);
  ~CCaseSelectPage() override;

  // The data set, which outlives the page.
  void SetVariables(const TORVIKSTRUCT& dataSet);

  // The lines of syntax of all rules, in the order in which they were added.
  CStringList SyntaxLines() const;

 signals:
  void RulesChanged();

 private:
  CaseNumberRule NumberRule() const;
  SelectionRule TypedNumberRule() const;
  SelectionRule TypedValueRule() const;
  void AddRule(const SelectionRule& rule);
  void RemoveSelected();
  void Refresh();

  std::unique_ptr<Ui::CaseSelectPage> ui_;
  const TORVIKSTRUCT* data_ = nullptr;
  std::vector<SelectionRule> rules_;  // as they stand in the list
};
