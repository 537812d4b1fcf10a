#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SourceFile.h"
#include "vexdata/SystemFile.h"

int ExportFile(const ExportOptions& options) {
  const bool toStandardOutput = options.target == STUtils::kStandardOutput;
  int type = options.type >= 0  ? options.type
             : toStandardOutput ? STUtils::COMMA_TEXT_FILE_TYPE
                                : STUtils::TypeOfFileName(options.target);
  if (type == STUtils::UNKNOWN_FILE_TYPE) {
    AfxMessageBox(options.target + ": no file type has this extension; --type chooses one");
    return kExitFailed;
  }
  if (type == STUtils::DELIMITED_TEXT_FILE_TYPE && options.delimiter.size() != 1) {
    AfxMessageBox("This file type needs --delimiter with one character");
    return kExitUsage;
  }
  if (toStandardOutput && !STUtils::IsTextFileType(type)) {
    AfxMessageBox(STUtils::NameOfType(type) + " cannot be written to standard output");
    return kExitUsage;
  }
  if (!toStandardOutput && !MayWrite(options.target, options.overwrite)) return kExitFailed;
  CDataDoc document;
  CDataView view(document);
  if (!OpenSource(options.source, document)) return kExitFailed;
  document.SetExportNames(options.names);
  if (!options.delimiter.empty()) document.SetExportDelimiter(options.delimiter.front());
  CString target = options.target;
  return document.Export(options.source.file, target, type) == STUtils::eOK ? kExitDone
                                                                            : kExitFailed;
}
