// The export sequence: from something that hands over records to a foreign or text file.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "transfer/OfnFilter.h"
#include "transfer/StatTransfer.h"
#include "transfer/TextExport.h"
#include "transfer/TransferTypes.h"

class CSideFile;

namespace STUtils {

// The name that means standard output, for text.
inline constexpr const char* kStandardOutput = "-";

// Mixed into a document, which supplies the data through GetAppDataHeader and GetAppDataRecord.
// Files are written beside their target and take its place when they are complete.
template <typename CharT, typename CountT>
class basic_exportable_t {
 public:
  using string = std::basic_string<CharT>;
  using variables_t = std::vector<basic_variable_info_t<CharT>>;
  using values_t = std::vector<basic_variable_data_t<CharT>>;
  using filter_t = WinUtils::basic_ofn_filter_t<CharT>;

  virtual ~basic_exportable_t() = default;

  // `name` is the path of what is exported; its folder and file name are proposed to the user.
  // `chosenName` and `type` are asked for unless both are given.
  virtual eRESULT Export(const string& name);
  virtual eRESULT Export(const string& name, string& chosenName, int& type);
  virtual eRESULT DoPromptForExportFileNameAndType(string& chosenName, int& type,
                                                   const string& folder, const string& fileName);
  virtual eRESULT GetExportFileNameAndType(string& chosenName, int& type, const string& folder,
                                           const string& fileName);
  virtual bool DoExportData(const string& name, int type);
  // The delimiter of the text type that has none of its own. There is none unless a derived class
  // supplies one.
  virtual bool GetTextDelimiter(CharT& delimiter);
  virtual bool ExportStatData(const string& name, int type);
  virtual bool OpenExportFile(const string& name, int type, CharT delimiter,
                              basic_text_export_t<CharT>& target);
  virtual bool OpenExportFile(const string& name, int type, CStatTransfer<CharT>& transfer);
  bool ExportToDatabase(const string& name, CStatTransfer<CharT>& transfer);
  virtual bool WriteStatFileDataRecord(CStatTransfer<CharT>& transfer, CountT record,
                                       values_t& values);
  virtual bool GetAppDataHeader(variables_t& variables) = 0;
  // Fills one record, counted from 0; false when there are no more.
  virtual bool GetAppDataRecord(CountT record, const variables_t& variables, values_t& values) = 0;
  virtual bool GetTextFileDelimiter(CharT& delimiter);
  // The password of the database that the connection file `name` leads to; false when there is to
  // be no export. None is known unless a derived class asks for it.
  virtual bool GetDatabasePassword(const string& name, string& password);
  virtual bool ExportTextData(const string& name, int type, CharT delimiter);
  virtual bool ExportTextData(const string& name, int type);
  virtual bool WriteTextFileDataRecord(basic_text_export_t<CharT>& target, CountT record,
                                       values_t& values);

  static void AddAllFilesFilter(filter_t& filter);
  static void AddStatFileFilter(filter_t& filter);
  static void AddTextFileFilter(filter_t& filter);
  static void AddApplicationSupportedStatFileFilter(filter_t& filter);

 protected:
  // Records to come, for progress and for formats that want the count first.
  virtual CountT GetAppRecordCount() const = 0;
  // Records from `record` on, at most kRecordsPerStep, of nothing but numbers: a cell for each
  // variable, NaN where it is missing. Valid until the next call. Empty where there are none to be
  // had in this way; GetAppDataRecord is asked for each then.
  virtual std::span<const double> GetAppNumbers(CountT, const variables_t&) { return {}; }
  // Is the first line of a text file to hold the names?
  virtual bool WantsNamesLine() const { return false; }
  virtual void ReportError(const string& text) = 0;
  virtual void ReportNote(const string& text) = 0;
  // Told the fraction done; false stops the export.
  virtual bool ReportProgress(double fraction) = 0;

 private:
  bool WriteToStandardOutput(int type, CharT delimiter, const variables_t& variables);
  bool WriteTextRecords(basic_text_export_t<CharT>& target, const variables_t& variables);
  bool WriteNumberLines(basic_text_export_t<CharT>& target, const variables_t& variables,
                        CountT& record);
  bool WriteStatRecords(CStatTransfer<CharT>& transfer);
  bool CheckComplete(CountT records);
  bool StepProgress(CountT record);
  bool CommitOrReport(CSideFile& side, bool written);

  string tableName_;  // base name of the file that is asked for
  bool stopped_ = false;
};

extern template class basic_exportable_t<char, long>;

}  // namespace STUtils
