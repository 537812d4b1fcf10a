// The import sequence: from a foreign or text file to a system data file.
#pragma once

#include <fstream>
#include <ios>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "transfer/OfnFilter.h"
#include "transfer/StatTransfer.h"
#include "transfer/TextImport.h"
#include "transfer/TransferTypes.h"
#include "transfer/VarNameTemplate.h"

namespace STUtils {

// Records that a system data file can count.
inline constexpr long kMostRecords = std::numeric_limits<std::int32_t>::max();
inline constexpr const char* kTooManyRecords =
    "A system data file holds at most 2147483647 records.";

// An importer. What is pure here belongs to the program that imports: where the data goes, and what
// the user confirms. `CharT` is the character type of all text, `CountT` that of record counts.
template <typename CharT, typename CountT>
class basic_data_import_t {
 public:
  using string = std::basic_string<CharT>;
  using variables_t = std::vector<basic_variable_info_t<CharT>>;
  using values_t = std::vector<basic_variable_data_t<CharT>>;
  using ofstream = std::basic_ofstream<CharT>;
  using ifstream = std::basic_ifstream<CharT>;
  using filter_t = WinUtils::basic_ofn_filter_t<CharT>;
  using text_import_t = basic_text_import_t<CharT>;
  using var_name_template_t = basic_var_name_template_t<CharT>;

  virtual ~basic_data_import_t() = default;

  // Asks for what is not given (a file with its type, with `promptSystemFile` the system data
  // file), then imports; with `keepSystemFile` to the system data file, else to memory.
  virtual eRESULT Import(string& name, int& type, bool promptSystemFile, bool keepSystemFile,
                         string& systemFileName);
  virtual eRESULT Import(string& name, int& type, string& systemFileName);
  virtual eRESULT Import(string& name, int& type);

  virtual eRESULT GetImportFileNameAndType(string& name, int& type);
  virtual eRESULT DoPromptForImportFileNameAndType(string& name, int& type);
  virtual eRESULT DoPromptForImportedAppDataFileName(const string& name, bool prompt,
                                                     string& systemFileName);
  virtual bool DoImportData(const string& name, int type, bool toFile,
                            const string& systemFileName);
  // A dialog for the system data file: with `open` one that must exist.
  virtual eRESULT PromptForAppDataFileName(bool open, string& systemFileName);
  // Unknown types become numeric.
  virtual void CheckUnknownVarType(variables_t& variables);

  // Scans the file, has the variables confirmed and copies the records.
  virtual bool ImportTextData(const string& name, int type, bool toFile,
                              const string& systemFileName);
  // Finds the variables of a text file that is open (see TextScan.h).
  virtual bool TextDataAutoSense(text_import_t& reader, bool& hasNames, variables_t& variables,
                                 var_name_template_t& names);
  virtual bool TextDataAutoSense(text_import_t& reader, bool& hasNames, variables_t& variables) = 0;
  // Has the user confirm them: names, which are wanted, and which are numbers. False: cancelled.
  virtual bool TextDataConfirmation(bool hasNames, const string& name, variables_t& variables) = 0;
  // Hands the confirmed list back to the reader.
  virtual void ResetVariablesInfo(text_import_t& reader, const variables_t& variables);
  virtual bool OpenAppDataFile(const string& systemFileName, ofstream& stream);
  virtual bool AddAppDataFileFilter(filter_t& filter) = 0;

  virtual bool WriteAppDataHeader(const variables_t& variables) = 0;
  virtual bool WriteAppDataHeader(ofstream& stream, const variables_t& variables,
                                  std::streampos& countPosition) = 0;
  virtual bool WriteAppDataHeader(bool toFile, ofstream& stream, const variables_t& variables,
                                  std::streampos& countPosition);
  virtual bool WriteAppDataRecord(int type, CountT record, const variables_t& variables,
                                  const values_t& values) = 0;
  virtual bool WriteAppDataRecord(int type, ofstream& stream, CountT record,
                                  const variables_t& variables, const values_t& values) = 0;
  virtual bool WriteAppDataRecord(int type, bool toFile, ofstream& stream, CountT record,
                                  const variables_t& variables, const values_t& values);
  virtual bool UpdateAppDataRecordCount(CountT count) = 0;
  virtual bool UpdateAppDataRecordCount(ofstream& stream, const std::streampos& countPosition,
                                        CountT count) = 0;
  virtual bool UpdateAppDataRecordCount(bool toFile, ofstream& stream,
                                        const std::streampos& countPosition, CountT count);

  virtual bool ImportStatData(const string& name, int type, bool toFile,
                              const string& systemFileName);
  virtual bool OpenInFile(const string& name, int type, CStatTransfer<CharT>& transfer);

  static void AddAllFilesFilter(filter_t& filter);
  static void AddImportStatFileFilter(filter_t& filter);
  static void AddImportTextFileFilter(filter_t& filter);
  static void AddApplicationSupportedStatFileFilter(filter_t& filter);

 protected:
  // Told the text of a failure of the library.
  virtual void ReportError(const string& text) = 0;
  // Told what the library had to leave out or change.
  virtual void ReportNote(const string& /*text*/) {}
  // Told, at the end of the records, the encoding that was taken for the texts of a file that
  // names none; empty where that did not matter.
  virtual void OnEncodingGuessed(const string& /*encoding*/) {}
  // Told why the system data file could not be written.
  virtual void ReportWriteError(const string& systemFileName, const string& reason) = 0;
  // Told how far the input has been read, 0 to 1, negative when unknown; false stops the import.
  virtual bool ReportProgress(double fraction) = 0;
  // The number that stands for a missing value, where a system data file can be given whole blocks
  // of cells: records of a text file then go to WriteAppDataNumbers. Empty, as here: they go to
  // WriteAppDataRecord one by one.
  virtual std::optional<double> CellOfMissing() const { return std::nullopt; }
  // Writes whole records, a cell for each selected variable; `records` counts those before them.
  virtual bool WriteAppDataNumbers(ofstream&, CountT /*records*/, std::span<const double>) {
    return false;
  }
  // Called when all records of a text file have been written.
  virtual void OnTextRead(const text_import_t&, const variables_t&) {}

 private:
  bool CopyTextNumbers(text_import_t& reader, ofstream& stream, double missing, CountT& records);
  bool CopyTextRecords(text_import_t& reader, bool toFile, ofstream& stream,
                       const variables_t& variables, CountT& records);
  bool IsReadToTheEnd(const text_import_t& reader);
  bool CopyRecords(CStatTransfer<CharT>& transfer, bool toFile, ofstream& stream, CountT& records);
  static void ReadVariables(CStatTransfer<CharT>& transfer, int count);
};

extern template class basic_data_import_t<char, long>;

}  // namespace STUtils
