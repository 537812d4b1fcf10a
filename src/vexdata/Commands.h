// One function per command. Each returns an exit code (CommandLine.h); a failure has been told
// before.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/Types.h"
#include "syntax/OutputOptions.h"
#include "syntax/procedures/Procedures.h"

struct ImportOptions {
  CString source;
  CString target;  // empty: the source's name with the extension VSF
  int type = -1;   // -1: told from the name
  std::vector<CString> select;
  CString table;     // empty: the first that holds anything
  CString encoding;  // empty: guessed
  bool keepLabels = false;
  // Text files:
  std::optional<bool> names;       // on the first line; else told from it
  std::optional<CString> missing;  // with commas or semicolons between the texts
  bool allNumeric = false;         // also columns that look like texts
  CString delimiter;               // empty: the type's own
  std::optional<CString> decimalMark;
  bool overwrite = false;
};

// The file that a command reads, and what it cannot say of itself.
struct SourceOptions {
  CString file;
  CString kind;                // "vsf", "dsf" or "text"; empty: told from the name
  std::int32_t variables = 0;  // of a text file; 0: not given
  bool namesOnTop = false;
  CString format;  // of fixed columns
  CString parts;   // of a matrix text file
  bool full = false;
  std::int32_t group = 1;  // of a DSF file, counted from 1
};

struct ShowOptions {
  SourceOptions source;
  CString cases;      // empty: all
  CString variables;  // empty: all
};

struct ConvertOptions {
  SourceOptions source;
  CString target;
  CString to;      // "vsf", "dsf" or "text"; empty: told from the target's name
  CString layout;  // "old" or "new"; empty: not given
  CString format;  // of a text file with fixed columns
  bool overwrite = false;
};

struct ExportOptions {
  SourceOptions source;
  CString target;
  int type = -1;      // -1: told from the target's name
  CString delimiter;  // of the text type that has none of its own
  bool names = false;
  bool overwrite = false;
};

struct RunOptions {
  CString file;
  bool contents = false;                      // the contents listing
  std::optional<ProcedureChoices> procedure;  // as AddProcedures leaves them; none: the lines below
  std::vector<CString> lines;                 // as typed
  TRVOUSTRUCT output;                         // for the output line, where none was typed
  bool syntaxOnly = false;
  bool overwrite = false;  // the new data of a procedure may replace a file
};

// Commands that change a data set: where the result goes, and in which layout.
struct EditTarget {
  CString file;
  CString output;  // empty: `file` itself
  CString layout;  // "old", "new" or empty for that of `file`
  bool overwrite = false;
};

struct SortOptions {
  EditTarget target;
  CString by;  // a variable
  bool descending = false;
};

struct DefineOptions {
  EditTarget target;
  CString variables;   // a list; for a new name one variable
  CString rename;      // empty: none
  CString type;        // one of kVariableTypes, or empty
  CString missing;     // "9,99,90 to 98" or "none"; empty: unchanged
  CString categories;  // "1=low,2=high" or "none"; empty: unchanged
  bool weight = false;
  bool group = false;
};

struct InsertOptions {
  EditTarget target;
  std::int64_t cases = 0;  // one of the two counts is above 0
  std::int32_t variables = 0;
  CString before;  // a case number or a variable; with `after` empty too: at the end
  CString after;
  std::vector<CString> names;
};

struct DeleteOptions {
  EditTarget target;
  CString cases;      // "5", "3-20" or "3-"
  CString variables;  // a list
};

struct SelectOptions {
  EditTarget target;
  std::vector<CString> lines;
  bool tellOnly = false;
};

// The words for the variable types, by their codes.
inline constexpr const char* kVariableTypes[] = {"ordinal", "continuous", "censored-above",
                                                 "censored-below", "censored-both"};

int ListFormats(bool json, bool markdown);
int ImportFile(const ImportOptions& options);
int ShowInfo(const SourceOptions& source, bool json);
int ShowCells(const ShowOptions& options);
int ConvertFile(const ConvertOptions& options);
int ExportFile(const ExportOptions& options);
// Is there an output line among those typed?
bool HasOutputLine(const RunOptions& options);
int RunData(const RunOptions& options);
int SortData(const SortOptions& options);
int DefineVariables(const DefineOptions& options);
int InsertData(const InsertOptions& options);
int DeleteData(const DeleteOptions& options);
int SelectCases(const SelectOptions& options);
