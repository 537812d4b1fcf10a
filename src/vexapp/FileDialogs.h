// Open and save dialogs from what the component asks for.
#pragma once

#include <QFileDialog>
#include <QStringList>
#include <memory>

#include "host/Host.h"

// The lines of the type box, one a row. Patterns are matched by case here, so each stands in both
// cases.
QStringList NameFilters(const std::vector<FileDialogRow>& rows);

// The row whose line stands in the type box, from what a dialog says is chosen; 0 where none is.
int RowOfFilter(const std::vector<FileDialogRow>& rows, const QString& chosen);

// The dialog for a request, not yet shown.
std::unique_ptr<QFileDialog> MakeFileDialog(const FileDialogRequest& request, QWidget* parent);

// Shows the dialog. False when it was closed without a choice. A name to save under that will get
// the row's extension is asked about too when a file of that name exists.
bool RunFileDialog(const FileDialogRequest& request, FileDialogChoice& choice, QWidget* parent);
