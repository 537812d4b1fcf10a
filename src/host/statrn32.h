// The operations of the file transfer library: foreign statistical, spreadsheet and database files,
// read and written record by record.
//
// An environment holds at most one input and one output file at a time. Every call is made on the
// thread that opened it. Unless said otherwise a call returns 0 for success and a negative number
// for failure, whose text ST_GetErrorMsg gives. All text is UTF-8; a pointer to text or to a value
// stays valid until the next call that moves on (the next record, or closing the file). Variables
// are counted from 0.
//
// Order of calls, reading:  ST_OpenInputFile, ST_ReadDict, ST_SelectAllVars, ST_InitReadOnly, then
// ST_ReadRecord until it returns 0 and ST_GetVarDataExt for each value, at last ST_CloseFiles.
// Order of calls, writing:  ST_InitUserDict, ST_AddUserVar for each variable (with its labels),
// ST_SetNCases, the options of the format, ST_OpenOutFile, per record the ST_SetVar... calls and
// ST_WriteRecord, at last ST_CloseFiles, which completes the file.
#pragma once

#include <cstdint>

struct ST_ENV;   // an environment
struct ST_FILE;  // an open input or output file; owned by its environment

// Types of a variable.
inline constexpr std::int32_t ST_TYPE_UNKNOWN = -1;
inline constexpr std::int32_t ST_TYPE_NUMERIC = 1;
inline constexpr std::int32_t ST_TYPE_STRING = 2;
inline constexpr std::int32_t ST_TYPE_DATE = 64;  // a number that is displayed as a date or a time

// Display types of a value of a date variable. Values of other variables have their variable's type
// here.
inline constexpr std::int32_t ST_DISPLAY_DATE = 4;
inline constexpr std::int32_t ST_DISPLAY_TIME = 8;
inline constexpr std::int32_t ST_DISPLAY_DATETIME = 16;
inline constexpr std::int32_t ST_DISPLAY_OTHER =
    64;  // a week, a quarter, a duration: shown as text

// Status of a value. Positive: missing, and why.
inline constexpr int ST_STATUS_ERROR = -1;
inline constexpr int ST_STATUS_PRESENT = 0;
inline constexpr int ST_STATUS_MISSING = 1;  // the format's own missing value
inline constexpr int ST_STATUS_TAGGED = 2;   // a missing value with a letter (.a to .z)
inline constexpr int ST_STATUS_USER_MISSING =
    3;  // a number or text that the file declares to mean missing

// One value label: `text` is set for labels of text values, else `value` holds the number.
struct ST_LABEL {
  double value;
  const char* text;
  const char* label;
  char tag;  // 'a' to 'z' for the label of a tagged missing value, else 0
};

// Environments. ST_OpenEnvironment returns null when there is no memory for one. Closing closes the
// files too.
ST_ENV* ST_OpenEnvironment();
int ST_CloseEnvironment(ST_ENV* env);

// What a format can do. A code without a row is known to neither.
bool ST_CanRead(std::int32_t type);
bool ST_CanWrite(std::int32_t type);

// One row of the table of formats. Texts are null where there is nothing to say; the sizes hold for
// writing, and a count without a limit is the largest of its type.
struct ST_FORMAT {
  std::int32_t code;
  const char* name;
  bool canRead;
  bool canWrite;
  std::int64_t records;
  std::int64_t variables;
  std::int64_t nameBytes;
  std::int64_t textBytes;        // 0: no texts
  std::int64_t labelBytes;       // of a variable; 0: none
  std::int64_t valueLabelBytes;  // 0: none
  double largest;                // number by size
  const char* dates;             // the kinds of dates that are read
  const char* variants;          // the versions that are read and written
  const char* remark;            // what else is lost when it is written
  const char* textRemark;        // and of texts and labels
  const char* notRead;           // why not, and what serves instead
  const char* instead;           // what to write instead
};
// The formats in the order of their codes. ST_GetFormat fails for an index beyond the last.
int ST_GetNFormats();
int ST_GetFormat(int index, ST_FORMAT* out);

// The format whose signature the first bytes of a file carry; -1 when none is recognised.
std::int32_t ST_SniffFile(const char* name);
// Do the first bytes carry the signature of this format? Some formats share one.
bool ST_FileFits(const char* name, std::int32_t type);

// The text of the last error of the environment, for a person to read: file, place and what was
// expected. Empty text when there was none; never null.
const char* ST_GetErrorMsg(ST_ENV* env);

// What the last reading or writing left out or changed, one sentence a fact. Complete once all
// records were read, or after ST_CloseFiles.
int ST_GetNNotes(ST_ENV* env);
const char* ST_GetNote(ST_ENV* env, int index);

// --- Reading ---

