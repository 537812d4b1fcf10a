#include "vexapp/FileDialogs.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QSettings>
#include <algorithm>
#include <filesystem>

#include "vexapp/Display.h"

namespace {

constexpr std::uint32_t kAskBeforeOverwriting = 0x2;
constexpr std::uint32_t kFileMustExist = 0x1000;
constexpr int kShortList = 2;  // one type and "All Files"

QString Tr(const char* text) {
  return QFileDialog::tr(text);
}

QStringList PatternsInBothCases(const CString& patterns) {
  QStringList result;
  for (const QString& part : QString::fromStdString(patterns).split(';', Qt::SkipEmptyParts)) {
    const QString pattern = part.trimmed();
    // On Linux "*.*" would leave out names without an extension.
    if (pattern == "*.*") return {"*"};
    for (const QString& form : {pattern, pattern.toLower(), pattern.toUpper()}) {
      if (!result.contains(form)) result << form;
    }
  }
  return result;
}

// The extension of a row's files, without its dot; empty where any will do.
QString RowExtension(const FileDialogRow& row) {
  QString extension = QString::fromStdString(row.defaultExtension).trimmed();
  if (extension.isEmpty()) {
    extension = QString::fromStdString(row.patterns).section(';', 0, 0).section('.', 1).trimmed();
    extension.remove('*').remove('?');
  }
  return extension.startsWith('.') ? extension.mid(1) : extension;
}

bool FitsSomeRow(const QString& name, const std::vector<FileDialogRow>& rows) {
  return std::any_of(rows.begin(), rows.end(), [&](const FileDialogRow& row) {
    const QStringList patterns = PatternsInBothCases(row.patterns);
    return !patterns.contains("*") && QDir::match(patterns, name);
  });
}

// A name with an extension gets that of the row instead.
QString WithExtensionOf(const FileDialogRow& row, const QString& name) {
  const QString extension = RowExtension(row);
  std::filesystem::path path(PathBytes(name));
  if (extension.isEmpty() || !path.has_extension()) return name;
  return PathText(path.replace_extension(PathBytes(extension)).string());
}

QString ProposedName(const FileDialogRequest& request, int row) {
  QString name = PathText(request.fileName);
  const bool offersTypes = request.save && request.rows.size() > 1;
  if (!offersTypes || FitsSomeRow(name, request.rows)) return name;
  return WithExtensionOf(request.rows.at(static_cast<std::size_t>(row)), name);
}

void FollowRow(QFileDialog& dialog, const std::vector<FileDialogRow>& rows, const QString& filter) {
  const FileDialogRow& row = rows.at(static_cast<std::size_t>(RowOfFilter(rows, filter)));
  // A platform's own dialog has no such line, and Qt's does not take a name while it is typed in.
  if (auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit")) {
    edit->setText(WithExtensionOf(row, edit->text()));
  } else {
    dialog.selectFile(WithExtensionOf(row, dialog.selectedFiles().value(0)));
  }
}

QString RowSetting(const FileDialogRequest& request) {
  return "fileDialogs/" + ShownText(request.title) + "/row";
}

int FirstRow(const FileDialogRequest& request) {
  const int count = static_cast<int>(request.rows.size());
  const QString last = QSettings().value(RowSetting(request)).toString();
  for (int row = 0; row < count && !request.title.empty(); ++row) {
    if (ShownText(request.rows[static_cast<std::size_t>(row)].displayName) == last) return row;
  }
  // Among dozens of types few files are of the first one.
  const bool longList = !request.save && count > kShortList && request.selectedRow == 0;
  return longList ? count - 1 : std::clamp(request.selectedRow, 0, std::max(0, count - 1));
}

void RememberRow(const FileDialogRequest& request, int index) {
  if (request.title.empty() || request.rows.size() < 2) return;
  const FileDialogRow& row = request.rows.at(static_cast<std::size_t>(index));
  // The next name to save under would start without a type.
  if (request.save && RowExtension(row).isEmpty()) return;
  QSettings().setValue(RowSetting(request), ShownText(row.displayName));
}

// The file that the component writes: it gives a name without an extension that of the row.
QString TargetOf(const FileDialogChoice& choice, const std::vector<FileDialogRow>& rows) {
  std::filesystem::path path(choice.path);
  if (!rows.empty() && !path.has_extension()) {
    path.replace_extension(rows.at(static_cast<std::size_t>(choice.row)).defaultExtension);
  }
  return PathText(path.string());
}

QMessageBox::StandardButton Ask(const QString& text, QMessageBox::StandardButtons buttons,
                                QWidget* parent) {
  QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), text, buttons, parent);
  box.setTextFormat(Qt::PlainText);
  if (buttons & QMessageBox::No) box.setDefaultButton(QMessageBox::No);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

