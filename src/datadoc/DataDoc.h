// The document of a data window: one data set, the kind of file it belongs to, and a buffer of one
// record. The cells live in the scratch file of the document's view (dataview/DataView.h), never
// all in memory.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "datadoc/DataSet.h"
#include "datadoc/ExportCells.h"
#include "datadoc/ExternData.h"
#include "datadoc/FormatStatement.h"
#include "datadoc/TextOpening.h"
#include "host/Framework.h"
#include "host/Host.h"
#include "syntax/OutputOptions.h"
#include "transfer/Exportable.h"

class CDataView;
class CSideFile;

// File operations return 1 for success and 0 for failure; the user has then been told why.
class CDataDoc : public CDocument, public STUtils::basic_exportable_t<char, long> {
 public:
  CDataDoc();
  ~CDataDoc() override;

  // --- Memory ---
  // Sizes the per-variable arrays to the capacity and sets the missing-value definition, the
  // deletion method and the weight variable to their defaults.
  void MemoryInit();
  // Sets the number of variables and re-initialises as told in DataSet.h; names, types and
  // descriptions of variables that stay are kept. Returns 1.
  int MemoryReInit(std::int32_t variables);

  // --- Access ---
  TORVIKSTRUCT* GetTorvik() { return &data_; }
  const TORVIKSTRUCT* GetTorvik() const { return &data_; }
  // A copy to work on, for dialogs. It holds `count` variables, or as many as the document where
  // `count` is below 1; `capacity` rises by eights from what came in until it holds them. It
  // carries the record count, the first five global missing values, the deletion method, the weight
  // variable and what CopyVariable copies; all else is 0 or empty. Null, with a message, when there
  // is not enough memory.
  std::unique_ptr<TORVIKSTRUCT> GetTorvikCopy(std::int32_t& capacity, std::int32_t count) const;
  // Takes such a copy back. What a copy does not carry stays, but the single global missing value
  // returns to its default; the status bar says so when it was another.
  void UpdateTorvik(const TORVIKSTRUCT& copy);
  // Takes a whole description as it stands, but for the format kind, which is the file's.
  void SetTorvik(TORVIKSTRUCT data);

  std::int32_t GetRecnum() const { return data_.records; }
  std::int32_t GetVarnum() const { return data_.variables; }
  void SetRecnum(std::int32_t records) { data_.records = records; }
  void SetWeight(std::int32_t variable) { data_.weightVariable = variable; }
  void SetGroupVariable(std::int32_t variable) { data_.groupVariable = variable; }
  // 1 when at least one variable is ordinal, else 0.
  int GetVarType() const;
  // 1 when `value` of `variable` (counted from 0) is missing. Counts it in `counter` unless that is
  // -1.
  int IsMissing(double value, int variable, long& counter) const;
  std::int32_t GetCapacity() const { return capacity_; }

  const EXTERNDATA& GetExtern() const { return extern_; }
  // Chooses the kind of file that the next OnOpenDocument or OnSaveDocument reads or writes.
  void SetExternData(const EXTERNDATA& data) { extern_ = data; }
  std::int32_t GetExternType() const { return extern_.data_type; }
  std::int32_t GetExternMa() const { return extern_.ma_type; }
  // Cases by variables, not a moment matrix.
  bool HoldsRawData() const { return GetExternType() != kDsfFile && GetExternMa() < 1; }

  // --- Views ---
  // The first of the document's views that is a data view; null when there is none.
  CDataView* GetDataView() const;
  // Puts a text into pane 0 of the main frame's status bar.
  void WriteStatusInfo(const CString& text) const;

  // --- Files ---
  int OnOpenDocument(const CString& fileName) override;
  // As OnOpenDocument, always a system data file.
  int OnOpenDbmsDocument(const CString& fileName);
  int OnSaveDocument(const CString& fileName) override;
  void OnCloseDocument() override;
  int OnFileSaveAs() override;
  // Asks for a name and becomes a system data file under it.
  int SaveAsSystemDataFile();
  // Describes a new data set: variable n gets the texts of the n-th of `labels` (VARnnn and no
  // description where there are fewer). With `create` the scratch file is filled too, as by
  // OnNewExternFile.
  void SetExtern(const EXTERNDATA& source, const std::vector<LABSTRUCT>& labels,
                 std::int32_t records, std::int32_t variables, bool create);
  // Fills the scratch file with the one-record buffer, once per record.
  int OnNewExternFile();

  // Reads a system data file into the description and the scratch file.
  int OpenVSFFile(const CString& fileName);
  // Writes in the new layout when the data set has it, else asks which. The chosen layout stays the
  // document's.
  int SaveVSFFile(const CString& fileName);
  // Writes in the layout of `kind` (1 old, 2 new) without asking.
  int SaveVSFFile(const CString& fileName, int kind);
  // Reads the group of EXTERNDATA of a DSF file: the lower triangle of its matrix, zeros above it,
  // and one more row.
  int OpenDSFFile(const CString& fileName);
  // Writes the group into a DSF file that is there and has as many variables. Where that changes
  // what is read as this or a neighbouring group, the file as it was is kept beside it.
  int SaveDSFFile(const CString& fileName);
  // Reads a text data file, cases or a moment matrix, by the EXTERNDATA that was set. A format
  // statement on its first line counts unless one was handed in. Without variables the statement
  // says how many there are, without records the file does. What was read as 0 because it is no
  // number is told in a note.
  int OpenASCIIFile(const CString& fileName);
  // Writes a text data file that OpenASCIIFile reads back to the same values. A value that its
  // field cannot hold is told, with its case and variable, and nothing is written.
  int SaveASCIIFile(const CString& fileName);
  // Opens a free-format text file, of cases unless `kind` says of a matrix, as the dialog's answer
  // says.
  int OpenFreeFormatFile(const CString& fileName, const ASC2VSF& choice,
                         const EXTERNDATA& kind = EXTERNDATA());
  // Fills `ranges`, which gets as many entries as there are variables and 10 more, with the fields
  // of the format statement of EXTERNDATA and returns their number.
  int GetRangeFromFormat(std::vector<RANGE_KTQ>& ranges) const;
  // Writes all cells as text, 16 characters a cell and a record a line.
  int CopyDataToAscii(const CString& fileName);

