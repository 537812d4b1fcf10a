// The text side of the import sequence.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "host/statrn32.h"
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

template <typename CharT>
bool AreNumbersOrTexts(const std::vector<basic_variable_info_t<CharT>>& variables) {
  return std::all_of(variables.begin(), variables.end(), [](const auto& variable) {
    return variable.type == ST_TYPE_NUMERIC || variable.type == ST_TYPE_STRING;
  });
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
  reader.StartRecords();
  const std::optional<double> missing = CellOfMissing();
  if (toFile && missing && AreNumbersOrTexts(variables)) {
    return CopyTextNumbers(reader, stream, *missing, records) && IsReadToTheEnd(reader);
  }
  values_t values(variables.size());
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
  return IsReadToTheEnd(reader);
}

// A block of records at a time.
template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::CopyTextNumbers(text_import_t& reader, ofstream& stream,
                                                         double missing, CountT& records) {
  const std::size_t width = std::max<std::size_t>(reader.SelectedColumns(), 1);
  const std::size_t atOnce = std::max<std::size_t>(kTransferBytes / sizeof(double) / width, 1);
  std::vector<double> cells(atOnce * width + text_import_t::kSpareCells);
  for (records = 0;;) {
    const std::size_t read = reader.ReadNumbers(missing, cells);
    if (read == 0) return true;
    if (read > static_cast<std::size_t>(kMostRecords - records)) {
      ReportError(kTooManyRecords);
      return false;
    }
    const std::span<const double> whole(cells.data(), read * reader.SelectedColumns());
    if (!ReportProgress(reader.Fraction())) return false;
    if (!WriteAppDataNumbers(stream, records, whole)) return false;
    records += static_cast<CountT>(read);
  }
}

template <typename CharT, typename CountT>
bool basic_data_import_t<CharT, CountT>::IsReadToTheEnd(const text_import_t& reader) {
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
template bool basic_data_import_t<char, long>::CopyTextNumbers(text_import_t&, ofstream&, double,
                                                               long&);
template bool basic_data_import_t<char, long>::IsReadToTheEnd(const text_import_t&);

}  // namespace STUtils
