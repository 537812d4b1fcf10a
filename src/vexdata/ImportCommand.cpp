#include <filesystem>

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

}  // namespace

int ImportFile(const ImportOptions& options) {
  if (!Exists(options.source)) return kExitFailed;
  int type = ChosenType(options);
  if (type == STUtils::UNKNOWN_FILE_TYPE) return kExitFailed;
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
  CString source = options.source;
  if (port.Import(source, type, false, true, target) != STUtils::eOK) return kExitFailed;
  for (const CString& note : port.Notes()) Host().ShowNote(note);
  return kExitDone;
}
