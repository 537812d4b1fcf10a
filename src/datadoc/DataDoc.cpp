// Construction, memory and access. Files: DataDocFiles.cpp and one file a kind.
#include "datadoc/DataDoc.h"

#include <algorithm>
#include <new>

#include "datadoc/Missing.h"
#include "dataview/DataView.h"
#include "host/Host.h"

namespace {

constexpr std::size_t kFirstRecordRoom = 16;
constexpr std::size_t kVectorRoom = 32;

}  // namespace

CDataDoc::CDataDoc() {
  record_.reserve(kFirstRecordRoom);
  firstVector_.reserve(kVectorRoom);
  secondVector_.reserve(kVectorRoom);
  MemoryInit();
}

CDataDoc::~CDataDoc() = default;

void CDataDoc::MemoryInit() {
  data_.ResizeArrays(static_cast<std::size_t>(capacity_));
  data_.missing = kDefaultGlobalMissing;
  data_.deletion = kListwise;
  data_.weightVariable = 0;
}

int CDataDoc::MemoryReInit(std::int32_t variables) {
  data_.variables = std::max(variables, 0);
  capacity_ = CapacityFor(data_.variables, capacity_);
  MemoryInit();
  for (VARSTRUCT& variable : data_.variable) variable.missing = kNoMissing;
  SizeRecordBuffer();
  return 1;
}

std::unique_ptr<TORVIKSTRUCT> CDataDoc::GetTorvikCopy(std::int32_t& capacity,
                                                      std::int32_t count) const {
  constexpr std::int32_t kStep = 8;
  const std::int32_t variables = count >= 1 ? count : data_.variables;
  capacity = std::max(capacity, 0);
  while (capacity < variables) capacity += kStep;
  try {
    auto copy = std::make_unique<TORVIKSTRUCT>();
    copy->format = 0;
    copy->records = data_.records;
    copy->variables = variables;
    copy->missing = data_.missing;
    copy->missing[kGlobalValue] = 0;
    copy->deletion = data_.deletion;
    copy->weightVariable = data_.weightVariable;
    copy->ResizeArrays(static_cast<std::size_t>(capacity));
    const auto shared = static_cast<std::size_t>(std::min(variables, data_.variables));
    for (std::size_t index = 0; index < shared; ++index) CopyVariable(data_, *copy, index);
    return copy;
  } catch (const std::bad_alloc&) {
    AfxMessageBox("Not enough memory!");
    return nullptr;
  }
}

void CDataDoc::UpdateTorvik(const TORVIKSTRUCT& copy) {
  const double globalValue = data_.missing[kGlobalValue];
  MemoryReInit(copy.variables);
  data_.records = copy.records;
  data_.deletion = copy.deletion;
  data_.weightVariable = copy.weightVariable;
  std::copy_n(copy.missing.begin(), kGlobalValue, data_.missing.begin());
  for (std::size_t index = 0; index < static_cast<std::size_t>(data_.variables); ++index) {
    CopyVariable(copy, data_, index);
  }
  if (globalValue != data_.missing[kGlobalValue]) {
    WriteStatusInfo("The global missing value is -999999 again.");
  }
}

void CDataDoc::SetTorvik(TORVIKSTRUCT data) {
  data.format = data_.format;
  data_ = std::move(data);
  capacity_ = CapacityFor(data_.variables, capacity_);
  data_.ResizeArrays(static_cast<std::size_t>(capacity_));
  SizeRecordBuffer();
}

int CDataDoc::GetVarType() const {
  const auto end = data_.variable.begin() + data_.variables;
  return std::any_of(data_.variable.begin(), end,
                     [](const VARSTRUCT& variable) { return variable.type == kOrdinal; })
             ? 1
             : 0;
}

int CDataDoc::IsMissing(double value, int variable, long& counter) const {
  if (!IsMissingValue(data_, value, static_cast<std::size_t>(variable))) return 0;
  if (counter != -1) ++counter;
  return 1;
}

CDataView* CDataDoc::GetDataView() const {
  for (CView* view : GetViews()) {
    if (auto* dataView = dynamic_cast<CDataView*>(view)) return dataView;
  }
  return nullptr;
}

void CDataDoc::WriteStatusInfo(const CString& text) const {
  CMainFrame* const frame = APPUTIL_GetMainFrame();
  if (frame == nullptr) return;
  if (CStatusBar* const bar = frame->GetStatusBar()) bar->SetPaneText(0, text);
}

void CDataDoc::SizeRecordBuffer() {
  record_.assign(static_cast<std::size_t>(data_.variables), 0.0);
}
