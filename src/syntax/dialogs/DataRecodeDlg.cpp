#include "syntax/dialogs/DataRecodeDlg.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

#include "datadoc/DataDoc.h"
#include "host/Text.h"
#include "syntax/dialogs/VariableList.h"
#include "syntax/transform/RecodeCounts.h"
#include "syntax/transform/TransformCheck.h"

namespace {

enum Column { kOld, kNew, kCells, kColumns };

constexpr int kShownRules = 4;
constexpr int kCountDelay = 300;                     // milliseconds after the last change
constexpr std::int64_t kMostCountedCells = 5000000;  // well below a second

void SetCells(QTableWidget& table, int row, const QString& text) {
  auto* const item = new QTableWidgetItem(text);
  item->setFlags(Qt::ItemIsEnabled);
  item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  table.setItem(row, kCells, item);
}

}  // namespace

CDataRecodeDlg::CDataRecodeDlg(CDataDoc& document, RecodeChoices last, QWidget* parent)
    : CChoicesDlgOf(document, std::move(last), parent) {
  if (choices_.rules.empty()) choices_.rules.emplace_back();
  Form().AddChooser(tr("&Variables:"));
  Form().AddList({tr("Variables to recode:"), tr("Select >>")}, choices_.variables);
  Form().AddRow(BuildRules());
  Form().AddNewFile(tr("New data &file:"), choices_.newData, "newData", "*.VSF");
  countLater_.setSingleShot(true);
  countLater_.setInterval(kCountDelay);
  connect(&countLater_, &QTimer::timeout, this, [this] { Count(); });
  ShowRules();
  Finish(
      tr("Gives values of variables new values and writes all variables to a new data file; the "
         "data file itself stays as it is. Old values are numbers and ranges with commas between "
         "them, for example 1,3-5; LO and HI stand for the extremes. The first rule that fits is "
         "applied, other values stay. A single old value can be the code of a missing value; a "
         "range takes only values that are not missing."));
}

QWidget* CDataRecodeDlg::BuildRules() {
  auto* const box = new QWidget(this);
  auto* const grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);
  auto* const label = new QLabel(tr("Old and &new values:"), box);
  rules_ = new QTableWidget(0, kColumns, box);
  rules_->setObjectName("rules");
  rules_->setHorizontalHeaderLabels({tr("Old values"), tr("New value"), tr("Cells")});
  rules_->horizontalHeader()->setSectionResizeMode(kOld, QHeaderView::Stretch);
  rules_->verticalHeader()->hide();
  rules_->setTabKeyNavigation(false);
  rules_->setFixedHeight((kShownRules + 1) * rules_->verticalHeader()->defaultSectionSize() + 4);
  rules_->setToolTip(
      tr("Old values: numbers and ranges such as 1,3-5 or LO-0; double-click to edit"));
  label->setBuddy(rules_);
  auto* const add = new QPushButton(tr("&Add Rule"), box);
  add->setObjectName("addRuleButton");
  remove_ = new QPushButton(tr("Remove Rule"), box);
  remove_->setObjectName("removeRuleButton");
  for (QPushButton* const button : {add, remove_}) button->setAutoDefault(false);
  counted_ = new QLabel(box);
  counted_->setObjectName("countedLabel");
  counted_->setTextFormat(Qt::PlainText);
  grid->addWidget(label, 0, 0);
  grid->addWidget(rules_, 1, 0, 3, 1);
  grid->addWidget(add, 1, 1);
  grid->addWidget(remove_, 2, 1);
  grid->addWidget(counted_, 4, 0, 1, 2);
  grid->setRowStretch(3, 1);
  connect(rules_, &QTableWidget::cellChanged, this, [this](int row, int) { TakeRule(row); });
  connect(rules_, &QTableWidget::currentCellChanged, this, [this] { Refresh(); });
  connect(add, &QPushButton::clicked, this, [this] { AddRule(); });
  connect(remove_, &QPushButton::clicked, this, [this] { RemoveRule(); });
  return box;
}

void CDataRecodeDlg::ShowRules() {
  const QSignalBlocker quiet(rules_);
  rules_->setRowCount(static_cast<int>(choices_.rules.size()));
  for (int row = 0; row < rules_->rowCount(); ++row) {
    const RecodeRule& rule = choices_.rules[static_cast<std::size_t>(row)];
    rules_->setItem(row, kOld, new QTableWidgetItem(DisplayText(rule.old)));
    rules_->setItem(row, kNew, new QTableWidgetItem(DisplayText(rule.value)));
    SetCells(*rules_, row, {});
  }
}

void CDataRecodeDlg::TakeRule(int row) {
  RecodeRule& rule = choices_.rules[static_cast<std::size_t>(row)];
  rule = {rules_->item(row, kOld)->text().toStdString(),
          rules_->item(row, kNew)->text().toStdString()};
  Form().TellChange();
}

void CDataRecodeDlg::AddRule() {
  choices_.rules.emplace_back();
  ShowRules();
  rules_->setCurrentCell(rules_->rowCount() - 1, kOld);
  rules_->editItem(rules_->currentItem());
  Form().TellChange();
}

void CDataRecodeDlg::RemoveRule() {
  const int row = rules_->currentRow();
  if (row < 0) return;
  choices_.rules.erase(choices_.rules.begin() + row);
  if (choices_.rules.empty()) choices_.rules.emplace_back();
  ShowRules();
  Form().TellChange();
}

void CDataRecodeDlg::Refresh() {
  remove_->setEnabled(rules_->currentRow() >= 0);
  countLater_.start();
  CChoicesDlgOf::Refresh();
}

void CDataRecodeDlg::Count() {
  QString state;
  for (const RecodeRule& rule : choices_.rules) {
    if (!state.isEmpty() || Trimmed(rule.old).empty() || Trimmed(rule.value).empty()) continue;
    state = QString::fromStdString(RuleProblem(Data(), rule));
  }
  std::optional<RecodeCounts> counts;
  if (state.isEmpty() && !choices_.variables.empty()) {
    counts = CountRecoded(Document().GetPathName(), choices_, kMostCountedCells);
  }
  const QSignalBlocker quiet(rules_);
  for (int row = 0; row < rules_->rowCount(); ++row) {
    SetCells(*rules_, row,
             counts ? locale().toString(qlonglong(counts->cells[static_cast<std::size_t>(row)]))
                    : QString());
  }
  if (counts) {
    state = (counts->all ? tr("Cells that stay as they are: %L1 (all %L2 cases counted)")
                         : tr("Cells that stay as they are: %L1 (the first %L2 cases counted)"))
                .arg(counts->others)
                .arg(counts->cases);
  }
  counted_->setText(state);
}

std::optional<ChoiceProblem> CDataRecodeDlg::Check() const {
  if (auto problem = CChoicesDlgOf::Check()) return problem;
  return TransformProblem(Data(), choices_);
}
