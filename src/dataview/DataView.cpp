#include "dataview/DataView.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DisplayPattern.h"
#include "dataview/definition/CategoryItems.h"
#include "host/Host.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr int kRowHeadingWidth = 40;
constexpr int kRowHeadingAlignment = 1;
constexpr int kCreatedAlignment = 2;
constexpr int kWidthPerCharacter = 6;

DisplaySettings Display() {
  const CVexAppUtil* const app = APPUTIL_GetApp();
  return app != nullptr ? app->GetDisplaySettings() : DisplaySettings();
}

}  // namespace

CDataView::CDataView(CDataDoc& document) : document_(document) {
  document_.AddView(this);
  if (scratch_.Name().empty()) AfxMessageBox("Unable to produce a temporary file!");
  const DisplaySettings display = Display();
  cellPattern_ = CellPattern(display.width, display.decimals);
  // Only here does the heading pattern begin with a "b"; the format command builds it without.
  headingPattern_ = "b" + HeadingPattern(display.width, display.decimals);
}

CDataView::~CDataView() {
  AttachTable(nullptr);
  document_.RemoveView(this);
}

void CDataView::AttachTable(CDataTable* table) {
  if (table_ != nullptr) table_->SetClient(nullptr);
  table_ = table;
  if (table_ == nullptr) return;
  table_->SetRowHeadingWidth(kRowHeadingWidth);
  table_->SetRowHeadingAlignment(kRowHeadingAlignment);
  table_->SetClient(this);
  RebuildColumns();
  ReopenFile();
}

void CDataView::RebuildColumns() {
  if (table_ == nullptr) return;
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  const int width = Display().width * kWidthPerCharacter;
  table_->SetColumnCount(data.variables);
  for (int column = 0; column < data.variables; ++column) {
    const VARSTRUCT& variable = data.variable[static_cast<std::size_t>(column)];
    table_->SetColumnAlignment(column, kCreatedAlignment);
    table_->SetColumnWidth(column, width);
    table_->SetColumnPattern(column, cellPattern_);
    table_->SetColumnHeading(column, CString(Trimmed(variable.name)));
  }
  table_->Redraw();
}

void CDataView::ApplyFormat(DisplaySettings settings) {
  settings.width = std::max(settings.width, settings.decimals + 1);
  if (CVexAppUtil* const app = APPUTIL_GetApp()) app->SetDisplaySettings(settings);
  cellPattern_ = CellPattern(settings.width, settings.decimals);
  headingPattern_ = HeadingPattern(settings.width, settings.decimals);
  if (table_ == nullptr) return;
  for (int column = 0; column < document_.GetVarnum(); ++column) {
    table_->SetColumnAlignment(column, settings.alignment);
    table_->SetColumnWidth(column, settings.width * kWidthPerCharacter);
    table_->SetColumnPattern(column, cellPattern_);
  }
  table_->Redraw();
}

void CDataView::ReopenFile() {
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  row_.assign(static_cast<std::size_t>(data.variables), 0.0);
  scratch_.Open("r+b");
  scratch_.Describe(data, document_.GetPathName());
  if (table_ == nullptr) return;
  table_->SetEditable(document_.HoldsRawData());
  table_->SetRowCount(data.records);
}

bool CDataView::Recover(const LeftOverScratch& left) {
  std::int64_t records = 0;
  if (const int error = CopyLeftOver(left, records); error != 0) {
    if (error != ECANCELED) {
      AfxMessageBox(CString("Unable to create temporary work file\n") + std::strerror(error));
    }
    return false;
  }
  TORVIKSTRUCT& data = *document_.GetTorvik();
  document_.MemoryReInit(left.data.variables);
  const std::size_t capacity = data.variable.size();
  data = left.data;
  data.ResizeArrays(capacity);
  data.records = static_cast<std::int32_t>(records);
  document_.SetPathName(left.pathName, false);
  document_.SetModifiedFlag();
  RebuildColumns();
  ReopenFile();
  return true;
}

std::FILE* CDataView::OpenScratchFile(const char* mode) {
  if (*mode == 'w') journal_.Clear();
  return scratch_.Open(mode);
}

// Copies the whole records that are there. 0, or why it failed (an errno value).
int CDataView::CopyLeftOver(const LeftOverScratch& left, std::int64_t& records) {
  CDescriptor file;
  std::FILE* const scratch = OpenScratchFile("w+b");
  if (scratch == nullptr || !file.OpenForReading(left.name.c_str())) return errno;
  const std::int64_t recordBytes = CellBytes(1, left.data.variables);
  const std::int64_t present = recordBytes > 0 ? FileBytes(file.Get()) / recordBytes : 0;
  records = std::min<std::int64_t>(left.data.records, present);
  const std::int64_t bytes = records * recordBytes;
  const auto progress = Host().StartProgress("Recovering " + left.pathName);
  const bool copied = CopyRange(file.Get(), 0, fileno(scratch), 0, bytes, [&](std::int64_t done) {
    return progress->Advance(static_cast<double>(done) / static_cast<double>(bytes));
  });
  return copied ? 0 : errno;
}

bool CDataView::GetRow(std::int64_t row, std::span<double> values) {
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  std::FILE* const file = scratch_.Stream();
  if (row < 0 || row >= data.records || file == nullptr) return false;
  const std::size_t bytes = row_.size() * kCellBytes;
  const std::int64_t got = ReadAt(fileno(file), CellBytes(row, data.variables), row_.data(), bytes);
  if (got != static_cast<std::int64_t>(bytes)) return false;
  const std::size_t count = std::min(values.size(), row_.size());
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = row_[i] < kMissingCode ? kMissingCode : row_[i];
  }
  return true;
}

CString CDataView::GetRowHeading(std::int64_t row) {
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  if (document_.HoldsRawData()) return std::to_string(row + 1);
  if (row < data.variables) {
    return CString(Trimmed(data.variable[static_cast<std::size_t>(row)].name));
  }
  if (row == data.variables) return "Mean";
  return row == data.variables + 1 ? "Std.Dev" : std::to_string(row + 1);
}

CString CDataView::GetValueLabel(int column, double value) const {
  const TORVIKSTRUCT& data = *document_.GetTorvik();
  return column >= 0 && column < data.variables ? CategoryLabelOf(data, column, value) : CString();
}

void CDataView::OnRightClick(TableArea area) {
  if (area == TableArea::Cell) menuType_ = 0;
  if (area == TableArea::RowHeading) menuType_ = 1;
  if (area == TableArea::ColumnHeading) menuType_ = 2;
}

int CDataView::OnMessage(std::string_view message) {
  return message == kQueryMenuType ? menuType_ : -1;
}

void CDataView::OnActivateView(bool active) {
  active_ = active;
  if (CMainFrame* const frame = APPUTIL_GetMainFrame()) {
    frame->ToggleBarVisible(CMainFrame::kDataToolBar, active);
  }
}
