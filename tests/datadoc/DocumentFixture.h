// A document with its view and a recording host.
#pragma once

#include <vector>

#include <gtest/gtest.h>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"
#include "host/Recorder.h"
#include "support/TempFolder.h"

class DocumentTest : public testing::Test {
 protected:
  // A new data set of `rows`, variables named A, B, ...
  void Fill(const std::vector<std::vector<double>>& rows) { Fill(document, view, rows); }

  static void Fill(CDataDoc& doc, CDataView& dataView,
                   const std::vector<std::vector<double>>& rows) {
    const auto variables = static_cast<std::int32_t>(rows.front().size());
    std::vector<LABSTRUCT> labels;
    for (std::int32_t i = 0; i < variables; ++i)
      labels.push_back({CString(1, static_cast<char>('A' + i)), {}});
    doc.SetExtern(EXTERNDATA(), labels, static_cast<std::int32_t>(rows.size()), variables, true);
    std::FILE* const scratch = dataView.OpenScratchFile("w+b");
    for (const auto& row : rows) std::fwrite(row.data(), sizeof(double), row.size(), scratch);
    dataView.ReopenFile();
  }

  static std::vector<std::vector<double>> Rows(CDataDoc& doc, CDataView& dataView) {
    std::FILE* const scratch = dataView.OpenScratchFile("rb");
    std::vector<std::vector<double>> rows;
    std::vector<double> row(static_cast<std::size_t>(doc.GetVarnum()));
    while (!row.empty() &&
           std::fread(row.data(), sizeof(double), row.size(), scratch) == row.size()) {
      rows.push_back(row);
    }
    dataView.ReopenFile();
    return rows;
  }
  std::vector<std::vector<double>> Rows() { return Rows(document, view); }

  CRecorder host;
  TempFolder folder;
  CDataDoc document;
  CDataView view{document};
};
