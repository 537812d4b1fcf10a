#include "syntax/dialogs/DataHTDlg.h"

#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <algorithm>
#include <numeric>

#include "syntax/dialogs/ProcedureButtons.h"
#include "syntax/dialogs/VariableList.h"

CDataHTDlg::CDataHTDlg(CDataDoc& document, HomogeneityChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  Build();
  ShowCommands();
  Finish(
      tr("Tests whether two ordinal variables with the same categories have the same "
         "distribution. Select two variables in the list: their test joins the commands. Several "
         "tests can be run at once."));
}

void CDataHTDlg::Build() {
  auto* const box = new QWidget(this);
  auto* const grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  auto* const variablesLabel = new QLabel(tr("Select two ordinal variables:"), box);
  variables_ = new CVariableList(Data(), box);
  variables_->setObjectName("variableList");
  variables_->setDragDropMode(QAbstractItemView::NoDragDrop);
  variablesLabel->setBuddy(variables_);
  std::vector<int> all(static_cast<std::size_t>(Data().variables));
  std::iota(all.begin(), all.end(), 0);
  variables_->ShowVariables(all);
  variables_->SetEqualNamesUnusable();
  for (const int variable : all) {
    if (Data().variable[static_cast<std::size_t>(variable)].type == kOrdinal) continue;
    variables_->SetUnusable(variable,
                            tr("Only ordinal variables: Data > Define Variables sets the type"));
  }
  auto* const commandsLabel = new QLabel(tr("&Commands:"), box);
  commands_ = new QListWidget(box);
  commands_->setObjectName("commandList");
  commandsLabel->setBuddy(commands_);
  remove_ = new QPushButton(tr("Remove"), box);
  remove_->setObjectName("removeButton");
  remove_->setAutoDefault(false);
  shown_ = new QLabel(box);
  shown_->setObjectName("shownLabel");
  shown_->setTextFormat(Qt::PlainText);
  grid->addWidget(variablesLabel, 0, 0);
  grid->addWidget(variables_, 1, 0);
  grid->addWidget(remove_, 1, 1, Qt::AlignTop);
  grid->addWidget(commandsLabel, 0, 2);
  grid->addWidget(commands_, 1, 2);
  grid->addWidget(shown_, 2, 0, 1, 3);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(2, 1);
  Form().AddTop(box);
  connect(variables_, &QListWidget::itemSelectionChanged, this, [this] { TakeSelection(); });
  connect(commands_, &QListWidget::currentRowChanged, this, [this] { Refresh(); });
  connect(remove_, &QPushButton::clicked, this, [this] { RemoveSelected(); });
}

bool CDataHTDlg::IsChosen(const CString& first, const CString& second) const {
  for (std::size_t i = 0; i + 1 < choices_.pairs.size(); i += 2) {
    if (choices_.pairs[i] == first && choices_.pairs[i + 1] == second) return true;
  }
  return false;
}

void CDataHTDlg::TakeSelection() {
  const std::vector<int> selected = variables_->SelectedVariables();
  if (selected.size() != 2) return;
  const CString& first = Data().variable[static_cast<std::size_t>(selected.front())].name;
  const CString& second = Data().variable[static_cast<std::size_t>(selected.back())].name;
  if (IsChosen(first, second)) return;
  choices_.pairs.insert(choices_.pairs.end(), {first, second});
  ShowCommands();
  Form().TellChange();
}

void CDataHTDlg::RemoveSelected() {
  const int row = commands_->currentRow();
  if (row < 0) return;
  const auto first = choices_.pairs.begin() + 2 * row;
  choices_.pairs.erase(first, first + 2);
  ShowCommands();
  Form().TellChange();
}

void CDataHTDlg::ShowCommands() {
  const QSignalBlocker quiet(commands_);
  commands_->clear();
  for (const CString& line : TextOf(Data(), choices_).lines) {
    commands_->addItem(QString::fromStdString(line));
  }
  commands_->setCurrentRow(commands_->count() - 1);
}

void CDataHTDlg::Refresh() {
  const bool any = !choices_.pairs.empty();
  Buttons().SetComplete(any);
  Buttons().SetOutputOptionsEnabled(any);
  const int row = commands_->currentRow();
  remove_->setEnabled(row >= 0);
  shown_->setText(
      row < 0 ? QString()
              : tr("Homogeneity test for %1 and %2")
                    .arg(DisplayText(choices_.pairs[static_cast<std::size_t>(2 * row)]),
                         DisplayText(choices_.pairs[static_cast<std::size_t>(2 * row) + 1])));
  CChoicesDlgOf::Refresh();
}
