// Every file type, from the rows of the dialogs and the table of the transfer library.
#include <iomanip>
#include <iostream>
#include <limits>

#include <nlohmann/json.hpp>

#include "host/statrn32.h"
#include "transfer/FileTypes.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"

namespace {

using Rows = std::vector<STUtils::file_type_info_t>;
using Json = nlohmann::ordered_json;

// What the library says of a type; code -1 for text, which it does not know.
ST_FORMAT FactsOf(std::int32_t type) {
  ST_FORMAT facts{};
  for (int i = 0; i < ST_GetNFormats(); ++i) {
    if (ST_GetFormat(i, &facts) == 0 && facts.code == type) return facts;
  }
  facts = {};
  facts.code = -1;
  return facts;
}

CString Counted(std::int64_t count) {
  const bool unlimited = count <= 0 || count >= std::numeric_limits<std::int32_t>::max();
  return unlimited ? "-" : std::to_string(count);
}

const char* Mark(bool can) {
  return can ? "yes" : "-";
}

// What to know of a type, sentence by sentence.
CString RemarksOf(const ST_FORMAT& facts) {
  CString text;
  const auto add = [&](const CString& before, const char* remark) {
    if (remark != nullptr) text += (text.empty() ? "" : " ") + before + remark;
  };
  add("Versions: ", facts.variants);
  if (facts.variants != nullptr) text += ".";
  if (facts.canRead) add("Dates: ", facts.dates);
  if (facts.canRead && facts.dates != nullptr) text += ".";
  if (facts.canWrite) {
    add("Written: ", facts.remark);
    add(facts.remark != nullptr ? "" : "Written: ", facts.textRemark);
  }
  if (!facts.canRead) add("Not read: ", facts.notRead);
  if (!facts.canRead && facts.notRead != nullptr) text += ".";
  if (!facts.canWrite) add("Not written: ", facts.instead);
  if (!facts.canWrite && facts.instead != nullptr) text += ".";
  return text;
}

void PrintTable(const Rows& rows) {
  std::cout << std::left << std::setw(6) << "Code" << std::setw(36) << "Name" << std::setw(20)
            << "Extensions" << std::setw(6) << "Read" << std::setw(7) << "Write" << std::setw(12)
            << "Cases" << std::setw(11) << "Variables" << std::setw(6) << "Name"
            << "Text\n";
  for (const auto& row : rows) {
    const ST_FORMAT facts = FactsOf(row.type());
    std::cout << std::left << std::setw(6) << row.type() << std::setw(36) << row.name()
              << std::setw(20) << row.filter() << std::setw(6)
              << Mark(STUtils::CanImport(row.type())) << std::setw(7)
              << Mark(STUtils::CanExport(row.type())) << std::setw(12) << Counted(facts.records)
              << std::setw(11) << Counted(facts.variables) << std::setw(6)
              << Counted(facts.nameBytes) << Counted(facts.textBytes) << '\n';
  }
}

// The page docs/formats.md.
void PrintMarkdown(const Rows& rows) {
  std::cout << "# File types\n\n"
               "Made by `vexdata formats --markdown`; do not edit. The limits hold for writing: "
               "cases, variables, bytes of a\nname and of a text. `-` is no limit, or nothing "
               "written.\n\n"
               "| Code | Name | Extensions | Read | Write | Cases | Variables | Name | Text | "
               "Remarks |\n| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |\n";
  for (const auto& row : rows) {
    const ST_FORMAT facts = FactsOf(row.type());
    std::cout << "| " << row.type() << " | " << row.name() << " | `" << row.filter() << "` | "
              << Mark(STUtils::CanImport(row.type())) << " | "
              << Mark(STUtils::CanExport(row.type())) << " | " << Counted(facts.records) << " | "
              << Counted(facts.variables) << " | " << Counted(facts.nameBytes) << " | "
              << Counted(facts.textBytes) << " | " << RemarksOf(facts) << " |\n";
  }
}

Json Count(std::int64_t count) {
  const CString text = Counted(count);
  return text == "-" ? Json(nullptr) : Json(count);
}
Json Text(const char* text) {
  return text != nullptr ? Json(text) : Json(nullptr);
}

void PrintJson(const Rows& rows) {
  Json list = Json::array();
  for (const auto& row : rows) {
    const ST_FORMAT facts = FactsOf(row.type());
    Json entry = {{"code", row.type()},
                  {"name", row.name()},
                  {"extensions", row.extensions()},
                  {"read", STUtils::CanImport(row.type())},
                  {"write", STUtils::CanExport(row.type())}};
    if (facts.code >= 0) {
      entry["limits"] = {
          {"cases", Count(facts.records)},    {"variables", Count(facts.variables)},
          {"name", Count(facts.nameBytes)},   {"text", Count(facts.textBytes)},
          {"label", Count(facts.labelBytes)}, {"value_label", Count(facts.valueLabelBytes)}};
      entry["versions"] = Text(facts.variants);
      entry["dates"] = Text(facts.dates);
      entry["lost"] = Text(facts.remark);
      entry["lost_of_texts"] = Text(facts.textRemark);
      entry["not_read"] = Text(facts.notRead);
      entry["instead"] = Text(facts.instead);
    }
    list.push_back(std::move(entry));
  }
  std::cout << list.dump(2) << '\n';
}

}  // namespace

int ListFormats(bool json, bool markdown) {
  const Rows rows = STUtils::AllFormatTypes();
  json ? PrintJson(rows) : markdown ? PrintMarkdown(rows) : PrintTable(rows);
  return kExitDone;
}
