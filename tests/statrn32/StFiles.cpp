#include "statrn32/StFiles.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace sttest {
namespace {

Column ColumnOf(ST_FILE* file, int var) {
  Column column;
  column.name = ST_GetVarName(file, var);
  column.label = ST_GetVarLabel(file, var);
  column.type = ST_GetVarTypeExt(file, var);
  column.width = ST_GetVarPrintWidth(file, var);
  column.decimals = ST_GetVarNDec(file, var);
  for (int i = 0; i < ST_GetNValueLabels(file, var); ++i) {
    ST_LABEL label{};
    ST_GetValueLabel(file, var, i, &label);
    column.labels.push_back(
        {label.value, label.text != nullptr ? label.text : "", label.tag, label.label});
  }
  return column;
}

Value ValueOf(ST_FILE* file, int var) {
  Value value;
  std::int32_t type = 0;
  const void* data = nullptr;
  value.status = ST_GetVarDataExt(file, var, &type, &data, &value.display);
  if (value.status == ST_STATUS_ERROR) return value;
  if (type == ST_TYPE_STRING) {
    value.text = static_cast<const char*>(data);
  } else {
    value.number = *static_cast<const double*>(data);
  }
  return value;
}

bool Describe(ST_ENV* env, const Table& table) {
  if (ST_InitUserDict(env, static_cast<int>(table.columns.size())) != 0) return false;
  for (const Column& c : table.columns) {
    if (ST_AddUserVar(env, c.name.c_str(), c.type, c.width, c.decimals) != 0) return false;
    ST_SetUserVarLabel(env, c.label.c_str());
    for (const Label& l : c.labels) ST_AddUserValueLabel(env, l.value, l.label.c_str());
  }
  return true;
}

bool WriteRecord(ST_FILE* file, const Table& table, const std::vector<Value>& record) {
  for (std::size_t i = 0; i < record.size(); ++i) {
    const int var = static_cast<int>(i);
    if (record[i].status != ST_STATUS_PRESENT) {
      ST_SetVarMissing(file, var);
    } else if (table.columns[i].type == ST_TYPE_STRING) {
      ST_SetVarString(file, var, record[i].text.c_str());
    } else {
      ST_SetVarDouble(file, var, record[i].number);
    }
  }
  return ST_WriteRecord(file) == 0;
}

}  // namespace

Value Number(double number) {
  return {ST_STATUS_PRESENT, number, "", ST_TYPE_NUMERIC};
}
Value Text(std::string text) {
  return {ST_STATUS_PRESENT, 0, std::move(text), ST_TYPE_STRING};
}
Value Missing() {
  return {ST_STATUS_MISSING, 0, "", 0};
}

TempFolder::TempFolder() {
  std::string pattern = std::filesystem::temp_directory_path() / "st-XXXXXX";
  path_ = mkdtemp(pattern.data());
}
TempFolder::~TempFolder() {
  std::filesystem::remove_all(path_);
}

Table ReadFile(std::int32_t type, const std::string& name) {
  Table table;
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = ST_OpenInputFile(env, type, name.c_str());
  const int variables = file != nullptr ? ST_ReadDict(file) : -1;
  int got = variables < 0 ? -1 : 1;
  if (got == 1) {
    table.cases = ST_GetNCases(file);
    ST_SelectAllVars(file);
    ST_InitReadOnly(file);
    for (int var = 0; var < variables; ++var) table.columns.push_back(ColumnOf(file, var));
    while ((got = ST_ReadRecord(file)) == 1) {
      auto& record = table.records.emplace_back();
      for (int var = 0; var < variables; ++var) record.push_back(ValueOf(file, var));
    }
  }
  if (got < 0) table.error = ST_GetErrorMsg(env);
  ST_CloseEnvironment(env);
  return table;
}

Table WriteFile(const Table& table, std::int32_t type, const std::string& name,
                std::int64_t announced) {
  Table result;
  ST_ENV* const env = ST_OpenEnvironment();
  const auto records = static_cast<std::int64_t>(table.records.size());
  ST_FILE* file = nullptr;
  if (Describe(env, table)) {
    ST_SetNCases(env, announced < 0 ? records : announced);
    file = ST_OpenOutFile(env, type, name.c_str());
  }
  bool done = file != nullptr;
  for (int i = 0; done && i < ST_GetNRenamed(file); ++i) {
    const char* oldName = nullptr;
    const char* newName = nullptr;
    ST_GetRenamed(file, i, &oldName, &newName);
    result.renamed.push_back(std::string(oldName) + ">" + newName);
  }
  for (const auto& record : table.records) done = done && WriteRecord(file, table, record);
  const std::string error = ST_GetErrorMsg(env);
  const bool closed = ST_CloseFiles(env) == 0;
  if (!done || !closed) result.error = error.empty() ? ST_GetErrorMsg(env) : error;
  if (!done && closed && file != nullptr) result.error = "closing did not fail: " + result.error;
  ST_CloseEnvironment(env);
  return result;
}

std::string BytesOf(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void MakeFile(const std::string& name, const std::string& bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

std::string RealFile(const std::string& name) {
  const char* const folder = std::getenv("VEX_REAL_DATA");
  return folder != nullptr && *folder != '\0' ? std::string(folder) + "/" + name : "";
}

}  // namespace sttest
