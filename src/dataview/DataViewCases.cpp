// The view's operations on cases and variables: what each does to the description. What they do to
// the cells is in DataViewUndo.cpp.
#include <algorithm>

#include <boost/format.hpp>

#include "datadoc/CaseSelection.h"
#include "datadoc/DataDoc.h"
#include "datadoc/VariableEdits.h"
#include "dataview/DataView.h"
#include "host/Host.h"

namespace {

CString BytesOf(const std::vector<std::int32_t>& numbers) {
  return {reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(std::int32_t)};
}

bool Refuse(const CString& text) {
  AfxMessageBox(text);
  return false;
}

}  // namespace

bool CDataView::InsertCases(std::int64_t position, std::int64_t count) {
  const std::int64_t cases = document_.GetRecnum();
  if (count < 1 || !document_.HoldsRawData()) return false;
  if (count > kMostCases - cases) {
    return Refuse("A data set holds at most 2,147,483,647 cases.");
  }
  EditStep step;
  step.kind = EditKind::InsertCases;
  step.first = std::clamp<std::int64_t>(position, 0, cases);
  step.count = count;
  TORVIKSTRUCT after = *document_.GetTorvik();
  after.records = static_cast<std::int32_t>(cases + count);
  return Perform(step, std::move(after));
}

bool CDataView::AppendCases(std::int64_t count) {
  return InsertCases(document_.GetRecnum(), count);
}

bool CDataView::DeleteCases(std::int64_t first, std::int64_t end) {
  const std::int64_t cases = document_.GetRecnum();
  first = std::clamp<std::int64_t>(first, 0, cases);
  end = std::clamp<std::int64_t>(end, first, cases);
  if (first == end || !document_.HoldsRawData()) return false;
  EditStep step;
  step.kind = EditKind::DeleteCases;
  step.first = first;
  step.count = end - first;
  TORVIKSTRUCT after = *document_.GetTorvik();
  after.records = static_cast<std::int32_t>(cases - step.count);
  return Perform(step, std::move(after));
}

bool CDataView::InsertVariables(std::int32_t position, std::int32_t count) {
  const std::int32_t variables = document_.GetVarnum();
  if (count < 1 || !document_.HoldsRawData()) return false;
  if (count > kMostVariables - variables) {
    return Refuse("A data set holds at most 32,767 variables.");
  }
  position = std::clamp(position, 0, variables);
  EditStep step;
  step.kind = EditKind::InsertVariables;
  step.first = position;
  step.count = count;
  TORVIKSTRUCT after = *document_.GetTorvik();
  InsertVariableRecords(after, position, count);
  for (std::int32_t i = 0; i < count; ++i) {
    const CString name = boost::str(boost::format("var%d") % (variables + 1 + i));
    after.variable[static_cast<std::size_t>(position + i)].name = name;
  }
  // The data set goes through a copy, which does not carry the single global missing value.
  const bool reset = after.missing[kGlobalValue] != kMissingCode;
  after.missing[kGlobalValue] = kMissingCode;
  if (!Perform(step, std::move(after))) return false;
  if (reset) document_.WriteStatusInfo("The global missing value is -999999 again.");
  return true;
}

bool CDataView::DeleteVariables(std::vector<std::int32_t> variables) {
  std::vector<bool> deleted(static_cast<std::size_t>(document_.GetVarnum()), false);
  for (const std::int32_t variable : variables) {
    if (variable < 0 || variable >= document_.GetVarnum()) return false;
    deleted[static_cast<std::size_t>(variable)] = true;
  }
  variables.clear();
  for (std::size_t i = 0; i < deleted.size(); ++i) {
    if (deleted[i]) variables.push_back(static_cast<std::int32_t>(i));
  }
  if (variables.empty() || !document_.HoldsRawData()) return false;
  if (variables.size() == deleted.size()) return Refuse("At least one variable must stay.");
  EditStep step;
  step.kind = EditKind::DeleteVariables;
  step.first = variables.front();
  step.count = static_cast<std::int64_t>(variables.size());
  step.list = BytesOf(variables);
  TORVIKSTRUCT after = *document_.GetTorvik();
  DeleteVariableRecords(after, deleted);
  return Perform(step, std::move(after));
}

bool CDataView::OnInsertCases(const InsertCasesRequest& request) {
  const std::int64_t position = InsertionCase(request, document_.GetRecnum());
  const bool appended = position == document_.GetRecnum();
  if (!InsertCases(position, request.count)) return false;
  if (table_ != nullptr) table_->ScrollToRow(appended ? document_.GetRecnum() - 1 : position);
  return true;
}

bool CDataView::OnInsertVariables(const InsertVariablesRequest& request) {
  const std::int32_t position = InsertionVariable(request, document_.GetVarnum());
  if (!InsertVariables(position, request.count)) return false;
  if (table_ != nullptr) table_->ScrollToColumn(position);
  return true;
}

