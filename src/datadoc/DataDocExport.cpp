// The document's side of export.
#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <boost/algorithm/string/join.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/Missing.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "transfer/ExportLosses.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr int kDefaultWidth = 13;
constexpr int kDefaultDecimals = 3;

struct NumberForm {
  int width;
  int decimals;
};

NumberForm ExportedForm() {
  const CVexAppUtil* const app = APPUTIL_GetApp();
  const DisplaySettings display = app != nullptr ? app->GetDisplaySettings() : DisplaySettings();
  NumberForm form{display.width < 1 ? kDefaultWidth : display.width,
                  display.decimals < 0 ? kDefaultDecimals : display.decimals};
  if (form.width < form.decimals) form = {kDefaultWidth, kDefaultDecimals};
  return form;
}

}  // namespace

void CDataDoc::OnFileExportVexmorData() {
  Export();
}

bool CDataDoc::Export() {
  WriteStatusInfo("Exporting...");
  const CWaitCursor wait;
  const bool done = Export(GetPathName()) == STUtils::eOK;
  WriteStatusInfo({});
  return done;
}

bool CDataDoc::DoExportData(const CString& name, int type) {
  std::error_code error;
  if (std::filesystem::equivalent(name, GetPathName(), error)) {
    AfxMessageBox("A data set cannot be exported onto its own file: " + name);
    return false;
  }
  exportNotes_.clear();
  exportProblems_.clear();
  exportProgress_ = Host().StartProgress("Exporting " + name);
  WarnOfMissing(name, type);
  const std::vector<CString> losses = ExportLosses(data_, type);
  if (!losses.empty() && (STUtils::IsTextFileType(type) || STUtils::CanExport(type))) {
    Host().ShowNote(name + ": not all can be held.\n" + boost::algorithm::join(losses, "\n"));
  }
  const bool done = basic_exportable_t::DoExportData(name, type);
  exportProgress_.reset();
  exportBlock_ = {};
  if (CDataView* const view = GetDataView()) view->ReopenFile();
  if (!exportProblems_.empty()) AfxMessageBox(boost::algorithm::join(exportProblems_, "\n"));
  if (done && !exportNotes_.empty()) {
    Host().ShowNote(boost::algorithm::join(exportNotes_, "\n"));
  }
  return done;
}

bool CDataDoc::GetTextFileDelimiter(char& delimiter) {
  delimiter = exportDelimiter_;
  return exportDelimiter_ != 0;
}

bool CDataDoc::GetAppDataHeader(variables_t& variables) {
  CDataView* const view = GetDataView();
  if (view == nullptr || view->OpenScratchFile("rb") == nullptr) {
    ReportError("The temporary work file is gone.");
    return false;
  }
  exportBlock_.clear();
  exportBegin_ = 0;
  const NumberForm form = ExportedForm();
  variables.clear();
  exportMissing_.clear();
  for (std::size_t i = 0; i < static_cast<std::size_t>(data_.variables); ++i) {
    STUtils::variable_info_t variable;
    variable.name = TextForDisplay(data_.variable[i].name);
    variable.type = ST_TYPE_NUMERIC;
    variable.printWidth = form.width;
    variable.decimals = form.decimals;
    variables.push_back(std::move(variable));
    exportMissing_.emplace_back(data_, i);
  }
  return true;
}

bool CDataDoc::GetAppDataRecord(long record, const variables_t& variables, values_t& values) {
  if (record >= data_.records || !ReadExportBlock(record)) return false;
  const double* const cells =
      exportBlock_.data() + static_cast<std::size_t>(record - exportBegin_) * variables.size();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    STUtils::variable_data_t& value = values[i];
    value.kind = ST_TYPE_NUMERIC;
    value.value = cells[i];
    value.missing = exportMissing_[i](cells[i]);
    if (!value.text.empty()) value.text.clear();
  }
  return true;
}

// Makes the block of records hold `record`.
bool CDataDoc::ReadExportBlock(long record) {
  const auto variables = static_cast<std::size_t>(std::max(data_.variables, 1));
  const auto held = static_cast<long>(exportBlock_.size() / variables);
  if (record >= exportBegin_ && record < exportBegin_ + held) return true;
  const std::size_t atOnce =
      std::max<std::size_t>(1, STUtils::kTransferBytes / (variables * kCellBytes));
  const auto count = std::min<std::int64_t>(static_cast<std::int64_t>(atOnce),
                                            std::int64_t{data_.records} - record);
  exportBlock_.resize(static_cast<std::size_t>(count) * variables);
  exportBegin_ = record;
  std::FILE* const scratch = GetDataView()->GetScratchStream();
  const std::size_t bytes = exportBlock_.size() * kCellBytes;
  errno = EIO;  // the reason where the file is only too short
  return scratch != nullptr &&
         ReadAt(fileno(scratch), CellBytes(record, data_.variables), exportBlock_.data(), bytes) ==
             static_cast<std::int64_t>(bytes);
}

// What does not read back as it was is told before anything is written: blanks do not show where a
// value is missing, and a first record without any value leaves a reader nothing to tell the
// columns by.
void CDataDoc::WarnOfMissing(const CString& name, int type) {
  variables_t variables;
  if (!STUtils::IsTextFileType(type) || !GetAppDataHeader(variables)) return;
  values_t values(variables.size());
  const auto isMissing = [](const STUtils::variable_data_t& value) { return value.missing; };
  for (long record = 0; GetAppDataRecord(record, variables, values); ++record) {
    if (record == 0 && std::all_of(values.begin(), values.end(), isMissing)) {
      Host().ShowNote(name + ": every value of the first record is missing.");
    }
    if (type != STUtils::SPACE_TEXT_FILE_TYPE) return;
    if (std::any_of(values.begin(), values.end(), isMissing)) {
      Host().ShowNote(name +
                      ": missing values leave no trace in free format; the file will not read back "
                      "as it was.");
      return;
    }
  }
}

void CDataDoc::ReportError(const CString& text) {
  if (!text.empty()) exportProblems_.push_back(text);
}

bool CDataDoc::ReportProgress(double fraction) {
  return exportProgress_ == nullptr || exportProgress_->Advance(fraction);
}
