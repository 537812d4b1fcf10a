// Small data sets for the engine, as descriptions in memory and as system data files.
#pragma once

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "datadoc/VsfLayout.h"
#include "engine/run/Run.h"
#include "support/TempFolder.h"

// Variables with these names, all of one type.
inline TORVIKSTRUCT Describe(const std::vector<std::string>& names,
                             std::int32_t type = kContinuous) {
  TORVIKSTRUCT data;
  data.format = kNewFormat;
  data.variables = static_cast<std::int32_t>(names.size());
  data.ResizeArrays(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    data.variable[i].name = names[i];
    data.variable[i].type = type;
  }
  return data;
}

inline void WriteDataFile(const std::string& name, TORVIKSTRUCT data,
                          const std::vector<std::vector<double>>& rows) {
  data.records = static_cast<std::int32_t>(rows.size());
  std::string bytes = EncodeVsfDescription(data, kNewFormat, VsfFiller::Spaces);
  for (const auto& row : rows) {
    bytes.append(reinterpret_cast<const char*>(row.data()), row.size() * sizeof(double));
  }
  WriteBytes(name, bytes);
}

// A folder with a data file, DATA.VSF, and runs on it.
class EngineTest : public testing::Test {
 protected:
  void Data(const TORVIKSTRUCT& data, const std::vector<std::vector<double>>& rows) {
    WriteDataFile(folder / "DATA.VSF", data, rows);
  }
  // Runs `lines` behind the SY line; Output() is what came out.
  ERUNRESULT Run(const std::string& lines, int threads = 1) {
    return RunWhole("SY='" + (folder / "DATA.VSF") + "'\n" + lines + "\n", threads);
  }
  ERUNRESULT RunWhole(const std::string& syntax, int threads = 1) {
    WriteBytes(folder / "DATA.TRK", syntax);
    std::filesystem::remove(folder / "DATA.OUT");
    return RunEngine(folder / "DATA.TRK", folder / "DATA.OUT", {threads, nullptr, nullptr});
  }
  std::string Output() const { return ReadBytes(folder / "DATA.OUT"); }
  // The same with every run of blanks and line ends as one blank: where a long file name breaks a
  // line differs.
  std::string UnwrappedOutput() const {
    std::istringstream words(Output());
    std::string text, word;
    while (words >> word) text += (text.empty() ? "" : " ") + word;
    return text;
  }

  TempFolder folder;
};
