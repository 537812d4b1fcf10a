// Under which kinds of file a data set can be saved.
#pragma once

#include <optional>
#include <vector>

#include "datadoc/DataSet.h"
#include "datadoc/ExternData.h"
#include "host/Host.h"

struct SAVEASKIND {
  FileDialogRow row;
  EXTERNDATA kind;
};

// The data set's own kind first. Cases go into a system data file or a text file; a moment matrix
// into a text file or, with one row beside it, into a DSF file.
std::vector<SAVEASKIND> SaveAsKinds(const EXTERNDATA& own, const TORVIKSTRUCT& data);

// The row of system data files.
FileDialogRow SystemDataRow();

// The rows of a dialog that opens files: every kind, then all files.
std::vector<FileDialogRow> OpenRows();
// The kind that row `row` of these asks for, a text or a DSF file; none where the file's name tells
// the kind.
std::optional<EXTERNDATA> KindOfOpenRow(int row, const CString& fileName);
