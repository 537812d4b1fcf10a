#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
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

}  // namespace

int ConvertFile(const ConvertOptions& options) {
  if (!MayWrite(options.target, options.overwrite)) return kExitFailed;
  {
    CDescriptor file;
    VsfContents contents;
    if (!OpenSystemFile(options.source, file, contents)) return kExitFailed;
  }
  const int kind = options.layout == "old" ? kOldFormat : kNewFormat;
  CDataDoc document;
  CDataView view(document);
  if (!document.OnOpenDbmsDocument(options.source)) return kExitFailed;
  TellOfCutNames(*document.GetTorvik(), kind);
  return document.SaveVSFFile(options.target, kind) ? kExitDone : kExitFailed;
}
