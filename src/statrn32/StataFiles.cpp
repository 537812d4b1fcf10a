#include "statrn32/StataFiles.h"

#include <charconv>
#include <readstat.h>
#include <string>

#include "statrn32/Formats.h"
#include "statrn32/HeaderBytes.h"
#include "statrn32/ReadStatReader.h"
#include "statrn32/ReadStatWriter.h"

namespace statrn32 {
namespace {

constexpr std::string_view kTagged = "<stata_dta>";
constexpr int kOldestVersion = 104;
constexpr int kNewestUntagged = 115;
constexpr int kOldestTagged = 117;
constexpr int kNewest = 119;
// What a variable takes at least: its type, name, place in the sort list, format, label's name and
// label.
constexpr std::int64_t kBytesPerVariable = 1 + 9 + 2 + 7 + 9 + 32;
constexpr double kLargestNumber = 8.9884656743115e307;  // larger ones stand for missing values
// Lengths of the marks in "<stata_dta><header><release>118</release><byteorder>LSF</byteorder><K>".
constexpr std::int64_t kToRelease = 28;
constexpr std::int64_t kToOrder = 21;
constexpr std::int64_t kToVariables = 15;

// The numbers of variables and records, against the size of the file.
bool CheckDta(CInputFile* input, std::string* error) {
  CHeaderBytes in(input);
  char first[kTagged.size()];
  in.Bytes(first, static_cast<std::int64_t>(sizeof first));
  const bool tagged = std::string_view(first, sizeof first) == kTagged;
  input->Seek(tagged ? kToRelease : 0);
  char version[3] = {};
  in.Bytes(version, tagged ? 3 : 1);
  std::uint64_t variables = 0;
  if (tagged) {
    int release = 0;
    std::from_chars(version, version + sizeof version, release);
    if (in.Ok() && (release < kOldestTagged || release > kNewest)) {
      *error = "this is a Stata file of the release " + std::string(version, sizeof version) +
               ", which is not read (104 to 119 are); please save it in Stata with saveold, or as "
               "text (*.csv)";
      return false;
    }
    in.Skip(kToOrder);
    char order[3] = {};
    in.Bytes(order, 3);
    in.SetBigEndian(order[0] == 'M');
    in.Skip(kToVariables);
    variables = in.Unsigned(version[2] == '9' ? 4 : 2);
  } else {
    in.SetBigEndian(in.Unsigned(1) == 1);
    in.Skip(2);
    variables = in.Unsigned(2);
  }
  if (!in.Ok()) {
    *error = "the file ends within its header";
    return false;
  }
  if (static_cast<std::int64_t>(variables) > input->Size() / kBytesPerVariable) {
    *error = "the header tells of " + std::to_string(variables) +
             " variables, which the file has no room for";
    return false;
  }
  return true;
}

std::size_t SetNameBytes(std::int64_t version) {
  if (version >= 118) return 129;
  return version >= 110 ? 33 : 9;
}

constexpr READSTAT_FORMAT kDta = {
    .code = 14,
    .parse = readstat_parse_dta,
    .check = CheckDta,
    .bytesPerVariable = kBytesPerVariable,
    .labelsInFile = true,
    .setNameBytes = SetNameBytes,
    .encoding = "",  // what the older versions name is a guess: UTF-8 where it is valid
    .utf8Version = 118,
    .epochDay = kSasEpochDay,
    .dateKind = StataDateKind,
    .dateOfDisplay = DATE_KIND::DayDate,
    .dateTimeOfDisplay = DATE_KIND::Millis,
};

readstat_compress_t NoCompression(const std::string& /*name*/) {
  return READSTAT_COMPRESS_NONE;
}

constexpr std::size_t kMostVariables = 32767;
constexpr READSTAT_TARGET kDtaTarget = {
    .begin = readstat_begin_writing_dta,
    .version = 118,
    .compression = NoCompression,
    .numberFormat = "%%%d.%df",
    .labelBytes = 320,
    .valueLabelBytes = 32000,
    .textBytes = 2045,
    .variables = kMostVariables,
    .wholeLabels = true,
    .largest = kLargestNumber,
};

constexpr std::string_view kReserved[] = {"_all", "_b",    "byte", "_coef", "_cons",  "_n",    "_N",
                                          "_pi",  "_pred", "_rc",  "_skip", "double", "float", "if",
                                          "in",   "int",   "long", "strL",  "using",  "with"};

}  // namespace

constexpr NAME_RULES kDtaNames = {32, "_", "_", true, false, true, kReserved, true};
constexpr LIMITS kDtaLimits = {
    .records = kMostRecords,
    .variables = kMostVariables,
    .textBytes = 2045,
    .labelBytes = 320,
    .valueLabelBytes = 32000,
    .largest = kLargestNumber,
    .textRemark = "Value labels of numbers that are not whole are lost."};

bool IsDta(std::string_view first) {
  if (first.substr(0, kTagged.size()) == kTagged) return true;
  if (first.size() < 4) return false;
  const int version = static_cast<unsigned char>(first[0]);
  return version >= kOldestVersion && version <= kNewestUntagged &&
         (first[1] == 1 || first[1] == 2) && first[2] == 1;
}

std::unique_ptr<CReader> ReadDta() {
  return std::make_unique<CReadStatReader>(kDta);
}
std::unique_ptr<CWriter> WriteDta() {
  return std::make_unique<CReadStatWriter>(kDtaTarget);
}

}  // namespace statrn32
