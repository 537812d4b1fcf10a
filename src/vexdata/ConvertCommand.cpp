#include <algorithm>
#include <filesystem>

#include "datadoc/DataDoc.h"
#include "datadoc/SaveAsKinds.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SourceFile.h"
#include "vexdata/SystemFile.h"
#include "vexutils/FieldWidth.h"

namespace {

// Names that do not fit into the layout are cut, as asked for; the user is told which.
void TellOfCutNames(const TORVIKSTRUCT& data, int kind) {
  const auto width = static_cast<std::size_t>(FieldWidth(kind));
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) {
    const CString& name = data.variable[i].name;
    if (name.size() <= width) continue;
    Host().ShowNote(TextForDisplay(name) + " becomes " + TextForDisplay(CutText(name, width)));
  }
}

// As asked for, else told from the extension.
std::int32_t TargetType(const ConvertOptions& options) {
  if (!options.format.empty()) return kTextFile;
  CString kind = options.to;
  if (kind.empty()) kind = std::filesystem::path(options.target).extension().string();
  for (const char* text : {"text", ".DAT", ".TXT", ".RAW"}) {
    if (EqualIgnoringCase(kind, text)) return kTextFile;
  }
  const bool dsf = EqualIgnoringCase(kind, "dsf") || EqualIgnoringCase(kind, ".DSF");
  return dsf ? kDsfFile : kSystemDataFile;
}

bool SaveSystemFile(CDataDoc& document, const ConvertOptions& options) {
  const int kind = options.layout == "old" ? kOldFormat : kNewFormat;
  TellOfCutNames(*document.GetTorvik(), kind);
  return document.SaveVSFFile(options.target, kind) != 0;
}

// Text or DSF, where that can hold what was opened.
bool SaveOtherKind(CDataDoc& document, const ConvertOptions& options, std::int32_t type) {
  const auto kinds = SaveAsKinds(document.GetExtern(), *document.GetTorvik());
  const auto choice = std::find_if(kinds.begin(), kinds.end(), [type](const SAVEASKIND& entry) {
    return entry.kind.data_type == type;
  });
  if (choice == kinds.end()) {
    AfxMessageBox(options.source.file + ": the data are not of a kind that " + options.target +
                  " can hold");
    return false;
  }
  EXTERNDATA kind = choice->kind;
  if (type == kTextFile) {
    kind.fixedFormat = options.format.empty() ? 0 : 1;
    kind.formatStatement = options.format;
  }
  document.SetExternData(kind);
  return document.OnSaveDocument(options.target) != 0;
}

}  // namespace

int ConvertFile(const ConvertOptions& options) {
  const std::int32_t type = TargetType(options);
  const bool fromSystemFile = KindOfSource(options.source) == "vsf";
  if (type == kSystemDataFile && fromSystemFile && options.layout.empty()) {
    AfxMessageBox("--layout: old or new is needed");
    return kExitUsage;
  }
  if (!MayWrite(options.target, options.overwrite)) return kExitFailed;
  CDataDoc document;
  const CDataView view(document);
  if (!OpenSource(options.source, document)) return kExitFailed;
  if (type == kSystemDataFile && !document.HoldsRawData()) {
    AfxMessageBox(options.source.file + ": a moment matrix goes into a text file or a DSF file");
    return kExitFailed;
  }
  const bool saved = type == kSystemDataFile ? SaveSystemFile(document, options)
                                             : SaveOtherKind(document, options, type);
  return saved ? kExitDone : kExitFailed;
}
