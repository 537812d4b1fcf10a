#include "syntax/dialogs/ProbitThresholdsDlg.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>

CProbitThresholdsDlg::CProbitThresholdsDlg(const TORVIKSTRUCT& dataSet, ProbitChoices choices,
                                           const QString& title, QWidget* parent)
    : QDialog(parent),
      choices_(std::move(choices)),
      data_(dataSet),
      form_(new CChoiceForm(dataSet, this)) {
  setWindowTitle(title);
  setSizeGripEnabled(true);
  auto* const layout = new QVBoxLayout(this);
  layout->setSpacing(12);
  layout->addWidget(form_, 1);
  auto* const row = new QHBoxLayout;
  auto* const previous = new QPushButton(tr("<< Previous"), this);
  previous->setObjectName("previousButton");
  previous->setDefault(true);
  auto* const cancel = new QPushButton(tr("Cancel"), this);
  cancel->setObjectName("cancelButton");
  cancel->setAutoDefault(false);
  row->addStretch(1);
  row->addWidget(previous);
  row->addWidget(cancel);
  layout->addLayout(row);
  connect(previous, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void CProbitThresholdsDlg::AddVariables(const QString& itemText, NameList& names) {
  Form().AddChooser(tr("Ordinal variables:"));
  ChooserTarget target{{}, tr("Add >>"), itemText};
  target.accepts = [this](int variable) {
    const CString& name = data_.variable[static_cast<std::size_t>(variable)].name;
    return std::find(choices_.y.begin(), choices_.y.end(), name) != choices_.y.end();
  };
  target.whyNot = tr("Only the ordinal variables of the regression");
  Form().AddList(target, names);
  for (int variable = 0; variable < data_.variables; ++variable) {
    if (!target.accepts(variable)) Form().Chooser().SetUnusable(variable, target.whyNot);
  }
}
