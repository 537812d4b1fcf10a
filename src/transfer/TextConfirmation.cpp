#include "transfer/TextConfirmation.h"

#include <algorithm>
#include <cwctype>
#include <filesystem>
#include <locale>
#include <utility>

#include <boost/algorithm/string/replace.hpp>
#include <boost/format.hpp>

#include "host/Text.h"
#include "host/statrn32.h"
#include "transfer/FileTypes.h"
#include "transfer/TextScan.h"

using STUtils::variable_data_t;
using STUtils::variable_info_t;

namespace {

const std::locale& UserLocale() {
  static const std::locale locale = [] {
    try {
      return std::locale("");
    } catch (const std::runtime_error&) {
      return std::locale::classic();
    }
  }();
  return locale;
}

std::vector<std::int32_t> TypesOf(const std::vector<variable_info_t>& variables) {
  std::vector<std::int32_t> types;
  for (const variable_info_t& variable : variables) types.push_back(variable.type);
  return types;
}

}  // namespace

std::string UpperCased(const std::string& utf8) {
  std::string upper;
  for (const char32_t c : CharactersOf(utf8)) {
    const auto wide = static_cast<wchar_t>(c);
    AppendUtf8(static_cast<char32_t>(std::toupper(wide, UserLocale())), upper);
  }
  return upper;
}

CTextConfirmation::CTextConfirmation(STUtils::basic_text_import_t<char>& reader, std::string name,
                                     variables_t& variables, STUtils::var_name_template_t& names)
    : reader_(reader),
      name_(std::move(name)),
      variables_(variables),
      names_(names),
      importNames_(STUtils::NamesInFile(reader)),
      scannedTypes_(TypesOf(variables)) {}

std::string CTextConfirmation::Title() const {
  return "Importing " + std::filesystem::path(name_).filename().string();
}

std::string CTextConfirmation::NamesLabel() const {
  return HasNames() ? "Detected variable name(s) at top of file." : "Variable name not detected.";
}

bool CTextConfirmation::HasDelimiterChoice() const {
  return reader_.type == STUtils::COMMA_TEXT_FILE_TYPE ||
         reader_.type == STUtils::TAB_TEXT_FILE_TYPE ||
         reader_.type == STUtils::DELIMITED_TEXT_FILE_TYPE;
}

bool CTextConfirmation::Change(const STUtils::TextSettings& settings, std::string& problem) {
  STUtils::TextSettings old = reader_.Settings();
  old.encoding = reader_.Source().Encoding();
  const variables_t before = variables_;
  const auto importNamesBefore = importNames_;
  const auto typesBefore = scannedTypes_;
  problem.clear();
  if (reader_.Configure(settings) && Scan()) {
    KeepChoices(before, importNamesBefore, typesBefore);
    return true;
  }
  problem = reader_.Error();
  reader_.ClearError();
  reader_.Configure(old);
  Scan();
  variables_ = before;
  return false;
}

bool CTextConfirmation::SetMissingStrings(const std::vector<std::string>& entries,
                                          std::string& problem) {
  reader_.SetMissingStrings(STUtils::CMissingStrings(entries));
  return Change(STUtils::TextSettings(reader_.Settings()), problem);
}

bool CTextConfirmation::Scan() {
  bool hasNames = false;
  if (!STUtils::SenseTextData(reader_, hasNames, variables_, names_)) return false;
  for (variable_info_t& variable : variables_) {
    if (variable.type == ST_TYPE_UNKNOWN) variable.type = ST_TYPE_NUMERIC;
  }
  importNames_ = STUtils::NamesInFile(reader_);
  scannedTypes_ = TypesOf(variables_);
  return true;
}

// Another reading of the same columns: what was left out stays left out, and so do a kind that is
// not the scan's and a name that neither the file nor the template gave.
void CTextConfirmation::KeepChoices(const variables_t& before,
                                    const std::vector<std::string>& importNamesBefore,
                                    const std::vector<std::int32_t>& typesBefore) {
  if (before.size() != variables_.size()) return;
  for (std::size_t i = 0; i < before.size(); ++i) {
    variables_[i].selected = before[i].selected;
    if (before[i].type != typesBefore[i]) variables_[i].type = before[i].type;
    const bool ownName = !before[i].auxiliary && before[i].name != importNamesBefore[i];
    if (!ownName) continue;
    variables_[i].name = before[i].name;
    variables_[i].auxiliary = false;
  }
}

void CTextConfirmation::SetNames(const STUtils::var_name_template_t& names) {
  names_ = names;
  for (std::size_t row = 0; row < variables_.size(); ++row) {
    if (variables_[row].auxiliary) variables_[row].name = names_.Name(row);
  }
}

std::size_t CTextConfirmation::SelectedCount() const {
  return static_cast<std::size_t>(std::count_if(
      variables_.begin(), variables_.end(), [](const variable_info_t& v) { return v.selected; }));
}

