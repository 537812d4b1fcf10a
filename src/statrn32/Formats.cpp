#include "statrn32/Formats.h"

#include "statrn32/SasFiles.h"
#include "statrn32/SpssFiles.h"
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

// In the order of the codes.
constexpr FORMAT kFormats[] = {
    {0, "Lotus 1-2-3", nullptr, nullptr, nullptr, nullptr, nullptr},
    {6, "dBASE", nullptr, nullptr, nullptr, nullptr, nullptr},
    {7, "Excel", nullptr, nullptr, nullptr, nullptr, nullptr},
    {9, "Gauss", nullptr, nullptr, nullptr, nullptr, nullptr},
    {10, "Paradox", nullptr, nullptr, nullptr, nullptr, nullptr},
    {11, "Quattro Pro", nullptr, nullptr, nullptr, nullptr, nullptr},
    {12, "SAS Transport File", IsTransport, ReadTransport, WriteTransport, &kTransportNames,
     nullptr},
    {13, "SPSS Portable File", IsPor, ReadPor, WritePor, &kPorNames, nullptr},
    {14, "Stata", IsDta, ReadDta, WriteDta, &kDtaNames, nullptr},
    {16, "Systat", nullptr, nullptr, nullptr, nullptr, nullptr},
    {17, "S-Plus", nullptr, nullptr, nullptr, nullptr, nullptr},
    {20, "SAS V6 Data File", nullptr, nullptr, nullptr, nullptr, nullptr},
    {21, "SigmaPlot File", nullptr, nullptr, nullptr, nullptr, nullptr},
    {22, "SPSS Data File", IsSav, ReadSav, WriteSav, &kSavNames, nullptr},
    {23, "Access", IsAccess, nullptr, nullptr, nullptr,
     "Please write comma delimited text, which Access imports"},
    {25, "SQL Server (Sybase)", nullptr, nullptr, nullptr, nullptr, nullptr},
    {27, "Informix", nullptr, nullptr, nullptr, nullptr, nullptr},
    {28, "SQL Server (Microsoft)", nullptr, nullptr, nullptr, nullptr, nullptr},
    {29, "Matlab Matrix", IsMatlab, nullptr, nullptr, nullptr, nullptr},
    {30, "Statistica", nullptr, nullptr, nullptr, nullptr, nullptr},
    {31, "HTML Table", nullptr, nullptr, nullptr, nullptr, nullptr},
    {32, "Epi Info", nullptr, nullptr, nullptr, nullptr, nullptr},
    {33, "LIMDEP for Windows", nullptr, nullptr, nullptr, nullptr, nullptr},
    {34, "Mineset", nullptr, nullptr, nullptr, nullptr, nullptr},
    {35, "JMP", nullptr, nullptr, nullptr, nullptr, nullptr},
    {36, "OSIRIS", nullptr, nullptr, nullptr, nullptr, nullptr},
    {37, "Minitab", nullptr, nullptr, nullptr, nullptr, nullptr},
    {38, "SAS Data File - Versions 7/8/9", IsSas7bdat, ReadSas7bdat, nullptr, nullptr,
     "Please write a SAS Transport File (*.stx) or a SAS Program & Data File (*.sas), which that "
     "program opens"},
    {39, "SPSS 'Syntax' & Data File", nullptr, nullptr, nullptr, nullptr, nullptr},
    {40, "SAS Program & Data File", nullptr, nullptr, nullptr, nullptr, nullptr},
    {41, "Stata Program & Data File", nullptr, nullptr, nullptr, nullptr, nullptr},
    {42, "Oracle", nullptr, nullptr, nullptr, nullptr, nullptr},
    {44, "DB2", nullptr, nullptr, nullptr, nullptr, nullptr},
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
  return "Files of the type \"" + std::string(format->name) + "\" are not read. Types that are: " +
         NamesWhere([](const FORMAT& f) { return f.reader != nullptr; });
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