  // --- Export ---
  // The export command.
  void OnFileExportVexmorData();
  // Asks for a file and writes the data set to it. True when that was done.
  bool Export();
  using basic_exportable_t::Export;
  // With a line of names at the top of a text file; off at first.
  void SetExportNames(bool names) { exportNames_ = names; }
  // The delimiter of the text type that has none of its own; without one its export fails.
  void SetExportDelimiter(char delimiter) { exportDelimiter_ = delimiter; }
  // Asks for the password of the database that the connection file leads to; false gives the export
  // up. Without one no password is given.
  using PasswordAsker = std::function<bool(const CString& file, CString& password)>;
  void SetPasswordAsker(PasswordAsker asker) { passwordAsker_ = std::move(asker); }
  // Takes the description of a system data file and the open file itself, which is owned from now
  // on: its cells stay there, and the document can be exported without a scratch file. Nothing else
  // can be done with its cells.
  void ExportFrom(const CString& fileName, int file, VsfContents contents);
  // Every variable with its name, as a number of the display's width and decimals.
  bool GetAppDataHeader(variables_t& variables) override;
  bool GetAppDataRecord(long record, const variables_t& variables, values_t& values) override;
  bool DoExportData(const CString& name, int type) override;
  bool GetTextFileDelimiter(char& delimiter) override;
  bool GetDatabasePassword(const CString& name, CString& password) override;

  // --- Cases ---
  // Sorts the cases by variable `key` (counted from 0) with fqsort, in place and stable; `order` is
  // kSortAscending or kSortDescending. A negative key does nothing. Returns 1; 0 when it failed or
  // was stopped, the cells then being as they were.
  int ProcessData_Sort(std::int32_t key, std::int32_t order);

  // --- Syntax ---
  // Applies the variable deletions ("SD" lines) of a data-screening syntax to the description and
  // returns the number of variables deleted. Category slots are not moved: callers rewrite them.
  int CheckDeletion(const CStringList& lines);
  // The document's own output options, as the user last left them.
  TRVOUSTRUCT* GetOutputOptions() { return &outputOptions_; }
  // Replaces `line` with the output line of `options` (see OutputLine).
  void GetOUString(TRVOUSTRUCT* options, CString& line, int withData);
  // Writes (or appends to) a syntax file: `lines` behind the line that names the system data file,
  // which has the syntax file's name with .VSF. `repetitions` above 1 are asked for in front of
  // that line; kContentsListing (syntax/SyntaxText.h) lists the data set's definitions there, with
  // `withMissing` the missing values too. The third argument is not used. Returns 1 always: a file
  // that cannot be written is not there, and errno says why.
  int BuildTORVIKSyntax(CStringList* lines, const char* syntaxPath, const char* dataTextPath,
                        int withMissing, long repetitions, int rewind, int append);

 protected:
  std::vector<FileDialogRow> SaveAsRows() const override;
  void OnSaveAsRowChosen(int row) override;
  long GetAppRecordCount() const override { return data_.records; }
  std::span<const double> GetAppNumbers(long record, const variables_t& variables) override;
  bool WantsNamesLine() const override { return exportNames_; }
  void ReportError(const CString& text) override;
  void ReportNote(const CString& text) override { exportNotes_.push_back(text); }
  bool ReportProgress(double fraction) override;

 private:
  void WarnOfMissing(const CString& name, int type);
  int ReadFileOfKind(const CString& fileName);
  int WriteFileOfKind(const CString& fileName);
  int FinishOpening(const CString& fileName);
  void ResetDescription();
  void SizeRecordBuffer();
  bool FillScratchFile(CDataView& view) const;
  bool CopyDsfGroup(int file, std::int64_t offset, std::int32_t variables, std::int64_t nameBytes,
                    CDataView& view, const CString& title);
  CString WhyNotSaveGroup(int file) const;
  bool ReplaceDsfGroup(int old, int scratch, CSideFile& target, const CString& fileName);
  CString FindTextFields(int file, std::int64_t& begin, std::vector<RANGE_KTQ>& fields);
  CString TakeFormatStatement(std::string_view line);
  int ReadTextFile(int file, std::int64_t begin, std::vector<RANGE_KTQ> fields, CDataView& view,
                   const CString& fileName);
  std::vector<CString> VariableNames() const;
  bool WriteTextFile(int scratch, CSideFile& target, const CString& fileName,
                     CString& problem) const;

  TORVIKSTRUCT data_;
  std::int32_t capacity_ = 16;
  std::vector<double> record_;       // one case
  std::vector<double> firstVector_;  // the vectors of a matrix text file
  std::vector<double> secondVector_;
  EXTERNDATA extern_;
  TRVOUSTRUCT outputOptions_;
  bool onlySystemFile_ = false;  // the kind that the save-as dialog offers
  TEXTFILETOP textTop_;          // what stands above the numbers of a text file

  bool exportNames_ = false;
  char exportDelimiter_ = 0;
  PasswordAsker passwordAsker_;
  CExportCells exportCells_;
  std::vector<CString> exportNotes_;
  std::vector<CString> exportProblems_;  // told in one message at the end
  std::unique_ptr<CProgress> exportProgress_;
};
