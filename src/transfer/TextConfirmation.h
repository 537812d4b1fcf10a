// What the user confirms before a text file is imported: how the file is to be read, and the name,
// choice and kind of each variable. What a dialog shows and what its commands mean is decided here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "transfer/TextImport.h"
#include "transfer/VarNameTemplate.h"

// One field of the preview.
struct TextPreviewCell {
  enum class State { Value, Missing, Unreadable, LeftOut };

  std::string text;  // as it stands in the file
  State state = State::Value;
};

// Commands of the variables' context menu.
enum class TextVariableCommand {
  Rename,
  UseImportName,
  UseDefaultName,
  UseNamesFromFile,
  AllNumeric,
  AllString,
  SelectAll,
  UnselectAll,
};

class CTextConfirmation {
 public:
  static constexpr std::size_t kPreviewRecords = 100;
  static constexpr std::size_t kPreviewColumns = 500;
  using variables_t = std::vector<STUtils::variable_info_t>;

  // `reader` has been scanned; it, `variables` and `names` are edited where they are and must live
  // as long.
  CTextConfirmation(STUtils::basic_text_import_t<char>& reader, std::string name,
                    variables_t& variables, STUtils::var_name_template_t& names);

  std::string Title() const;
  std::string NamesLabel() const;

  // --- How the file is read. Each change scans the file again; what the user has done to the
  // variables stays as far as there are as many as before. ---
  const STUtils::TextSettings& Settings() const { return reader_.Settings(); }
  STUtils::TextEncoding Encoding() const { return reader_.Source().Encoding(); }
  bool HasNames() const { return reader_.HasNames(); }
  char Separator() const { return reader_.FieldSeparator(); }
  // Can the delimiter be chosen for this type of file?
  bool HasDelimiterChoice() const;
  // False when the file cannot be read in this way; everything stays as it was, and the reason is
  // in `problem`.
  bool Change(const STUtils::TextSettings& settings, std::string& problem);
  const std::vector<std::string>& MissingStrings() const { return reader_.Missing().Entries(); }
  bool SetMissingStrings(const std::vector<std::string>& entries, std::string& problem);
  const STUtils::var_name_template_t& Names() const { return names_; }
  // Variables that have their default name get the new one.
  void SetNames(const STUtils::var_name_template_t& names);

  // --- The variables, rows counted from 0 ---
  const variables_t& Variables() const { return variables_; }
  std::size_t SelectedCount() const;
  void Select(std::size_t row, bool selected) { variables_[row].selected = selected; }
  void SetNumeric(std::size_t row, bool numeric);
  bool IsNumeric(std::size_t row) const;
  // Gives a row a name. False when it is empty (`problem` is empty) or when another row has it,
  // upper-cased character by character: then `problem` says which.
  bool Rename(std::size_t row, const std::string& name, std::string& problem);
  // The name that the file gives to a row; empty when it gives none.
  const std::string& ImportName(std::size_t row) const { return importNames_[row]; }
  std::string DefaultName(std::size_t row) const { return names_.Name(row); }

  // The commands' texts, with the names that they would give, and whether they can be used.
  std::string CommandText(TextVariableCommand command, std::size_t row) const;
  bool CanDo(TextVariableCommand command, std::size_t row) const;
  // All but Rename, which asks for the name first. As Rename where a name is in use already.
  bool Do(TextVariableCommand command, std::size_t row, std::string& problem);

  // The first records as they would be imported: a row of cells each, of the first columns.
  // Where a record cannot be read they end before it, and `problem` says why.
  std::vector<std::vector<TextPreviewCell>> Preview(std::string& problem);

 private:
  bool Scan();
  void KeepChoices(const variables_t& before, const std::vector<std::string>& importNamesBefore,
                   const std::vector<std::int32_t>& typesBefore);
  void UseNamesFromFile();
  TextPreviewCell::State StateOf(std::size_t column, const std::string& text) const;

  STUtils::basic_text_import_t<char>& reader_;
  std::string name_;
  variables_t& variables_;
  STUtils::var_name_template_t& names_;
  std::vector<std::string> importNames_;
  std::vector<std::int32_t> scannedTypes_;  // as the last scan found them
};

inline constexpr const char* kDuplicateNameTitle = "Duplicate Variable Name";

// Names that count as the same one are equal in this form.
std::string UpperCased(const std::string& utf8);
