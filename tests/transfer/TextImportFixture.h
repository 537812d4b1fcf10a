// Imports text written here and shows what became of it.
#pragma once

#include "datadoc/DocumentFixture.h"
#include "support/VsfBytes.h"
#include "transfer/DataPort.h"

class TextImportTest : public DocumentTest {
 protected:
  using rows_t = std::vector<std::vector<double>>;
  static constexpr double M = kMissingCode;

  // False when the import failed; what it said is in host.messages and its reason in Reason().
  bool Import(const std::string& text, int type, const STUtils::TextSettings& settings = {}) {
    WriteBytes(source, text);
    host.messages.clear();
    host.statusTexts.clear();
    port.SetTextSettings(settings);
    CString name = source;
    CString systemFile = target;
    if (port.Import(name, type, false, true, systemFile) != STUtils::eOK) return false;
    return document.OnOpenDbmsDocument(target) == 1;
  }
  // The last text of the status bar that is not empty.
  CString Reason() const {
    for (auto text = host.statusTexts.rbegin(); text != host.statusTexts.rend(); ++text) {
      if (!text->empty()) return *text;
    }
    return {};
  }
  std::vector<CString> Names() const {
    std::vector<CString> names;
    for (std::int32_t i = 0; i < document.GetVarnum(); ++i)
      names.push_back(document.GetTorvik()->variable[static_cast<std::size_t>(i)].name);
    return names;
  }

  CDataPort port{&host};
  const CString source = folder / "source.csv";
  const CString target = folder / "target.VSF";
};
