#include "syntax/dialogs/ChoicesDlg.h"

#include <QFontDatabase>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <filesystem>

#include "datadoc/DataDoc.h"
#include "host/Host.h"
#include "syntax/dialogs/ProcedureButtons.h"
#include "syntax/dialogs/VariableList.h"

namespace {

namespace fs = std::filesystem;

constexpr int kShownLines = 3;

}  // namespace

CChoicesDlg::CChoicesDlg(CDataDoc& document, const ProcedureEntry& procedure, QWidget* parent)
    : CProcedureDlg(document, procedure.outputMode, parent),
      form_(new CChoiceForm(*document.GetTorvik(), this)),
      lines_(new QPlainTextEdit(this)),
      buttons_(new CProcedureButtons(this)) {
  setWindowTitle(procedure.title);
  setSizeGripEnabled(true);
  lines_->setObjectName("linesEdit");
  lines_->setReadOnly(true);
  lines_->setFocusPolicy(Qt::ClickFocus);
  lines_->setLineWrapMode(QPlainTextEdit::NoWrap);
  lines_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  lines_->setFixedHeight(lines_->fontMetrics().lineSpacing() * kShownLines + 12);
  lines_->setToolTip(tr("The lines that are written to the syntax file"));
  lines_->setAccessibleName(lines_->toolTip());
  if (procedure.outputMode == kNoOutputOptions) buttons_->HideOutputOptions();
  auto* const layout = new QVBoxLayout(this);
  layout->setSpacing(12);
  layout->addWidget(form_, 1);
  layout->addWidget(lines_);
  layout->addWidget(buttons_);
  ConnectButtons(*buttons_);
  // Comes after the one above: the options are chosen by then.
  connect(buttons_, &CProcedureButtons::OutputOptionsAsked, this, [this] { Refresh(); });
  connect(buttons_, &CProcedureButtons::HelpAsked, this, &CChoicesDlg::ShowHelp);
  connect(form_, &CChoiceForm::Changed, this, [this] { Refresh(); });
}

const TORVIKSTRUCT& CChoicesDlg::Data() const {
  return *Document().GetTorvik();
}

CString CChoicesDlg::Folder() const {
  return fs::path(Document().GetPathName()).parent_path().string();
}

void CChoicesDlg::Finish(const QString& help) {
  help_ = help;
  // The buttons were made first; tabbing reaches them last.
  QWidget* last = form_;
  for (QWidget* next = form_->nextInFocusChain(); next != form_; next = next->nextInFocusChain()) {
    if (form_->isAncestorOf(next) && next->focusPolicy() != Qt::NoFocus) last = next;
  }
  for (QPushButton* const button : buttons_->findChildren<QPushButton*>()) {
    setTabOrder(last, button);
    last = button;
  }
  Refresh();
}

void CChoicesDlg::Refresh() {
  QString text;
  for (const CString& line : Job().lines) text += QString::fromStdString(line) + '\n';
  text.chop(1);
  if (text.startsWith('\n')) text.remove(0, 1);
  if (lines_->toPlainText() != text) lines_->setPlainText(text);
}

ProcedureJob CChoicesDlg::Job() const {
  return JobOf(Data(), *Document().GetOutputOptions(), Choices());
}

std::optional<ChoiceProblem> CChoicesDlg::Check() const {
  if (auto problem = CheckChoices(Data(), Choices(), Folder())) return problem;
  const CString newData = TextOf(Data(), Choices()).newData;
  std::error_code error;
  if (newData.empty() ||
      !fs::equivalent(fs::path(Folder()) / newData, Document().GetPathName(), error)) {
    return std::nullopt;
  }
  return ChoiceProblem{"The new data cannot take the place of the data file.", {}, "newData"};
}

bool CChoicesDlg::MayReplaceNewData() const {
  const CString newData = TextOf(Data(), Choices()).newData;
  std::error_code error;
  if (newData.empty() || !fs::exists(fs::path(Folder()) / newData, error)) return true;
  return AfxMessageBox(newData + " exists already.\nDo you want to replace it?",
                       MessageButtons::YesNo) == MessageAnswer::Yes;
}

void CChoicesDlg::EndWith(int endCode) {
  const auto problem = Check();
  if (problem) {
    AfxMessageBox(problem->text, MessageButtons::Ok, problem->caption);
    form_->ShowField(problem->field);
  } else if (endCode != kEndRun || MayReplaceNewData()) {
    done(endCode);
  }
}

int CChoicesDlg::OutputTests() const {
  return TestsOf(Data(), Choices());
}

void CChoicesDlg::ShowHelp() {
  QMessageBox::information(this, windowTitle(), help_);
}
