#include "statrn32/SpssFiles.h"

#include <array>
#include <readstat.h>
#include <string>

#include "host/Text.h"
#include "statrn32/Formats.h"
#include "statrn32/HeaderBytes.h"
#include "statrn32/ReadStatReader.h"
#include "statrn32/ReadStatWriter.h"

namespace statrn32 {
namespace {

constexpr std::int64_t kSavHeaderBytes = 176;
constexpr std::int64_t kVariableBytes = 32;  // of a variable's record
constexpr std::size_t kPorSignature = 456;   // place of "SPSSPORT", line ends not counted

enum SAV_RECORD {
  kVariable = 2,
  kLabels = 3,
  kLabelTargets = 4,
  kDocument = 6,
  kInfo = 7,
  kEnd = 999
};

std::string DamagedText(const char* what) {
  return std::string("the dictionary is damaged or the file ends too early: ") + what;
}

// The parts of a variable's record behind its type word. Continuations of a long text are no
// variables.
void SkipVariable(CHeaderBytes* in, std::int64_t* variables) {
  const std::int32_t type = in->Int32();
  const std::int32_t hasLabel = in->Int32();
  const std::int64_t missing = in->Int32();
  in->Skip(16);  // two formats and the name
  if (hasLabel != 0) {
    const std::int64_t bytes = in->Int32();
    in->Skip(bytes < 0 ? -1 : (bytes + 3) / 4 * 4);
  }
  if (missing < -3 || missing > 3) in->Skip(-1);
  in->Skip((missing < 0 ? -missing : missing) * 8);
  if (type >= 0) ++*variables;
}

void SkipLabels(CHeaderBytes* in) {
  const std::int32_t labels = in->Int32();
  if (labels < 0) in->Skip(-1);
  for (std::int32_t i = 0; i < labels && in->Ok(); ++i) {
    in->Skip(8);
    const auto bytes = static_cast<std::int64_t>(in->Unsigned(1));
    in->Skip((bytes + 8) / 8 * 8 - 1);
  }
  if (in->Int32() != kLabelTargets) in->Skip(-1);
  const std::int64_t targets = in->Int32();
  in->Skip(targets < 0 ? -1 : targets * 4);
}

void SkipInfo(CHeaderBytes* in) {
  in->Skip(4);
  const std::int64_t size = in->Int32();
  const std::int64_t count = in->Int32();
  in->Skip(size < 0 || count < 0 ? -1 : size * count);
}

// Walks over the dictionary's records: every length in it must lie within the file.
bool CheckSav(CInputFile* input, std::string* error) {
  CHeaderBytes in(input);
  in.Skip(64);
  const std::uint64_t layout = in.Unsigned(4);
  in.SetBigEndian(layout != 2 && layout != 3);
  in.Skip(kSavHeaderBytes - 68);
  std::int64_t variables = 0;
  while (in.Ok()) {
    const std::int64_t place = input->Position();
    switch (in.Int32()) {
      case kVariable:
        SkipVariable(&in, &variables);
        break;
      case kLabels:
        SkipLabels(&in);
        break;
      case kDocument: {
        const std::int64_t lines = in.Int32();
        in.Skip(lines < 0 ? -1 : lines * 80);
        break;
      }
      case kInfo:
        SkipInfo(&in);
        break;
      case kEnd:
        if (variables <= kMaxVariables) return true;
        *error = "the dictionary has too many variables";
        return false;
      default:
        input->Seek(place);
        *error = DamagedText("a record of an unknown kind");
        return false;
    }
  }
  *error = DamagedText("a length reaches beyond the end");
  return false;
}

// The table of characters at the start says which byte stands for which character of the format.
// Some programs list a byte a second time, for a like-looking character (digits again as
// superscripts); ReadStat would let the later entry win and find no digits any more. The first one
// is meant, so later ones are read as "no such character".
bool CheckPor(CInputFile* input, std::string* /*error*/) {
  constexpr int kTableBegin = 200;  // line ends not counted
  constexpr int kFirstCharacter = 64;
  constexpr int kTableEntries = 256;
  constexpr char kNoCharacter = '0';
  std::array<bool, 256> seen{};
  char byte = 0;
  for (int place = 0; place < kTableBegin + kTableEntries && input->Read(&byte, 1) == 1;) {
    if (byte == '\r' || byte == '\n') continue;
    const int entry = place++ - kTableBegin;
    if (entry < kFirstCharacter) continue;
    bool& known = seen[static_cast<unsigned char>(byte)];
    if (known && byte != kNoCharacter) input->Replace(input->Position() - 1, kNoCharacter);
    known = true;
  }
  return true;
}

constexpr READSTAT_FORMAT kSav = {
    .code = 22,
    .parse = readstat_parse_sav,
    .check = CheckSav,
    .bytesPerVariable = kVariableBytes,
    .labelsInFile = true,
    .epochDay = kSpssEpochDay,
    .dateKind = SpssDateKind,
    .dateOfDisplay = DATE_KIND::SecondDate,
    .dateTimeOfDisplay = DATE_KIND::Seconds,
};

constexpr READSTAT_FORMAT kPor = {
    .code = 13,
    .parse = readstat_parse_por,
    .check = CheckPor,
    .bytesPerVariable = 10,
    .labelsInFile = true,
    .encoding = "UTF-8",
    .epochDay = kSpssEpochDay,
    .dateKind = SpssDateKind,
    .dateOfDisplay = DATE_KIND::SecondDate,
    .dateTimeOfDisplay = DATE_KIND::Seconds,
};

readstat_compress_t SavCompression(const std::string& name) {
  const bool zipped = name.size() > 5 && EqualIgnoringCase(name.substr(name.size() - 5), ".zsav");
  return zipped ? READSTAT_COMPRESS_BINARY : READSTAT_COMPRESS_ROWS;
}

// The last numbers of the range stand for the missing value, LO and HI.
constexpr double kLargestSav = 1.797e308;
constexpr READSTAT_TARGET kSavTarget = {
    .begin = readstat_begin_writing_sav,
    .compression = SavCompression,
    .numberFormat = "F%d.%d",
    .labelBytes = 255,
    .valueLabelBytes = 120,
    .textBytes = 255,
    .wholeLabels = false,
    .largest = kLargestSav,
};
constexpr std::string_view kReserved[] = {"ALL", "AND", "BY",  "EQ", "GE", "GT",  "LE",
                                          "LT",  "NE",  "NOT", "OR", "TO", "WITH"};

}  // namespace

constexpr NAME_RULES kSavNames = {64, "@", "@._$#", false, false, false, kReserved};
constexpr LIMITS kSavLimits = {.records = kMostRecords,
                               .textBytes = 255,
                               .labelBytes = 255,
                               .valueLabelBytes = 120,
                               .largest = kLargestSav};
bool IsSav(std::string_view first) {
  const std::string_view magic = first.substr(0, 4);
  return magic == "$FL2" || magic == "$FL3";
}

bool IsPor(std::string_view first) {
  std::string text;
  for (const char c : first) {
    if (c != '\r' && c != '\n') text += c;
  }
  return text.size() >= kPorSignature + 8 && text.compare(kPorSignature, 8, "SPSSPORT") == 0;
}

std::unique_ptr<CReader> ReadSav() {
  return std::make_unique<CReadStatReader>(kSav);
}
std::unique_ptr<CReader> ReadPor() {
  return std::make_unique<CReadStatReader>(kPor);
}
std::unique_ptr<CWriter> WriteSav() {
  return std::make_unique<CReadStatWriter>(kSavTarget);
}
}  // namespace statrn32
