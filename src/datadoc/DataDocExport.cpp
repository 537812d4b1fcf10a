// The document's side of export.
#include <algorithm>
#include <filesystem>

#include <boost/algorithm/string/join.hpp>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Text.h"
#include "host/statrn32.h"
#include "transfer/ExportLosses.h"

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

// The sheets and pages, where a row is what its cells make it.
bool IsSheet(int type) {
  constexpr int kSheets[] = {0, 7, 11, 31, 900, 901};
  return std::find(std::begin(kSheets), std::end(kSheets), type) != std::end(kSheets);
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
  exportCells_.End();
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

bool CDataDoc::GetDatabasePassword(const CString& name, CString& password) {
  if (!passwordAsker_) return true;
  exportProgress_.reset();  // the user's time is none of the export's
  const bool given = passwordAsker_(name, password);
  exportProgress_ = Host().StartProgress("Exporting " + name);
  return given;
}

bool CDataDoc::GetAppDataHeader(variables_t& variables) {
  int scratch = -1;
  if (!exportCells_.HasFile()) {
    CDataView* const view = GetDataView();
    std::FILE* const stream = view != nullptr ? view->OpenScratchFile("rb") : nullptr;
    if (stream == nullptr) {
      ReportError("The temporary work file is gone.");
      return false;
    }
    scratch = fileno(stream);
  }
  exportCells_.Start(data_, scratch);
  const NumberForm form = ExportedForm();
  variables.clear();
  for (std::size_t i = 0; i < static_cast<std::size_t>(data_.variables); ++i) {
    STUtils::variable_info_t variable;
    variable.name = TextForDisplay(data_.variable[i].name);
    variable.type = ST_TYPE_NUMERIC;
    variable.printWidth = form.width;
    variable.decimals = form.decimals;
    variables.push_back(std::move(variable));
  }
  return true;
}

bool CDataDoc::GetAppDataRecord(long record, const variables_t& variables, values_t& values) {
  const double* const cells = exportCells_.Record(record);
  if (cells == nullptr) return false;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    STUtils::variable_data_t& value = values[i];
    value.kind = ST_TYPE_NUMERIC;
    value.value = cells[i];
    value.missing = exportCells_.IsMissing(cells[i], i);
    if (!value.text.empty()) value.text.clear();
  }
  return true;
}

std::span<const double> CDataDoc::GetAppNumbers(long record, const variables_t&) {
  return exportCells_.Numbers(record);
}

// What does not read back as it was is told before anything is written: blanks do not show where a
// value is missing, and a first record without any value leaves a reader nothing to tell the
// columns by.
void CDataDoc::WarnOfMissing(const CString& name, int type) {
  const bool sheet = IsSheet(type);
  variables_t variables;
  if ((!sheet && !STUtils::IsTextFileType(type)) || !GetAppDataHeader(variables)) return;
  values_t values(variables.size());
  const auto isMissing = [](const STUtils::variable_data_t& value) { return value.missing; };
  if (sheet) {
    const bool blank = data_.records > 0 &&
                       GetAppDataRecord(data_.records - 1L, variables, values) &&
                       std::all_of(values.begin(), values.end(), isMissing);
    if (blank) {
      Host().ShowNote(name +
                      ": every value of the last case is missing. Cases without any value at the "
                      "end leave no trace in this file type.");
    }
    return;
  }
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
