// Imports a file, opens the result and gives its columns without their missing values.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Recorder.h"
#include "support/TempFolder.h"
#include "transfer/DataPort.h"
#include "transfer/ProgramFileTypes.h"

class ImportedColumns {
 public:
  ImportedColumns() { host_.extraFileTypes = ProgramFileTypes(); }

  std::vector<std::vector<double>> Import(const std::string& file) {
    CString name = file;
    int type = STUtils::TypeOfFileName(name);
    CString target = folder_ / "imported.VSF";
    CDataPort port(nullptr);
    EXPECT_EQ(port.Import(name, type, false, true, target), STUtils::eOK) << host_.LastMessage();
    CDataDoc document;
    CDataView view(document);
    EXPECT_EQ(document.OnOpenDbmsDocument(target), 1);
    cases = document.GetRecnum();
    std::vector<std::vector<double>> columns(static_cast<std::size_t>(document.GetVarnum()));
    names.clear();
    for (std::size_t i = 0; i < columns.size(); ++i)
      names.push_back(document.GetTorvik()->variable[i].name);
    std::vector<double> row(columns.size());
    for (std::int64_t r = 0; view.GetRow(r, row); ++r) {
      for (std::size_t c = 0; c < row.size(); ++c) {
        if (row[c] != kMissingCode) columns[c].push_back(row[c]);
      }
    }
    return columns;
  }

  std::int32_t cases = 0;
  std::vector<CString> names;

 private:
  CRecorder host_;
  TempFolder folder_;
};
