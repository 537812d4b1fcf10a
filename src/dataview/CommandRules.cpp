#include "dataview/CommandRules.h"

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"

DataWindowState StateOf(const CDataView& view) {
  const CDataDoc& document = view.GetDocument();
  DataWindowState state;
  state.variables = document.GetVarnum();
  state.cases = document.GetRecnum();
  state.rawData = document.HoldsRawData();
  state.hasOrdinal = document.GetVarType() == 1;
  state.hasCurrentCell = view.IsInTable(view.GetCurrentCell());
  state.canUndo = view.CanUndo();
  state.canRedo = view.CanRedo();
  return state;
}

bool IsCommandEnabled(int command, const DataWindowState& state) {
  using namespace datacommands;
  const bool hasVariables = state.variables > 0 && state.rawData;
  switch (command) {
    case kDefineVariables:
    case kInsertVariable:
      return state.rawData;  // they can give an empty data set its first variables
    case kFormat:
      return state.variables > 0;
    case kDeleteVariable:
      return hasVariables && state.variables > 1;  // one stays
    case kDeleteCase:
    case kSort:
    case kSelect:
      return hasVariables && state.cases > 0;
    case kEqualThresholds:
    case kFixThresholds:
    case kHomogeneityTest:
      return hasVariables && state.hasOrdinal;
    case kCopy:
      return state.hasCurrentCell;
    case kPaste:
      return state.hasCurrentCell && state.rawData;
    case kUndo:
      return state.canUndo;
    case kRedo:
      return state.canRedo;
    default:
      return hasVariables;
  }
}