void CTextConfirmation::SetNumeric(std::size_t row, bool numeric) {
  variables_[row].type = numeric ? ST_TYPE_NUMERIC : ST_TYPE_STRING;
}

bool CTextConfirmation::IsNumeric(std::size_t row) const {
  return variables_[row].type != ST_TYPE_STRING;
}

bool CTextConfirmation::Rename(std::size_t row, const std::string& name, std::string& problem) {
  problem.clear();
  const std::string trimmed(Trimmed(name));
  if (trimmed.empty()) return false;
  const std::string upper = UpperCased(trimmed);
  for (std::size_t other = 0; other < variables_.size(); ++other) {
    if (other == row || UpperCased(variables_[other].name) != upper) continue;
    problem = boost::str(boost::format("%1% already defined in row %2%") % trimmed % (other + 1));
    return false;
  }
  variables_[row].auxiliary = trimmed == DefaultName(row) && trimmed != ImportName(row);
  variables_[row].name = trimmed;
  return true;
}

std::string CTextConfirmation::CommandText(TextVariableCommand command, std::size_t row) const {
  const auto with = [](const char* text, const std::string& name) {
    // An ampersand of the name is no mnemonic.
    return boost::str(boost::format(text) % boost::algorithm::replace_all_copy(name, "&", "&&"));
  };
  switch (command) {
    case TextVariableCommand::Rename:
      return "&Rename";
    case TextVariableCommand::UseImportName:
      return with("Use &Import Name (%1%)", ImportName(row));
    case TextVariableCommand::UseDefaultName:
      return with("Use &Default Name (%1%)", DefaultName(row));
    case TextVariableCommand::UseNamesFromFile:
      return "Use Name from &Import File";
    case TextVariableCommand::AllNumeric:
      return "Make All Items &Numeric";
    case TextVariableCommand::AllString:
      return "Make All Items &String";
    case TextVariableCommand::SelectAll:
      return "&Select All";
    case TextVariableCommand::UnselectAll:
      return "&Unselect All";
  }
  return {};
}

bool CTextConfirmation::CanDo(TextVariableCommand command, std::size_t row) const {
  switch (command) {
    case TextVariableCommand::UseImportName:
      return !ImportName(row).empty() && variables_[row].name != ImportName(row);
    case TextVariableCommand::UseDefaultName:
      return variables_[row].name != DefaultName(row);
    case TextVariableCommand::UseNamesFromFile:
      return HasNames();
    default:
      return true;
  }
}

bool CTextConfirmation::Do(TextVariableCommand command, std::size_t row, std::string& problem) {
  problem.clear();
  switch (command) {
    case TextVariableCommand::Rename:
      break;
    case TextVariableCommand::UseImportName:
      return Rename(row, ImportName(row), problem);
    case TextVariableCommand::UseDefaultName:
      return Rename(row, DefaultName(row), problem);
    case TextVariableCommand::UseNamesFromFile:
      UseNamesFromFile();
      break;
    case TextVariableCommand::AllNumeric:
    case TextVariableCommand::AllString:
      for (std::size_t i = 0; i < variables_.size(); ++i) {
        SetNumeric(i, command == TextVariableCommand::AllNumeric);
      }
      break;
    case TextVariableCommand::SelectAll:
    case TextVariableCommand::UnselectAll:
      for (variable_info_t& variable : variables_) {
        variable.selected = command == TextVariableCommand::SelectAll;
      }
      break;
  }
  return true;
}

// All names as the scan gave them.
void CTextConfirmation::UseNamesFromFile() {
  for (std::size_t row = 0; row < variables_.size(); ++row) {
    variables_[row].auxiliary = ImportName(row).empty();
    variables_[row].name = variables_[row].auxiliary ? DefaultName(row) : ImportName(row);
  }
}

std::vector<std::vector<TextPreviewCell>> CTextConfirmation::Preview(std::string& problem) {
  std::vector<std::vector<TextPreviewCell>> rows;
  std::vector<variable_data_t> values(variables_.size());
  reader_.SetTextColumns(variables_.size());
  reader_.StartRecords();
  while (rows.size() < kPreviewRecords && reader_.ReadRecord(values)) {
    std::vector<TextPreviewCell>& cells =
        rows.emplace_back(std::min(variables_.size(), kPreviewColumns));
    for (std::size_t i = 0; i < cells.size(); ++i) {
      cells[i] = {TextForDisplay(values[i].text), StateOf(i, values[i].text)};
    }
  }
  problem = reader_.Error();
  reader_.ClearError();
  return rows;
}

TextPreviewCell::State CTextConfirmation::StateOf(std::size_t column,
                                                  const std::string& text) const {
  if (!variables_[column].selected) return TextPreviewCell::State::LeftOut;
  if (text.empty() || reader_.IsMissingText(text)) return TextPreviewCell::State::Missing;
  if (!IsNumeric(column)) return TextPreviewCell::State::LeftOut;
  return reader_.IsNumber(text) ? TextPreviewCell::State::Value
                                : TextPreviewCell::State::Unreadable;
}
