#include "vexapp/SampleData.h"

#include <unistd.h>

#include "datadoc/DataDoc.h"
#include "dataview/DataView.h"

namespace {

std::vector<LABSTRUCT> Labels(int variables) {
  std::vector<LABSTRUCT> labels;
  for (int v = 1; v <= variables; ++v) labels.push_back({"x" + std::to_string(v), {}});
  return labels;
}

void WriteCells(std::FILE* file, int cases, int variables) {
  std::vector<double> row(static_cast<std::size_t>(variables));
  for (int r = 0; r < cases; ++r) {
    for (int c = 0; c < variables; ++c) row[static_cast<std::size_t>(c)] = r + c / 100.0;
    if (r % 7 == 6) row[0] = kMissingCode;
    std::fwrite(row.data(), sizeof(double), row.size(), file);
  }
  std::fflush(file);
}

}  // namespace

bool WriteSampleData(const QString& path, int cases, int variables) {
  CDataDoc document;
  CDataView view(document);
  document.SetExtern(EXTERNDATA(), Labels(variables), cases, variables, false);
  WriteCells(view.OpenScratchFile("w+b"), cases, variables);
  return document.SaveVSFFile(path.toStdString(), kNewFormat) != 0;
}
