#include "dataview/dialogs/CaseSelectPage.h"

#include "dataview/dialogs/DialogLook.h"
#include "host/Host.h"
#include "ui_CaseSelectPage.h"

CCaseSelectPage::CCaseSelectPage(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::CaseSelectPage>()) {
  ui_->setupUi(this);
  ui_->oddRadio->setChecked(true);
  ui_->belowRadio->setChecked(true);
  for (QRadioButton* const radio :
       {ui_->oddRadio, ui_->evenRadio, ui_->belowNumberRadio, ui_->aboveNumberRadio}) {
    connect(radio, &QRadioButton::toggled, this, &CCaseSelectPage::Refresh);
  }
  for (QLineEdit* const edit : {ui_->numberEdit, ui_->valueEdit}) {
    connect(edit, &QLineEdit::textChanged, this, &CCaseSelectPage::Refresh);
  }
  connect(ui_->variableList, &CVariablePicker::VariablesSelected, this, &CCaseSelectPage::Refresh);
  connect(ui_->ruleList, &QListWidget::itemSelectionChanged, this, &CCaseSelectPage::Refresh);
  connect(ui_->addNumberButton, &QPushButton::clicked, this,
          [this] { AddRule(TypedNumberRule()); });
  connect(ui_->addValueButton, &QPushButton::clicked, this, [this] { AddRule(TypedValueRule()); });
  connect(ui_->removeButton, &QPushButton::clicked, this, &CCaseSelectPage::RemoveSelected);
}

CCaseSelectPage::~CCaseSelectPage() = default;

void CCaseSelectPage::SetVariables(const TORVIKSTRUCT& dataSet) {
  data_ = &dataSet;
  ui_->variableList->SetVariables(dataSet);
  ui_->findEdit->SetList(ui_->variableList);
  Refresh();
}

CStringList CCaseSelectPage::SyntaxLines() const {
  CStringList lines;
  for (const SelectionRule& rule : rules_) lines.push_back(rule.syntax);
  return lines;
}

CaseNumberRule CCaseSelectPage::NumberRule() const {
  if (ui_->oddRadio->isChecked()) return CaseNumberRule::Odd;
  if (ui_->evenRadio->isChecked()) return CaseNumberRule::Even;
  return ui_->belowNumberRadio->isChecked() ? CaseNumberRule::LessThan
                                            : CaseNumberRule::GreaterThan;
}

SelectionRule CCaseSelectPage::TypedNumberRule() const {
  return SelectByCaseNumber(NumberRule(), TypedText(ui_->numberEdit->text()));
}

SelectionRule CCaseSelectPage::TypedValueRule() const {
  ValueRule rule;
  rule.operation = ui_->belowRadio->isChecked()   ? ValueOperator::LessThan
                   : ui_->aboveRadio->isChecked() ? ValueOperator::GreaterThan
                                                  : ValueOperator::EqualTo;
  rule.value = TypedText(ui_->valueEdit->text());
  rule.remove = ui_->deleteCheck->isChecked();
  rule.variables = ui_->variableList->Selected();
  return SelectByValue(rule, *data_);
}

// A rule that cannot be used is told and not added.
void CCaseSelectPage::AddRule(const SelectionRule& rule) {
  CStringList lines = SyntaxLines();
  lines.push_back(rule.syntax);
  const CString problem = ProblemOfRules(*data_, lines);
  if (!problem.empty()) {
    AfxMessageBox(problem);
    return;
  }
  rules_.push_back(rule);
  ui_->ruleList->addItem(DisplayText(rule.display));
  ui_->ruleList->scrollToBottom();
  emit RulesChanged();
}

void CCaseSelectPage::RemoveSelected() {
  for (int row = ui_->ruleList->count() - 1; row >= 0; --row) {
    if (!ui_->ruleList->item(row)->isSelected()) continue;
    delete ui_->ruleList->takeItem(row);
    rules_.erase(rules_.begin() + row);
  }
  emit RulesChanged();
}

void CCaseSelectPage::Refresh() {
  const CaseNumberRule number = NumberRule();
  const bool needsNumber =
      number == CaseNumberRule::LessThan || number == CaseNumberRule::GreaterThan;
  ui_->numberEdit->setEnabled(needsNumber);
  ui_->numberLabel->setEnabled(needsNumber);
  ui_->addNumberButton->setEnabled(!needsNumber || !ui_->numberEdit->text().trimmed().isEmpty());
  ui_->addValueButton->setEnabled(ui_->variableList->FirstSelected() >= 0 &&
                                  !ui_->valueEdit->text().trimmed().isEmpty());
  ui_->removeButton->setEnabled(!ui_->ruleList->selectedItems().isEmpty());
}
