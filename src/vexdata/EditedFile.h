// A system data file that a command changes: opened, edited through the data view as in a window,
// and saved durably.
#pragma once

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "vexdata/Commands.h"

class CEditedFile {
 public:
  // False after a message.
  bool Open(const EditTarget& target);
  // Writes the data set in the place of the file, or to the output that was asked for. Stops, with
  // a message, when the layout would cut a name. Returns an exit code.
  int Save();

  CDataView& View() { return view_; }
  const TORVIKSTRUCT& Data() const { return *document_.GetTorvik(); }
  CDataDoc& Document() { return document_; }

  // The one variable, or the variables of a list, that a text names, counted from 0. Empty after a
  // message that begins with `option`.
  std::optional<std::int32_t> FindVariable(const CString& text, const char* option) const;
  std::optional<std::vector<std::int32_t>> FindVariables(const CString& list,
                                                         const char* option) const;

 private:
  bool NamesFit(int kind) const;
  void TellOfLostChoices() const;

  EditTarget target_;
  CDataDoc document_;
  CDataView view_{document_};
  TORVIKSTRUCT before_;
};
