// The importer of this program: reads a foreign file and writes a system data file while it reads.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "transfer/DataImport.h"
#include "transfer/SourceChoice.h"
#include "transfer/TextConfirmation.h"
#include "vexutils/SideFile.h"

class CDataPort final : public STUtils::basic_data_import_t<char, long> {
 public:
  static constexpr std::int64_t cs_dwSTATUS_PANE_UPDATE_RATE = 1000;  // milliseconds

  // `statusBar` shows the progress; it may be null.
  explicit CDataPort(CStatusBar* statusBar) : statusBar_(statusBar) {}

  // Texts that stand for a missing value in a text file; "NA" and "NIL" at first.
  void SetMissingStrings(std::vector<string> entries) {
    missing_ = STUtils::CMissingStrings(std::move(entries));
  }
  const std::vector<string>& MissingStrings() const { return missing_.Entries(); }
  // How variables of a text file are called that have no name there.
  var_name_template_t& VarNameTemplate() { return nameTemplate_; }
  // How text files are read where their type leaves it open.
  void SetTextSettings(const STUtils::TextSettings& settings) { textSettings_ = settings; }
  // Shows the variables of a text file and lets them be changed; false when the user gave up.
  // Without it they are taken as they were found.
  using TextConfirmer = std::function<bool(CTextConfirmation&)>;
  void SetTextConfirmer(TextConfirmer confirmer) { textConfirmer_ = std::move(confirmer); }
  // Takes over what the source says beyond values and names cut to 16 bytes: unique names, full
  // names or labels as descriptions, value labels. Off at first.
  void SetKeepLabels(bool keep) { keepLabels_ = keep; }
  // Imports only the variables of these names, in the order of the file; empty (as at first): all.
  // A name that the file does not hold fails the import.
  void SetSelection(std::vector<string> names) { selection_ = std::move(names); }
  // The sheet, member or table wanted of a file with several; empty, as at first: the user is asked
  // where a dialog chose the file, else the first that holds anything is read and a note names the
  // others.
  void SetTable(string table) { table_ = std::move(table); }
  // The encoding of a file that does not name its own ("CP850"); empty, as at first: guessed.
  void SetEncoding(string encoding) { encoding_ = std::move(encoding); }
  // Asks what a file leaves open (its table, its encoding, a password); false when the user gave
  // up. Without it nothing is asked but the table, where a dialog chose the file.
  using SourceChooser = std::function<bool(CSourceChoice&)>;
  void SetSourceChooser(SourceChooser chooser) { sourceChooser_ = std::move(chooser); }
  // The password of the database that a connection file leads to.
  void SetPassword(string password) { password_ = std::move(password); }
  // What the last import had to leave behind, one sentence a fact; empty when nothing.
  const std::vector<string>& Notes() const { return notes_; }
  // The encoding that the last import took for a file that names none, as an option names it; empty
  // where nothing in the file depends on it.
  const string& GuessedEncoding() const { return guessedEncoding_; }

  using basic_data_import_t::UpdateAppDataRecordCount;
  using basic_data_import_t::WriteAppDataHeader;
  using basic_data_import_t::WriteAppDataRecord;

  STUtils::eRESULT GetImportFileNameAndType(string& name, int& type) override;
  bool DoImportData(const string& name, int type, bool toFile,
                    const string& systemFileName) override;
  bool OpenInFile(const string& name, int type, STUtils::CStatTransfer<char>& transfer) override;
  using basic_data_import_t::TextDataAutoSense;
  bool TextDataAutoSense(text_import_t& reader, bool& hasNames, variables_t& variables) override;
  bool TextDataConfirmation(bool hasNames, const string& name, variables_t& variables) override;
  void ResetVariablesInfo(text_import_t& reader, const variables_t& variables) override;
  // Opens a file beside the system data file that takes its place when the import is complete.
  bool OpenAppDataFile(const string& systemFileName, ofstream& stream) override;
  bool AddAppDataFileFilter(filter_t& filter) override;

  // This importer writes to system data files only: without one it fails.
  bool WriteAppDataHeader(const variables_t&) override { return false; }
  bool WriteAppDataRecord(int, long, const variables_t&, const values_t&) override { return false; }
  bool UpdateAppDataRecordCount(long) override { return false; }

  bool WriteAppDataHeader(ofstream& stream, const variables_t& variables,
                          std::streampos& countPosition) override;
  bool WriteAppDataRecord(int type, ofstream& stream, long record, const variables_t& variables,
                          const values_t& values) override;
  bool UpdateAppDataRecordCount(ofstream& stream, const std::streampos& countPosition,
                                long count) override;

  // Does a field of a text file stand for a missing value? Never for the formats of the library.
  bool SameAsMissing(int type, const STUtils::variable_data_t& value) const;

 protected:
  void ReportError(const string& text) override;
  void ReportNote(const string& text) override { notes_.push_back(text); }
  void OnEncodingGuessed(const string& encoding) override { guessedEncoding_ = encoding; }
  void ReportWriteError(const string& systemFileName, const string& reason) override;
  bool ReportProgress(double fraction) override;
  std::optional<double> CellOfMissing() const override;
  bool WriteAppDataNumbers(ofstream& stream, long records, std::span<const double> cells) override;
  void OnTextRead(const text_import_t& reader, const variables_t& variables) override;

 private:
  bool WriteCells(ofstream& stream, std::span<const double> cells);
  void TellRecords(long records);
  bool CanUpdateStatusInfo(std::int64_t last) const;
  void ResetStatusInfo() const;
  void WriteStatusInfo(const string& text) const;
  bool ChooseSource(const string& name, int type);
  string AskForTable(const string& name, int type);
  bool SelectVariables(variables_t& variables);
  bool WriteVSFVariable(ofstream& stream, const STUtils::variable_info_t& variable,
                        const string& name) const;
  void NoteNames(const std::vector<string>& names);
  void NoteTextVariables(const variables_t& variables);
  bool Finish(bool imported, const string& systemFileName);
  void TellOfKeptPart();

  CStatusBar* statusBar_;
  STUtils::CMissingStrings missing_;
  var_name_template_t nameTemplate_;
  STUtils::TextSettings textSettings_;
  TextConfirmer textConfirmer_;
  text_import_t* reader_ = nullptr;  // from the scan to the confirmation
  bool keepLabels_ = false;
  std::vector<string> selection_;
  string table_;
  string encoding_;
  string guessedEncoding_;
  string password_;
  SourceChooser sourceChooser_;
  bool asksForTable_ = false;  // a dialog chose the file

  std::unique_ptr<CProgress> progress_;
  bool stopped_ = false;
  CSideFile side_;
  std::int64_t written_ = 0;  // bytes of cells
  std::int64_t lastUpdate_ = 0;
  std::vector<double> row_;
  std::vector<string> notes_;
  std::vector<string> warnings_;  // told in one message at the end of an import that succeeds
  string statusAtEnd_;
  std::vector<string> problems_;  // told in one message at the end
};
