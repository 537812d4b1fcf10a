#include "syntax/dialogs/DataComputeDlg.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <numeric>

#include "engine/syntax/Expression.h"
#include "host/Text.h"
#include "syntax/dialogs/VariableList.h"
#include "syntax/transform/TransformCheck.h"

namespace {

constexpr int kListRows = 4;
constexpr int kEditorRows = 3;

int RowsHeight(const QWidget& widget, int rows) {
  return widget.fontMetrics().lineSpacing() * rows + 14;
}

QString ItemText(const Computation& computation) {
  const QString name = DisplayText(computation.target);
  return name.isEmpty() ? CDataComputeDlg::tr("(new)")
                        : name + " = " + DisplayText(computation.expression);
}

}  // namespace

CDataComputeDlg::CDataComputeDlg(CDataDoc& document, ComputeChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  if (choices_.computations.empty()) choices_.computations.emplace_back();
  Build();
  Form().AddNewFile(tr("New data &file:"), choices_.newData, "newData", "*.VSF");
  ShowCurrent();
  Finish(
      tr("Computes new variables, or new values of variables that are there, and writes all "
         "variables to a new data file; the data file itself stays as it is. Expressions know + - "
         "* / **, parentheses, LOG, EXP, SQRT, ABS, and NORMAL() and UNIFORM() for random numbers. "
         "A missing value gives a missing value. Computations are done from the top down and may "
         "use the variables of those above."));
}

void CDataComputeDlg::Build() {
  auto* const top = new QWidget(this);
  auto* const layout = new QHBoxLayout(top);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(BuildNames(), 1);
  layout->addWidget(BuildEditor(), 2);
  Form().AddTop(top);
}

QWidget* CDataComputeDlg::BuildNames() {
  auto* const box = new QWidget(this);
  auto* const layout = new QVBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const variablesLabel = new QLabel(tr("&Variables:"), box);
  auto* const variables = new CVariableList(Data(), box);
  variables->setObjectName("variableList");
  variables->setDragDropMode(QAbstractItemView::NoDragDrop);
  variables->setSelectionMode(QAbstractItemView::SingleSelection);
  variablesLabel->setBuddy(variables);
  std::vector<int> all(static_cast<std::size_t>(Data().variables));
  std::iota(all.begin(), all.end(), 0);
  variables->ShowVariables(all);
  for (const int variable : all) {
    if (CanStandInExpression(Data().variable[static_cast<std::size_t>(variable)].name)) continue;
    variables->SetUnusable(variable, tr("This name cannot stand in an expression: rename it"));
  }
  auto* const functionsLabel = new QLabel(tr("F&unctions:"), box);
  auto* const functions = new QListWidget(box);
  functions->setObjectName("functionList");
  functions->setFixedHeight(RowsHeight(*functions, kListRows));
  functionsLabel->setBuddy(functions);
  for (const std::string_view function : ExpressionFunctions()) {
    functions->addItem(QString::fromStdString(CString(function)) + "()");
  }
  for (QWidget* const widget :
       std::initializer_list<QWidget*>{variablesLabel, variables, functionsLabel, functions}) {
    layout->addWidget(widget);
  }
  connect(variables, &CVariableList::Activated, this, [this, variables] {
    const QListWidgetItem* const item = variables->currentItem();
    if (item != nullptr && item->flags() != Qt::NoItemFlags) Insert(item->text());
  });
  connect(functions, &QListWidget::itemDoubleClicked, this,
          [this](const QListWidgetItem* item) { Insert(item->text(), 1); });
  return box;
}

