#include "transfer/DataPort.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <boost/algorithm/string/join.hpp>
#include <boost/format.hpp>

#include "datadoc/VsfLayout.h"
#include "host/Host.h"
#include "host/Text.h"
#include "transfer/FileContent.h"
#include "transfer/ImportNames.h"
#include "vexutils/TickCount.h"

using STUtils::variable_data_t;
using STUtils::variable_info_t;

namespace {

// Of which variables labels were left out or cut, and how many of each; empty when all fit.
CString NoteOfLabels(const std::vector<variable_info_t>& variables) {
  constexpr std::size_t kShown = 8;
  std::vector<CString> names;
  for (const variable_info_t& variable : variables) {
    const std::size_t labels = variable.selected ? LabelsWithoutRoom(variable) : 0;
    if (labels > 0) names.push_back(variable.name + " (" + std::to_string(labels) + ")");
  }
  if (names.empty()) return {};
  const std::size_t more = names.size() - std::min(kShown, names.size());
  names.resize(names.size() - more);
  return "Value labels that were left out or cut, for a variable has room for 15 whole numbers "
         "with "
         "labels of 8 bytes: " +
         boost::algorithm::join(names, ", ") +
         (more > 0 ? " and " + std::to_string(more) + " more variables." : ".");
}

}  // namespace

STUtils::eRESULT CDataPort::GetImportFileNameAndType(string& name, int& type) {
  const STUtils::eRESULT result = basic_data_import_t::GetImportFileNameAndType(name, type);
  if (result != STUtils::eOK) return result;
  type = STUtils::AskAboutContent(name, type);
  asksForTable_ = true;
  if (STUtils::CanImport(type)) return STUtils::eOK;
  AfxMessageBox(name + ": " + STUtils::NameOfType(type) + " cannot be imported by this version.");
  return STUtils::eFAILED;
}

bool CDataPort::DoImportData(const string& name, int type, bool toFile,
                             const string& systemFileName) {
  std::error_code error;
  if (toFile && std::filesystem::equivalent(name, systemFileName, error)) {
    AfxMessageBox("A file cannot be imported onto itself: " + name);
    return false;
  }
  const CWaitCursor wait;
  notes_.clear();
  warnings_.clear();
  problems_.clear();
  statusAtEnd_.clear();
  guessedEncoding_.clear();
  stopped_ = false;
  progress_ = Host().StartProgress("Importing " + name);
  const bool imported = basic_data_import_t::DoImportData(name, type, toFile, systemFileName);
  const bool finished = Finish(imported, systemFileName);
  progress_.reset();
  if (!problems_.empty()) AfxMessageBox(boost::algorithm::join(problems_, "\n"));
  if (finished && !warnings_.empty()) {
    Host().ShowNote(boost::algorithm::join(warnings_, "\n"));
  }
  if (finished && !notes_.empty()) WriteStatusInfo(boost::algorithm::join(notes_, " "));
  if (!finished && !statusAtEnd_.empty()) WriteStatusInfo(statusAtEnd_);
  return finished;
}

// The system data file takes its place, or what was written of it is kept for the user; nothing
// that stood there before is lost.
bool CDataPort::Finish(bool imported, const string& systemFileName) {
  if (imported && side_.Commit()) return true;
  if (imported) {
    ReportWriteError(systemFileName, side_.ErrorText());
  }
  ResetStatusInfo();
  if (stopped_) {
    side_.Discard();
    WriteStatusInfo("The import was stopped.");
  } else {
    TellOfKeptPart();
  }
  return false;
}

void CDataPort::TellOfKeptPart() {
  const string target = side_.Target();
  const string kept = side_.KeepPart();
  if (kept.empty() || kept == target) return;
  ReportError("The file was left as it was: " + target +
              "\nThe part that was imported is in: " + kept);
}

