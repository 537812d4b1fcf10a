// The text side of the import sequence.
#include <cerrno>
#include <cstring>
#include <memory>

#include "transfer/DataImport.h"
#include "transfer/TextScan.h"

namespace STUtils {
namespace {

template <typename CharT>
void SetKinds(const std::vector<basic_variable_info_t<CharT>>& variables,
              std::vector<basic_variable_data_t<CharT>>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].kind == ST_TYPE_UNKNOWN) values[i].kind = variables[i].type;
  }
}

}  // namespace

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::ImportTextData(const string& name, int type, bool toFile,
                                                        const string& systemFileName) {
  text_import_t reader;
  reader.Open(name, type);  // a failure is the scan's
  bool hasNames = false;
  variables_t variables;
  if (!TextDataAutoSense(reader, hasNames, variables)) return false;
  CheckUnknownVarType(variables);
  if (!TextDataConfirmation(hasNames, name, variables)) return false;
  ResetVariablesInfo(reader, variables);

  const auto buffer = std::make_unique<CharT[]>(kTransferBytes);
  ofstream stream;  // closed before its buffer goes
  stream.rdbuf()->pubsetbuf(buffer.get(), static_cast<std::streamsize>(kTransferBytes));
  if (toFile && !OpenAppDataFile(systemFileName, stream)) return false;
  std::streampos countPosition;
  CountT records = 0;
  const bool written = WriteAppDataHeader(toFile, stream, variables, countPosition) &&
                       CopyTextRecords(reader, toFile, stream, variables, records) &&
                       UpdateAppDataRecordCount(toFile, stream, countPosition, records);
  stream.close();
  if (toFile && stream.fail()) {
    ReportWriteError(systemFileName, std::strerror(errno));
    return false;
  }
  if (written) OnTextRead(reader, variables);
  return written;
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::CopyTextRecords(text_import_t& reader, bool toFile,
                                                         ofstream& stream,
                                                         const variables_t& variables,
                                                         CountT& records) {
  values_t values(variables.size());
  reader.StartRecords();
  for (records = 0; reader.ReadRecord(values); ++records) {
    if (records == kMostRecords) {
      ReportError(kTooManyRecords);
      return false;
    }
    if (records % kRecordsPerStep == 0 && !ReportProgress(reader.Fraction())) return false;
    // The reader leaves kinds alone: what the first record got stays.
    if (records == 0) SetKinds(variables, values);
    if (!WriteAppDataRecord(reader.type, toFile, stream, records, variables, values)) return false;
  }
  if (!reader.IsFailed() && !reader.Source().HasChanged()) return true;
  ReportError(reader.IsFailed() ? reader.Error() : reader.ChangedText());
  return false;
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::TextDataAutoSense(text_import_t& reader, bool& hasNames,
                                                           variables_t& variables,
                                                           var_name_template_t& names) {
  return SenseTextData(reader, hasNames, variables, names);
}

template <typename CharT, typename CountT>
void basic_data_import_t<CharT, CountT>::ResetVariablesInfo(text_import_t& reader,
                                                            const variables_t& variables) {
  reader.SetVariables(variables);
}

template bool basic_data_import_t<char, long>::ImportTextData(const string&, int, bool,
                                                              const string&);
template bool basic_data_import_t<char, long>::TextDataAutoSense(text_import_t&, bool&,
                                                                 variables_t&,
                                                                 var_name_template_t&);
template void basic_data_import_t<char, long>::ResetVariablesInfo(text_import_t&,
                                                                  const variables_t&);
template bool basic_data_import_t<char, long>::CopyTextRecords(text_import_t&, bool, ofstream&,
                                                               const variables_t&, long&);

}  // namespace STUtils
