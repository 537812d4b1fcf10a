#include <optional>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SourceFile.h"
#include "vexdata/SystemFile.h"
#include "vexdata/TextOptions.h"

namespace {

// The cells of a system data file need not be copied before they are exported.
bool OpenForExport(const SourceOptions& source, CDataDoc& document,
                   std::optional<CDataView>& view) {
  if (KindOfSource(source) != "vsf") {
    view.emplace(document);
    return OpenSource(source, document);
  }
  CDescriptor file;
  VsfContents contents;
  if (!OpenSystemFile(source.file, file, contents)) return false;
  document.ExportFrom(source.file, file.Release(), std::move(contents));
  return true;
}

}  // namespace

int ExportFile(const ExportOptions& options) {
  const bool toStandardOutput = options.target == STUtils::kStandardOutput;
  int type = options.type >= 0  ? options.type
             : toStandardOutput ? STUtils::COMMA_TEXT_FILE_TYPE
                                : STUtils::TypeOfFileName(options.target);
  if (type == STUtils::UNKNOWN_FILE_TYPE) {
    AfxMessageBox(options.target + ": no file type has this extension; --type chooses one");
    return kExitFailed;
  }
  if (type != STUtils::DELIMITED_TEXT_FILE_TYPE && !options.delimiter.empty()) {
    AfxMessageBox("--delimiter goes with --type 1004; the other types have one of their own");
    return kExitUsage;
  }
  const auto delimiter = DelimiterOf(options.delimiter, type);
  if (!delimiter) return kExitUsage;
  if (toStandardOutput && !STUtils::IsTextFileType(type)) {
    AfxMessageBox(STUtils::NameOfType(type) + " cannot be written to standard output");
    return kExitUsage;
  }
  if (!toStandardOutput && !MayWrite(options.target, options.overwrite)) return kExitFailed;
  CDataDoc document;
  std::optional<CDataView> view;
  if (!OpenForExport(options.source, document, view)) return kExitFailed;
  document.SetExportNames(options.names);
  document.SetExportDelimiter(*delimiter);
  CString target = options.target;
  return document.Export(options.source.file, target, type) == STUtils::eOK ? kExitDone
                                                                            : kExitFailed;
}
