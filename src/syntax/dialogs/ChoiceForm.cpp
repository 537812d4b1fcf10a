#include "syntax/dialogs/ChoiceForm.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QToolButton>

#include "host/Host.h"
#include "syntax/dialogs/VariableList.h"
#include "syntax/procedures/ChoiceChecks.h"

namespace {

constexpr int kNumberCharacters = 12;
constexpr int kFileCharacters = 28;
constexpr int kBlockSpacing = 12;

int CharacterWidth(const QWidget& widget, int characters) {
  return widget.fontMetrics().horizontalAdvance('0') * characters;
}

}  // namespace

CChoiceForm::CChoiceForm(const TORVIKSTRUCT& dataSet, QWidget* parent)
    : QWidget(parent), data_(dataSet), layout_(new QVBoxLayout(this)), form_(new QFormLayout) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(kBlockSpacing);
  form_->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  layout_->addLayout(form_);
}

CVariableChooser& CChoiceForm::AddChooser(const QString& title) {
  chooser_ = new CVariableChooser(data_, title, this);
  layout_->insertWidget(0, chooser_, 1);
  chooser_->Source().SetEqualNamesUnusable();
  connect(chooser_, &CVariableChooser::Changed, this, &CChoiceForm::ReadLists);
  return *chooser_;
}

int CChoiceForm::AddList(const ChooserTarget& target, NameList& names, int group) {
  const int number = chooser_->AddTarget(target, group);
  std::vector<int> variables;
  for (const std::int32_t variable : VariableNumbers(data_, names)) {
    if (IsVariableNumber(data_, variable)) variables.push_back(variable - 1);
  }
  chooser_->ShowVariables(number, variables);
  lists_.emplace_back(number, &names);
  return number;
}

void CChoiceForm::ReadLists() {
  for (const auto& [number, names] : lists_) {
    names->clear();
    for (const int variable : chooser_->Variables(number)) {
      names->push_back(data_.variable[static_cast<std::size_t>(variable)].name);
    }
  }
  emit Changed();
}

QWidget& CChoiceForm::AddCheck(const QString& text, bool& value, const char* name) {
  auto* const check = new QCheckBox(text, this);
  check->setObjectName(name);
  check->setChecked(value);
  connect(check, &QCheckBox::toggled, this, [this, &value](bool checked) {
    value = checked;
    emit Changed();
  });
  form_->addRow(check);
  return *check;
}

QLineEdit* CChoiceForm::MakeEdit(CString& value, const char* name, bool isFile) {
  auto* const edit = new QLineEdit(this);
  edit->setObjectName(name);
  edit->setText(isFile ? FileNameText(value) : QString::fromStdString(value));
  edit->setMinimumWidth(CharacterWidth(*edit, isFile ? kFileCharacters : kNumberCharacters));
  if (!isFile) edit->setMaximumWidth(edit->minimumWidth());
  connect(edit, &QLineEdit::textChanged, this, [this, &value, isFile](const QString& text) {
    value = isFile ? FileNameBytes(text) : text.toStdString();
    emit Changed();
  });
  return edit;
}

QLineEdit& CChoiceForm::AddText(const QString& label, CString& value, const char* name) {
  QLineEdit* const edit = MakeEdit(value, name, false);
  form_->addRow(label, edit);
  return *edit;
}

QWidget* CChoiceForm::MakeFileButton(QLineEdit* edit, bool save, const QString& pattern) {
  auto* const button = new QToolButton(this);
  button->setObjectName(edit->objectName() + "Button");
  button->setText("...");
  button->setToolTip(tr("Choose a file"));
  button->setAccessibleName(tr("Choose a file"));
  connect(button, &QToolButton::clicked, this, [edit, save, pattern] {
    FileDialogRequest request;
    request.save = save;
    request.flags = save ? FileDialogRequest::kSaveFlags : FileDialogRequest::kOpenFlags;
    request.title = tr("Choose a File").toStdString();
    request.fileName = FileNameBytes(edit->text());
    if (!pattern.isEmpty()) {
      request.rows = {
          {tr("System Data Files (%1)").arg(pattern).toStdString(), pattern.toStdString(), ".VSF"}};
    }
    request.rows.push_back({tr("All Files (*)").toStdString(), "*", ""});
    FileDialogChoice choice;
    if (Host().AskForFile(request, choice)) edit->setText(FileNameText(choice.path));
    edit->setFocus();
  });
  return button;
}

QWidget* CChoiceForm::MakeRow(const std::vector<QWidget*>& widgets, bool stretch) {
  auto* const row = new QWidget(this);
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* const widget : widgets) layout->addWidget(widget);
  if (stretch) layout->addStretch(1);
  return row;
}

