#include <iomanip>
#include <iostream>

#include <nlohmann/json.hpp>

#include "transfer/FileTypes.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"

namespace {

void PrintTable(const std::vector<STUtils::file_type_info_t>& rows) {
  const auto mark = [](bool can) { return can ? "yes" : "-"; };
  std::cout << std::left << std::setw(6) << "Code" << std::setw(36) << "Name" << std::setw(20)
            << "Extensions" << std::setw(6) << "Read"
            << "Write\n";
  for (const auto& row : rows) {
    std::cout << std::left << std::setw(6) << row.type() << std::setw(36) << row.name()
              << std::setw(20) << row.filter() << std::setw(6)
              << mark(STUtils::CanImport(row.type())) << mark(STUtils::CanExport(row.type()))
              << '\n';
  }
}

void PrintJson(const std::vector<STUtils::file_type_info_t>& rows) {
  auto list = nlohmann::ordered_json::array();
  for (const auto& row : rows) {
    list.push_back({{"code", row.type()},
                    {"name", row.name()},
                    {"extensions", row.extensions()},
                    {"read", STUtils::CanImport(row.type())},
                    {"write", STUtils::CanExport(row.type())}});
  }
  std::cout << list.dump(2) << '\n';
}

}  // namespace

int ListFormats(bool json) {
  const auto rows = STUtils::AllFormatTypes();
  json ? PrintJson(rows) : PrintTable(rows);
  return kExitDone;
}
