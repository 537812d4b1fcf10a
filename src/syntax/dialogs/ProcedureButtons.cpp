#include "syntax/dialogs/ProcedureButtons.h"

#include <QHBoxLayout>
#include <QPushButton>

CProcedureButtons::CProcedureButtons(QWidget* parent)
    : QWidget(parent),
      output_(new QPushButton(tr("&Output Options"), this)),
      syntax_(new QPushButton(tr("&Syntax"), this)),
      help_(new QPushButton(tr("Help"), this)),
      run_(new QPushButton(tr("&Run"), this)),
      cancel_(new QPushButton(tr("Cancel"), this)) {
  output_->setObjectName("outputButton");
  syntax_->setObjectName("syntaxButton");
  help_->setObjectName("helpButton");
  help_->setShortcut(QKeySequence::HelpContents);
  run_->setObjectName("runButton");
  cancel_->setObjectName("cancelButton");
  run_->setDefault(true);
  // Enter in a field means Run, whichever button was pressed before.
  for (QPushButton* const button : {output_, syntax_, help_, cancel_})
    button->setAutoDefault(false);
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(output_);
  row->addWidget(syntax_);
  row->addWidget(help_);
  row->addStretch(1);
  row->addSpacing(24);
  row->addWidget(run_);
  row->addWidget(cancel_);
  connect(output_, &QPushButton::clicked, this, &CProcedureButtons::OutputOptionsAsked);
  connect(syntax_, &QPushButton::clicked, this, &CProcedureButtons::SyntaxAsked);
  connect(help_, &QPushButton::clicked, this, &CProcedureButtons::HelpAsked);
  connect(run_, &QPushButton::clicked, this, &CProcedureButtons::RunAsked);
  connect(cancel_, &QPushButton::clicked, this, &CProcedureButtons::CancelAsked);
}

void CProcedureButtons::HideHelp() {
  help_->hide();
  help_->setEnabled(false);  // its key too
}

void CProcedureButtons::HideOutputOptions() {
  output_->hide();
}

void CProcedureButtons::SetOutputOptionsEnabled(bool enabled) {
  output_->setEnabled(enabled);
}

void CProcedureButtons::SetComplete(bool complete) {
  run_->setEnabled(complete);
  syntax_->setEnabled(complete);
}