bool CDataView::OnDeleteCases(const DeleteCasesRequest& request) {
  const CaseRange range = DeletionRange(request, document_.GetRecnum());
  return DeleteCases(range.begin, range.end);
}

bool CDataView::OnSortCases(const SortCasesRequest& request) {
  const bool knownOrder = request.order == kSortAscending || request.order == kSortDescending;
  if (request.key < 0 || request.key >= document_.GetVarnum() || !knownOrder) return false;
  if (!document_.HoldsRawData()) return false;
  EditStep step;
  step.kind = EditKind::Sort;
  step.first = request.key;
  step.count = request.order;
  return Perform(step, *document_.GetTorvik());
}

bool CDataView::UpdateDefinition(const TORVIKSTRUCT& copy) {
  const std::int32_t variables = document_.GetVarnum();
  const std::int32_t added = copy.variables - variables;
  if (added < 0 || !document_.HoldsRawData()) return false;
  if (copy.variables > kMostVariables && added > 0) {
    return Refuse("A data set holds at most 32,767 variables.");
  }
  EditStep step;
  step.kind = EditKind::Define;
  step.first = variables;
  step.count = added;
  const TORVIKSTRUCT before = *document_.GetTorvik();
  document_.UpdateTorvik(copy);
  TORVIKSTRUCT after = *document_.GetTorvik();
  document_.SetTorvik(before);
  // Between the copy and now the cases have not changed.
  after.records = before.records;
  if (!Perform(step, std::move(after))) return false;
  if (added > 0 && table_ != nullptr) table_->ScrollToColumn(variables);
  return true;
}

bool CDataView::ChooseWeightVariable(std::int32_t variable) {
  return ChooseVariable(EditKind::Weight, variable);
}

bool CDataView::ChooseGroupVariable(std::int32_t variable) {
  return ChooseVariable(EditKind::Group, variable);
}

bool CDataView::ChooseVariable(EditKind kind, std::int32_t variable) {
  if (variable < 0 || variable > document_.GetVarnum()) return false;
  EditStep step;
  step.kind = kind;
  step.first = variable;
  TORVIKSTRUCT after = *document_.GetTorvik();
  (kind == EditKind::Weight ? after.weightVariable : after.groupVariable) = variable;
  return Perform(step, std::move(after)) && SaveChoice();
}

// A text or DSF file cannot hold the choice and is not written over: such a document becomes a
// system data file under a name that the user gives.
bool CDataView::SaveChoice() {
  if (document_.GetExternType() == kSystemDataFile && !document_.GetPathName().empty()) {
    return document_.OnSaveDocument(document_.GetPathName()) == 1;
  }
  return document_.SaveAsSystemDataFile() == 1;
}

std::optional<SelectionEffect> CDataView::PreviewSelection(const CStringList& lines) {
  CCaseSelection selection;
  if (!ReadSelection(lines, selection)) return std::nullopt;
  SelectionEffect effect;
  effect.cases = document_.GetRecnum();
  for (const std::int32_t number : selection.DroppedVariables()) {
    effect.variables.push_back(number - 1);
  }
  std::int64_t kept = 0;
  if (!CountSelected(selection, kept)) return std::nullopt;
  effect.removedCases = effect.cases - kept;
  return effect;
}

// Tells what is wrong with the first line that is none, or with all of them together.
bool CDataView::ReadSelection(const CStringList& lines, CCaseSelection& selection) const {
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  const CVariableNames names(data);
  for (const CString& line : lines) {
    CString problem;
    if (!CCaseSelection::IsSelectionLine(line)) continue;
    if (!selection.AddLine(data, names, line, problem)) return Refuse(line + ": " + problem);
  }
  if (selection.DropsAllVariables()) return Refuse("At least one variable must stay.");
  return true;
}

bool CDataView::ApplySelection(const CStringList& lines) {
  CCaseSelection selection;
  if (!document_.HoldsRawData() || !ReadSelection(lines, selection)) return false;
  if (selection.IsEmpty()) return false;
  EditStep step;
  step.kind = EditKind::Select;
  for (const CString& line : lines) {
    if (CCaseSelection::IsSelectionLine(line)) step.list += line + '\n';
  }
  // In the numbers that the deletion of variables understands, whatever the lines called them.
  CString deletion = "SD";
  std::vector<bool> dropped(static_cast<std::size_t>(document_.GetVarnum()), false);
  for (const std::int32_t number : selection.DroppedVariables()) {
    deletion += ' ' + std::to_string(number);
    dropped[static_cast<std::size_t>(number) - 1] = true;
  }
  const TORVIKSTRUCT before = *document_.GetTorvik();
  document_.CheckDeletion({deletion});
  TORVIKSTRUCT after = *document_.GetTorvik();
  document_.SetTorvik(before);
  DeleteCategorySlots(after, dropped);
  return Perform(step, std::move(after));
}
