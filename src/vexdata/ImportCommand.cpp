#include <filesystem>

#include <boost/algorithm/string/split.hpp>
#include <boost/format.hpp>

#include "host/Host.h"
#include "transfer/DataPort.h"
#include "transfer/FileContent.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/SystemFile.h"

namespace {

// The file type that was asked for, or the one of the name when the content does not speak against
// it; UNKNOWN_FILE_TYPE after a message.
int ChosenType(const ImportOptions& options) {
  if (options.type >= 0) return options.type;
  const int byName = STUtils::TypeOfFileName(options.source);
  if (byName == STUtils::UNKNOWN_FILE_TYPE) {
    AfxMessageBox(options.source + ": no file type has this extension; --type chooses one");
    return byName;
  }
  const int byContent = STUtils::TypeByContent(options.source, byName);
  if (byContent == byName) return byName;
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

// How a text file is read; empty after a message.
std::optional<STUtils::TextSettings> SettingsOf(const ImportOptions& options, int type) {
  STUtils::TextSettings settings;
  if (!STUtils::IsTextFileType(type)) return settings;
  settings.hasNames = options.names;
  settings.decimalMark = options.decimalMark.front();
  const CString delimiter = options.delimiter == "tab" ? "\t" : options.delimiter;
  if (delimiter.size() > 1 || (delimiter.empty() && type == STUtils::DELIMITED_TEXT_FILE_TYPE)) {
    AfxMessageBox("This file type needs --delimiter with one character, or tab");
    return std::nullopt;
  }
  if (!delimiter.empty()) settings.delimiter = delimiter.front();
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
  if (options.missing) {
    std::vector<CString> texts;
    boost::algorithm::split(texts, *options.missing, [](char c) { return c == ','; });
    port.SetMissingStrings(std::move(texts));
  }
  if (options.allNumeric) {
    port.SetTextConfirmer([](CTextConfirmation& confirmation) {
      std::string none;
      return confirmation.Do(TextVariableCommand::AllNumeric, 0, none);
    });
  }
  CString source = options.source;
  if (port.Import(source, type, false, true, target) != STUtils::eOK) return kExitFailed;
  for (const CString& note : port.Notes()) Host().ShowNote(note);
  return kExitDone;
}
