#include "statrn32/Formats.h"

#include <algorithm>

#include "statrn32/AccessFiles.h"
#include "statrn32/CompoundFile.h"
#include "statrn32/DbfFiles.h"
#include "statrn32/DumpFiles.h"
#include "statrn32/EpiFiles.h"
#include "statrn32/ExcelFiles.h"
#include "statrn32/GaussFiles.h"
#include "statrn32/HtmlFiles.h"
#include "statrn32/JmpFiles.h"
#include "statrn32/JsonFiles.h"
#include "statrn32/LotusFiles.h"
#include "statrn32/MatlabFiles.h"
#include "statrn32/MinitabFiles.h"
#include "statrn32/OfficeFiles.h"
#include "statrn32/OsirisFiles.h"
#include "statrn32/ParadoxFiles.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/SasFiles.h"
#include "statrn32/SigmaPlotFiles.h"
#include "statrn32/SpssFiles.h"
#include "statrn32/SqlFiles.h"
#include "statrn32/SqliteFiles.h"
#include "statrn32/StataFiles.h"
#include "statrn32/StatisticaFiles.h"
#include "statrn32/SystatFiles.h"

namespace statrn32 {
namespace {

constexpr std::int32_t kGauss = 9;  // numbers from the first byte on

// Why a format is not read or written, and what serves instead.
constexpr const char* kSasInstead =
    "Please write a SAS Transport File (*.stx) or a SAS Program & Data File (*.sas), which that "
    "program opens";
constexpr const char* kSasV6NotRead =
    "Its layout has never been published. Please write the data set as a SAS Transport File "
    "(*.stx) there, which is read here";
constexpr const char* kAccessInstead = "Please write comma delimited text, which Access imports";
constexpr const char* kTextInstead =
    "Please write comma delimited text (*.csv), which that program imports";
constexpr const char* kLimdepNotRead =
    "Its layout has never been published. Please write the data as comma delimited text (*.csv) "
    "there";
constexpr const char* kMinesetNotRead =
    "Please bring its data file along as tab delimited text (*.txt), which it is";

constexpr const char* kProgramVariants =
    "lists and fixed columns, in the program or beside it; written with the data in the program";
constexpr const char* kSqlDates = "dates, times, date-times";
constexpr const char* kSqlVariants =
    "scripts of CREATE TABLE and INSERT statements; connection files, which begin with [ODBC]";

// In the order of the codes.
constexpr FORMAT kFormats[] = {
    {.code = 0,
     .name = "Lotus 1-2-3",
     .recognises = IsLotus,
     .reader = ReadLotus,
     .writer = WriteLotus,
     .names = &kLotusNames,
     .limits = &kLotusLimits,
     .dates = "dates, times",
     .variants = ".wks, .wk1, .wk3, .wk4, .123; written as .wk1"},
    {.code = 6,
     .name = "dBASE",
     .recognises = IsDbf,
     .reader = ReadDbf,
     .writer = WriteDbf,
     .names = &kDbfNames,
     .limits = &kDbfLimits,
     .dates = "dates, date-times",
     .variants = "dBASE II to 7 and FoxPro with memos; written as dBASE III"},
    {.code = 7,
     .name = "Excel",
     .recognises = IsXls,
     .reader = ReadXls,
     .writer = WriteXls,
     .names = &kSheetNames,
     .limits = &kXlsLimits,
     .streams = "Workbook\0Book\0",
     .dates = "dates, times, date-times",
     .variants = "versions 2 to 2003; written as version 97"},
    {.code = 9,
     .name = "Gauss",
     .reader = ReadGauss,
     .variants = "two files, the data (.dat) with a header (.dht) beside them",
     .instead = kTextInstead},
    {.code = 10,
     .name = "Paradox",
     .recognises = IsParadox,
     .reader = ReadParadox,
     .writer = WriteParadox,
     .names = &kParadoxNames,
     .limits = &kParadoxLimits,
     .dates = "dates, times, date-times",
     .variants = "versions 3 to 7 with memos, not encrypted; written as version 7 without a key"},
    {.code = 11,
     .name = "Quattro Pro",
     .recognises = IsQuattro,
     .reader = ReadQuattro,
     .writer = WriteQuattro,
     .names = &kLotusNames,
     .limits = &kLotusLimits,
     .streams = "PerfectOffice_MAIN\0NativeContent_MAIN\0",
     .dates = "dates, times",
     .variants = ".wq1, .wq2, .wb1, .wb2, .wb3, .qpw; written as .wq1"},
    {.code = 12,
     .name = "SAS Transport File",
     .recognises = IsTransport,
     .reader = ReadTransport,
     .writer = WriteTransport,
     .names = &kTransportNames,
     .limits = &kTransportLimits,
     .dates = "dates, times, date-times",
     .variants = "versions 5 and 8; written as version 5"},
    {.code = 13,
     .name = "SPSS Portable File",
     .recognises = IsPor,
     .reader = ReadPor,
     .writer = WritePor,
     .names = &kPorNames,
     .limits = &kPorLimits,
     .dates = "dates, times, date-times"},
    {.code = 14,
     .name = "Stata",
     .recognises = IsDta,
     .reader = ReadDta,
     .writer = WriteDta,
     .names = &kDtaNames,
     .limits = &kDtaLimits,
     .dates = "dates, date-times, weeks, months, quarters, years",
     .variants = "versions 104 to 119; written as version 118"},
    {.code = 16,
     .name = "Systat",
     .recognises = IsSystat,
     .reader = ReadSystat,
     .writer = WriteSystat,
     .names = &kSystatNames,
     .limits = &kSystatLimits},
    {.code = 17,
     .name = "S-Plus",
     .recognises = IsDump,
     .reader = ReadDump,
     .writer = WriteDump,
     .names = &kDumpNames,
     .limits = &kDumpLimits,
     .dates = "dates, date-times of R",
     .variants = "objects written as text by data.dump in its old style"},
    {.code = 20, .name = "SAS V6 Data File", .notRead = kSasV6NotRead, .instead = kSasInstead},
    {.code = 21,
     .name = "SigmaPlot File",
     .recognises = IsSigmaPlot,
     .reader = ReadSigmaPlot,
     .streams = "JNBDirectory\0",
     .variants = "worksheets of notebooks: numbers and texts, not colours",
     .instead = kTextInstead},
    {.code = 22,
     .name = "SPSS Data File",
     .recognises = IsSav,
     .reader = ReadSav,
     .writer = WriteSav,
     .names = &kSavNames,
     .limits = &kSavLimits,
     .dates = "dates, times, date-times, weeks, months, quarters",
     .variants = "plain, compressed and .zsav"},
    {.code = 23,
     .name = "Access",
     .recognises = IsAccess,
     .reader = ReadAccess,
     .dates = "date-times",
     .variants = "versions 95 to 2019 (.mdb, .accdb), not encrypted; tables, not linked ones",
     .instead = kAccessInstead},
    {.code = 25,
     .name = "SQL Server (Sybase)",
     .reader = ReadSql<25>,
     .writer = WriteSql<25>,
     .names = &kSqlShortNames,
     .limits = &kSqlLimits,
     .dates = kSqlDates,
     .variants = kSqlVariants},
    {.code = 27,
     .name = "Informix",
     .reader = ReadSql<27>,
     .writer = WriteSql<27>,
     .names = &kSqlPlainNames,
     .limits = &kSqlLimits,
     .dates = kSqlDates,
     .variants = kSqlVariants},
    {.code = 28,
     .name = "SQL Server (Microsoft)",
     .reader = ReadSql<28>,
     .writer = WriteSql<28>,
     .names = &kSqlNames,
     .limits = &kSqlLimits,
     .dates = kSqlDates,
     .variants = kSqlVariants},
    {.code = 29,
     .name = "Matlab Matrix",
     .recognises = IsMatlab,
     .reader = ReadMatlab,
     .writer = WriteMatlab,
     .names = &kMatlabNames,
     .limits = &kMatlabLimits,
     .variants = "levels 4, 5 (compressed too) and 7.3; written as level 5"},
    {.code = 30,
     .name = "Statistica",
     .recognises = IsStatistica,
     .reader = ReadStatistica,
     .variants = "the first generation (its files begin with \"CSS\"); texts are value labels",
     .instead = kTextInstead},
    {.code = 31,
     .name = "HTML Table",
     .recognises = IsHtml,
     .reader = ReadHtml,
     .writer = WriteHtml,
     .names = &kSheetNames,
     .limits = &kHtmlLimits,
     .dates = "dates, times, date-times in ISO 8601"},
    {.code = 32,
     .name = "Epi Info",
     .recognises = IsEpi,
     .reader = ReadEpi,
     .writer = WriteEpi,
     .names = &kEpiNames,
     .limits = &kEpiLimits,
     .dates = "dates",
     .variants = "version 6"},
    {.code = 33, .name = "LIMDEP for Windows", .notRead = kLimdepNotRead, .instead = kTextInstead},
    {.code = 34, .name = "Mineset", .notRead = kMinesetNotRead, .instead = kTextInstead},
    {.code = 35,
     .name = "JMP",
     .recognises = IsJmp,
     .reader = ReadJmp,
     .dates = "dates, date-times, durations",
     .variants = "versions from 5 on, plain and compressed; without value labels",
     .instead = kTextInstead},
    {.code = 36,
     .name = "OSIRIS",
     .recognises = IsOsiris,
     .reader = ReadOsiris,
     .writer = WriteOsiris,
     .names = &kOsirisNames,
     .limits = &kOsirisLimits,
     .variants = "type 1, with the file of data beside the dictionary"},
    {.code = 37,
     .name = "Minitab",
     .recognises = IsMinitabPortable,
     .reader = ReadMinitab,
     .writer = WriteMinitab,
     .names = &kMinitabNames,
     .limits = &kMinitabLimits,
     .variants = "portable worksheets (.mtp): columns of numbers"},
    {.code = 38,
     .name = "SAS Data File - Versions 7/8/9",
     .recognises = IsSas7bdat,
     .reader = ReadSas7bdat,
     .dates = "dates, times, date-times",
     .variants = "uncompressed and compressed; labels from the catalogue beside the file",
     .instead = kSasInstead},
    {.code = 39,
     .name = "SPSS 'Syntax' & Data File",
     .reader = ReadSpssProgram,
     .writer = WriteSpssProgram,
     .names = &kSavNames,
     .limits = &kSpssProgramLimits,
     .variants = kProgramVariants},
    {.code = 40,
     .name = "SAS Program & Data File",
     .reader = ReadSasProgram,
     .writer = WriteSasProgram,
     .names = &kSasProgramNames,
     .limits = &kSasProgramLimits,
     .variants = kProgramVariants},
    {.code = 41,
     .name = "Stata Program & Data File",
     .reader = ReadStataProgram,
     .writer = WriteStataProgram,
     .names = &kDtaNames,
     .limits = &kStataProgramLimits,
     .variants = kProgramVariants},
    {.code = 42,
     .name = "Oracle",
     .reader = ReadSql<42>,
     .writer = WriteSql<42>,
     .names = &kSqlShortNames,
     .limits = &kSqlLimits,
     .dates = kSqlDates,
     .variants = kSqlVariants},
    {.code = 44,
     .name = "DB2",
     .reader = ReadSql<44>,
     .writer = WriteSql<44>,
     .names = &kSqlNames,
     .limits = &kSqlLimits,
     .dates = kSqlDates,
     .variants = kSqlVariants},
    {.code = 900,
     .name = "Excel Workbook",
     .recognises = IsXlsx,
     .reader = ReadXlsx,
     .writer = WriteXlsx,
     .names = &kSheetNames,
     .limits = &kXlsxLimits,
     .dates = "dates, times, date-times",
     .variants = "Office Open XML"},
    {.code = 901,
     .name = "OpenDocument Spreadsheet",
     .recognises = IsOds,
     .reader = ReadOds,
     .writer = WriteOds,
     .names = &kSheetNames,
     .limits = &kOdsLimits,
     .dates = "dates, times, date-times"},
    {.code = 902,
     .name = "SQLite Database",
     .recognises = IsSqlite,
     .reader = ReadSqlite,
     .writer = WriteSqlite,
     .names = &kColumnNames,
     .limits = &kSqliteLimits,
     .dates = "dates, times, date-times in ISO 8601"},
    {.code = 903,
     .name = "JSON Lines",
     .recognises = IsJsonLines,
     .reader = ReadJsonLines,
     .writer = WriteJsonLines,
     .names = &kSheetNames,
     .limits = &kJsonLimits,
     .dates = "dates, times, date-times in ISO 8601"},
};

// Names of the formats that can do something, for a message.
std::string NamesWhere(bool (*fits)(const FORMAT&)) {
  std::string names;
  for (const FORMAT& format : kFormats) {
    if (!fits(format)) continue;
    if (!names.empty()) names += ", ";
    names += format.name;
  }
  return names;
}

// Does a compound file have one of these streams, or cannot be read?
bool HasStream(const std::string& name, const char* streams) {
  CCompoundFile file;
  std::string error;
  if (!file.Open(name, &error)) return true;
  const std::vector<std::string> names = file.Names("");
  for (std::string_view wanted = streams; !wanted.empty();
       wanted = wanted.data() + wanted.size() + 1) {
    if (std::find(names.begin(), names.end(), wanted) != names.end()) return true;
  }
  return false;
}

bool IsUtf16(std::string_view first) {
  return first.substr(0, 2) == "\xFF\xFE" || first.substr(0, 2) == "\xFE\xFF";
}

std::string UnknownText(std::int32_t code) {
  return "There is no file type with the code " + std::to_string(code);
}

// Relatives of our formats that are refused by name. Of a format that has a row without first bytes
// that row speaks of everything that is not known otherwise.
struct RELATIVE {
  std::int32_t code;
  std::string_view begin;
  const char* text;
  bool everywhere = false;  // also where another type was asked for
};
constexpr const char* kMinitabNotPortable =
    "this is a Minitab worksheet or project; please save it in Minitab as a portable worksheet "
    "(*.mtp), or as text (*.csv)";
constexpr const char* kUtf16Text =
    "this is text in UTF-16, in which only delimited text is read; please save it in UTF-8";
constexpr RELATIVE kRelatives[] = {
    {903, "\xFF\xFE", kUtf16Text, true},
    {903, "\xFE\xFF", kUtf16Text, true},
    {22, std::string_view("\x1c\0\0\0\0\0\0\0ENCRYPTED", 17),
     "this is an encrypted SPSS file; please save it without a password first", true},
    {22, "$FL",
     "this is an SPSS file of a form that is not read; please save it in SPSS as a plain or "
     "compressed file (*.sav, *.zsav) or as a portable file (*.por)"},
    {12, "**COMPRESSED**",
     "this is a SAS file made by PROC CPORT; please make a transport file with PROC COPY and the "
     "XPORT engine",
     true},
    {23, std::string_view("\0\1\0\0MSISAM Database", 19),
     "this is a file of Money, whose tables are encrypted; please export them there as text"},
    {30, kCompoundMagic,
     "this is a Statistica file of a later generation; please save it there as an Excel workbook, "
     "as an SPSS file (*.sav) or as text (*.csv)"},
    {35,
     {},
     "this is no JMP table of version 5 or later; please save it in JMP as a SAS transport file "
     "(*.xpt), as an Excel workbook or as text (*.csv)"},
    {37, kCompoundMagic, kMinitabNotPortable},
    {37, "PK\x03\x04", kMinitabNotPortable},
    {37,
     {},
     "this is no portable Minitab worksheet (*.mtp); please save it as one in Minitab, or as text "
     "(*.csv)"},
    {17, std::string_view("\0S data\1", 8),
     "this is an S object in binary form; please write it with data.dump(..., oldStyle = T)"},
    {17, "## Dump S",
     "this is a dump of the new style; please write it with data.dump(..., oldStyle = T)"},
    {17,
     {},
     "this is no S-Plus object in the old style of data.dump; please write it with data.dump(..., "
     "oldStyle = T), or from R as comma delimited text (*.csv)"},
    {900, kCompoundMagic,
     "this is a workbook of Excel 97 to 2003 (*.xls), or one protected by a password; please "
     "choose the type Excel for the one, save the other without the password first"},
    {902,
     {},
     "this is no SQLite database; one that is encrypted (SQLCipher) must be exported without its "
     "key first, or its table as text (*.csv)"},
    {903,
     {},
     "this is no file of JSON lines; please write each record as an object on a line of its own"},
};

}  // namespace

std::span<const FORMAT> Formats() {
  return kFormats;
}

const FORMAT* FindFormat(std::int32_t code) {
  for (const FORMAT& format : kFormats) {
    if (format.code == code) return &format;
  }
  return nullptr;
}

const FORMAT* RecogniseFormat(std::string_view first) {
  for (const FORMAT& format : kFormats) {
    if (format.recognises != nullptr && format.recognises(first)) return &format;
  }
  return nullptr;
}

bool FormatFits(const FORMAT& format, const std::string& name, std::string_view first) {
  if (format.recognises == nullptr || !format.recognises(first)) return false;
  return first.substr(0, kCompoundMagic.size()) != kCompoundMagic || format.streams == nullptr ||
         HasStream(name, format.streams);
}

const FORMAT* RecogniseFile(const std::string& name, std::string_view first) {
  for (const FORMAT& format : kFormats) {
    if (FormatFits(format, name, first)) return &format;
  }
  return nullptr;
}

std::string WhyNotRecognised(std::int32_t code, std::string_view first) {
  const FORMAT* const wanted = FindFormat(code);
  if (wanted == nullptr) return UnknownText(code);
  if (wanted->recognises == nullptr) return code != kGauss && IsUtf16(first) ? kUtf16Text : "";
  if (wanted->recognises(first)) return {};
  if (first.empty()) return "the file is empty";
  const FORMAT* const found = RecogniseFormat(first);
  for (const RELATIVE& relative : kRelatives) {
    if (first.substr(0, relative.begin.size()) != relative.begin) continue;
    if (relative.everywhere || relative.code == code) {
      if (!relative.begin.empty() || found == nullptr) return relative.text;
    }
  }
  std::string text = "this is not a file of the type \"" + std::string(wanted->name) + "\"";
  if (found != nullptr)
    text += "; its first bytes are those of \"" + std::string(found->name) + "\"";
  return text;
}

std::string CannotReadText(std::int32_t code) {
  const FORMAT* const format = FindFormat(code);
  if (format == nullptr) return UnknownText(code);
  const std::string text = "Files of the type \"" + std::string(format->name) + "\" are not read. ";
  if (format->notRead != nullptr) return text + format->notRead;
  return text +
         "Types that are: " + NamesWhere([](const FORMAT& f) { return f.reader != nullptr; });
}

std::string CannotWriteText(std::int32_t code) {
  const FORMAT* const format = FindFormat(code);
  if (format == nullptr) return UnknownText(code);
  const std::string text =
      "Files of the type \"" + std::string(format->name) + "\" are not written. ";
  if (format->instead != nullptr) return text + format->instead;
  return text +
         "Types that are: " + NamesWhere([](const FORMAT& f) { return f.writer != nullptr; });
}

}  // namespace statrn32
