#include <filesystem>

#include <boost/algorithm/string/split.hpp>
#include <boost/format.hpp>

#include "host/Host.h"
#include "transfer/DataPort.h"
#include "transfer/FileContent.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SystemFile.h"
#include "vexdata/TextOptions.h"

namespace {

// The file type that was asked for, or the one of the name when the content does not speak against
// it, or that of the content when the name says nothing; UNKNOWN_FILE_TYPE after a message.
int ChosenType(const ImportOptions& options) {
  if (options.type >= 0) return options.type;
  const int byName = STUtils::TypeOfFileName(options.source);
  const int byContent = STUtils::TypeByContent(options.source, byName);
  if (byName == STUtils::UNKNOWN_FILE_TYPE && byContent == byName) {
    AfxMessageBox(options.source + ": no file type has this extension; --type chooses one");
  }
  if (byContent == byName || byName == STUtils::UNKNOWN_FILE_TYPE) return byContent;
  AfxMessageBox(boost::str(
      boost::format("%1%: by its name %2% (%3%), by its content %4% (%5%); --type chooses one") %
      options.source % STUtils::NameOfType(byName) % byName % STUtils::NameOfType(byContent) %
      byContent));
  return STUtils::UNKNOWN_FILE_TYPE;
}

bool Exists(const CString& fileName) {
  std::error_code error;
  if (std::filesystem::exists(fileName, error)) return true;
  AfxMessageBox(fileName + ": The file does not exist!");
  return false;
}

// An option that this type of file has no use for; null when there is none.
const char* UselessOption(const ImportOptions& options, int type) {
  const bool text = STUtils::IsTextFileType(type);
  const bool delimited =
      text && type != STUtils::FIRST_TEXT_FILE_TYPE && type != STUtils::SPACE_TEXT_FILE_TYPE;
  if (!delimited && !options.delimiter.empty()) return "--delimiter";
  if (text) return options.table.empty() ? nullptr : "--table";
  if (options.names) return *options.names ? "--names" : "--no-names";
  if (options.missing) return "--missing";
  if (options.allNumeric) return "--all-numeric";
  return options.decimalMark ? "--decimal-mark" : nullptr;
}

// The texts that mean missing. Where one of them holds a comma, semicolons stand between them.
std::vector<CString> MissingTexts(const CString& option) {
  const char separator = option.find(';') != CString::npos ? ';' : ',';
  std::vector<CString> texts;
  boost::algorithm::split(texts, option, [separator](char c) { return c == separator; });
  return texts;
}

// How a text file is read; empty after a message.
std::optional<STUtils::TextSettings> SettingsOf(const ImportOptions& options, int type) {
  STUtils::TextSettings settings;
  if (!STUtils::IsTextFileType(type)) return settings;
  settings.hasNames = options.names;
  if (options.decimalMark) settings.decimalMark = options.decimalMark->front();
  const auto delimiter = DelimiterOf(options.delimiter, type);
  if (!delimiter) return std::nullopt;
  settings.delimiter = *delimiter;
  if (options.encoding.empty()) return settings;
  settings.encoding = STUtils::EncodingOfOption(options.encoding);
  if (settings.encoding) return settings;
  CString known;
  for (const auto& row : STUtils::TextEncodings()) {
    known += (known.empty() ? "" : ", ") + CString(row.option);
  }
  AfxMessageBox("--encoding is one of " + known);
  return std::nullopt;
}

}  // namespace

int ImportFile(const ImportOptions& options) {
  if (!Exists(options.source)) return kExitFailed;
  int type = ChosenType(options);
  if (type == STUtils::UNKNOWN_FILE_TYPE) return kExitFailed;
  if (const char* const useless = UselessOption(options, type)) {
    AfxMessageBox(CString(useless) +
                  " has no effect on this type of file: " + STUtils::NameOfType(type));
    return kExitUsage;
  }
  const auto settings = SettingsOf(options, type);
  if (!settings) return kExitUsage;
  CString target = options.target;
  if (target.empty()) {
    target = std::filesystem::path(options.source).replace_extension("VSF").string();
  }
  if (!MayWrite(target, options.overwrite)) return kExitFailed;

  CDataPort port(nullptr);
  port.SetKeepLabels(options.keepLabels);
  port.SetSelection(options.select);
  port.SetTable(options.table);
  port.SetEncoding(options.encoding);
  port.SetTextSettings(*settings);
  if (options.missing) port.SetMissingStrings(MissingTexts(*options.missing));
  if (options.allNumeric) {
    port.SetTextConfirmer([](CTextConfirmation& confirmation) {
      std::string none;
      return confirmation.Do(TextVariableCommand::AllNumeric, 0, none);
    });
  }
  CString source = options.source;
  if (port.Import(source, type, false, true, target) != STUtils::eOK) return kExitFailed;
  for (const CString& note : port.Notes()) Host().ShowNote(note);
  if (!port.GuessedEncoding().empty()) {
    Host().ShowNote(options.source + ": names no encoding; its texts were taken for " +
                    port.GuessedEncoding() + ", --encoding chooses another");
  }
  return kExitDone;
}
