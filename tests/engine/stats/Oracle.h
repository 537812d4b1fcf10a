// Reads the reference values and the data beside them.
#pragma once

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "engine/stats/Blocks.h"
#include "support/TestData.h"

namespace oracle {

using Json = nlohmann::json;

inline std::string Path(const std::string& name) {
  return TestData("../engine/data/" + name);
}

inline const Json& Load(const std::string& name) {
  static std::map<std::string, Json> files;
  Json& file = files[name];
  if (file.is_null()) file = Json::parse(std::ifstream(Path(name)));
  return file;
}

inline const Json& Screening() {
  return Load("screening.json");
}

// Columns of a comma-separated file, case after case; NaN where a field is empty.
struct Data {
  std::vector<std::string> names;
  std::vector<double> cells;

  int Variables() const { return static_cast<int>(names.size()); }
  std::int64_t Cases() const { return static_cast<std::int64_t>(cells.size() / names.size()); }
  stats::CaseBlock Block() const {
    return {cells.data(), Cases(), Variables(), Variables(), nullptr};
  }

  Data Select(const std::vector<std::string>& wanted) const {
    Data part{wanted, {}};
    for (std::int64_t k = 0; k < Cases(); ++k) {
      for (const std::string& name : wanted) {
        const auto at = std::find(names.begin(), names.end(), name) - names.begin();
        part.cells.push_back(cells[static_cast<std::size_t>(k * Variables() + at)]);
      }
    }
    return part;
  }
};

inline Data ReadCsv(const std::string& name) {
  Data data;
  std::ifstream file(Path(name));
  std::string line, field;
  std::getline(file, line);
  for (std::istringstream fields(line); std::getline(fields, field, ',');)
    data.names.push_back(field);
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    for (std::size_t j = 0; j < data.names.size(); ++j) {
      field.clear();
      std::getline(fields, field, ',');
      data.cells.push_back(field.empty() ? std::numeric_limits<double>::quiet_NaN()
                                         : std::stod(field));
    }
  }
  return data;
}

inline const std::vector<std::string> kItems = {"A1", "A2", "A3", "A4", "A5",
                                                "C1", "C2", "C3", "C4", "C5"};

inline Data Items() {
  return ReadCsv("survey.csv").Select(kItems);
}

// Items from 1 to 6 as codes from 0 to 5, variable after variable.
inline std::vector<std::uint8_t> Codes(const Data& data) {
  std::vector<std::uint8_t> codes(data.cells.size());
  for (std::size_t at = 0; at < codes.size(); ++at) {
    const std::size_t variables = data.names.size();
    const double x = data.cells[at];
    codes[at % variables * static_cast<std::size_t>(data.Cases()) + at / variables] =
        std::isnan(x) ? stats::kMissingCode : static_cast<std::uint8_t>(x - 1);
  }
  return codes;
}

inline stats::CodeBlock CodeBlockOf(const std::vector<std::uint8_t>& codes, const Data& data) {
  return {codes.data(), data.Cases(), data.Variables(), data.Cases(), nullptr};
}

// The tolerance is relative to the reference.
inline void ExpectClose(double value, const Json& reference, double tolerance,
                        const std::string& what) {
  const double expected = reference.get<double>();
  EXPECT_NEAR(value, expected, tolerance * std::fmax(1e-300, std::fabs(expected))) << what;
}

}  // namespace oracle