bool CDataPort::OpenInFile(const string& name, int type, STUtils::CStatTransfer<char>& transfer) {
  if (sourceChooser_ && !ChooseSource(name, type)) {
    stopped_ = true;
    return false;
  }
  const bool asks = asksForTable_ && !sourceChooser_ && table_.empty();
  const string table = asks ? AskForTable(name, type) : table_;
  asksForTable_ = false;
  ST_SetInputTable(transfer.Environment(), table.c_str());
  if (ST_SetInputEncoding(transfer.Environment(), encoding_.c_str()) != 0) return false;
  ST_SetDatabasePassword(transfer.Environment(), password_.c_str());
  return basic_data_import_t::OpenInFile(name, type, transfer) &&
         SelectVariables(transfer.variables);
}

bool CDataPort::ChooseSource(const string& name, int type) {
  CSourceChoice choice(name, type);
  if (!choice.AsksForAnything()) return true;
  progress_.reset();  // the user's time is none of the import's
  const bool chosen = sourceChooser_(choice);
  progress_ = Host().StartProgress("Importing " + name);
  table_ = choice.TableName();
  encoding_ = choice.EncodingName();
  password_ = choice.password;
  return chosen;
}

// Goes through the tables of the file until one is wanted; empty when there is nothing to choose or
// none was.
CDataPort::string CDataPort::AskForTable(const string& name, int type) {
  STUtils::CStatTransfer<char> looking;
  ST_FILE* const file = ST_OpenInputFile(looking.Environment(), type, name.c_str());
  const int tables = file != nullptr ? ST_GetNTables(file) : 0;
  for (int i = 0; tables > 1 && i < tables; ++i) {
    const string table = ST_GetTableName(file, i);
    const string question =
        boost::str(boost::format("'%1%' holds %2% tables.\n\nRead number %3%, \"%4%\"?") % name %
                   tables % (i + 1) % table);
    if (AfxMessageBox(question, MessageButtons::YesNo, "Import Data") == MessageAnswer::Yes) {
      return table;
    }
  }
  return {};
}

bool CDataPort::SelectVariables(variables_t& variables) {
  if (selection_.empty()) return true;
  for (variable_info_t& variable : variables) {
    variable.selected =
        std::find(selection_.begin(), selection_.end(), variable.name) != selection_.end();
  }
  for (const string& name : selection_) {
    const bool found = std::any_of(variables.begin(), variables.end(),
                                   [&](const variable_info_t& v) { return v.name == name; });
    if (found) continue;
    ReportError("The file has no variable of this name: " + name);
    return false;
  }
  return true;
}

// The message is short; the reason stands on the status bar.
bool CDataPort::TextDataAutoSense(text_import_t& reader, bool& hasNames, variables_t& variables) {
  reader_ = &reader;
  reader.SetMissingStrings(missing_);
  if (reader.Configure(textSettings_) &&
      TextDataAutoSense(reader, hasNames, variables, nameTemplate_)) {
    return true;
  }
  statusAtEnd_ = reader.Error();
  CStatusBar* status = statusBar_;
  if (CMainFrame* const frame = APPUTIL_GetMainFrame(); status == nullptr && frame != nullptr) {
    status = frame->GetStatusBar();
  }
  if (status != nullptr) status->SetPaneText(0, statusAtEnd_);
  AfxMessageBox("Error in attempting to read file");
  return false;
}

bool CDataPort::TextDataConfirmation(bool, const string& name, variables_t& variables) {
  if (!SelectVariables(variables)) return false;
  if (!textConfirmer_ || reader_ == nullptr) return true;
  CTextConfirmation confirmation(*reader_, name, variables, nameTemplate_);
  progress_.reset();  // the user's time is none of the import's
  const bool confirmed = textConfirmer_(confirmation);
  progress_ = Host().StartProgress("Importing " + name);
  return confirmed;
}

void CDataPort::ResetVariablesInfo(text_import_t& reader, const variables_t& variables) {
  basic_data_import_t::ResetVariablesInfo(reader, variables);
  missing_ = reader.Missing();
}

