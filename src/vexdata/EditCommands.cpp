// The commands that change cases: sort, insert, delete and select.
#include <charconv>

#include "datadoc/CaseSelection.h"
#include "datadoc/Selections.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/EditedFile.h"

namespace {

constexpr std::size_t kNameBytes = 16;

// The case (counted from 1) that a text names; empty after a message.
std::optional<std::int64_t> FindCase(const CString& text, const char* option, std::int64_t cases) {
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
  if (whole && number >= 1 && number <= cases) return number;
  AfxMessageBox(CString(option) + ": expected a case from 1 to " + std::to_string(cases) +
                ", not " + text);
  return std::nullopt;
}

const char* PlaceOption(const InsertOptions& options) {
  return options.after.empty() ? "--before" : "--after";
}

const CString& Place(const InsertOptions& options) {
  return options.after.empty() ? options.before : options.after;
}

bool InsertCases(CEditedFile& file, const InsertOptions& options) {
  InsertCasesRequest request{options.cases, Place(options).empty(), !options.after.empty(), 0};
  if (!request.atEnd) {
    const auto number = FindCase(Place(options), PlaceOption(options), file.Data().records);
    if (!number) return false;
    request.caseNumber = *number;
  }
  return file.View().OnInsertCases(request);
}

bool NameVariables(CEditedFile& file, std::int32_t position, const std::vector<CString>& names) {
  std::int32_t capacity = 0;
  const auto copy = file.Document().GetTorvikCopy(capacity, 0);
  if (!copy) return false;
  for (std::size_t i = 0; i < names.size(); ++i) {
    copy->variable[static_cast<std::size_t>(position) + i].name =
        CutText(TextForFile(names[i]), kNameBytes);
  }
  return file.View().UpdateDefinition(*copy);
}

bool InsertVariables(CEditedFile& file, const InsertOptions& options) {
  InsertVariablesRequest request{options.variables, Place(options).empty(), !options.after.empty(),
                                 0};
  if (!options.names.empty() &&
      options.names.size() != static_cast<std::size_t>(options.variables)) {
    AfxMessageBox("--names: expected " + std::to_string(options.variables) + " names, not " +
                  std::to_string(options.names.size()));
    return false;
  }
  if (!request.atEnd) {
    const auto variable = file.FindVariable(Place(options), PlaceOption(options));
    if (!variable) return false;
    request.variable = *variable;
  }
  const std::int32_t position = InsertionVariable(request, file.Data().variables);
  if (!file.View().OnInsertVariables(request)) return false;
  return options.names.empty() || NameVariables(file, position, options.names);
}

bool DeleteCaseRange(CEditedFile& file, const CString& cases) {
  const auto range = ParseCaseRange(cases, file.Data().records);
  if (!range) {
    AfxMessageBox("--cases: expected a number or a range such as 1-20, not " + cases);
    return false;
  }
  if (range->begin < range->end) return file.View().DeleteCases(range->begin, range->end);
  AfxMessageBox("--cases: there are no cases " + cases);
  return false;
}

// "3 of 20 cases go, and the variables a, b."
CString Told(const SelectionEffect& effect, const TORVIKSTRUCT& data) {
  CString text =
      std::to_string(effect.removedCases) + " of " + std::to_string(effect.cases) + " cases go";
  for (std::size_t i = 0; i < effect.variables.size(); ++i) {
    text += i == 0 ? ", and the variables " : ", ";
    text += TextForDisplay(data.variable[static_cast<std::size_t>(effect.variables[i])].name);
  }
  return text;
}

}  // namespace

int SortData(const SortOptions& options) {
  CEditedFile file;
  if (!file.Open(options.target)) return kExitFailed;
  const auto key = file.FindVariable(options.by, "--by");
  if (!key) return kExitFailed;
  const int order = options.descending ? kSortDescending : kSortAscending;
  return file.Document().ProcessData_Sort(*key, order) ? file.Save() : kExitFailed;
}

int InsertData(const InsertOptions& options) {
  CEditedFile file;
  if (!file.Open(options.target)) return kExitFailed;
  const bool inserted =
      options.cases > 0 ? InsertCases(file, options) : InsertVariables(file, options);
  return inserted ? file.Save() : kExitFailed;
}

int DeleteData(const DeleteOptions& options) {
  CEditedFile file;
  if (!file.Open(options.target)) return kExitFailed;
  if (!options.cases.empty()) {
    return DeleteCaseRange(file, options.cases) ? file.Save() : kExitFailed;
  }
  const auto variables = file.FindVariables(options.variables, "--variables");
  if (!variables || !file.View().DeleteVariables(*variables)) return kExitFailed;
  return file.Save();
}

int SelectCases(const SelectOptions& options) {
  CEditedFile file;
  if (!file.Open(options.target)) return kExitFailed;
  CStringList lines;
  for (const CString& typed : options.lines) {
    lines.push_back(TextForFile(typed));
    if (CCaseSelection::IsSelectionLine(lines.back())) continue;
    AfxMessageBox("expected a line that begins with SC or SD, not " + typed);
    return kExitFailed;
  }
  const auto effect = file.View().PreviewSelection(lines);
  if (!effect) return kExitFailed;
  if (options.tellOnly) {
    std::puts(Told(*effect, file.Data()).c_str());
    return kExitDone;
  }
  Host().ShowNote(Told(*effect, file.Data()));
  return file.View().ApplySelection(lines) ? file.Save() : kExitFailed;
}