bool MayBeWritten(const FileDialogRequest& request, const QString& target, QWidget* parent,
                  const TargetCheck& check) {
  if (const QString reason = check ? check(target) : QString(); !reason.isEmpty()) {
    Ask(reason, QMessageBox::Ok, parent);
    return false;
  }
  if (!(request.flags & kAskBeforeOverwriting) || !QFileInfo::exists(target)) return true;
  const QString question =
      Tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo(target).fileName());
  return Ask(question, QMessageBox::Yes | QMessageBox::No, parent) == QMessageBox::Yes;
}

}  // namespace

QStringList NameFilters(const std::vector<FileDialogRow>& rows) {
  QStringList filters;
  for (const FileDialogRow& row : rows) {
    filters << QString("%1 (%2)").arg(ShownText(row.displayName),
                                      PatternsInBothCases(row.patterns).join(' '));
  }
  return filters;
}

// Depending on the platform the dialog gives the whole line of the type box, or what it shows of
// it.
int RowOfFilter(const std::vector<FileDialogRow>& rows, const QString& chosen) {
  const QStringList filters = NameFilters(rows);
  for (int row = 0; row < filters.size(); ++row) {
    const QString& filter = filters[row];
    if (filter == chosen || filter.startsWith(chosen.trimmed() + " (")) return row;
  }
  return 0;
}

std::unique_ptr<QFileDialog> MakeFileDialog(const FileDialogRequest& request, QWidget* parent) {
  auto dialog = std::make_unique<QFileDialog>(parent);
  dialog->setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(request.flags & kFileMustExist ? QFileDialog::ExistingFile
                                                     : QFileDialog::AnyFile);
  // Asked once the name has its extension.
  dialog->setOption(QFileDialog::DontConfirmOverwrite);
  // The rows' names carry their patterns already.
  dialog->setOption(QFileDialog::HideNameFilterDetails);
  if (!request.title.empty()) dialog->setWindowTitle(ShownText(request.title));
  if (!request.folder.empty()) dialog->setDirectory(PathText(request.folder));
  const QStringList filters = NameFilters(request.rows);
  const int row = FirstRow(request);
  dialog->setNameFilters(filters);
  if (!filters.isEmpty()) dialog->selectNameFilter(filters[row]);
  if (!request.fileName.empty()) dialog->selectFile(ProposedName(request, row));
  if (request.save && filters.size() > 1) {
    QObject::connect(dialog.get(), &QFileDialog::filterSelected, dialog.get(),
                     [&box = *dialog, rows = request.rows](const QString& filter) {
                       FollowRow(box, rows, filter);
                     });
  }
  return dialog;
}

bool RunFileDialog(const FileDialogRequest& request, FileDialogChoice& choice, QWidget* parent,
                   const TargetCheck& check) {
  const auto dialog = MakeFileDialog(request, parent);
  while (dialog->exec() == QDialog::Accepted) {
    choice.row = RowOfFilter(request.rows, dialog->selectedNameFilter());
    choice.path = PathBytes(dialog->selectedFiles().value(0));
    const QString target = TargetOf(choice, request.rows);
    if (request.save && !MayBeWritten(request, target, parent, check)) continue;
    RememberRow(request, choice.row);
    return true;
  }
  return false;
}
