#include "transfer/DataImport.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>

#include "vexutils/BlockIo.h"

namespace STUtils {
namespace {

// Formats whose variables are named by the first row of a sheet.
constexpr bool IsSpreadsheet(int type) {
  constexpr int kFirstOwn = 900;  // .xlsx
  constexpr int kLastOwn = 901;   // .ods
  return type == 0 || type == 1 || type == 7 || type == 11 || type == 15 ||
         (type >= kFirstOwn && type <= kLastOwn);
}

}  // namespace

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::Import(string& name, int& type, bool promptSystemFile,
                                                   bool keepSystemFile, string& systemFileName) {
  if (const eRESULT result = DoPromptForImportFileNameAndType(name, type); result != eOK) {
    return result;
  }
  if (const eRESULT result =
          DoPromptForImportedAppDataFileName(name, promptSystemFile, systemFileName);
      result != eOK) {
    return result;
  }
  const bool toFile = keepSystemFile && !systemFileName.empty();
  return DoImportData(name, type, toFile, systemFileName) ? eOK : eFAILED;
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::Import(string& name, int& type,
                                                   string& systemFileName) {
  return Import(name, type, true, true, systemFileName);
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::Import(string& name, int& type) {
  string scratchName;
  return Import(name, type, false, false, scratchName);
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::GetImportFileNameAndType(string& name, int& type) {
  return AskForFileAndType(false, {}, {}, name, type);
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::DoPromptForImportFileNameAndType(string& name,
                                                                             int& type) {
  if (!name.empty() && type != UNKNOWN_FILE_TYPE) return eOK;
  return GetImportFileNameAndType(name, type);
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::DoPromptForImportedAppDataFileName(
    const string& name, bool prompt, string& systemFileName) {
  if (!prompt) return eOK;
  if (systemFileName.empty()) systemFileName = name;
  return PromptForAppDataFileName(false, systemFileName);
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::DoImportData(const string& name, int type, bool toFile,
                                                      const string& systemFileName) {
  return IsTextFileType(type) ? ImportTextData(name, type, toFile, systemFileName)
                              : ImportStatData(name, type, toFile, systemFileName);
}

template <typename CharT, typename CountT>
eRESULT basic_data_import_t<CharT, CountT>::PromptForAppDataFileName(bool open,
                                                                     string& systemFileName) {
  filter_t filter;
  if (!AddAppDataFileFilter(filter) || filter.Rows().empty()) return eFAILED;
  const string& extension = filter.Rows().front().defaultExtension();
  const std::filesystem::path old(systemFileName);
  FileDialogRequest request;
  request.save = !open;
  request.flags = open ? FileDialogRequest::kOpenFlags : FileDialogRequest::kSaveFlags;
  request.folder = old.parent_path().string();
  request.fileName = std::filesystem::path(old.filename()).replace_extension(extension).string();
  request.rows = filter.DialogRows();
  FileDialogChoice choice;
  if (!Host().AskForFile(request, choice)) return eCANCELLED;
  std::filesystem::path chosen(choice.path);
  if (!chosen.has_extension()) chosen.replace_extension(extension);
  systemFileName = chosen.string();
  return eOK;
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::CheckUnknownVarType(variables_t& variables) {
  for (auto& variable : variables) {
    if (variable.type == ST_TYPE_UNKNOWN) variable.type = ST_TYPE_NUMERIC;
  }
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::OpenAppDataFile(const string& systemFileName,
                                                         ofstream& stream) {
  stream.open(systemFileName, std::ios::binary | std::ios::out | std::ios::trunc);
  return stream.good();
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::WriteAppDataHeader(bool toFile, ofstream& stream,
                                                            const variables_t& variables,
                                                            std::streampos& countPosition) {
  return toFile ? WriteAppDataHeader(stream, variables, countPosition)
                : WriteAppDataHeader(variables);
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::WriteAppDataRecord(int type, bool toFile, ofstream& stream,
                                                            CountT record,
                                                            const variables_t& variables,
                                                            const values_t& values) {
  return toFile ? WriteAppDataRecord(type, stream, record, variables, values)
                : WriteAppDataRecord(type, record, variables, values);
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::UpdateAppDataRecordCount(
    bool toFile, ofstream& stream, const std::streampos& countPosition, CountT count) {
  return toFile ? UpdateAppDataRecordCount(stream, countPosition, count)
                : UpdateAppDataRecordCount(count);
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::ImportStatData(const string& name, int type, bool toFile,
                                                        const string& systemFileName) {
  CStatTransfer<CharT> transfer;
  if (!OpenInFile(name, type, transfer)) {
    ReportError(transfer.ErrorText());
    return false;
  }
  const auto buffer = std::make_unique<CharT[]>(kBlockBytes);
  ofstream stream;  // closed before its buffer goes
  stream.rdbuf()->pubsetbuf(buffer.get(), static_cast<std::streamsize>(kBlockBytes));
  if (toFile && !OpenAppDataFile(systemFileName, stream)) return false;
  std::streampos countPosition;
  CountT records = 0;
  const bool written = WriteAppDataHeader(toFile, stream, transfer.variables, countPosition) &&
                       CopyRecords(transfer, toFile, stream, records) &&
                       UpdateAppDataRecordCount(toFile, stream, countPosition, records);
  stream.close();
  if (toFile && stream.fail()) {
    ReportWriteError(systemFileName, std::strerror(errno));
    return false;
  }
  return written;
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::CopyRecords(CStatTransfer<CharT>& transfer, bool toFile,
                                                     ofstream& stream, CountT& records) {
  values_t values(transfer.variables.size());
  int status = 0;
  for (records = 0; (status = transfer.ReadRecord(values)) == 1; ++records) {
    if (records == kMostRecords) {
      ReportError(kTooManyRecords);
      return false;
    }
    if (records % kRecordsPerStep == 0 && !ReportProgress(ST_GetProgress(transfer.file))) {
      return false;
    }
    if (!WriteAppDataRecord(transfer.type, toFile, stream, records, transfer.variables, values)) {
      return false;
    }
  }
  if (status < 0) ReportError(transfer.ErrorText());
  const int notes = ST_GetNNotes(transfer.Environment());
  for (int i = 0; i < notes; ++i) ReportNote(ST_GetNote(transfer.Environment(), i));
  OnEncodingGuessed(ST_GetGuessedEncoding(transfer.file));
  return status == 0;
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::OpenInFile(const string& name, int type,
                                                    CStatTransfer<CharT>& transfer) {
  transfer.Reset();
  transfer.type = type;
  if (IsSpreadsheet(type)) {
    constexpr int kNamesRow = 0;
    constexpr int kReadMode = 2;
    ST_SetWksNameRow(transfer.Environment(), kNamesRow);
    ST_SetWksReadMode(transfer.Environment(), kReadMode);
  }
  transfer.file = ST_OpenInputFile(transfer.Environment(), type, name.c_str());
  if (transfer.file == nullptr) return false;
  const int variables = ST_ReadDict(transfer.file);
  if (variables < 0) return false;
  const std::int64_t cases = ST_GetNCases(transfer.file);
  transfer.cases =
      cases <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(cases) : -1;
  const bool namesRow = IsSpreadsheet(type) && ST_GetWksNameStat(transfer.file) == 0;
  if (namesRow && transfer.cases > 0) --transfer.cases;
  if (ST_SelectAllVars(transfer.file) != 0) return false;
  ST_InitReadOnly(transfer.file);
  ReadVariables(transfer, variables);
  CheckUnknownVarType(transfer.variables);
  return true;
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::ReadVariables(CStatTransfer<CharT>& transfer, int count) {
  ST_FILE* const file = transfer.file;
  for (int variable = 0; variable < count; ++variable) {
    basic_variable_info_t<CharT> info;
    info.name = ST_GetVarName(file, variable);
    info.label = ST_GetVarLabel(file, variable);
    info.type = ST_GetVarTypeExt(file, variable);
    info.printWidth = ST_GetVarPrintWidth(file, variable);
    info.decimals = ST_GetVarNDec(file, variable);
    const int labels = ST_GetNValueLabels(file, variable);
    for (int k = 0; k < labels; ++k) {
      ST_LABEL label{};
      if (ST_GetValueLabel(file, variable, k, &label) != 0) continue;
      info.valueLabels.insert({label.value, label.tag, label.text != nullptr ? label.text : "",
                               label.label != nullptr ? label.label : ""});
    }
    transfer.variables.push_back(std::move(info));
  }
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::AddAllFilesFilter(filter_t& filter) {
  filter.Add(AllFilesType());
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::AddImportStatFileFilter(filter_t& filter) {
  filter.Add(StatFileTypes());
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::AddImportTextFileFilter(filter_t& filter) {
  filter.Add(TextFileTypes());
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::AddApplicationSupportedStatFileFilter(filter_t&) {}

template class basic_data_import_t<char, long>;

}  // namespace STUtils