QWidget* CDataComputeDlg::BuildEditor() {
  auto* const box = new QWidget(this);
  auto* const grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  auto* const listLabel = new QLabel(tr("&Computations:"), box);
  list_ = new QListWidget(box);
  list_->setObjectName("computationList");
  list_->setMinimumHeight(RowsHeight(*list_, kListRows));
  listLabel->setBuddy(list_);
  auto* const add = new QPushButton(tr("&New"), box);
  add->setObjectName("newButton");
  remove_ = new QPushButton(tr("Remove"), box);
  remove_->setObjectName("removeButton");
  for (QPushButton* const button : {add, remove_}) button->setAutoDefault(false);
  auto* const targetLabel = new QLabel(tr("V&ariable:"), box);
  target_ = new QLineEdit(box);
  target_->setObjectName("target");
  targetLabel->setBuddy(target_);
  auto* const expressionLabel = new QLabel(tr("&Expression:"), box);
  expression_ = new QPlainTextEdit(box);
  expression_->setObjectName("expression");
  expression_->setTabChangesFocus(true);
  expression_->setFixedHeight(RowsHeight(*expression_, kEditorRows));
  expressionLabel->setBuddy(expression_);
  state_ = new QLabel(box);
  state_->setObjectName("stateLabel");
  state_->setTextFormat(Qt::PlainText);
  state_->setWordWrap(true);
  state_->setMinimumHeight(2 * state_->fontMetrics().lineSpacing());
  state_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  grid->addWidget(listLabel, 0, 0);
  grid->addWidget(list_, 1, 0, 3, 1);
  grid->addWidget(add, 1, 1);
  grid->addWidget(remove_, 2, 1);
  grid->addWidget(targetLabel, 4, 0, 1, 2);
  grid->addWidget(target_, 5, 0, 1, 2);
  grid->addWidget(expressionLabel, 6, 0, 1, 2);
  grid->addWidget(expression_, 7, 0, 1, 2);
  grid->addWidget(state_, 8, 0, 1, 2);
  grid->setRowStretch(3, 1);
  for (const Computation& computation : choices_.computations) {
    list_->addItem(ItemText(computation));
  }
  list_->setCurrentRow(0);
  connect(add, &QPushButton::clicked, this, [this] { AddComputation(); });
  connect(remove_, &QPushButton::clicked, this, [this] { RemoveComputation(); });
  connect(list_, &QListWidget::currentRowChanged, this, [this] { ShowCurrent(); });
  connect(target_, &QLineEdit::textChanged, this, [this] { TakeEdits(); });
  connect(expression_, &QPlainTextEdit::textChanged, this, [this] { TakeEdits(); });
  return box;
}

Computation& CDataComputeDlg::Current() {
  const int row = std::max(list_->currentRow(), 0);
  return choices_.computations[static_cast<std::size_t>(row)];
}

void CDataComputeDlg::AddComputation() {
  choices_.computations.emplace_back();
  list_->addItem(ItemText({}));
  list_->setCurrentRow(list_->count() - 1);
  target_->setFocus();
  Form().TellChange();
}

void CDataComputeDlg::RemoveComputation() {
  const int row = list_->currentRow();
  if (list_->count() < 2) {
    choices_.computations.front() = {};
  } else {
    choices_.computations.erase(choices_.computations.begin() + row);
    const QSignalBlocker quiet(list_);
    delete list_->takeItem(row);
  }
  ShowCurrent();
  Form().TellChange();
}

void CDataComputeDlg::ShowCurrent() {
  const QSignalBlocker quietTarget(target_);
  const QSignalBlocker quietExpression(expression_);
  target_->setText(DisplayText(Current().target));
  expression_->setPlainText(DisplayText(Current().expression));
  list_->item(std::max(list_->currentRow(), 0))->setText(ItemText(Current()));
  ShowState();
}

void CDataComputeDlg::TakeEdits() {
  QString expression = expression_->toPlainText();
  expression.replace('\n', ' ');
  Current() = {target_->text().toStdString(), expression.toStdString()};
  list_->currentItem()->setText(ItemText(Current()));
  Form().TellChange();
}

void CDataComputeDlg::Insert(const QString& text, int cursorBack) {
  QTextCursor cursor = expression_->textCursor();
  cursor.insertText(text);
  cursor.movePosition(QTextCursor::Left, QTextCursor::MoveAnchor, cursorBack);
  expression_->setTextCursor(cursor);
  expression_->setFocus();
}

void CDataComputeDlg::ShowState() {
  const auto row = static_cast<std::size_t>(std::max(list_->currentRow(), 0));
  const bool empty = Trimmed(Current().expression).empty();
  const CString problem = empty ? CString() : ExpressionProblem(Data(), choices_.computations, row);
  state_->setText(empty ? tr("Type an expression, or double-click variables and functions.")
                  : problem.empty() ? tr("The expression is in order.")
                                    : QString::fromStdString(problem));
  remove_->setEnabled(list_->count() > 1 || !empty || !Current().target.empty());
}

void CDataComputeDlg::Refresh() {
  ShowState();
  CChoicesDlgOf::Refresh();
}

std::optional<ChoiceProblem> CDataComputeDlg::Check() const {
  if (auto problem = CChoicesDlgOf::Check()) return problem;
  return TransformProblem(Data(), choices_);
}
