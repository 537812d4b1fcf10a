#include "transfer/Exportable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

#include <boost/algorithm/string/replace.hpp>

#include "host/ShortestNumber.h"
#include "host/statrn32.h"
#include "transfer/FileTypes.h"
#include "transfer/NumberLines.h"
#include "vexutils/SideFile.h"

namespace STUtils {
namespace {

constexpr int kSasDataFile = 38;
constexpr int kSasStyle = 256;
constexpr int kAccess = 23;
constexpr int kInformix = 27;
constexpr int kTableNameParameter = 2;
constexpr int kTableNameOption = 5;

}  // namespace

template <typename CharT, typename CountT>
eRESULT basic_exportable_t<CharT, CountT>::Export(const string& name) {
  string chosenName;
  int type = UNKNOWN_FILE_TYPE;
  return Export(name, chosenName, type);
}

template <typename CharT, typename CountT>
eRESULT basic_exportable_t<CharT, CountT>::Export(const string& name, string& chosenName,
                                                  int& type) {
  const std::filesystem::path path(name);
  if (const eRESULT result = DoPromptForExportFileNameAndType(
          chosenName, type, path.parent_path().string(), path.filename().string());
      result != eOK) {
    return result;
  }
  return DoExportData(chosenName, type) ? eOK : eFAILED;
}

template <typename CharT, typename CountT>
eRESULT basic_exportable_t<CharT, CountT>::DoPromptForExportFileNameAndType(
    string& chosenName, int& type, const string& folder, const string& fileName) {
  if (!chosenName.empty() && type != UNKNOWN_FILE_TYPE) return eOK;
  return GetExportFileNameAndType(chosenName, type, folder, fileName);
}

template <typename CharT, typename CountT>
eRESULT basic_exportable_t<CharT, CountT>::GetExportFileNameAndType(string& chosenName, int& type,
                                                                    const string& folder,
                                                                    const string& fileName) {
  return AskForFileAndType(true, folder, fileName, chosenName, type);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::DoExportData(const string& name, int type) {
  stopped_ = false;
  tableName_ = std::filesystem::path(name).stem().string();
  return IsTextFileType(type) ? ExportTextData(name, type) : ExportStatData(name, type);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::GetTextDelimiter(CharT& delimiter) {
  return GetTextFileDelimiter(delimiter);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::GetTextFileDelimiter(CharT&) {
  return false;
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::GetDatabasePassword(const string&, string&) {
  return true;
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::ExportTextData(const string& name, int type) {
  CharT delimiter = 0;
  if (type == DELIMITED_TEXT_FILE_TYPE && !GetTextFileDelimiter(delimiter)) return false;
  return ExportTextData(name, type, delimiter);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::ExportTextData(const string& name, int type,
                                                       CharT delimiter) {
  variables_t variables;
  if (!GetAppDataHeader(variables)) return false;
  if (name == kStandardOutput) return WriteToStandardOutput(type, delimiter, variables);
  CSideFile side;
  if (!side.Create(name)) {
    ReportError(name + ": " + side.ErrorText());
    return false;
  }
  const auto buffer = std::make_unique<CharT[]>(kTransferBytes);
  basic_text_export_t<CharT> target;  // closed before its buffer goes
  target.side = &side;
  target.stream.rdbuf()->pubsetbuf(buffer.get(), static_cast<std::streamsize>(kTransferBytes));
  bool written =
      OpenExportFile(side.Path(), type, delimiter, target) && WriteTextRecords(target, variables);
  target.stream.close();
  if (target.stream.fail()) {
    ReportError(name + ": " + std::strerror(errno));
    written = false;
  }
  return CommitOrReport(side, written);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteToStandardOutput(int type, CharT delimiter,
                                                              const variables_t& variables) {
  // The stream that the process has, not its file opened anew: what others wrote there stays.
  basic_text_export_t<CharT> target;
  target.type = type;
  target.delimiter = delimiter;
  static_cast<std::basic_ios<CharT>&>(target.stream).rdbuf(std::cout.rdbuf());
  const bool written = WriteTextRecords(target, variables);
  target.stream.flush();
  if (!target.stream.fail()) return written;
  ReportError(string("Standard output: ") + std::strerror(errno));
  return false;
}

// The file stays as it is: what is written goes into the database, whole or not at all.
template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::ExportToDatabase(const string& name,
                                                         CStatTransfer<CharT>& transfer) {
  string password;
  if (!GetDatabasePassword(name, password)) return false;
  ST_SetDatabasePassword(transfer.Environment(), password.c_str());
  bool written = OpenExportFile(name, transfer.type, transfer) && WriteStatRecords(transfer);
  written = written && ST_CloseFiles(transfer.Environment()) == 0;
  if (!written && !stopped_) ReportError(transfer.ErrorText());
  transfer.variables.clear();
  transfer.Close();
  return written;
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::OpenExportFile(const string& name, int type,
                                                       CharT delimiter,
                                                       basic_text_export_t<CharT>& target) {
  target.type = type;
  target.delimiter = delimiter;
  target.stream.open(name, std::ios::binary | std::ios::out | std::ios::trunc);
  return target.stream.good();
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteTextRecords(basic_text_export_t<CharT>& target,
                                                         const variables_t& variables) {
  if (WantsNamesLine()) {
    values_t names(variables.size());
    for (std::size_t i = 0; i < variables.size(); ++i) {
      names[i].kind = ST_TYPE_STRING;
      names[i].text = variables[i].name;
    }
    if (!WriteTextFileDataRecord(target, -1, names)) return false;
  }
  values_t values(variables.size());
  CountT record = 0;
  if (!WriteNumberLines(target, variables, record)) return false;
  for (; GetAppDataRecord(record, variables, values); ++record) {
    if (record % kRecordsPerStep == 0 && !StepProgress(record)) return false;
    if (!WriteTextFileDataRecord(target, record, values)) return false;
  }
  return CheckComplete(record);
}

// As many records as there are in the quick way, which gives the same lines.
template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteNumberLines(basic_text_export_t<CharT>& target,
                                                         const variables_t& variables,
                                                         CountT& record) {
  if (variables.empty()) return true;
  CNumberLines lines(variables.size(), target.Separator());
  std::int64_t written = 0;
  for (;;) {
    const std::span<const double> cells = GetAppNumbers(record, variables);
    if (cells.empty()) return true;
    if (!StepProgress(record)) return false;
    const std::string_view text = lines.Text(cells);
    if (!target.stream.write(text.data(), static_cast<std::streamsize>(text.size()))) return false;
    written += static_cast<std::int64_t>(text.size());
    if (target.side != nullptr) target.side->WriteBehind(written);
    record += static_cast<CountT>(cells.size() / variables.size());
  }
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteTextFileDataRecord(basic_text_export_t<CharT>& target,
                                                                CountT, values_t& values) {
  // Numbers, as most values are, are written where they are to stand.
  string& line = target.line;
  string other;
  std::size_t end = 0;
  const CharT separator = target.Separator();
  const auto makeRoom = [&](std::size_t bytes) {
    if (line.size() < end + bytes + 2) line.resize(2 * (end + bytes + 2));
  };
  makeRoom(0);
  for (std::size_t i = 0; i < values.size(); ++i) {
    makeRoom(kNumberBytes);
    if (i > 0) line[end++] = separator;
    if (!IsPlainNumber(values[i])) {
      other.clear();
      AppendValueText(values[i], other);
      makeRoom(other.size());
      end += other.copy(&line[end], other.size());
    } else if (!values[i].missing) {
      end = static_cast<std::size_t>(WriteShortest(values[i].value, &line[end]) - line.data());
    }
  }
  line[end++] = '\n';
  target.stream.write(line.data(), static_cast<std::streamsize>(end));
  return target.stream.good();
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::ExportStatData(const string& name, int type) {
  CStatTransfer<CharT> transfer;
  transfer.type = type;
  if (!GetAppDataHeader(transfer.variables)) return false;
  if (!ST_CanWrite(type)) {
    // The library says by name why not and what serves instead.
    ST_InitUserDict(transfer.Environment(), 1);
    ST_OpenOutFile(transfer.Environment(), type, name.c_str());
    ReportError(transfer.ErrorText());
    return false;
  }
  if (ST_LeadsToDatabase(name.c_str())) return ExportToDatabase(name, transfer);
  CSideFile side;
  if (!side.Create(name)) {
    ReportError(name + ": " + side.ErrorText());
    return false;
  }
  ST_SetOutName(transfer.Environment(), name.c_str());
  bool written = OpenExportFile(side.Path(), type, transfer) && WriteStatRecords(transfer);
  written = written && ST_CloseFiles(transfer.Environment()) == 0;
  for (int i = 0; written && i < ST_GetNNotes(transfer.Environment()); ++i) {
    ReportNote(ST_GetNote(transfer.Environment(), i));
  }
  if (!written && !stopped_) {
    // The user knows the file by the name that was asked for.
    ReportError(boost::algorithm::replace_all_copy(transfer.ErrorText(), side.Path(), name));
  }
  transfer.variables.clear();
  transfer.Close();
  return CommitOrReport(side, written);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::OpenExportFile(const string& name, int type,
                                                       CStatTransfer<CharT>& transfer) {
  ST_ENV* const environment = transfer.Environment();
  if (ST_InitUserDict(environment, static_cast<int>(transfer.variables.size())) != 0) return false;
  for (const auto& variable : transfer.variables) {
    if (ST_AddUserVar(environment, variable.name.c_str(), variable.type, variable.printWidth,
                      variable.decimals) != 0) {
      return false;
    }
  }
  if (type == kSasDataFile) ST_SetSasStyle(environment, kSasStyle);
  if (type == kAccess || type == kInformix) {
    ST_DBSetParm(environment, kTableNameParameter, kTableNameOption, tableName_.c_str());
  }
  ST_SetNCases(environment, GetAppRecordCount());
  transfer.file = ST_OpenOutFile(environment, type, name.c_str());
  return transfer.file != nullptr;
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteStatRecords(CStatTransfer<CharT>& transfer) {
  values_t values(transfer.variables.size());
  CountT record = 0;
  for (; GetAppDataRecord(record, transfer.variables, values); ++record) {
    if (record % kRecordsPerStep == 0 && !StepProgress(record)) return false;
    if (!WriteStatFileDataRecord(transfer, record, values)) return false;
  }
  return CheckComplete(record);
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::WriteStatFileDataRecord(CStatTransfer<CharT>& transfer,
                                                                CountT, values_t& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& value = values[i];
    const int variable = static_cast<int>(i);
    if (value.missing) {
      ST_SetVarMissing(transfer.file, variable);
    } else if (value.kind == ST_TYPE_STRING) {
      ST_SetVarString(transfer.file, variable, value.text.c_str());
    } else {
      ST_SetVarDouble(transfer.file, variable, value.value);
    }
  }
  return ST_WriteRecord(transfer.file) == 0;
}

// A record that could not be read is not the end of the data.
template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::CheckComplete(CountT records) {
  if (records == GetAppRecordCount()) return true;
  ReportError("Record " + std::to_string(records + 1) +
              " could not be read: " + std::strerror(errno));
  return false;
}

template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::StepProgress(CountT record) {
  const auto total = static_cast<double>(std::max<CountT>(1, GetAppRecordCount()));
  stopped_ = !ReportProgress(static_cast<double>(record) / total);
  return !stopped_;
}

// A stopped export leaves nothing; a failed one what it had written, without touching a file that
// stood there.
template <typename CharT, typename CountT>
bool basic_exportable_t<CharT, CountT>::CommitOrReport(CSideFile& side, bool written) {
  if (written && side.Commit()) return true;
  if (written) ReportError(side.Target() + ": " + side.ErrorText());
  if (stopped_) return false;
  const string target = side.Target();
  const string kept = side.KeepPart();
  if (!kept.empty() && kept != target) {
    ReportError("The file was left as it was: " + target +
                "\nThe part that was written is in: " + kept);
  }
  return false;
}

template <typename CharT, typename CountT>
void basic_exportable_t<CharT, CountT>::AddAllFilesFilter(filter_t& filter) {
  filter.Add(AllFilesType());
}

template <typename CharT, typename CountT>
void basic_exportable_t<CharT, CountT>::AddStatFileFilter(filter_t& filter) {
  filter.Add(StatFileTypes());
}

template <typename CharT, typename CountT>
void basic_exportable_t<CharT, CountT>::AddTextFileFilter(filter_t& filter) {
  filter.Add(TextFileTypes());
}

template <typename CharT, typename CountT>
void basic_exportable_t<CharT, CountT>::AddApplicationSupportedStatFileFilter(filter_t&) {}

template class basic_exportable_t<char, long>;

}  // namespace STUtils