// Options of spreadsheet input, kept for the next ST_OpenInputFile: the row that holds the names
// (counted from 0) and how types are told (2: from all rows).
int ST_SetWksNameRow(ST_ENV* env, int row);
int ST_SetWksReadMode(ST_ENV* env, int mode);
// The encoding, as iconv knows it, of a file that does not name its own (one that is not known
// fails); and the sheet, member or table that is wanted of a file with several. Both for the next
// ST_OpenInputFile; empty: the reader's choice.
int ST_SetInputEncoding(ST_ENV* env, const char* encoding);
int ST_SetInputTable(ST_ENV* env, const char* table);
// Where the file does not name its encoding and the texts read so far depend on it: the one that
// was taken, valid until the next call. Else empty; never null.
const char* ST_GetGuessedEncoding(ST_FILE* file);
// Does the file lead to a table of a database, which may ask for a password? Such a file is never
// written to: what is exported to it goes into the database.
bool ST_LeadsToDatabase(const char* name);
// The password for the next such file that is opened, and for the next ST_OpenOutFile.
int ST_SetDatabasePassword(ST_ENV* env, const char* password);
// The sheets, members or tables of an open file; 0 where the format holds just one.
int ST_GetNTables(ST_FILE* file);
const char* ST_GetTableName(ST_FILE* file, int index);
// 0 when names were found in the names row.
int ST_GetWksNameStat(ST_FILE* file);

// Null on failure. The file is opened and recognised; nothing beyond its first bytes has been read.
ST_FILE* ST_OpenInputFile(ST_ENV* env, std::int32_t type, const char* name);

// Reads the whole dictionary. Returns the number of variables, negative on failure.
int ST_ReadDict(ST_FILE* file);
// Number of records, of a sheet whose names row was asked for with that row; -1 when the format
// does not tell before the end.
std::int64_t ST_GetNCases(ST_FILE* file);
int ST_SelectAllVars(ST_FILE* file);
int ST_InitReadOnly(ST_FILE* file);

const char* ST_GetVarName(ST_FILE* file, int var);
const char* ST_GetVarLabel(ST_FILE* file, int var);  // empty when there is none
std::int32_t ST_GetVarTypeExt(ST_FILE* file, int var);
int ST_GetVarPrintWidth(ST_FILE* file, int var);
int ST_GetVarNDec(ST_FILE* file, int var);
int ST_GetNValueLabels(ST_FILE* file, int var);
int ST_GetValueLabel(ST_FILE* file, int var, int label, ST_LABEL* out);

// 1: a record was read; 0: the end; -1: the file is damaged here, or reading was stopped.
int ST_ReadRecord(ST_FILE* file);
// One value of the current record. Returns the status. `type` is ST_TYPE_...; `value` points to a
// double, or to a NUL-terminated text for ST_TYPE_STRING; `display` is ST_DISPLAY_... for a date,
// else the type. Each of the out parameters is set also for a missing value (the number is then the
// file's own where it has one, else 0).
int ST_GetVarDataExt(ST_FILE* file, int var, std::int32_t* type, const void** value,
                     std::int32_t* display);
// The calendar parts of a date number of this file: `part1` the date as the number yyyymmdd (0 for
// a time of day), `part2` the milliseconds since midnight (0 for a date). Returns -1 for a number
// outside the calendar.
int ST_FromIDate(ST_FILE* file, double value, std::int32_t display, std::int32_t* part1,
                 std::int32_t* part2);
// The value of a date variable as text, in ISO 8601 where the display is a date or a time. Writes
// at most `size` characters with the closing NUL and returns their number without it.
int ST_FormatDate(ST_FILE* file, int var, double value, char* buffer, int size);

// How far reading has come, 0 to 1 by bytes; negative when unknown.
double ST_GetProgress(ST_FILE* file);

// --- Writing ---

// Starts a dictionary of `variables` variables; ST_AddUserVar then describes each in order.
int ST_InitUserDict(ST_ENV* env, int variables);
int ST_AddUserVar(ST_ENV* env, const char* name, std::int32_t type, int width, int decimals);
// Both of these speak of the variable added last.
int ST_SetUserVarLabel(ST_ENV* env, const char* label);
int ST_AddUserValueLabel(ST_ENV* env, double value, const char* label);

// The exact number of records to come: some formats want it at their start.
int ST_SetNCases(ST_ENV* env, std::int64_t cases);
int ST_SetSasStyle(ST_ENV* env, int style);
int ST_DBSetParm(ST_ENV* env, int parameter, int option, const char* value);

// What of the data set described so far a file of this type cannot hold, one sentence a fact.
int ST_GetNLosses(ST_ENV* env, std::int32_t type);
const char* ST_GetLoss(ST_ENV* env, int index);

// The name that the next output file will have in the end, where it is written under another one
// first: what a format keeps in files beside it is named for it.
int ST_SetOutName(ST_ENV* env, const char* name);

// Null on failure. Names that the format does not allow are changed; ST_GetNRenamed and
// ST_GetRenamed tell.
ST_FILE* ST_OpenOutFile(ST_ENV* env, std::int32_t type, const char* name);
int ST_GetNRenamed(ST_FILE* file);
int ST_GetRenamed(ST_FILE* file, int index, const char** oldName, const char** newName);

int ST_SetVarDouble(ST_FILE* file, int var, double value);
int ST_SetVarString(ST_FILE* file, int var, const char* text);
int ST_SetVarMissing(ST_FILE* file, int var);
int ST_WriteRecord(ST_FILE* file);

// Completes an output file and closes both. Fails when the output could not be completed.
int ST_CloseFiles(ST_ENV* env);
