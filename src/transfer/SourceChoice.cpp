#include "transfer/SourceChoice.h"

#include <algorithm>
#include <string_view>

#include "host/statrn32.h"
#include "transfer/StatTransfer.h"

namespace {

constexpr int kRecordsLookedAt = 5000;
constexpr std::size_t kMostSamples = 12;
constexpr std::size_t kLongestSample = 200;  // bytes

constexpr STUtils::ImportEncoding kEncodings[] = {
    {"Automatic", ""},
    {"Western European (Windows-1252)", "CP1252"},
    {"Unicode (UTF-8)", "UTF-8"},
    {"Western European (ISO 8859-15)", "ISO-8859-15"},
    {"Western European (DOS 850)", "CP850"},
    {"United States (DOS 437)", "CP437"},
    {"Western European (Macintosh)", "MACINTOSH"},
    {"Central European (Windows-1250)", "CP1250"},
    {"Central European (ISO 8859-2)", "ISO-8859-2"},
    {"Central European (DOS 852)", "CP852"},
    {"Cyrillic (Windows-1251)", "CP1251"},
    {"Cyrillic (KOI8-R)", "KOI8-R"},
    {"Cyrillic (DOS 866)", "CP866"},
    {"Greek (Windows-1253)", "CP1253"},
    {"Turkish (Windows-1254)", "CP1254"},
    {"Hebrew (Windows-1255)", "CP1255"},
    {"Arabic (Windows-1256)", "CP1256"},
    {"Baltic (Windows-1257)", "CP1257"},
    {"Vietnamese (Windows-1258)", "CP1258"},
    {"Thai (Windows-874)", "CP874"},
    {"Japanese (Shift-JIS)", "CP932"},
    {"Chinese, simplified (GB 18030)", "GB18030"},
    {"Chinese, traditional (Big5)", "CP950"},
    {"Korean (Windows-949)", "CP949"},
};

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Takes texts until there are enough of them.
class CSamples {
 public:
  bool Full() const { return texts_.size() >= kMostSamples; }
  void Take(std::string_view text) {
    if (Full() || IsAscii(text) || text.size() > kLongestSample) return;
    if (std::find(texts_.begin(), texts_.end(), text) == texts_.end()) texts_.emplace_back(text);
  }
  std::vector<std::string> Texts() && { return std::move(texts_); }

 private:
  std::vector<std::string> texts_;
};

void TakeDictionary(ST_FILE* file, int variables, CSamples& samples) {
  for (int var = 0; var < variables && !samples.Full(); ++var) {
    samples.Take(ST_GetVarName(file, var));
    samples.Take(ST_GetVarLabel(file, var));
    for (int i = 0; i < ST_GetNValueLabels(file, var); ++i) {
      ST_LABEL label{};
      if (ST_GetValueLabel(file, var, i, &label) == 0) samples.Take(label.label);
    }
  }
}

void TakeRecord(ST_FILE* file, int variables, CSamples& samples) {
  for (int var = 0; var < variables; ++var) {
    std::int32_t type = 0;
    std::int32_t display = 0;
    const void* value = nullptr;
    const int status = ST_GetVarDataExt(file, var, &type, &value, &display);
    if (status != ST_STATUS_ERROR && type == ST_TYPE_STRING) {
      samples.Take(static_cast<const char*>(value));
    }
  }
}

}  // namespace

std::span<const STUtils::ImportEncoding> STUtils::ImportEncodings() {
  return kEncodings;
}

CSourceChoice::CSourceChoice(std::string file, std::int32_t type)
    : file_(std::move(file)), type_(type) {
  // A database is not asked before its password is known.
  asksForPassword_ = ST_LeadsToDatabase(file_.c_str());
  if (!asksForPassword_) Look();
}

void CSourceChoice::Look() {
  STUtils::CStatTransfer<char> looking;
  ST_FILE* const file = ST_OpenInputFile(looking.Environment(), type_, file_.c_str());
  if (file == nullptr) return;
  const int tables = ST_GetNTables(file);
  for (int i = 0; tables > 1 && i < tables; ++i) tables_.emplace_back(ST_GetTableName(file, i));
  if (ST_ReadDict(file) < 0) return;
  const auto guessed = [file] { return *ST_GetGuessedEncoding(file) != '\0'; };
  for (int i = 0; i < kRecordsLookedAt && !guessed(); ++i) {
    if (ST_ReadRecord(file) != 1) break;
  }
  asksForEncoding_ = guessed();
}

std::vector<std::string> CSourceChoice::Sample() const {
  CSamples samples;
  STUtils::CStatTransfer<char> reading;
  ST_SetInputTable(reading.Environment(), TableName().c_str());
  ST_SetInputEncoding(reading.Environment(), EncodingName().c_str());
  ST_FILE* const file = ST_OpenInputFile(reading.Environment(), type_, file_.c_str());
  const int variables = file != nullptr ? ST_ReadDict(file) : -1;
  TakeDictionary(file, variables, samples);
  for (int i = 0; variables > 0 && i < kRecordsLookedAt && !samples.Full(); ++i) {
    if (ST_ReadRecord(file) != 1) break;
    TakeRecord(file, variables, samples);
  }
  return std::move(samples).Texts();
}