bool CDataPort::OpenAppDataFile(const string& systemFileName, ofstream& stream) {
  const bool created = side_.Create(systemFileName);
  if (created && basic_data_import_t::OpenAppDataFile(side_.Path(), stream)) return true;
  const string reason = created ? std::strerror(errno) : side_.ErrorText();
  side_.Discard();
  ReportWriteError(systemFileName, reason);
  return false;
}

bool CDataPort::AddAppDataFileFilter(filter_t& filter) {
  filter.Add(STUtils::SystemDataFileType());
  return true;
}

bool CDataPort::WriteAppDataHeader(ofstream& stream, const variables_t& variables,
                                   std::streampos& countPosition) {
  std::vector<string> names = ImportedNames(variables);
  NoteNames(names);
  NoteTextVariables(variables);
  if (keepLabels_) {
    names = UniqueNames(names);
    if (const string labels = NoteOfLabels(variables); !labels.empty()) notes_.push_back(labels);
  }

  TORVIKSTRUCT header;
  header.records = -1;  // until the last record has been written
  header.variables = static_cast<std::int32_t>(names.size());
  CString bytes;
  AppendVsfHeader(header, kNewFormat, VsfFiller::Zeros, bytes);
  countPosition = stream.tellp() + std::streamoff{kVsfRecordCountOffset};
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));

  lastUpdate_ = GetTickCount();
  std::size_t written = 0;
  for (const variable_info_t& variable : variables) {
    if (!variable.selected) continue;
    if (!WriteVSFVariable(stream, variable, names[written])) return false;
    ++written;
    if (!CanUpdateStatusInfo(lastUpdate_)) continue;
    WriteStatusInfo(
        boost::str(boost::format("Importing %1% of %2% variables") % written % names.size()));
    lastUpdate_ = GetTickCount();
  }
  row_.assign(names.size(), 0.0);
  written_ = 0;
  return stream.good();
}

// Every imported variable starts as ordinal without categories; its labels are blanks.
bool CDataPort::WriteVSFVariable(ofstream& stream, const variable_info_t& variable,
                                 const string& name) const {
  TORVIKSTRUCT block;
  block.ResizeArrays(1);
  block.variable.front().name = name;
  for (CString& label : block.categoryLabels) label.assign(kVsfLabelBytes, ' ');
  if (keepLabels_) KeepLabels(variable, name, block);
  CString bytes;
  AppendVsfVariable(block, 0, kNewFormat, bytes);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return stream.good();
}

bool CDataPort::WriteAppDataRecord(int type, ofstream& stream, long record,
                                   const variables_t& variables, const values_t& values) {
  std::size_t column = 0;
  row_.resize(variables.size());
  const bool asksNumbers = missing_.HasNumbers();
  for (std::size_t index = 0; index < variables.size(); ++index) {
    if (!variables[index].selected) continue;
    const variable_data_t& value = values[index];
    switch (variables[index].type) {
      case ST_TYPE_NUMERIC:
      case ST_TYPE_DATE: {
        // A value without a text can only be missing as a number.
        const bool ask = asksNumbers || !value.text.empty();
        const bool missing = value.missing || (ask && SameAsMissing(type, value));
        row_[column++] = missing ? kMissingCode : value.value;
        break;
      }
      case ST_TYPE_STRING:
        row_[column++] = kMissingCode;
        break;
      default:
        ReportError("A variable of an unknown type cannot be imported: " + variables[index].name);
        return false;
    }
  }
  TellRecords(record + 1);
  return WriteCells(stream, std::span(row_).first(column));
}

std::optional<double> CDataPort::CellOfMissing() const {
  return kMissingCode;
}

bool CDataPort::WriteAppDataNumbers(ofstream& stream, long records, std::span<const double> cells) {
  TellRecords(records + 1);
  return WriteCells(stream, cells);
}

bool CDataPort::WriteCells(ofstream& stream, std::span<const double> cells) {
  stream.write(reinterpret_cast<const char*>(cells.data()),
               static_cast<std::streamsize>(cells.size_bytes()));
  written_ += static_cast<std::int64_t>(cells.size_bytes());
  side_.WriteBehind(written_);
  return stream.good();
}

