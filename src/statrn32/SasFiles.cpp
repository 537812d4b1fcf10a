#include "statrn32/SasFiles.h"

#include <filesystem>
#include <readstat.h>
#include <set>
#include <string>

#include "host/Text.h"
#include "statrn32/BesideFile.h"
#include "statrn32/Formats.h"
#include "statrn32/HeaderBytes.h"
#include "statrn32/ReadStatDictionary.h"
#include "statrn32/ReadStatReader.h"
#include "statrn32/ReadStatWriter.h"

namespace statrn32 {
namespace {

constexpr std::string_view kSasMagic(
    "\0\0\0\0\0\0\0\0\0\0\0\0\xc2\xea\x81\x60\xb3\x14\x11\xcf\xbd\x92\x08\0\x09\xc7\x31\x8c\x18\x1f"
    "\x10\x11",
    32);
// ReadStat writes infinity for the numbers of the last hexadecimal exponent, though the format has
// them.
constexpr double kLargestTransport = 4.5e74;

// Sizes of header and pages, against the size of the file.
bool CheckSas7bdat(CInputFile* input, std::string* error) {
  CHeaderBytes in(input);
  in.Skip(32);
  const bool wide = in.Unsigned(1) == '3';
  in.Skip(2);
  const bool padded = in.Unsigned(1) == '3';
  in.Skip(1);
  in.SetBigEndian(in.Unsigned(1) == 0);
  in.Skip(196 - 38 + (padded ? 4 : 0));
  const std::uint64_t headerBytes = in.Unsigned(4);
  const std::uint64_t pageBytes = in.Unsigned(4);
  const std::uint64_t pages = in.Unsigned(wide ? 8 : 4);
  if (!in.Ok()) {
    *error = "the file ends within its header";
    return false;
  }
  const auto size = static_cast<std::uint64_t>(input->Size());
  if (headerBytes > size || pageBytes == 0 || pages > (size - headerBytes) / pageBytes) {
    *error = "the header tells of " + std::to_string(pages) + " pages of " +
             std::to_string(pageBytes) + " bytes; the file is shorter";
    return false;
  }
  return true;
}

bool CheckNothing(CInputFile* /*input*/, std::string* /*error*/) {
  return true;
}

constexpr READSTAT_FORMAT kCatalogue = {
    .code = 38,
    .parse = readstat_parse_sas7bcat,
    .check = CheckNothing,
    .bytesPerVariable = 1,
    .labelsInFile = true,
    .epochDay = kSasEpochDay,
    .dateKind = SasDateKind,
    .dateOfDisplay = DATE_KIND::DayDate,
    .dateTimeOfDisplay = DATE_KIND::Seconds,
};

// "stem.sas7bcat" or "stem_formats.sas7bcat" in the same folder, in either case; empty when there
// is none.
std::string FindCatalogue(const std::string& file) {
  const std::string stem = std::filesystem::path(file).stem().string();
  const std::string catalogue = FindInFolderOf(file, stem + ".sas7bcat");
  return catalogue.empty() ? FindInFolderOf(file, stem + "_formats.sas7bcat") : catalogue;
}

// A variable names its format with a width ("GENDER1."), the catalogue without.
std::string FormatName(std::string_view format) {
  const std::string_view name = SplitFormat(format).name;
  return std::string(name);
}

// Labels are a help: a catalogue that cannot be read gives none, the data are read all the same.
void AddCatalogueLabels(const std::string& file, const std::vector<std::string>& names,
                        DICTIONARY* dictionary) {
  const std::string catalogue = FindCatalogue(file);
  CInputFile input;
  if (catalogue.empty() || !input.Open(catalogue)) return;
  const std::int64_t cases = dictionary->cases;
  CDictionaryPass pass(kCatalogue, &input);
  pass.RunLabels(dictionary);
  dictionary->cases = cases;  // a catalogue has records of its own
  for (std::size_t i = 0; i < names.size() && i < dictionary->variables.size(); ++i) {
    int set = pass.FindSet(names[i]);
    if (set < 0) set = pass.FindSet(FormatName(names[i]));
    dictionary->variables[i].labelSet = set;
  }
}

constexpr READSTAT_FORMAT kSas7bdat = {
    .code = 38,
    .parse = readstat_parse_sas7bdat,
    .check = CheckSas7bdat,
    .bytesPerVariable = 20,
    .labelsInFile = false,
    .epochDay = kSasEpochDay,
    .dateKind = SasDateKind,
    .dateOfDisplay = DATE_KIND::DayDate,
    .dateTimeOfDisplay = DATE_KIND::Seconds,
    .addLabels = AddCatalogueLabels,
};

readstat_compress_t NoCompression(const std::string& /*name*/) {
  return READSTAT_COMPRESS_NONE;
}

constexpr std::size_t kMostVariables = 9999;
constexpr READSTAT_TARGET kTransportTarget = {
    .begin = readstat_begin_writing_xport,
    .version = 5,
    .compression = NoCompression,
    .numberFormat = "F%d.%d",
    .labelBytes = 40,
    .valueLabelBytes = 0,
    .textBytes = 200,
    .variables = kMostVariables,
    .wholeLabels = true,
    .largest = kLargestTransport,
};

constexpr std::string_view kReserved[] = {
    "_N_", "_ERROR_", "_NUMERIC_", "_CHARACTER_", "_ALL_", "_INFILE_", "_MSG_", "_CMD_", "_IORC_"};

}  // namespace

constexpr NAME_RULES kTransportNames = {8, "_", "_", true, true, false, kReserved};
constexpr LIMITS kTransportLimits = {.records = kMostRecords,
                                     .variables = kMostVariables,
                                     .textBytes = 200,
                                     .labelBytes = 40,
                                     .largest = kLargestTransport};

bool IsSas7bdat(std::string_view first) {
  return first.substr(0, 32) == kSasMagic;
}

bool IsTransport(std::string_view first) {
  return first.substr(0, 48) == "HEADER RECORD*******LIBRARY HEADER RECORD!!!!!!!" ||
         first.substr(0, 48) == "HEADER RECORD*******LIBV8   HEADER RECORD!!!!!!!";
}

std::unique_ptr<CReader> ReadSas7bdat() {
  return std::make_unique<CReadStatReader>(kSas7bdat);
}
std::unique_ptr<CWriter> WriteTransport() {
  return std::make_unique<CReadStatWriter>(kTransportTarget);
}

}  // namespace statrn32
