#include "vexdata/SourceFile.h"

#include <filesystem>

#include "datadoc/DataDoc.h"
#include "datadoc/MatrixParts.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexdata/SystemFile.h"

namespace {

constexpr const char* kGroupOfOptions = "Data that are no system data file";

// What the options say of a text file; false after a message.
bool TextKind(const SourceOptions& source, EXTERNDATA& kind) {
  kind.data_type = kTextFile;
  kind.fixedFormat = source.format.empty() ? 0 : 1;
  kind.formatStatement = source.format;
  kind.fullMatrix = source.full ? 1 : 0;
  if (source.parts.empty()) return true;
  kind.ma_type = 1;
  if (SetMatrixParts(source.parts, kind)) return true;
  AfxMessageBox("--parts: expected names such as matrix,means or matrix,means,deviations, not " +
                source.parts);
  return false;
}

// The number of variables as given, or one a word of the first line.
bool FreeFormat(const SourceOptions& source, const EXTERNDATA& kind, const TEXTFILELOOK& look,
                ASC2VSF& choice) {
  choice = {source.variables, source.namesOnTop};
  if (source.variables > 0) return true;
  if (kind.ma_type >= 1 && kind.fullMatrix == 0) {
    AfxMessageBox(source.file + ": a triangle needs --variable-count");
    return false;
  }
  choice.variables = look.proposal.variables;
  Host().ShowNote(source.file + ": " + std::to_string(choice.variables) +
                  " variable(s), one a word of the first line");
  return true;
}

bool OpenText(const SourceOptions& source, CDataDoc& document) {
  EXTERNDATA kind;
  if (!TextKind(source, kind)) return false;
  const TEXTFILELOOK look = LookAtTextFile(source.file);
  if (!look.readable || look.statement || kind.fixedFormat != 0) {
    document.SetExtern(kind, {}, 0, source.variables, false);
    return document.OnOpenDocument(source.file) != 0;
  }
  ASC2VSF choice;
  return FreeFormat(source, kind, look, choice) &&
         document.OpenFreeFormatFile(source.file, choice, kind) != 0;
}

}  // namespace

void AddSourceArguments(CLI::App& command, SourceOptions& source) {
  command.add_option("DATA", source.file, "The system data file, text file or DSF file")
      ->required();
  const auto add = [](CLI::Option* option) { option->group(kGroupOfOptions); };
  add(command.add_option("--kind", source.kind, "vsf, dsf or text; else as the extension says")
          ->check(CLI::IsMember({"vsf", "dsf", "text"})));
  add(command.add_option("--variable-count", source.variables, "Text: number of variables")
          ->check(CLI::Range(1, kMostTextVariables)));
  add(command.add_flag("--names-on-top", source.namesOnTop,
                       "Free format: names on the first line"));
  add(command.add_option("--format", source.format, "Fixed columns: \"(F8.2,X,3I1)\""));
  add(command.add_option("--parts", source.parts,
                         "Matrix text: parts in their order, of matrix,means,deviations"));
  add(command.add_flag("--full", source.full, "Matrix text: full rows, not a lower triangle"));
  add(command.add_option("--group", source.group, "DSF: group, counted from 1")
          ->check(CLI::PositiveNumber));
}

CString KindOfSource(const SourceOptions& source) {
  if (!source.kind.empty()) return source.kind;
  const bool text = source.variables > 0 || source.namesOnTop || !source.format.empty() ||
                    !source.parts.empty() || source.full;
  if (text) return "text";
  const CString extension = std::filesystem::path(source.file).extension().string();
  return EqualIgnoringCase(extension, ".DSF") ? "dsf" : "vsf";
}

bool OpenSource(const SourceOptions& source, CDataDoc& document) {
  const CString kind = KindOfSource(source);
  if (kind == "text") return OpenText(source, document);
  if (kind == "dsf") {
    EXTERNDATA dsf;
    dsf.data_type = kDsfFile;
    dsf.group = source.group - 1;
    document.SetExternData(dsf);
    return document.OnOpenDocument(source.file) != 0;
  }
  CDescriptor file;
  VsfContents contents;
  return OpenSystemFile(source.file, file, contents) &&
         document.OnOpenDbmsDocument(source.file) != 0;
}
