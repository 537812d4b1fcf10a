#include "syntax/OutputOptions.h"

#include <array>
#include <utility>

namespace {

constexpr std::array<const char*, 4> kMatrixKeywords = {"CM", "KM", "AM", "MM"};

// Appends parts to the line, each with its blank.
class LineParts {
 public:
  void Word(const char* word) { (line_ += word) += ' '; }
  void Text(const char* key, const CString& text) { ((line_ += key) += text) += ' '; }
  void Number(const char* key, std::int32_t number) { Text(key, std::to_string(number)); }
  CString Take() { return std::move(line_); }

 private:
  CString line_ = "OU ";
};

void AddMatrix(const TRVOUSTRUCT& options, LineParts& parts) {
  const auto type = static_cast<std::uint32_t>(options.nMatrixType);
  if (type >= kMatrixKeywords.size()) return;
  parts.Text("MA=", kMatrixKeywords[type]);
  if (options.bSaveMatrix) parts.Text("SM=", options.strMatrixFile);
}

void AddData(const TRVOUSTRUCT& options, LineParts& parts) {
  if (!options.bSaveData) return;
  parts.Text("RA=", options.strDataFile);
  if (options.nWidth == kDefaultWidth || options.nDecimals == kDefaultDecimals) return;
  parts.Number("WI=", options.nWidth);
  parts.Number("ND=", options.nDecimals);
}

}  // namespace

CString OutputLine(const TRVOUSTRUCT& options, bool withData) {
  LineParts parts;
  AddMatrix(options, parts);
  if (withData) AddData(options, parts);
  if (options.bSaveMeans) parts.Text("ME=", options.strMeansFile);
  if (options.bSaveSD) parts.Text("SD=", options.strSDFile);
  if (options.nSeedMode) parts.Number("IX=", options.nSeed);
  if (options.nRepetitions > 1) parts.Number("RP=", options.nRepetitions);
  if (options.bSaveAC) {
    parts.Text("AC=", options.strACFile);
    if (options.bPrintAC) parts.Word("PA");
  }
  if (options.bSaveAV) {
    parts.Text("AV=", options.strAVFile);
    if (options.bPrintAV) parts.Word("PV");
  }
  if (options.bPK) parts.Word("PK");
  if (options.bWidePrint) parts.Word("WP");
  if (options.bBivariateTables) parts.Word("BT");
  if (!options.bBivariateTests) parts.Word("XT");
  if (!options.bMultivariateTests) parts.Word("XM");
  return parts.Take();
}
