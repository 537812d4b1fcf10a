#include "statrn32/Formats.h"

#include "statrn32/DbfFiles.h"
#include "statrn32/ExcelFiles.h"
#include "statrn32/HtmlFiles.h"
#include "statrn32/JsonFiles.h"
#include "statrn32/OfficeFiles.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/SasFiles.h"
#include "statrn32/SpssFiles.h"
#include "statrn32/SqlFiles.h"
#include "statrn32/SqliteFiles.h"
#include "statrn32/StataFiles.h"

namespace statrn32 {
namespace {

bool IsAccess(std::string_view first) {
  return first.size() > 19 && first.substr(0, 4) == std::string_view("\0\1\0\0", 4) &&
         (first.substr(4, 15) == "Standard Jet DB" || first.substr(4, 15) == "Standard ACE DB");
}

bool IsMatlab(std::string_view first) {
  return first.substr(0, 10) == "MATLAB 5.0";
}

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
constexpr const char* kSqlVariants = "scripts of CREATE TABLE and INSERT statements";

// In the order of the codes.
constexpr FORMAT kFormats[] = {
    {.code = 0, .name = "Lotus 1-2-3"},
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
     .dates = "dates, times, date-times",
     .variants = "versions 2 to 2003; written as version 97"},
    {.code = 9, .name = "Gauss"},
    {.code = 10, .name = "Paradox"},
    {.code = 11, .name = "Quattro Pro"},
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
    {.code = 16, .name = "Systat"},
    {.code = 17, .name = "S-Plus"},
    {.code = 20, .name = "SAS V6 Data File", .notRead = kSasV6NotRead, .instead = kSasInstead},
    {.code = 21, .name = "SigmaPlot File"},
    {.code = 22,
     .name = "SPSS Data File",
     .recognises = IsSav,
     .reader = ReadSav,
     .writer = WriteSav,
     .names = &kSavNames,
     .limits = &kSavLimits,
     .dates = "dates, times, date-times, weeks, months, quarters",
     .variants = "plain, compressed and .zsav"},
    {.code = 23, .name = "Access", .recognises = IsAccess, .instead = kAccessInstead},
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
    {.code = 29, .name = "Matlab Matrix", .recognises = IsMatlab},
    {.code = 30, .name = "Statistica"},
    {.code = 31,
     .name = "HTML Table",
     .recognises = IsHtml,
     .reader = ReadHtml,
     .writer = WriteHtml,
     .names = &kSheetNames,
     .limits = &kHtmlLimits,
     .dates = "dates, times, date-times in ISO 8601"},
    {.code = 32, .name = "Epi Info"},
    {.code = 33, .name = "LIMDEP for Windows", .notRead = kLimdepNotRead, .instead = kTextInstead},
    {.code = 34, .name = "Mineset", .notRead = kMinesetNotRead, .instead = kTextInstead},
    {.code = 35, .name = "JMP"},
    {.code = 36, .name = "OSIRIS"},
    {.code = 37, .name = "Minitab"},
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

std::string UnknownText(std::int32_t code) {
  return "There is no file type with the code " + std::to_string(code);
}

// Relatives of our formats that are refused by name.
struct RELATIVE {
  std::int32_t code;
  std::string_view begin;
  const char* text;
};
constexpr RELATIVE kRelatives[] = {
    {22, std::string_view("\x1c\0\0\0\0\0\0\0ENCRYPTED", 17),
     "this is an encrypted SPSS file; please save it without a password first"},
    {12, "**COMPRESSED**",
     "this is a SAS file made by PROC CPORT; please make a transport file with PROC COPY and the "
     "XPORT engine"},
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

std::string WhyNotRecognised(std::int32_t code, std::string_view first) {
  const FORMAT* const wanted = FindFormat(code);
  if (wanted == nullptr) return UnknownText(code);
  if (wanted->recognises == nullptr || wanted->recognises(first)) return {};
  if (first.empty()) return "the file is empty";
  for (const RELATIVE& relative : kRelatives) {
    if (first.substr(0, relative.begin.size()) == relative.begin) return relative.text;
  }
  std::string text = "this is not a file of the type \"" + std::string(wanted->name) + "\"";
  const FORMAT* const found = RecogniseFormat(first);
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