void CChoiceForm::AddFile(const QString& label, CString& value, const char* name) {
  QLineEdit* const edit = MakeEdit(value, name, true);
  form_->addRow(label, MakeRow({edit, MakeFileButton(edit, false, {})}, false));
  if (auto* const text = qobject_cast<QLabel*>(form_->labelForField(edit->parentWidget()))) {
    text->setBuddy(edit);
  }
}

void CChoiceForm::AddNewFile(const QString& label, CString& value, const char* name,
                             const QString& pattern) {
  QLineEdit* const edit = MakeEdit(value, name, true);
  form_->addRow(label, MakeRow({edit, MakeFileButton(edit, true, pattern)}, false));
  if (auto* const text = qobject_cast<QLabel*>(form_->labelForField(edit->parentWidget()))) {
    text->setBuddy(edit);
  }
}

void CChoiceForm::AddSavedFile(const QString& text, bool& save, CString& value, const char* name,
                               const QString& label) {
  auto* const check = new QCheckBox(text, this);
  check->setObjectName(QString(name) + "Check");
  check->setChecked(save);
  QLineEdit* const edit = MakeEdit(value, name, true);
  edit->setAccessibleName(text);
  std::vector<QWidget*> widgets = {edit, MakeFileButton(edit, true, {})};
  if (!label.isEmpty()) widgets.insert(widgets.begin(), new QLabel(label, this));
  QWidget* const file = MakeRow(widgets, false);
  file->setEnabled(save);
  connect(check, &QCheckBox::toggled, this, [this, &save, file, edit](bool checked) {
    save = checked;
    file->setEnabled(checked);
    if (checked) edit->setFocus();
    emit Changed();
  });
  form_->addRow(check, file);
}

void CChoiceForm::AddRadioRow(const QString& label, const QStringList& texts, int value,
                              const char* name, std::function<void(int)> take) {
  auto* const group = new QButtonGroup(this);
  std::vector<QWidget*> buttons;
  for (const QString& text : texts) {
    auto* const button = new QRadioButton(text, this);
    const int number = static_cast<int>(buttons.size());
    button->setObjectName(QString("%1%2").arg(name).arg(number));
    button->setChecked(number == value);
    group->addButton(button, number);
    buttons.push_back(button);
  }
  connect(group, &QButtonGroup::idToggled, this,
          [this, take = std::move(take)](int number, bool checked) {
            if (!checked) return;
            take(number);
            emit Changed();
          });
  QWidget* const row = MakeRow(buttons, true);
  label.isEmpty() ? form_->addRow(row) : form_->addRow(label, row);
}

void CChoiceForm::AddBoxRow(const QString& label, const QStringList& texts, int value,
                            const char* name, std::function<void(int)> take) {
  auto* const box = new QComboBox(this);
  box->setObjectName(name);
  box->addItems(texts);
  box->setCurrentIndex(value);
  connect(box, &QComboBox::currentIndexChanged, this, [this, take = std::move(take)](int number) {
    take(number);
    emit Changed();
  });
  form_->addRow(label, box);
}

void CChoiceForm::AddTop(QWidget* widget) {
  layout_->insertWidget(0, widget, 1);
}

void CChoiceForm::AddRow(QWidget* widget) {
  form_->addRow(widget);
}

void CChoiceForm::AddNote(const QString& text) {
  auto* const note = new QLabel(text, this);
  note->setWordWrap(true);
  note->setForegroundRole(QPalette::PlaceholderText);
  form_->addRow(note);
}

void CChoiceForm::ShowField(const char* name) {
  auto* const control = findChild<QWidget*>(name);
  if (control == nullptr) return;
  control->setFocus();
  if (auto* const edit = qobject_cast<QLineEdit*>(control)) edit->selectAll();
}

void CChoiceForm::TellChange() {
  emit Changed();
}

namespace {

ChooserTarget Only(const TORVIKSTRUCT& data, ChooserTarget target,
                   bool (*isKind)(const TORVIKSTRUCT&, const CString&), const QString& whyNot) {
  target.accepts = [&data, isKind](int variable) {
    return isKind(data, data.variable[static_cast<std::size_t>(variable)].name);
  };
  target.whyNot = whyNot;
  return target;
}

}  // namespace

ChooserTarget CChoiceForm::OnlyOrdinal(ChooserTarget target) const {
  return Only(data_, std::move(target), IsOrdinalVariable,
              tr("Only ordinal variables: Data > Define Variables sets the type"));
}

ChooserTarget CChoiceForm::OnlyCensored(ChooserTarget target) const {
  return Only(data_, std::move(target), IsCensoredVariable,
              tr("Only censored variables: Data > Define Variables sets the type"));
}

QString FileNameText(const CString& name) {
  return QFile::decodeName(name.c_str());
}

CString FileNameBytes(const QString& name) {
  return QFile::encodeName(name).toStdString();
}
