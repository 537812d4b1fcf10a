// Open and save dialogs from what the component asks for.
#pragma once

#include <QFileDialog>
#include <QStringList>
#include <functional>
#include <memory>

#include "host/Host.h"

// The lines of the type box, one a row. Patterns are matched by case here, so each stands in both
// cases.
QStringList NameFilters(const std::vector<FileDialogRow>& rows);

// The row whose line stands in the type box, from what a dialog says is chosen; 0 where none is.
int RowOfFilter(const std::vector<FileDialogRow>& rows, const QString& chosen);

// Why a file may not be written; empty when it may.
using TargetCheck = std::function<QString(const QString& path)>;

// The dialog for a request, not yet shown. It starts on the row that was used last under its title,
// else a long list to open from on its last row, which shows every file. In a dialog to save under
// one of several types the name's extension follows the row.
std::unique_ptr<QFileDialog> MakeFileDialog(const FileDialogRequest& request, QWidget* parent);

// Shows the dialog until a choice stands; false when it was closed without one. What is to be
// written, with the extension that the name will get, must pass `check`, and a file that exists is
// asked about.
bool RunFileDialog(const FileDialogRequest& request, FileDialogChoice& choice, QWidget* parent,
                   const TargetCheck& check = {});
