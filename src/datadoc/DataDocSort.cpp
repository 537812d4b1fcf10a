// Sorting the cases.
#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"

int CDataDoc::ProcessData_Sort(std::int32_t key, std::int32_t order) {
  if (key < 0) return 1;
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  return view->OnSortCases({key, order}) ? 1 : 0;
}
