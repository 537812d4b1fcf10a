#include "vexapp/FileDialogs.h"

#include <QFileInfo>
#include <QMessageBox>

#include "host/Text.h"
#include "vexapp/Display.h"

namespace {

constexpr std::uint32_t kAskBeforeOverwriting = 0x2;
constexpr std::uint32_t kFileMustExist = 0x1000;

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

// The name that the component gives a file without an extension.
QString WithExtension(const QString& path, const FileDialogRow& row) {
  const std::string_view extension = Trimmed(row.defaultExtension);
  if (extension.empty() || !QFileInfo(path).suffix().isEmpty()) return path;
  const QString text = QString::fromUtf8(extension.data(), static_cast<int>(extension.size()));
  return path + (text.startsWith('.') ? text : '.' + text);
}

bool MayBeReplaced(const QString& path, QWidget* parent) {
  const QString question =
      Tr("%1 already exists.\nDo you want to replace it?").arg(QFileInfo(path).fileName());
  return QMessageBox::warning(parent, Tr("Save As"), question, QMessageBox::Yes | QMessageBox::No,
                              QMessageBox::No) == QMessageBox::Yes;
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
  dialog->setOption(QFileDialog::DontConfirmOverwrite, !(request.flags & kAskBeforeOverwriting));
  // The rows' names carry their patterns already.
  dialog->setOption(QFileDialog::HideNameFilterDetails);
  if (!request.title.empty()) dialog->setWindowTitle(ShownText(request.title));
  if (!request.folder.empty()) dialog->setDirectory(PathText(request.folder));
  const QStringList filters = NameFilters(request.rows);
  dialog->setNameFilters(filters);
  if (request.selectedRow >= 0 && request.selectedRow < filters.size()) {
    dialog->selectNameFilter(filters[request.selectedRow]);
  }
  if (!request.fileName.empty()) dialog->selectFile(PathText(request.fileName));
  return dialog;
}

bool RunFileDialog(const FileDialogRequest& request, FileDialogChoice& choice, QWidget* parent) {
  const auto dialog = MakeFileDialog(request, parent);
  while (dialog->exec() == QDialog::Accepted) {
    const QString path = dialog->selectedFiles().value(0);
    choice.row = RowOfFilter(request.rows, dialog->selectedNameFilter());
    choice.path = PathBytes(path);
    if (!request.save || request.rows.empty()) return true;
    const QString target = WithExtension(path, request.rows[static_cast<std::size_t>(choice.row)]);
    if (target == path || !QFileInfo::exists(target) || MayBeReplaced(target, dialog.get())) {
      return true;
    }
  }
  return false;
}
