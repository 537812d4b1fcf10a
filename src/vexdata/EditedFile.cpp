#include "vexdata/EditedFile.h"

#include "datadoc/Selections.h"
#include "host/Host.h"
#include "host/Numbers.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/SystemFile.h"
#include "vexutils/FieldWidth.h"

bool CEditedFile::Open(const EditTarget& target) {
  target_ = target;
  if (!target.output.empty() && !MayWrite(target.output, target.overwrite)) return false;
  {
    CDescriptor file;
    VsfContents contents;
    if (!OpenSystemFile(target.file, file, contents)) return false;
    if (contents.damaged && target.output.empty()) {
      AfxMessageBox(target.file +
                    ": the file is damaged; --output NAME writes what can be read to another one");
      return false;
    }
  }
  view_.SetUndoable(false);
  if (!document_.OnOpenDbmsDocument(target.file)) return false;
  before_ = Data();
  return true;
}

int CEditedFile::Save() {
  int kind = Data().format;
  if (!target_.layout.empty()) kind = target_.layout == "old" ? kOldFormat : kNewFormat;
  if (!NamesFit(kind)) return kExitFailed;
  const CString& name = target_.output.empty() ? target_.file : target_.output;
  if (!document_.SaveVSFFile(name, kind)) return kExitFailed;
  TellOfLostChoices();
  return kExitDone;
}

// A layout that was asked for cuts names, as it is wanted; the file's own must not do so unasked.
bool CEditedFile::NamesFit(int kind) const {
  if (!target_.layout.empty()) return true;
  const auto width = static_cast<std::size_t>(FieldWidth(kind));
  for (std::int32_t i = 0; i < Data().variables; ++i) {
    const CString& name = Data().variable[static_cast<std::size_t>(i)].name;
    if (name.size() <= width) continue;
    AfxMessageBox(TextForDisplay(name) + " is longer than the " + std::to_string(width) +
                  " characters of the file's layout; --layout new has room, --layout old cuts it");
    return false;
  }
  return true;
}

void CEditedFile::TellOfLostChoices() const {
  const auto lost = [](std::int32_t before, std::int32_t now) { return before > 0 && now == 0; };
  if (lost(before_.weightVariable, Data().weightVariable)) {
    Host().ShowNote("the weight variable is deleted; the cases have no weights any more");
  }
  if (lost(before_.groupVariable, Data().groupVariable)) {
    Host().ShowNote("the group variable is deleted; there are no groups any more");
  }
  const double old = before_.missing[kGlobalValue];
  if (old != Data().missing[kGlobalValue]) {
    Host().ShowNote("the global missing value is -999999 again; it was " + FormatShortest(old));
  }
}

std::optional<std::vector<std::int32_t>> CEditedFile::FindVariables(const CString& list,
                                                                    const char* option) const {
  CString problem;
  auto variables = ParseVariableList(Data(), list, problem);
  if (!variables) AfxMessageBox(CString(option) + ": there is no variable " + problem);
  return variables;
}

std::optional<std::int32_t> CEditedFile::FindVariable(const CString& text,
                                                      const char* option) const {
  const auto variables = FindVariables(text, option);
  if (!variables) return std::nullopt;
  if (variables->size() == 1) return variables->front();
  AfxMessageBox(CString(option) + ": expected one variable, not " + text);
  return std::nullopt;
}