void CDataPort::TellRecords(long records) {
  if (records == 1) lastUpdate_ = GetTickCount();
  if (!CanUpdateStatusInfo(lastUpdate_)) return;
  WriteStatusInfo(boost::str(boost::format("Importing %1% record(s)") % records));
  lastUpdate_ = GetTickCount();
}

bool CDataPort::UpdateAppDataRecordCount(ofstream& stream, const std::streampos& countPosition,
                                         long count) {
  const auto word = static_cast<std::int32_t>(count);
  stream.seekp(countPosition);
  stream.write(reinterpret_cast<const char*>(&word), sizeof word);
  ResetStatusInfo();
  return stream.good();
}

bool CDataPort::SameAsMissing(int type, const variable_data_t& value) const {
  if (!STUtils::IsTextFileType(type)) return false;
  if (missing_.HasNumber(value.value)) return true;
  return value.value == 0 && !value.text.empty() && missing_.HasText(Trimmed(value.text));
}

void CDataPort::ReportError(const string& text) {
  if (!text.empty()) problems_.push_back(text);  // an empty one has been reported before
}

void CDataPort::ReportWriteError(const string& systemFileName, const string& reason) {
  ReportError("Error in attempting to write VSF file:\n" + systemFileName + ": " + reason);
}

bool CDataPort::ReportProgress(double fraction) {
  if (progress_ && !progress_->Advance(fraction)) stopped_ = true;
  return !stopped_;
}

bool CDataPort::CanUpdateStatusInfo(std::int64_t last) const {
  return statusBar_ != nullptr && GetTickCount() - last >= cs_dwSTATUS_PANE_UPDATE_RATE;
}

void CDataPort::ResetStatusInfo() const {
  WriteStatusInfo({});
}

void CDataPort::WriteStatusInfo(const string& text) const {
  if (statusBar_ != nullptr) statusBar_->SetPaneText(0, text);
}

void CDataPort::OnTextRead(const text_import_t& reader, const variables_t& variables) {
  // What is valid UTF-8 or has a byte order mark hardly is anything else.
  const STUtils::TextEncoding encoding = reader.Source().Encoding();
  if (!textSettings_.encoding && encoding == STUtils::TextEncoding::Windows1252) {
    guessedEncoding_ = STUtils::NameOfEncoding(encoding);
  }
  constexpr std::size_t kMostTold = 20;
  std::vector<string> told;
  std::size_t columns = 0;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const STUtils::UnreadableFields& fields = reader.Unreadable()[i];
    if (fields.count == 0 || ++columns > kMostTold) continue;
    told.push_back(boost::str(boost::format("%1%: %2% (first in line %3%)") % variables[i].name %
                              fields.count % fields.firstLine));
  }
  if (columns > kMostTold) {
    told.push_back("and " + std::to_string(columns - kMostTold) + " more variables");
  }
  if (columns > 0) {
    warnings_.push_back(
        "Fields that are no numbers, or only in part; without a number at the start they are "
        "missing:\n" +
        boost::algorithm::join(told, "\n"));
  }
  if (reader.FieldsLeft() > 0) {
    warnings_.push_back("The file ends inside a record: its last " +
                        std::to_string(reader.FieldsLeft()) + " field(s) were left out.");
  }
}

void CDataPort::NoteNames(const std::vector<string>& names) {
  std::vector<string> repeated = RepeatedNames(names);
  if (repeated.empty()) return;
  for (string& name : repeated) name = TextForDisplay(name);
  notes_.push_back(string(keepLabels_ ? "Names that are equal within 16 characters got numbers: "
                                      : "Names that are equal within 16 characters: ") +
                   boost::algorithm::join(repeated, ", ") + ".");
}

void CDataPort::NoteTextVariables(const variables_t& variables) {
  const auto count = std::count_if(variables.begin(), variables.end(), [](const auto& variable) {
    return variable.selected && variable.type == ST_TYPE_STRING;
  });
  if (count == 0) return;
  notes_.push_back(std::to_string(count) + " text variable(s) hold missing values only.");
}
