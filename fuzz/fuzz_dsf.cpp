// The reader of DSF files: the document itself. What opens must save again, unchanged for the first
// group.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "datadoc/DataDoc.h"
#include "datadoc/DsfLayout.h"
#include "dataview/DataView.h"
#include "host/Recorder.h"
#include "vexutils/TempFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string name = GetTempName("VF");
  if (size < 1) return 0;
  CRecorder host;
  std::ofstream(name, std::ios::binary)
      .write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
  CDataDoc document;
  CDataView view(document);
  EXTERNDATA kind;
  kind.data_type = kDsfFile;
  kind.group = data[0] % 8;
  document.SetExternData(kind);
  const std::int64_t groups = CountDsfGroups(name);
  const bool opened = document.OnOpenDocument(name) != 0;
  if (opened != (kind.group < groups)) std::abort();
  if (!opened) return 0;
  if (document.GetRecnum() != document.GetVarnum() + 1) std::abort();
  if (kind.group == 0) {
    if (document.OnSaveDocument(name) == 0) std::abort();
    if (!host.messages.empty()) std::abort();
  }
  return 0;
}
